#include "tests/support/parse_support.h"
#include "wkt/parse_run.h"

namespace vexa::test {

namespace {

// ---- Accepted ----------------------------------------------------------------------------------

struct Accepted {
    const char* name;
    const char* text;
};

constexpr Accepted kAccepted[] = {
    {"LowerCase", "point(1 2 3)"},
    {"SpacesEverywhere", " \t\nPOINT \n( 1\t2\n3 ) \n"},
    {"NumbersWithoutSpaces", "POINT(1-2-3)"},
    {"NumbersSeparatedByStrays", "POINT(1\r2\r3)"},
    {"ExponentWithoutASignMakesTwoNumbers",
     "POINT(1\x01"
     "2 3)"},
    {"MixedCases", "geometrycollection(POINT(1 2 3),point(1 2 3))"},
    {"RingOfOneVertex", "POLYGON((1 2 3))"},
    {"OpenRing", "POLYGON((0 0 0,1 0 0,1 1 0))"},
    {"ManyPolygons", "MULTIPOLYGON(((1 1 1)),((2 2 2)),((3 3 3)))"},
    {"EveryMember",
     "GEOMETRYCOLLECTION(POINT(1 2 3),LINESTRING(1 2 3),POLYGON((1 2 3)),MULTIPOINT((1 2 3)),"
     "MULTILINESTRING((1 2 3)),MULTIPOLYGON(((1 2 3))))"},
};

class GrammarAccepts : public testing::TestWithParam<Accepted> {};

TEST_P(GrammarAccepts, Text) {
    Parsed result;
    outputOf([&] { result = parsedByGrammar(GetParam().text); });

    EXPECT_EQ(result.status, 0U);
    EXPECT_TRUE(result.geometry);
    EXPECT_EQ(result.error, "");
}

INSTANTIATE_TEST_SUITE_P(Table, GrammarAccepts, testing::ValuesIn(kAccepted), kRowName);

// ---- Rejected ----------------------------------------------------------------------------------

struct Rejected {
    const char* name;
    const char* text;
    const char* quoted;
};

constexpr Rejected kRejected[] = {
    {"Nothing", "", ""},
    {"SpacesAlone", " \n\t ", ""},
    {"StraysAlone", "Point", ""},
    {"NumberFirst", "1 2 3", "1"},
    {"ParenthesisFirst", "(POINT(1 2 3))", "("},
    {"CommaFirst", ",POINT(1 2 3)", ","},
    {"ClosingParenthesisFirst", ")", ")"},

    {"KeywordAlone", "POINT", ""},
    {"KeywordTwice", "POINT POINT(1 2 3)", "POINT"},
    {"KeywordTwiceInLowerCase", "POINT point(1 2 3)", "point"},
    {"NoOpeningParenthesis", "POINT 1 2 3)", "1"},
    {"NoClosingParenthesis", "POINT(1 2 3", ""},
    {"NoCoordinates", "POINT()", ")"},
    {"OneCoordinate", "POINT(1)", ")"},
    {"TwoCoordinates", "POINT(1 2)", ")"},
    {"FourCoordinates", "POINT(1 2 3 4)", "4"},
    {"TwoPoints", "POINT(1 2 3,4 5 6)", ","},
    {"CommaBetweenCoordinates", "POINT(1,2,3)", ","},
    {"PointInTwoParentheses", "POINT((1 2 3))", "("},
    {"OneParenthesisTooMany", "POINT(1 2 3))", ")"},
    {"EmptyPoint", "POINT EMPTY", ""},
    {"KeywordForACoordinate", "POINT(1 2 polygon)", "polygon"},
    {"ExponentWithoutASign", "POINT(1e5 2 3)", "3"},

    {"EmptyLine", "LINESTRING EMPTY", ""},
    {"LineWithoutVertices", "LINESTRING()", ")"},
    {"LineOfPlaneVertices", "LINESTRING(0 0,1 1)", ","},
    {"LineOfFourCoordinates", "LINESTRING(0 0 0 0,1 1 1 1)", "0"},
    {"LineWithALeadingComma", "LINESTRING(,1 1 1)", ","},
    {"LineWithATrailingComma", "LINESTRING(0 0 0,)", ")"},
    {"LineWithTwoCommas", "LINESTRING(0 0 0,,1 1 1)", ","},
    {"LineInTwoParentheses", "LINESTRING((0 0 0,1 1 1))", "("},
    {"LineWithoutAComma", "LINESTRING(0 0 0 (1 1 1))", "("},
    {"LineWithoutAnEnd", "LINESTRING(0 0 0,1 1 1", ""},

    {"PolygonInOneParenthesis", "POLYGON(0 0 0,1 1 1)", "0"},
    {"PolygonWithoutRings", "POLYGON()", ")"},
    {"PolygonWithAnEmptyRing", "POLYGON(())", ")"},
    {"PolygonWithAnEmptyHole", "POLYGON((0 0 0),())", ")"},
    {"PolygonInThreeParentheses", "POLYGON(((0 0 0)))", "("},
    {"PolygonWithATrailingComma", "POLYGON((0 0 0),)", ")"},
    {"PolygonWithoutACommaBetweenRings", "POLYGON((0 0 0)(1 1 1))", "("},
    {"PolygonWithABareHole", "POLYGON((0 0 0),1 1 1)", "1"},
    {"PolygonWithoutAnEnd", "POLYGON((0 0 0)", ""},
    {"PolygonWithOnlyItsRing", "POLYGON (0 0 0))", "0"},

    {"MultiPointWithoutParentheses", "MULTIPOINT(1 2 3,4 5 6)", "1"},
    {"MultiPointWithABareSecond", "MULTIPOINT((1 2 3),4 5 6)", "4"},
    {"MultiPointWithTwoInOne", "MULTIPOINT((1 2 3,4 5 6))", ","},
    {"MultiPointInThreeParentheses", "MULTIPOINT(((1 2 3)))", "("},
    {"MultiPointWithoutPoints", "MULTIPOINT()", ")"},
    {"MultiPointWithAnEmptyPoint", "MULTIPOINT(())", ")"},
    {"MultiPointOfPlanePoints", "MULTIPOINT((1 2),(3 4))", ")"},
    {"EmptyMultiPoint", "MULTIPOINT EMPTY", ""},

    {"MultiLineInOneParenthesis", "MULTILINESTRING(0 0 0,1 1 1)", "0"},
    {"MultiLineInThreeParentheses", "MULTILINESTRING(((0 0 0)))", "("},
    {"MultiLineWithoutAComma", "MULTILINESTRING((0 0 0)(1 1 1))", "("},
    {"MultiLineWithATrailingComma", "MULTILINESTRING((0 0 0),)", ")"},

    {"MultiPolygonInTwoParentheses", "MULTIPOLYGON((0 0 0))", "0"},
    {"MultiPolygonInFourParentheses", "MULTIPOLYGON((((0 0 0))))", "("},
    {"MultiPolygonWithAnEmptyPolygon", "MULTIPOLYGON(((0 0 0)),())", ")"},
    {"MultiPolygonWithABareRing", "MULTIPOLYGON(((0 0 0)),(1 1 1))", "1"},
    {"MultiPolygonWithoutAnEnd", "MULTIPOLYGON(((0 0 0))", ""},

    {"CollectionWithoutMembers", "GEOMETRYCOLLECTION()", ")"},
    {"EmptyCollection", "GEOMETRYCOLLECTION EMPTY", ""},
    {"CollectionInACollection", "GEOMETRYCOLLECTION(POINT(1 2 3),GEOMETRYCOLLECTION(POINT(4 5 6)))",
     "GEOMETRYCOLLECTION"},
    {"CollectionInACollectionInLowerCase", "GEOMETRYCOLLECTION(geometrycollection(POINT(4 5 6)))",
     "geometrycollection"},
    {"CollectionWithATrailingComma", "GEOMETRYCOLLECTION(POINT(1 2 3),)", ")"},
    {"CollectionWithoutAComma", "GEOMETRYCOLLECTION(POINT(1 2 3) POINT(1 2 3))", "POINT"},
    {"CollectionOfNumbers", "GEOMETRYCOLLECTION(1 2 3)", "1"},
    {"CollectionWithoutAnEnd", "GEOMETRYCOLLECTION(POINT(1 2 3)", ""},
    {"CollectionWithABadMember", "GEOMETRYCOLLECTION(POINT(1 2 3),POINT(1 2))", ")"},

    {"SecondGeometry", "POINT(1 2 3) POINT(4 5 6)", "POINT"},
    {"SecondCollection", "GEOMETRYCOLLECTION(POINT(1 2 3)) geometrycollection",
     "geometrycollection"},
    {"CommaAndASecondGeometry", "POINT(1 2 3),POINT(4 5 6)", ","},
    {"NumberBehindTheEnd", "POINT(1 2 3) 4.50", "4.50"},
    {"CommaBehindTheEnd", "POINT(1 2 3),", ","},

    {"QuotesANumberAsItWasWritten", "POINT(1 2 3 --0007.50E+02)", "--0007.50E+02"},
};

class GrammarRejects : public testing::TestWithParam<Rejected> {};

TEST_P(GrammarRejects, TextAtTheTokenThatDoesNotFit) {
    const Rejected& row = GetParam();
    Parsed result;
    outputOf([&] { result = parsedByGrammar(row.text); });

    EXPECT_EQ(result.status, 1U);
    EXPECT_FALSE(result.geometry);
    EXPECT_EQ(result.error, errorAt(row.quoted));
}

INSTANTIATE_TEST_SUITE_P(Table, GrammarRejects, testing::ValuesIn(kRejected), kRowName);

// ---- The other message -------------------------------------------------------------------------

// Lists are read from the left, so no text is deep enough to bring it about.
TEST(ParseRunReport, QuotesTheTokenBehindTheStackLimitToo) {
    const ScanBufferHandle buffer = scanBytes("point(");
    ErrorText error{};
    ParseRun run{*buffer, error};

    run.report("parser stack overflow");
    EXPECT_STREQ(error.data(), "parser stack overflow, at or near \"\"\n");
    nextOf(run.scanner);
    run.report("parser stack overflow");
    EXPECT_STREQ(error.data(), "parser stack overflow, at or near \"point\"\n");
}

// ---- Long tokens -------------------------------------------------------------------------------

constexpr std::size_t kLongestMessage = 127;

TEST(GrammarErrorText, EndsAfter127BytesWhateverTheToken) {
    for (std::size_t digits = 90; digits < 140; ++digits) {
        const std::string token(digits, '9');
        SCOPED_TRACE(digits);

        const Parsed result = parsedByGrammar("POINT(1 2 3 " + token + ")");

        EXPECT_EQ(result.status, 1U);
        EXPECT_EQ(result.error, errorAt(token).substr(0, kLongestMessage));
    }
}

TEST(GrammarErrorText, EndsAfter127BytesOfAHugeToken) {
    const std::string token(1'000'000, '8');

    EXPECT_EQ(parsedByGrammar(token).error, errorAt(token).substr(0, kLongestMessage));
}

TEST(GrammarErrorText, HasNothingOfALongerMessageBeforeIt) {
    parsedByGrammar(std::string(200, '1'));

    EXPECT_EQ(parsedByGrammar("POINT(1 2)").error, errorAt(")"));
}

}  // namespace

}  // namespace vexa::test
