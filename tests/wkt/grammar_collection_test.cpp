#include "tests/support/parse_support.h"

namespace vexa::test {

namespace {

using Words = std::vector<std::uint32_t>;

/// A collection as its builder lays it out: of each member, parsed on its own, as many bytes as its
/// size tells, up to the next multiple of 8.
Words collectionOf(const std::vector<std::string>& members) {
    Words words = {1, 1, 7, 0, static_cast<std::uint32_t>(members.size()), 0};
    for (const std::string& text : members) {
        const Block member = parsedByGrammar(text).geometry;
        std::uint32_t size = 0;
        EXPECT_EQ(vexaWKB_getSize(member.get(), &size), 0U);
        EXPECT_EQ(size % 8, 0U);
        const Words copied = wordsOf(*member, size);
        words.insert(words.end(), copied.begin(), copied.end());
    }
    return words;
}

std::string textOf(const std::vector<std::string>& members) {
    std::string text;
    for (const std::string& member : members) text += (text.empty() ? "" : ",") + member;
    return "GEOMETRYCOLLECTION(" + text + ")";
}

struct Collection {
    const char* name;
    std::vector<std::string> members;
};

const Collection kCollections[] = {
    {"OnePoint", {"POINT(1 2 3)"}},
    {"PointAndLine", {"POINT(1 2 3)", "LINESTRING(0 0 0,1 1 1)"}},
    {"EverySingleType",
     {"POINT(1 2 3)", "LINESTRING(4 5 6)", "POLYGON((7 8 9,1 1 1))", "MULTIPOINT((1 2 3),(4 5 6))",
      "MULTILINESTRING((1 1 1,2 2 2))", "MULTIPOLYGON(((3 3 3)))"}},
    {"CutPolygonLast", {"POINT(1 2 3)", "POLYGON((0 0 0,1 0 0),(2 2 2,3 3 3,4 4 4))"}},
    {"CutPolygonFirst", {"POLYGON((0 0 0,1 0 0),(2 2 2,3 3 3,4 4 4))", "POINT(1 2 3)"}},
    {"CutMultiLineBetween",
     {"POINT(1 2 3)", "MULTILINESTRING((0 0 0),(1 1 1),(2 2 2))", "POINT(4 5 6)"}},
    {"CutMembersAlone",
     {"POLYGON((0 0 0),(1 1 1))", "MULTILINESTRING((2 2 2),(3 3 3))", "POLYGON((4 4 4),(5 5 5))"}},
    {"MultiPolygonWithoutASizeWord", {"MULTIPOLYGON(((1 1 1,2 2 2)))", "POINT(1 2 3)"}},
    {"MultiPolygonWithASizeWord", {"MULTIPOLYGON(((1 1 1),(2 2 2)),((3 3 3)))", "POINT(1 2 3)"}},
    {"SameMemberTwice", {"point(1 2 3)", "point(1 2 3)"}},
};

class GrammarCollection : public testing::TestWithParam<Collection> {};

TEST_P(GrammarCollection, HoldsItsMembersByTheirSizes) {
    const std::vector<std::string>& members = GetParam().members;

    const Parsed result = parsedByGrammar(textOf(members));

    ASSERT_EQ(result.status, 0U) << result.error;
    EXPECT_EQ(contentsOf(*result.geometry), collectionOf(members));
}

INSTANTIATE_TEST_SUITE_P(Table, GrammarCollection, testing::ValuesIn(kCollections), kRowName);

TEST(GrammarCollection, HasNoSizeWordOfItsOwn) {
    const Block collection = parsedByGrammar("geometrycollection(point(1 2 3))").geometry;

    EXPECT_EQ(collection->headerWord0, 1U);
    EXPECT_EQ(collection->headerWord1, 1U);
    EXPECT_EQ(collection->type, 7U);
    EXPECT_EQ(collection->size, 0U);
}

TEST(GrammarCollection, HasItsSecondMemberBehindTheFirst) {
    const Block collection =
        parsedByGrammar("GEOMETRYCOLLECTION(POINT(1 2 3),LINESTRING(0 0 0,1 1 1))").geometry;
    const Words words = contentsOf(*collection);

    ASSERT_EQ(words.size() * sizeof(std::uint32_t), 24U + 40U + 80U);
    EXPECT_EQ(words[16 / 4], 2U);             // members
    EXPECT_EQ(words[(24 + 8) / 4], 1U);       // a point
    EXPECT_EQ(words[(24 + 40 + 8) / 4], 2U);  // a linestring
    EXPECT_EQ(words[(24 + 40 + 12) / 4], 80U);
}

// The member's count tells of both rings; the bytes of the second are not there.
TEST(GrammarCollection, CutsAPolygonBehindItsFirstRing) {
    const Block collection =
        parsedByGrammar("GEOMETRYCOLLECTION(POLYGON((1 1 1),(2 2 2)))").geometry;
    const Words words = contentsOf(*collection);

    ASSERT_EQ(words.size() * sizeof(std::uint32_t), 24U + 64U);
    EXPECT_EQ(words[(24 + 12) / 4], 64U);
    EXPECT_EQ(words[(24 + 16) / 4], 2U);
}

TEST(GrammarCollection, HoldsManyMembers) {
    constexpr std::uint32_t kMembers = 1000;
    std::string text = "GEOMETRYCOLLECTION(";
    for (std::uint32_t i = 0; i < kMembers; ++i) {
        text += (i == 0 ? "POINT(" : ",POINT(") + std::to_string(i) + " 0 0)";
    }
    const Block collection = parsedByGrammar(text + ")").geometry;
    ASSERT_TRUE(collection);
    const Words words = contentsOf(*collection);

    ASSERT_EQ(words.size() * sizeof(std::uint32_t), 24U + kMembers * 40U);
    for (std::uint32_t i = 0; i < kMembers; ++i) {
        double x = -1;
        std::memcpy(&x, words.data() + (24 + i * 40 + 16) / 4, sizeof x);
        ASSERT_EQ(x, i);
    }
}

}  // namespace

}  // namespace vexa::test
