#include "tests/support/active_page.h"
#include "tests/support/conversion_check.h"
#include "tests/support/wide_text.h"
#include "vexakit/conversion.h"
#include "vexakit/types.h"

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

// ---- Well-formed text ---------------------------------------------------------------------------

/// One text in both forms, put together character by character.
struct TextPair {
    WideString wide;
    std::string utf8;

    void add(char32_t character) {
        wide += utf16Of(character);
        utf8 += utf8Of(character);
    }
};

/// Both directions, into new strings and into buffers that just fit.
void agreeBothWays(const TextPair& text) {
    EXPECT_EQ(toUtf8(text.wide), text.utf8);
    EXPECT_EQ(fromUtf8(text.utf8), text.wide);

    GuardedRoom<char> bytes(text.utf8.size() + 1);
    EXPECT_EQ(stringCnv_wcsToUTF8(ExactText(text.wide).get(), bytes.data(), bytes.size()),
              kSuccess);
    EXPECT_EQ(bytes.cells(), roomWith(text.utf8, bytes.size()));
    EXPECT_TRUE(bytes.areGuardsUntouched());

    // The length limits the bytes that are read, so it is theirs and not that of the units.
    GuardedRoom<VexaWChar> units(text.utf8.size() + 1);
    EXPECT_EQ(stringCnv_utf8ToWcs(ExactText(text.utf8).get(), units.data(), units.size()),
              kSuccess);
    EXPECT_EQ(units.cells(), roomWith(text.wide, units.size()));
    EXPECT_TRUE(units.areGuardsUntouched());
}

TEST(Utf8RoundTrip, EveryCharacterAlone) {
    for (char32_t character = 1; character <= 0x10FFFF; ++character) {
        if (character == 0xD800) character = 0xE000;
        const WideString units = utf16Of(character);
        const std::string bytes = utf8Of(character);

        ASSERT_EQ(toUtf8(units), bytes) << "U+" << std::hex << std::uint32_t{character};
        ASSERT_EQ(fromUtf8(bytes), units) << "U+" << std::hex << std::uint32_t{character};
    }
}

TEST(Utf8RoundTrip, RandomText) {
    constexpr unsigned kSeed = 61;
    std::mt19937 random(kSeed);
    for (int round = 0; round < 1500; ++round) {
        TextPair text;
        for (std::size_t left = random() % 200; left > 0; --left) text.add(randomCharacter(random));

        SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", round " << round);
        agreeBothWays(text);
        if (HasFailure()) return;
    }
}

// Fast paths take 8, 16 or 32 characters at a time: each length around these, with one other
// character at each position.
TEST(Utf8RoundTrip, OneCharacterBeyondAsciiAtEachPosition) {
    for (const char32_t other : {0x80U, 0xE9U, 0x20ACU, 0xFFFDU, 0x1F600U}) {
        for (std::size_t size = 1; size <= 70; ++size) {
            for (std::size_t position = 0; position < size; ++position) {
                TextPair text;
                for (std::size_t index = 0; index < size; ++index) {
                    text.add(index == position ? other : U'a' + static_cast<char32_t>(index % 26));
                }

                SCOPED_TRACE(testing::Message() << size << " characters, another at " << position);
                agreeBothWays(text);
                if (HasFailure()) return;
            }
        }
    }
}

TEST(CodePageRoundTrip, OneCharacterBeyondAsciiAtEachPosition) {
    for (const WideString& other : {WideString{0xE9}, WideString{0x3042}, WideString{0x20AC}}) {
        const std::string otherBytes = toMbs(other);
        const WideString otherAgain = fromMbs(otherBytes);
        for (std::size_t size = 1; size <= 70; ++size) {
            for (std::size_t position = 0; position < size; ++position) {
                const std::string before(position, 'b');
                const std::string after(size - position - 1, 'a');
                const std::string bytes = before + otherBytes + after;

                ASSERT_EQ(toMbs(wide(before) + other + wide(after)), bytes) << size;
                ASSERT_EQ(fromMbs(bytes), wide(before) + otherAgain + wide(after)) << size;
            }
        }
    }
}

// ---- Ill-formed UTF-8 ---------------------------------------------------------------------------

struct IllFormedCase {
    const char* name;
    std::string bytes;
    std::size_t parts;
};
void PrintTo(const IllFormedCase& row, std::ostream* out) {
    *out << row.name;
}

class IllFormedUtf8 : public testing::TestWithParam<IllFormedCase> {};

const IllFormedCase kIllFormedCases[] = {
    {"ALoneTrailByte", "\x80", 1},
    {"TwoTrailBytes", "\x80\xBF", 2},
    {"TwoBytesCut", "\xC2", 1},
    {"ThreeBytesCutBehindTheFirst", "\xE2", 1},
    {"ThreeBytesCutBehindTheSecond", "\xE2\x82", 1},
    {"FourBytesCutBehindTheFirst", "\xF0", 1},
    {"FourBytesCutBehindTheSecond", "\xF0\x9F", 1},
    {"FourBytesCutBehindTheThird", "\xF0\x9F\x98", 1},
    {"TheLastCharacterCut", "\xF4\x8F\xBF", 1},
    {"OverlongZero", "\xC0\x80", 2},
    {"OverlongLastOfOneByte", "\xC1\xBF", 2},
    {"OverlongInThreeBytes", "\xE0\x80\x80", 3},
    {"OverlongLastOfTwoBytes", "\xE0\x9F\xBF", 3},
    {"OverlongInFourBytes", "\xF0\x80\x80\x80", 4},
    {"OverlongLastOfThreeBytes", "\xF0\x8F\xBF\xBF", 4},
    {"OverlongCut", "\xF0\x80\x80", 3},
    {"FirstSurrogate", "\xED\xA0\x80", 3},
    {"LastSurrogate", "\xED\xBF\xBF", 3},
    {"SurrogatePair", "\xED\xA0\xBD\xED\xB8\x80", 6},
    {"BeyondTheLastCharacter", "\xF4\x90\x80\x80", 4},
    {"BeyondTheLastCharacterCut", "\xF4\x90", 2},
    {"LeadByteOfNothing", "\xF5\x80\x80\x80", 4},
    {"FiveBytes", "\xF8\x88\x80\x80\x80", 5},
    {"SixBytes", "\xFC\x84\x80\x80\x80\x80", 6},
    {"TheBytesOfNoForm", "\xFE\xFF", 2},
    {"EachCutByTheNext", "\xE1\x80\xE2\xF0\x91\x92\xF1\xBF", 4},
    {"TwoLeadBytes", "\xC3\xC3", 2},
};

/// Whether the text is U+FFFD for each part and the rest behind them. The system's own conversion
/// takes some parts for more than one and others together.
testing::AssertionResult isReplaced(const IllFormedCase& row, const WideString& text,
                                    const WideString& rest) {
    std::size_t parts = 0;
    while (parts < text.size() && text[parts] == 0xFFFD) ++parts;
#ifdef _WIN32
    const bool isAsPromised = parts >= 1 && parts <= row.bytes.size();
#else
    const bool isAsPromised = parts == row.parts;
#endif
    if (isAsPromised && text.substr(parts) == rest) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << parts << " and not " << row.parts << " parts: " << readable(text);
}

TEST_P(IllFormedUtf8, EachMaximalPartBecomesOneReplacementCharacter) {
    const IllFormedCase& row = GetParam();

    EXPECT_TRUE(isReplaced(row, fromUtf8(row.bytes + "rest"), wide("rest")));
    EXPECT_TRUE(
        isReplaced(row, fromUtf8(row.bytes + "\xF0\x9F\x98\x80 r"), utf16Of(0x1F600) + wide(" r")));
}

TEST_P(IllFormedUtf8, AtTheEndOfTheBytesToo) {
    const IllFormedCase& row = GetParam();
    GuardedRoom<VexaWChar> room(row.bytes.size() + 1);

    ASSERT_EQ(stringCnv_utf8ToWcs(ExactText(row.bytes).get(), room.data(), room.size()), kSuccess);

    EXPECT_TRUE(isReplaced(row, WideString(room.data()), {}));
    EXPECT_TRUE(room.areGuardsUntouched());
}

TEST_P(IllFormedUtf8, AtTheEndOfAStringToo) {
    const IllFormedCase& row = GetParam();

    EXPECT_TRUE(isReplaced(row, fromUtf8(row.bytes), {}));
}

TEST_P(IllFormedUtf8, BehindAnyNumberOfOtherCharacters) {
    const IllFormedCase& row = GetParam();
    for (std::size_t size = 1; size <= 40; ++size) {
        const WideString text = fromUtf8(std::string(size, 'a') + row.bytes + "rest");

        ASSERT_EQ(text.substr(0, size), WideString(size, 'a'));
        ASSERT_TRUE(isReplaced(row, text.substr(size), wide("rest"))) << size;
    }
}

INSTANTIATE_TEST_SUITE_P(Table, IllFormedUtf8, testing::ValuesIn(kIllFormedCases),
                         [](const auto& row) { return row.param.name; });

TEST(LoneSurrogates, EachBecomesOneReplacementCharacter) {
    const std::string replaced = "\xEF\xBF\xBD";

    EXPECT_EQ(toUtf8({0xD800}), replaced);
    EXPECT_EQ(toUtf8({0xDFFF}), replaced);
    EXPECT_EQ(toUtf8({0xD800, 0xD800, 0xDC00}), replaced + "\xF0\x90\x80\x80");
    EXPECT_EQ(toUtf8({0xDC00, 0xD800}), replaced + replaced);
    EXPECT_EQ(toUtf8({'a', 0xDBFF, 'b', 0xDC00, 'c'}), "a" + replaced + "b" + replaced + "c");
}

// ---- Bytes and units that mean nothing ----------------------------------------------------------

TEST(MultibyteOfAnyBytes, NeverLeadOutOfTheRoom) {
    constexpr unsigned kSeed = 6151;
    std::mt19937 random(kSeed);
    for (int round = 0; round < 20000; ++round) {
        SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", round " << round);
        const ExactText bytes(randomBytes(random, random() % 48));
        GuardedRoom<VexaWChar> room(1 + random() % 56);

        EXPECT_EQ(stringCnv_utf8ToWcs(bytes.get(), room.data(), room.size()), kSuccess);
        EXPECT_TRUE(room.areGuardsUntouched());
        EXPECT_NE(room.cells().find(VexaWChar{}), WideString::npos);

        stringCnv_mbsToTcs(bytes.get(), room.data(), room.size());
        EXPECT_TRUE(room.areGuardsUntouched());
        if (HasFailure()) return;
    }
}

TEST(WideOfAnyUnits, NeverLeadOutOfTheRoom) {
    constexpr unsigned kSeed = 6152;
    std::mt19937 random(kSeed);
    for (int round = 0; round < 20000; ++round) {
        SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", round " << round);
        WideString units;
        for (std::size_t left = random() % 48; left > 0; --left) {
            const auto any = 1 + random() % 0xFFFF;
            units += static_cast<VexaWChar>(random() % 3 == 0 ? 0xD800 + any % 0x800 : any);
        }
        const ExactText text(units);
        GuardedRoom<char> room(1 + random() % 150);

        const bool fits = stringCnv_wcsToUTF8(text.get(), room.data(), room.size()) == kSuccess;
        EXPECT_TRUE(room.areGuardsUntouched());
        if (fits) {
            EXPECT_NE(room.cells().find(char{}), std::string::npos);
        }

        stringCnv_wcsToMbs(text.get(), room.data(), room.size());
        EXPECT_TRUE(room.areGuardsUntouched());
        if (HasFailure()) return;
    }
}

// ---- Code pages byte by byte --------------------------------------------------------------------

TEST(CodePageRoundTripInPage1252, EveryByte) {
    VEXA_NEEDS_PAGE(1252);
    // 0x80 to 0x9F; the others are their own numbers.
    constexpr VexaWChar kRow8And9[] = {
        0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
    for (unsigned byte = 1; byte <= 0xFF; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        const bool isOther = byte >= 0x80 && byte <= 0x9F;
        const VexaWChar expected = isOther ? kRow8And9[byte - 0x80] : static_cast<VexaWChar>(byte);

        EXPECT_EQ(fromMbs(text), WideString(1, expected)) << byte;
        EXPECT_EQ(toMbs(WideString(1, expected)), text) << byte;
    }
}

TEST(CodePageRoundTripInPage932, EverySingleByte) {
    VEXA_NEEDS_PAGE(932);
    for (unsigned byte = 1; byte <= 0xFF; ++byte) {
        const bool isLead = (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
        if (isLead) continue;
        const bool isKana = byte >= 0xA1 && byte <= 0xDF;
        const unsigned expected = isKana         ? 0xFF61 + (byte - 0xA1)
                                  : byte == 0xA0 ? 0xF8F0
                                  : byte >= 0xFD ? 0xF8F1 + (byte - 0xFD)
                                                 : byte;
        const std::string text(1, static_cast<char>(byte));
        const WideString character(1, static_cast<VexaWChar>(expected));

        EXPECT_EQ(fromMbs(text), character) << byte;
        EXPECT_EQ(toMbs(character), text) << byte;
    }
}

TEST(CodePageRoundTripInPage932, EveryTwoBytes) {
    VEXA_NEEDS_PAGE(932);
    int characters = 0;
    int twins = 0;
    for (unsigned lead = 0x81; lead <= 0xFC; ++lead) {
        if (lead > 0x9F && lead < 0xE0) continue;
        for (unsigned trail = 1; trail <= 0xFF; ++trail) {
            const std::string bytes = {static_cast<char>(lead), static_cast<char>(trail)};
            const WideString text = fromMbs(bytes);
            ASSERT_EQ(text.size(), 1U) << lead << ' ' << trail;
            const bool isTrail = trail >= 0x40 && trail <= 0xFC && trail != 0x7F;
            const bool isMiddleDot = lead == 0x81 && trail == 0x45;
            if (!isTrail) {
                EXPECT_EQ(text[0], 0x30FB) << lead << ' ' << trail;
            }
            if (text[0] == 0x30FB && !isMiddleDot) continue;

            ++characters;
            const std::string again = toMbs(text);
            if (again == bytes) continue;
            ++twins;
            EXPECT_EQ(fromMbs(again), text) << lead << ' ' << trail;
        }
    }
    // 7,724 of the standard, of NEC and IBM, 1,880 for private use; 398 stand in the page twice.
    EXPECT_EQ(characters, 7724 + 1880);
    EXPECT_EQ(twins, 398);
}

TEST(CodePageRoundTripInPage65001, IsThatOfUtf8) {
    VEXA_NEEDS_PAGE(65001);
    constexpr unsigned kSeed = 6153;
    std::mt19937 random(kSeed);
    for (int round = 0; round < 5000; ++round) {
        // The ASCII end keeps the terminator out of a cut character.
        const std::string bytes = randomBytes(random, random() % 40) + "end";
        const WideString units = fromUtf8(bytes);

        ASSERT_EQ(fromMbs(bytes), units) << "seed " << kSeed << ", round " << round;
        ASSERT_EQ(toMbs(units), toUtf8(units)) << "seed " << kSeed << ", round " << round;
    }
}

}  // namespace

}  // namespace vexa::test
