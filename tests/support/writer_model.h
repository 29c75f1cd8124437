#pragma once

#include "tests/support/runtime_print.h"
#include "tests/support/wide_text.h"
#include "vexakit/types.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

/// The writers' rules in their plainest form: one step after the other on an array that grows with
/// what is written into it. Buffers are read by byte offsets.
class WriterModel {
public:
    using Address = const std::byte*;
    using Writer = std::int64_t (WriterModel::*)(Address, std::int64_t, std::int64_t);

    explicit WriterModel(int precision = 6) : precision_(precision) {}

    // Every writer takes what it writes, the index at which its text starts and the room from there
    // on, and gives what the library's function returns.

    std::int64_t pointList(std::uint64_t count, Address points, std::int64_t at,
                           std::int64_t room) {
        return list(count, points, at, room, false);
    }
    std::int64_t multipointList(std::uint64_t count, Address points, std::int64_t at,
                                std::int64_t room) {
        return list(count, points, at, room, true);
    }

    std::int64_t sublineSeq(Address path, std::int64_t at, std::int64_t room) {
        const std::uint32_t runs = word(path, 0);
        if (runs == 0) return 0;

        std::int64_t written = 0;
        Address run = path + 8;
        for (std::uint32_t left = runs; left > 0; --left) {
            if (room - written < 1) return written;
            copy("(", at + written);
            const std::int64_t result =
                pointList(word(run, 4), run + 8, at + written + 1, room - written - 1);
            if (result < 1) return -1;
            if (room - written - 1 - result == 0) return -1;
            copy(")", at + written + 1 + result);
            written += result + 2;
            if (left == 1) break;
            if (room - written < 1) return -1;
            copy(")", at + written);
            written += 1;
            run = pastRun(run);
        }
        return written;
    }

    std::int64_t ringSeq(Address paths, std::int64_t at, std::int64_t room) {
        const std::uint32_t count = word(paths, 0);
        if (count == 0) return 0;

        std::int64_t written = 0;
        Address path = paths + 8;
        for (std::uint32_t left = count; left > 0; --left) {
            if (room - written < 1) return written;
            const std::int64_t result = sublineSeq(path, at + written, room - written);
            if (result < 1) return -1;
            written += result;
            if (left == 1) break;
            if (room - written < 1) return -1;
            copy(",", at + written);
            written += 1;
            path = pastPath(path);
        }
        return written;
    }

    std::int64_t point(Address geometry, std::int64_t at, std::int64_t room) {
        return keyword("point(", at, room, [&](std::int64_t from, std::int64_t left) {
            return pointList(1, geometry + 16, from, left);
        });
    }
    std::int64_t linestring(Address geometry, std::int64_t at, std::int64_t room) {
        return keyword("linestring(", at, room, [&](std::int64_t from, std::int64_t left) {
            return pointList(word(geometry, 28), geometry + 32, from, left);
        });
    }
    std::int64_t polygon(Address geometry, std::int64_t at, std::int64_t room) {
        return keyword("polygon(", at, room, [&](std::int64_t from, std::int64_t left) {
            return ringSeq(geometry + 16, from, left);
        });
    }
    std::int64_t multipoint(Address geometry, std::int64_t at, std::int64_t room) {
        return keyword("multipoint(", at, room, [&](std::int64_t from, std::int64_t left) {
            return multipointList(word(geometry, 16), geometry + 24, from, left);
        });
    }

    std::int64_t multilinestring(Address geometry, std::int64_t at, std::int64_t room) {
        return elements("multilinestring(", geometry, at, room, &WriterModel::sublineSeq, pastPath);
    }
    std::int64_t multipolygon(Address geometry, std::int64_t at, std::int64_t room) {
        return elements("multipolygon(", geometry, at, room, &WriterModel::polygonElement,
                        pastPathList);
    }
    std::int64_t geometryCollection(Address geometry, std::int64_t at, std::int64_t room) {
        return elements("geometrycollection(", geometry, at, room, &WriterModel::anyOfTypes1To6,
                        pastMember);
    }

    std::int64_t anyOfTypes1To6(Address geometry, std::int64_t at, std::int64_t room) {
        if (!geometry || room == 0) return 32768;
        switch (word(geometry, 8)) {
            case 1: return point(geometry, at, room);
            case 2: return linestring(geometry, at, room);
            case 3: return polygon(geometry, at, room);
            case 4: return multipoint(geometry, at, room);
            case 5: return multilinestring(geometry, at, room);
            case 6: return multipolygon(geometry, at, room);
            default: return 32768;
        }
    }

    /// Whether the array holds what was written here, and nothing else was touched. After a print
    /// that did not fit, the rest of the room may hold anything.
    testing::AssertionResult holdsIn(const GuardedText& text) const {
        if (cells_.size() > text.size()) {
            return testing::AssertionFailure() << "the test's array is too small";
        }
        for (std::size_t index = 0; index < text.size(); ++index) {
            const auto position = static_cast<std::int64_t>(index);
            if (position >= anythingFrom_ && position < anythingTo_) continue;
            const VexaWChar wanted = index < cells_.size() ? cells_[index] : kUntouchedCell;
            if (text[index] == wanted) continue;
            return testing::AssertionFailure()
                   << "cell " << index << " is '" << readable({text[index]}) << "', not '"
                   << readable({wanted}) << "'; wanted \""
                   << readable({cells_.begin(), cells_.end()}) << "\", written \""
                   << readable(text.text()) << "\"";
        }
        if (!text.areGuardsUntouched()) {
            return testing::AssertionFailure() << "written outside the array";
        }
        return testing::AssertionSuccess();
    }

private:
    using Inner = std::function<std::int64_t(std::int64_t from, std::int64_t left)>;

    static std::uint32_t word(Address structure, std::size_t offset) {
        std::uint32_t value = 0;
        std::memcpy(&value, structure + offset, sizeof value);
        return value;
    }

    static Address pastRun(Address run) { return run + 8 + std::size_t{24} * word(run, 4); }
    static Address pastPath(Address path) {
        Address cursor = path + 8;
        for (std::uint32_t left = word(path, 0); left > 0; --left) cursor = pastRun(cursor);
        return cursor;
    }
    static Address pastPathList(Address paths) {
        Address cursor = paths + 8;
        for (std::uint32_t left = word(paths, 0); left > 0; --left) cursor = pastPath(cursor);
        return cursor;
    }
    static Address pastMember(Address member) {
        if (!member) return nullptr;
        std::uint32_t size = word(member, 12);
        if (size == 0) {
            Address end = nullptr;
            switch (word(member, 8)) {
                case 1: end = member + 40; break;
                case 2: end = pastPath(member + 16); break;
                case 3:
                case 5: end = pastPathList(member + 16); break;
                case 4: end = member + 24 + std::size_t{24} * word(member, 16); break;
                case 6: end = pastPolygons(member); break;
                case 7: end = pastMembers(member); break;
                default: return nullptr;
            }
            size = static_cast<std::uint32_t>(end - member);
        }
        const std::uint32_t rounded = (size + 7) / 8 * 8;
        return member + rounded;
    }
    static Address pastPolygons(Address geometry) {
        Address cursor = geometry + 24;
        for (std::uint32_t left = word(geometry, 16); left > 0; --left) {
            cursor = pastPathList(cursor);
        }
        return cursor;
    }
    static Address pastMembers(Address collection) {
        Address cursor = collection + 24;
        for (std::uint32_t left = word(collection, 16); left > 0; --left) {
            cursor = pastMember(cursor);
        }
        return cursor;
    }

    void set(std::int64_t index, VexaWChar cell) {
        const auto position = static_cast<std::size_t>(index);
        if (position >= cells_.size()) cells_.resize(position + 1, kUntouchedCell);
        cells_[position] = cell;
    }
    void copy(const WideString& piece, std::int64_t at) {
        for (const VexaWChar character : piece) set(at++, character);
    }
    /// A literal piece travels with its terminator.
    void copy(std::string_view piece, std::int64_t at) {
        copy(wide(piece), at);
        set(at + static_cast<std::int64_t>(piece.size()), 0);
    }

    /// The bounded print of the runtime.
    std::int64_t print(Address point, bool inParentheses, std::int64_t at, std::int64_t room) {
        Point3d value{};
        std::memcpy(&value, point, sizeof value);
        const WideString text = runtimePoint(value, precision_, inParentheses);
        const auto length = static_cast<std::int64_t>(text.size());
        if (length > room) {
            anythingFrom_ = at;
            anythingTo_ = at + room;
            return -1;
        }
        copy(text, at);
        if (length < room) set(at + length, 0);
        return length;
    }

    std::int64_t list(std::uint64_t count, Address points, std::int64_t at, std::int64_t room,
                      bool inParentheses) {
        if (count == 0) return 0;

        std::int64_t written = 0;
        for (std::uint64_t left = count; left > 0; --left) {
            if (room - written < 1) return written;
            const std::int64_t result = print(points, inParentheses, at + written, room - written);
            if (result < 1) return -1;
            written += result;
            if (left == 1) break;
            if (room - written < 2) return -1;
            copy(",", at + written);
            written += 1;
            points += 24;
        }
        return written;
    }

    std::int64_t keyword(std::string_view name, std::int64_t at, std::int64_t room,
                         const Inner& inner) {
        const auto length = static_cast<std::int64_t>(name.size());
        if (room <= length) return -1;

        copy(name, at);
        const std::int64_t result = inner(at + length, room - length);
        if (result < 1 || length + result + 1 >= room) return -1;
        copy(")", at + length + result);
        return length + result + 1;
    }

    std::int64_t elements(std::string_view name, Address geometry, std::int64_t at,
                          std::int64_t room, Writer write, Address (*past)(Address)) {
        const auto length = static_cast<std::int64_t>(name.size());
        if (room <= length) return 0;

        copy(name, at);
        std::int64_t total = length;
        Address element = geometry + 24;
        for (std::uint32_t left = word(geometry, 16); left > 0; --left) {
            const std::int64_t result = (this->*write)(element, at + total, room - total);
            if (result < 1) return -1;
            total += result;
            if (left == 1) break;
            if (room - total < 2) return -1;
            copy(",", at + total);
            total += 1;
            element = past(element);
        }
        if (total < 1 || room - total < 1) return total;
        copy(")", at + total);
        return total + 1;
    }

    std::int64_t polygonElement(Address rings, std::int64_t at, std::int64_t room) {
        if (room < 2) return -1;
        copy("(", at);
        const std::int64_t result = ringSeq(rings, at + 1, room - 1);
        if (result < 1 || room - result - 1 < 2) return -1;
        copy(")", at + 1 + result);
        return result + 2;
    }

    int precision_;
    std::vector<VexaWChar> cells_;
    std::int64_t anythingFrom_ = 0;
    std::int64_t anythingTo_ = 0;
};

}  // namespace vexa::test
