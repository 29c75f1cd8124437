#include "tests/support/parse_support.h"
#include "vexakit/conversion.h"
#include "vexakit/strings.h"

#include <array>
#include <limits>

namespace vexa::test {

namespace {

constexpr std::int64_t kFailed = 32768;

// ---- Text to binary ----------------------------------------------------------------------------

/// An array of the caller's with guard bytes all through.
struct Array {
    static constexpr std::byte kGuard{0xA5};
    std::vector<std::byte> bytes = std::vector<std::byte>(512, kGuard);

    [[nodiscard]] bool isUntouchedFrom(std::size_t first) const {
        for (std::size_t i = first; i < bytes.size(); ++i) {
            if (bytes[i] != kGuard) return false;
        }
        return true;
    }
    [[nodiscard]] std::vector<std::uint32_t> words(std::size_t count) const {
        std::vector<std::uint32_t> words(count / sizeof(std::uint32_t));
        std::memcpy(words.data(), bytes.data(), count);
        return words;
    }
};

struct Conversion {
    const char* name;
    const char* text;
    std::uint32_t size;
};

// The size that `vexaWKB_getSize` tells: of several rings or lines, that of the first.
constexpr Conversion kConversions[] = {
    {"Point", "POINT(1 2 3)", 40},
    {"Line", "LINESTRING(0 0 0,1 1 1)", 80},
    {"Polygon", "POLYGON((0 0 0,1 0 0,1 1 0,0 0 0))", 136},
    {"PolygonCutBehindItsRing", "POLYGON((0 0 0,1 0 0),(1 1 1,2 2 2))", 88},
    {"MultiPoint", "MULTIPOINT((1 2 3),(4 5 6))", 72},
    {"MultiLine", "MULTILINESTRING((0 0 0,1 1 1))", 88},
    {"MultiLineCutBehindItsLine", "MULTILINESTRING((0 0 0),(1 1 1),(2 2 2))", 64},
    {"MultiPolygonOfOneRing", "MULTIPOLYGON(((0 0 0)))", 72},
    {"MultiPolygonOfTwoRings", "MULTIPOLYGON(((0 0 0),(1 1 1)))", 120},
    {"Collection", "GEOMETRYCOLLECTION(POINT(1 2 3),LINESTRING(0 0 0,1 1 1))", 144},
};

class TextToBinary : public testing::TestWithParam<Conversion> {};

TEST_P(TextToBinary, CopiesAsManyBytesAsTheSizeTells) {
    const auto& [name, text, size] = GetParam();
    Array out;

    EXPECT_EQ(vexaWKB_convertTextToBinary(widened(text).c_str(), out.bytes.data(), size), 0);

    EXPECT_EQ(out.words(size), wordsOf(*parsed(text).geometry, size));
    EXPECT_TRUE(out.isUntouchedFrom(size));
}

TEST_P(TextToBinary, TakesALargerArray) {
    const auto& [name, text, size] = GetParam();
    Array out;

    EXPECT_EQ(vexaWKB_convertTextToBinary(widened(text).c_str(), out.bytes.data(), 0xFFFFFFFF), 0);

    EXPECT_TRUE(out.isUntouchedFrom(size));
    EXPECT_FALSE(out.isUntouchedFrom(0));
}

TEST_P(TextToBinary, CopiesNothingIntoASmallerArray) {
    const auto& [name, text, size] = GetParam();
    for (const std::uint32_t capacity : {size - 1, 1U, 0U}) {
        Array out;

        EXPECT_EQ(vexaWKB_convertTextToBinary(widened(text).c_str(), out.bytes.data(), capacity),
                  -5);
        EXPECT_TRUE(out.isUntouchedFrom(0));
    }
}

TEST_P(TextToBinary, IsMeasuredByTheSizeOfTheText) {
    const auto& [name, text, size] = GetParam();
    std::array<std::uint32_t, 3> told = {7, 7, 7};

    EXPECT_EQ(vexaWKB_getSizeFromTextGeom(widened(text).c_str(), &told[1]), 0);

    EXPECT_EQ(told, (std::array<std::uint32_t, 3>{7, size, 7}));
}

INSTANTIATE_TEST_SUITE_P(Table, TextToBinary, testing::ValuesIn(kConversions), kRowName);

TEST(TextToBinary, GivesTheStatusOfTheParseAndCopiesNothing) {
    for (const char* const text : {"", "POINT(1 2)", "POINT(1 2 3))", "no geometry"}) {
        SCOPED_TRACE(text);
        Array out;
        std::int64_t status = 0;

        outputOf([&] {
            status = vexaWKB_convertTextToBinary(widened(text).c_str(), out.bytes.data(), 512);
        });
        EXPECT_EQ(status, 1);
        EXPECT_TRUE(out.isUntouchedFrom(0));
    }
}

TEST(TextToBinary, FailsForNullPointers) {
    Array out;
    const WideText text = widened("POINT(1 2 3)");

    EXPECT_EQ(vexaWKB_convertTextToBinary(nullptr, out.bytes.data(), 512), kFailed);
    EXPECT_TRUE(out.isUntouchedFrom(0));
    EXPECT_EQ(vexaWKB_convertTextToBinary(text.c_str(), nullptr, 40), kFailed);
    EXPECT_EQ(vexaWKB_convertTextToBinary(nullptr, nullptr, 0), kFailed);
}

// The room is looked at before the array, the text before both.
TEST(TextToBinary, WithoutAnArrayTellsOfTextAndRoomFirst) {
    EXPECT_EQ(vexaWKB_convertTextToBinary(widened("POINT(1 2)").c_str(), nullptr, 0), 1);
    EXPECT_EQ(vexaWKB_convertTextToBinary(widened("POINT(1 2 3)").c_str(), nullptr, 39), -5);
}

TEST(SizeFromText, IsNotWrittenOnFailure) {
    std::uint32_t size = 7;

    EXPECT_EQ(vexaWKB_getSizeFromTextGeom(widened("POINT(1 2)").c_str(), &size), 1);
    EXPECT_EQ(vexaWKB_getSizeFromTextGeom(widened("").c_str(), &size), 1);
    EXPECT_EQ(vexaWKB_getSizeFromTextGeom(nullptr, &size), kFailed);

    EXPECT_EQ(size, 7U);
}

TEST(SizeFromText, WithoutASizePointerTellsOfTheTextFirst) {
    EXPECT_EQ(vexaWKB_getSizeFromTextGeom(widened("POINT(1 2)").c_str(), nullptr), 1);
    EXPECT_EQ(vexaWKB_getSizeFromTextGeom(widened("POINT(1 2 3)").c_str(), nullptr), kFailed);
    EXPECT_EQ(vexaWKB_getSizeFromTextGeom(nullptr, nullptr), kFailed);
}

// ---- Wide characters ---------------------------------------------------------------------------

constexpr VexaWChar kFullWidthOne = 0xFF11;
constexpr VexaWChar kAccentedE = 0x00E9;
constexpr VexaWChar kEuro = 0x20AC;

struct Wide {
    const char* name;
    VexaWChar character;
};

constexpr Wide kWide[] = {
    {"FullWidthDigit", kFullWidthOne},
    {"AccentedLetter", kAccentedE},
    {"EuroSign", kEuro},
    {"LoneSurrogate", 0xD800},
};

class WideCharacters : public testing::TestWithParam<Wide> {};

// Whether such a character is a number, a stray or nothing is for the code page to say.
TEST_P(WideCharacters, GoThroughTheAnsiCodePage) {
    const WideText text =
        widened("POINT(1 ") + WideText(1, GetParam().character) + widened(" 3 4)");
    char* narrow = nullptr;
    ASSERT_EQ(stringCnv_wcsToMbsAlloc(text.c_str(), &narrow), 0U);
    Array out;
    std::int64_t status = 99;
    Parsed expected{};

    const std::string expectedEcho = outputOf([&] { expected = parsed(narrow); });
    const std::string echo = outputOf(
        [&] { status = vexaWKB_convertTextToBinary(text.c_str(), out.bytes.data(), 512); });
    string_freeA(narrow);

    EXPECT_EQ(status, expected.status);
    EXPECT_EQ(echo, expectedEcho);
    EXPECT_EQ(out.isUntouchedFrom(0), expected.status != 0);
    if (expected.status == 0) {
        EXPECT_EQ(out.words(40), wordsOf(*expected.geometry, 40));
    }
}

INSTANTIATE_TEST_SUITE_P(Table, WideCharacters, testing::ValuesIn(kWide), kRowName);

TEST(TextToBinary, EndsAtAWideZero) {
    const WideText text = widened("POINT(1 2 3)") + WideText(1, 0) + widened("x)");
    std::uint32_t size = 0;

    EXPECT_EQ(outputOf([&] { vexaWKB_getSizeFromTextGeom(text.c_str(), &size); }), "");
    EXPECT_EQ(size, 40U);
}

// ---- Binary to text ----------------------------------------------------------------------------

constexpr VexaWChar kGuardCharacter = 0x7E7E;

/// Room for text, of guard characters.
WideText untouchedText() {
    WideText text(64, kGuardCharacter);
    return text;
}

WideText upToZero(const WideText& text) {
    return text.substr(0, text.find(VexaWChar{0}));
}

struct Room {
    const char* name;
    std::int32_t bytes;
    std::int64_t result;
};

// "point(1 2 3)" wants 12 characters and its terminator.
constexpr Room kRooms[] = {
    {"Exact", 26, 12},        {"ExactAndAnOddByte", 27, 12}, {"OneCharacterShort", 24, -1},
    {"OneByteShort", 25, -1}, {"KeywordAlone", 12, -1},      {"OneCharacter", 2, -1},
    {"OneByte", 1, kFailed},  {"None", 0, kFailed},
};

class BinaryToText : public testing::TestWithParam<Room> {};

TEST_P(BinaryToText, CountsTheRoomInBytes) {
    const Room& row = GetParam();
    const Block point = parsed("POINT(1 2 3)").geometry;
    WideText text = untouchedText();

    EXPECT_EQ(vexaWKB_convertBinaryToText(point.get(), text.data(), row.bytes), row.result);

    if (row.result == 12) {
        EXPECT_EQ(upToZero(text), widened("point(1 2 3)"));
    }
    const auto room = static_cast<std::size_t>(row.bytes) / 2;
    EXPECT_EQ(text.substr(room), untouchedText().substr(room));
}

INSTANTIATE_TEST_SUITE_P(Table, BinaryToText, testing::ValuesIn(kRooms), kRowName);

TEST(BinaryToText, TakesANegativeRoomForAHugeOne) {
    const Block point = parsed("POINT(1 2 3)").geometry;
    for (const std::int32_t room : {-1, -2, std::numeric_limits<std::int32_t>::min()}) {
        WideText text = untouchedText();

        EXPECT_EQ(vexaWKB_convertBinaryToText(point.get(), text.data(), room), 12);
        EXPECT_EQ(upToZero(text), widened("point(1 2 3)"));
    }
}

TEST(BinaryToText, WritesEveryType) {
    const char* const texts[] = {
        "point(1 2 3)",
        "linestring(1 2 3,4 5 6)",
        "polygon((1 2 3),(4 5 6))",
        "multipoint((1 2 3),(4 5 6))",
        "multilinestring((1 2 3),(4 5 6))",
        "multipolygon(((1 2 3)),((4 5 6)))",
        "geometrycollection(point(1 2 3),point(4 5 6))",
    };
    for (const char* const expected : texts) {
        const Block geometry = parsed(expected).geometry;
        WideText text = untouchedText();

        EXPECT_EQ(vexaWKB_convertBinaryToText(geometry.get(), text.data(), 128),
                  static_cast<std::int64_t>(std::string_view{expected}.size()));
        EXPECT_EQ(upToZero(text), widened(expected));
    }
}

TEST(BinaryToText, TellsACollectionWithoutRoomFromOthers) {
    const Block collection = parsed("GEOMETRYCOLLECTION(POINT(1 2 3))").geometry;
    WideText text = untouchedText();

    EXPECT_EQ(vexaWKB_convertBinaryToText(collection.get(), text.data(), 2 * 19), 0);
    EXPECT_EQ(vexaWKB_convertBinaryToText(collection.get(), text.data(), 2 * 20), -1);
}

TEST(BinaryToText, FailsForOtherTypesAndNullPointers) {
    const Block point = parsed("POINT(1 2 3)").geometry;
    WideText text = untouchedText();
    for (const std::uint32_t type : {0U, 8U, 9U, 0xFFFFFFFFU}) {
        point->type = type;
        EXPECT_EQ(vexaWKB_convertBinaryToText(point.get(), text.data(), 128), kFailed);
    }
    EXPECT_EQ(vexaWKB_convertBinaryToText(nullptr, text.data(), 128), kFailed);
    point->type = VEXA_POINT;
    EXPECT_EQ(vexaWKB_convertBinaryToText(point.get(), nullptr, 128), kFailed);
    EXPECT_EQ(text, untouchedText());
}

}  // namespace

}  // namespace vexa::test
