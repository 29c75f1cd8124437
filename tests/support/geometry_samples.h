#pragma once

#include "geometry/block.h"
#include "geometry/layout.h"
#include "vexakit/geometry.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <new>
#include <span>
#include <vector>

#include <gtest/gtest.h>

/// Geometry buffers for tests: written by hand, word by word, or made by the library.
namespace vexa::test {

using Words = std::vector<std::uint32_t>;
using Points = std::vector<Point3d>;

/// The shape of most constructors and of every append.
using Build = std::uint32_t (*)(const Point3d* points, std::uint32_t count,
                                GeometryBuffer** geometry);

/// Vertices that differ from each other in every coordinate.
inline Points trail(std::uint32_t count, double first = 1) {
    Points points;
    for (std::uint32_t i = 0; i != count; ++i) {
        const double x = first + i;
        points.push_back({x, -100 - x / 3, 1e6 + x});
    }
    return points;
}

inline Points operator+(Points first, const Points& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

inline std::uint32_t countOf(const Points& points) {
    return static_cast<std::uint32_t>(points.size());
}

// ---- Words --------------------------------------------------------------------------------------

inline Words joined(std::initializer_list<Words> parts) {
    Words all;
    for (const Words& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

inline Words wordsAt(const void* address, std::size_t bytes) {
    Words words(bytes / sizeof(std::uint32_t));
    if (!words.empty()) std::memcpy(words.data(), address, words.size() * sizeof(std::uint32_t));
    return words;
}

inline Words wordsOf(const Points& points) {
    return wordsAt(points.data(), points.size() * sizeof(Point3d));
}

inline Words wordsOf(const Block& geometry, std::size_t bytes) {
    return wordsAt(geometry.get(), bytes);
}

inline std::uint32_t wordAt(const GeometryBuffer* geometry, std::size_t offset) {
    return wordsAt(reinterpret_cast<const std::byte*>(geometry) + offset, 4).front();
}

inline Words headerWords(std::uint32_t type, std::uint32_t size = 0) {
    return {1, 1, type, size};
}

inline Words runWords(const Points& points, std::uint32_t flags = 0) {
    return joined({{flags, countOf(points)}, wordsOf(points)});
}

/// A path of runs, a path list of paths, a polygon list of path lists, a member list of buffers.
inline Words listWords(std::initializer_list<Words> elements, std::uint32_t padding = 0) {
    return joined({{static_cast<std::uint32_t>(elements.size()), padding}, joined(elements)});
}

inline std::uint32_t bytesOf(const Words& words) {
    return static_cast<std::uint32_t>(words.size() * sizeof(std::uint32_t));
}

// ---- Blocks -------------------------------------------------------------------------------------

/// A block that ends where the words end, so that a read behind them is seen.
inline Block blockOf(const Words& words) {
    Block block = makeBlock(bytesOf(words));
    if (!block) throw std::bad_alloc{};

    std::memcpy(block.get(), words.data(), bytesOf(words));
    return block;
}

inline Block made(Build create, const Points& points) {
    GeometryBuffer* geometry = nullptr;
    EXPECT_EQ(create(points.data(), countOf(points), &geometry), kSuccess);
    return Block{geometry};
}

/// Appends to a block that may move.
inline std::uint32_t grow(Build append, Block& geometry, const Points& points) {
    GeometryBuffer* handle = geometry.release();
    const std::uint32_t status = append(points.data(), countOf(points), &handle);
    geometry.reset(handle);
    return status;
}

/// Fills memory that the next requests are likely to be given with ones, so that a word that is
/// left unwritten does not read 0 by luck.
inline void dirtyHeap(std::size_t bytes) {
    for (const std::size_t size : {bytes, std::size_t{1} << 16}) {
        void* const block = std::malloc(size);
        auto* const cells = static_cast<volatile unsigned char*>(block);
        for (std::size_t i = 0; cells && i != size; ++i) cells[i] = 0xFF;
        std::free(block);
    }
}

// ---- Outputs ------------------------------------------------------------------------------------

/// An output that no function is to touch before it succeeds.
constexpr std::uint32_t kUntouchedNumber = 0xC0FFEE;

/// An output array between guard slots, every slot marked.
class GuardedPoints {
public:
    explicit GuardedPoints(std::size_t capacity)
        : slots_(kGuards + capacity + kGuards, {-12345.5, -12346.5, -12347.5}), marked_(slots_) {}

    Point3d* data() { return slots_.data() + kGuards; }

    /// Whether the first slots hold these vertices, bit for bit, and no other slot was written.
    [[nodiscard]] testing::AssertionResult holdOnly(const Points& expected) const {
        Points slots = marked_;
        std::copy(expected.begin(), expected.end(), slots.begin() + kGuards);
        for (std::size_t i = 0; i != slots.size(); ++i) {
            // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): bit for bit, NaN and zeros too
            if (std::memcmp(&slots[i], &slots_[i], sizeof(Point3d)) == 0) continue;
            return testing::AssertionFailure()
                   << "slot " << static_cast<std::ptrdiff_t>(i) - kGuards << " holds ("
                   << slots_[i].x << ", " << slots_[i].y << ", " << slots_[i].z << ")";
        }
        return testing::AssertionSuccess();
    }

    [[nodiscard]] testing::AssertionResult areUntouched() const { return holdOnly({}); }

private:
    static constexpr std::ptrdiff_t kGuards = 3;

    Points slots_;
    const Points marked_;
};

}  // namespace vexa::test
