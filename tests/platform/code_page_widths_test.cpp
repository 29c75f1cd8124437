#include "platform/posix/code_pages.h"
#include "tests/support/fenced_block.h"
#include "tests/support/vector_widths.h"
#include "tests/support/wide_text.h"

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using platform::codePageToWide;
using platform::findCodePage;

constexpr unsigned kSingleBytePages[] = {874, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258};

/// What is in the room of a conversion and what it returned; source and room lie at the edge of memory
/// that nobody may touch.
struct Read {
    int returned = 0;
    WideString room;

    bool operator==(const Read&) const = default;
};

Read readFrom(unsigned page, const std::string& bytes, std::size_t room, Fence fence) {
    const WideString untouched(room, kUntouchedCell);
    const FencedBlock source{bytes.data(), bytes.size(), fence};
    const FencedBlock units{untouched.data(), room * sizeof(VexaWChar), fence};
    const int returned = codePageToWide(findCodePage(page).value(), source.as<char>(),
                                        static_cast<int>(bytes.size()), units.as<VexaWChar>(),
                                        static_cast<int>(room));
    return {returned, WideString(units.as<VexaWChar>(), room)};
}

/// The unit of one byte, byte by byte.
WideString unitsOf(unsigned page, const std::string& bytes) {
    WideString units;
    for (const char byte : bytes) {
        VexaWChar unit = 0;
        EXPECT_EQ(codePageToWide(findCodePage(page).value(), &byte, 1, &unit, 1), 1);
        units += unit;
    }
    return units;
}

std::string anyBytes(std::mt19937& random, std::size_t count, unsigned least) {
    std::string bytes(count, '\0');
    for (char& byte : bytes) byte = static_cast<char>(least + random() % (0x100 - least));
    return bytes;
}

class SingleByteReadAtEachWidth : public testing::TestWithParam<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Table, SingleByteReadAtEachWidth, testing::ValuesIn(kSingleBytePages),
                         [](const auto& row) { return std::to_string(row.param); });

TEST_P(SingleByteReadAtEachWidth, KnowsEveryByteAtEveryPlace) {
    std::string all;
    for (unsigned byte = 0; byte < 0x100; ++byte) all += static_cast<char>(byte);
    const WideString expected = plainly([&] { return unitsOf(GetParam(), all); });
    for (std::size_t turn = 0; turn < 0x100; ++turn) {
        std::string bytes = all;
        WideString units = expected;
        const auto by = static_cast<std::ptrdiff_t>(turn);
        std::rotate(bytes.begin(), bytes.begin() + by, bytes.end());
        std::rotate(units.begin(), units.begin() + by, units.end());
        atEachWidth([&] {
            ASSERT_EQ(readFrom(GetParam(), bytes, bytes.size(), Fence::Behind), (Read{256, units}));
        });
    }
}

TEST_P(SingleByteReadAtEachWidth, IsTheSameForEveryLength) {
    std::mt19937 random(GetParam());
    for (std::size_t count = 1; count <= 200; ++count) {
        for (const unsigned least : {0U, 0x40U, 0x80U}) {
            std::string bytes = anyBytes(random, count, least);
            // Some blocks are ASCII alone.
            if (least == 0 && count > 70) std::fill_n(bytes.begin(), 64, 'a');
            const WideString units = plainly([&] { return unitsOf(GetParam(), bytes); });
            for (const Fence fence : {Fence::Before, Fence::Behind}) {
                atEachWidth([&] {
                    ASSERT_EQ(readFrom(GetParam(), bytes, count, fence),
                              (Read{static_cast<int>(count), units}));
                });
            }
        }
    }
}

TEST_P(SingleByteReadAtEachWidth, FillsRoomThatIsTooSmall) {
    std::mt19937 random(GetParam());
    for (std::size_t room = 1; room < 140; ++room) {
        const std::string bytes = anyBytes(random, room + 1 + room % 40, 1);
        const Read expected = plainly([&] {
            return Read{0, unitsOf(GetParam(), bytes.substr(0, room))};
        });
        atEachWidth([&] { ASSERT_EQ(readFrom(GetParam(), bytes, room, Fence::Behind), expected); });
    }
}

}  // namespace

}  // namespace vexa::test
