#include "tests/support/parse_support.h"

#include <random>

namespace vexa::test {

namespace {

// ---- Garbage -----------------------------------------------------------------------------------

std::string randomBytes(std::mt19937& random, std::size_t count) {
    std::uniform_int_distribution<int> byte(0, 255);
    std::string text(count, '\0');
    for (char& c : text) c = static_cast<char>(byte(random));
    return text;
}

/// A status that a text can have, with what goes with it.
void expectSound(const Parsed& result) {
    ASSERT_TRUE(result.status == 0 || result.status == 1) << result.status;
    EXPECT_EQ(result.geometry != nullptr, result.status == 0);
    EXPECT_EQ(result.error.empty(), result.status == 0);
    EXPECT_LE(result.error.size(), 127U);
    if (result.geometry) {
        EXPECT_FALSE(contentsOf(*result.geometry).empty());
    }
}

TEST(ParseString, SurvivesAnyBytes) {
    constexpr unsigned kSeed = 602214;
    SCOPED_TRACE(kSeed);
    std::mt19937 random{kSeed};
    outputOf([&] {
        for (int i = 0; i < 2'000; ++i) expectSound(parsed(randomBytes(random, 200)));
    });
}

TEST(ParseString, SurvivesBytesChangedInATextOfEveryType) {
    constexpr unsigned kSeed = 662607;
    SCOPED_TRACE(kSeed);
    std::mt19937 random{kSeed};
    const std::string good =
        "GEOMETRYCOLLECTION(POINT(1 2 3),LINESTRING(0 0 0,1 1 1),POLYGON((0 0 0,1 0 0),(1 1 1)),"
        "MULTIPOINT((1 2 3),(4 5 6)),MULTILINESTRING((0 0 0),(1 1 1)),MULTIPOLYGON(((7 8 9))))";
    int accepted = 0;
    outputOf([&] {
        for (int i = 0; i < 20'000; ++i) {
            std::string text = good;
            const auto place = [&] {
                return std::uniform_int_distribution<std::size_t>(0, text.size() - 1)(random);
            };
            switch (i % 4) {
                case 0: text[place()] = randomBytes(random, 1)[0]; break;
                case 1: text.resize(place()); break;
                case 2: text.erase(place(), 1); break;
                default: text.insert(place(), text.substr(place(), 5)); break;
            }
            const Parsed result = parsed(text);
            expectSound(result);
            accepted += result.status == 0 ? 1 : 0;
        }
    });
    EXPECT_GT(accepted, 0);
    EXPECT_EQ(parsed(good).status, 0U);
}

// ---- Size --------------------------------------------------------------------------------------

constexpr std::size_t kHugeText = kIsSlowBuild ? 10'000'000 : 100'000'000;

struct Huge {
    const char* name;
    const char* open;
    const char* item;
    const char* close;
};

// What grows with the square of the text comes to no end here.
constexpr Huge kHuge[] = {
    {"Vertices", "LINESTRING(", "123456.78125 -234567.0625 345678.9375", ")"},
    {"Rings", "POLYGON(", "(1 2 3,4.5 5.5 6.5,7 8 9,1 2 3)", ")"},
    {"Members", "GEOMETRYCOLLECTION(", "LINESTRING(1 2 3,4.5 5.5 6.5)", ")"},
};

class ParseHugeText : public testing::TestWithParam<Huge> {
protected:
    static void check(Parsed (*read)(const std::string& text)) {
        const Huge& row = GetParam();
        std::string text = row.open;
        std::uint32_t items = 0;
        text.reserve(kHugeText + 100);
        for (; text.size() < kHugeText; ++items) {
            if (items > 0) text += ',';
            text += row.item;
        }
        text += row.close;

        const Parsed result = read(text);

        ASSERT_EQ(result.status, 0U) << result.error;
        // The counts: a run's behind the path's two words, others at the body's start.
        const bool isLine = result.geometry->type == VEXA_LINESTRING;
        EXPECT_EQ(wordsOf(*result.geometry, 32)[isLine ? 28 / 4 : 16 / 4], items);
        // The last vertex is where the counts put it.
        const std::string lastItem = std::string{row.open} + row.item + row.close;
        const std::vector<std::uint32_t> all = contentsOf(*result.geometry);
        const std::vector<std::uint32_t> one = contentsOf(*read(lastItem).geometry);
        ASSERT_GT(all.size(), std::size_t{items} * 6);
        EXPECT_TRUE(std::equal(one.end() - 6, one.end(), all.end() - 6));
    }
};

TEST_P(ParseHugeText, InLinearTime) {
    check(parsed);
}

TEST_P(ParseHugeText, InLinearTimeByTheGrammar) {
    check(parsedByGrammar);
}

INSTANTIATE_TEST_SUITE_P(Table, ParseHugeText, testing::ValuesIn(kHuge), kRowName);

TEST(ParseString, QuotesTheTokenBehindAHugeText) {
    std::string text = "LINESTRING(1 2 3";
    while (text.size() < 1'000'000) text += ",4 5 6";

    EXPECT_EQ(parsed(text + " 77.5)").error, errorAt("77.5"));
    EXPECT_EQ(parsed(text).error, errorAt(""));
}

TEST(ParseString, ReadsDeepParenthesesNoDeeperThanTheGrammar) {
    EXPECT_EQ(parsed("MULTIPOLYGON" + std::string(1'000'000, '(')).error, errorAt("("));
    EXPECT_EQ(parsed(std::string(1'000'000, '(')).error, errorAt("("));
}

TEST(ParseString, ReadsNumbersOfTenThousandDigits) {
    const std::string digits = std::string(10'000, '1') + "e-9999";
    const Parsed result = parsed("POINT(" + digits + " -" + digits + " 0." + digits + ")");
    ASSERT_EQ(result.status, 0U);
    Point3d point;
    ASSERT_EQ(vexaWKB_pointGetPoint(result.geometry.get(), &point), 0U);

    EXPECT_EQ(point.x, 1.1111111111111112);
    EXPECT_EQ(point.y, -1.1111111111111112);
    EXPECT_EQ(point.z, 0);
}

}  // namespace

}  // namespace vexa::test
