#include "platform/wide_characters.h"

#include "tests/support/fenced_block.h"
#include "tests/support/wide_text.h"

#include <algorithm>
#include <cstddef>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr unsigned kUnits = 0x10000;

TEST(WideCase, IsKnownOfAsciiLettersAlone) {
    for (unsigned unit = 1; unit < kUnits; ++unit) {
        const auto character = static_cast<VexaWChar>(unit);
        const bool isLower = unit >= 'a' && unit <= 'z';
        const bool isUpper = unit >= 'A' && unit <= 'Z';
        VexaWChar upper[] = {character, 0};
        VexaWChar lower[] = {character, 0};

        platform::toWideUpper(upper);
        platform::toWideLower(lower);

        ASSERT_EQ(upper[0], isLower ? unit - 'a' + 'A' : unit);
        ASSERT_EQ(lower[0], isUpper ? unit - 'A' + 'a' : unit);
    }
}

TEST(WideSpaces, AreThoseOfUnicode) {
    const VexaWChar spaces[] = {0x09,   0x0A,   0x0B,   0x0C,   0x0D,   0x20,   0xA0,   0x1680,
                                0x2000, 0x2001, 0x2002, 0x2003, 0x2004, 0x2005, 0x2006, 0x2007,
                                0x2008, 0x2009, 0x200A, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000};
    for (unsigned unit = 0; unit < kUnits; ++unit) {
        const auto character = static_cast<VexaWChar>(unit);
        const bool isSpace = std::count(std::begin(spaces), std::end(spaces), character) == 1;
        ASSERT_EQ(platform::isWideSpace(character), isSpace) << unit;
    }
}

TEST(WideControls, AreTheTwoSetsOfControlsAndInvisibleFormatCharacters) {
    for (unsigned unit = 0; unit < 0x600; ++unit) {
        const bool isControl = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
        ASSERT_EQ(platform::isWideControl(static_cast<VexaWChar>(unit)), isControl) << unit;
    }
    for (const unsigned unit : {0x600U, 0x61CU, 0x200BU, 0x200FU, 0x2060U, 0xFEFFU, 0xFFFBU}) {
        EXPECT_TRUE(platform::isWideControl(static_cast<VexaWChar>(unit))) << unit;
    }
    for (const unsigned unit : {0x606U, 0x2000U, 0x2010U, 0x3000U, 0xE000U, 0xFFFCU, 0xFFFFU}) {
        EXPECT_FALSE(platform::isWideControl(static_cast<VexaWChar>(unit))) << unit;
    }
}

TEST(WideLength, CountsTheUnitsBeforeTheTerminator) {
    for (std::size_t start = 0; start < 9; ++start) {
        for (std::size_t size = 0; size < 40; ++size) {
            const WideString text = WideString(start + size, 0x0100);
            ASSERT_EQ(platform::wideLength(text.c_str() + start), size);
        }
    }
}

// Units of half a zero are none, nor do those count that stand before the text or behind its terminator.
TEST(WideLength, IsTheSameWhereverTheTextLies) {
    constexpr std::size_t kRoom = 512;
    for (const VexaWChar unit : {VexaWChar{0x0100}, VexaWChar{0x00FF}, VexaWChar{0xFFFF}}) {
        for (std::size_t place = 0; place < 70; ++place) {
            for (std::size_t size = 0; size < 140; ++size) {
                alignas(64) VexaWChar room[kRoom] = {};
                std::fill_n(room + place, size, unit);
                std::fill_n(room + place + size + 1, 50, unit);
                ASSERT_EQ(platform::wideLength(room + place), size) << "at " << place;
            }
        }
    }
}

TEST(WideLength, ReadsNoPageAroundTheText) {
    for (std::size_t size = 0; size < 140; ++size) {
        const WideString text(size, 'x');
        const std::size_t bytes = (size + 1) * sizeof(VexaWChar);
        for (const Fence fence : {Fence::Before, Fence::Behind}) {
            const FencedBlock block{text.c_str(), bytes, fence};
            ASSERT_EQ(platform::wideLength(block.as<VexaWChar>()), size);
            for (std::size_t most = 0; most <= size + 1; ++most) {
                ASSERT_EQ(platform::wideLengthWithin(block.as<VexaWChar>(), most),
                          std::min(size, most));
            }
        }
    }
}

// There need be no terminator among so many units, and no memory behind them.
TEST(WideLength, ReadsNoPageBehindTheMost) {
    for (std::size_t most = 0; most < 140; ++most) {
        const WideString text(most, 'x');
        const FencedBlock block{text.c_str(), most * sizeof(VexaWChar), Fence::Behind};
        ASSERT_EQ(platform::wideLengthWithin(block.as<VexaWChar>(), most), most);
    }
}

}  // namespace

}  // namespace vexa::test
