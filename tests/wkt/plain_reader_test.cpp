#include "wkt/plain_reader.h"

#include "tests/support/allocations.h"
#include "tests/support/fenced_block.h"
#include "tests/support/numeric_locale.h"
#include "tests/support/parse_support.h"
#include "tests/support/random_text.h"
#include "tests/support/vector_widths.h"

#include <algorithm>
#include <memory>
#include <random>

namespace vexa::test {

namespace {

// ---- Both ways of reading ----------------------------------------------------------------------

/// What a text gives: the status, the error text, and the bytes of a geometry.
struct Outcome {
    std::uint32_t status;
    std::string error;
    std::vector<std::uint32_t> contents;

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

std::vector<std::uint32_t> contentsOf(const Block& geometry) {
    return geometry ? test::contentsOf(*geometry) : std::vector<std::uint32_t>{};
}

Outcome outcomeOf(const Parsed& result) {
    return {result.status, result.error, contentsOf(result.geometry)};
}

/// The scanner and the grammar read every text.
Outcome byGrammar(const std::string& text) {
    return outcomeOf(parsedByGrammar(text));
}

Outcome byBoth(const std::string& text) {
    return outcomeOf(parsed(text));
}

/// Reads a block of the heap that ends with the terminator.
Block plainlyRead(const std::string& text) {
    const std::size_t bytes = text.size() + 1;
    const std::unique_ptr<char[]> block{new char[bytes]};
    std::copy_n(text.c_str(), bytes, block.get());
    return readPlainText({block.get(), text.size()});
}

enum class Wanted { Geometry, GeometryOrNothing };

/// What is wrong with a text's reading at any width. Told, not checked: texts with stray characters
/// are read while standard output goes elsewhere.
std::string complaintOf(const std::string& text, Wanted wanted) {
    const Outcome expected = byGrammar(text);
    std::string complaint;
    atEachWidth([&] {
        const std::string where =
            std::string{" at "} + nameOf(platform::vectorWidth()) + ": " + text;
        const Block geometry = plainlyRead(text);
        if (!geometry && wanted == Wanted::Geometry) complaint = "not read" + where;
        if (geometry && expected.status != 0) complaint = "read" + where;
        if (geometry && contentsOf(geometry) != expected.contents) complaint = "misread" + where;
        if (byBoth(text) != expected) complaint = "another outcome" + where;
    });
    return complaint;
}

// ---- Well-formed texts -------------------------------------------------------------------------

TEST(PlainReader, ReadsWhateverIsWellFormed) {
    const std::uint64_t seed = std::random_device{}();
    RandomText random{seed};
    for (int i = 0; i < (kIsSlowBuild ? 5'000 : 20'000); ++i) {
        ASSERT_EQ(complaintOf(random.next(), Wanted::Geometry), "") << "seed " << seed;
    }
}

constexpr const char* kPlainTexts[] = {
    "POINT(1 2 3)",
    "point(1 2 3)",
    " \t\nPOINT \t\n( \t\n1 \t\n2 \t\n3 \t\n) \t\n",
    "POINT(-0 1. 000012.50)",
    "POINT(1e+5 2E-3 1.e+2)",
    "POINT(1e+308 5e-324 12345678901234567890123456789)",
    "POINT(9007199254740993 0.3 1.7976931348623157e+308)",
    "LINESTRING(1 2 3)",
    "linestring(1 2 3,4 5 6, 7 8 9)",
    "POLYGON((1 2 3))",
    "POLYGON((1 2 3),(4 5 6,7 8 9),(1 1 1))",
    "MULTIPOINT((1 2 3))",
    "MULTIPOINT((1 2 3),(4 5 6) , ( 7 8 9 ))",
    "MULTILINESTRING((1 2 3,4 5 6),(7 8 9))",
    "MULTIPOLYGON(((1 2 3)))",
    "MULTIPOLYGON(((1 2 3),(4 5 6)),((7 8 9)))",
    "GEOMETRYCOLLECTION(POINT(1 2 3))",
    "geometrycollection(point(1 2 3),LINESTRING(1 2 3,4 5 6))",
    "GEOMETRYCOLLECTION(POLYGON((1 2 3),(4 5 6)),MULTIPOINT((1 2 3)),MULTIPOLYGON(((1 2 3))))",
    "GEOMETRYCOLLECTION(MULTILINESTRING((1 2 3),(4 5 6)),MULTIPOLYGON(((0 0 0)),((1 1 1))))",
};

TEST(PlainReader, ReadsEveryType) {
    for (const char* const text : kPlainTexts) {
        EXPECT_EQ(complaintOf(text, Wanted::Geometry), "");
    }
}

// The shortest texts of many items need most room for each of their characters.
TEST(PlainReader, HasRoomForTheShortestItems) {
    for (const char* const type : {"POLYGON", "MULTILINESTRING", "MULTIPOINT"}) {
        std::string text = std::string{type} + "((0 0 0)";
        for (int i = 0; i < 1'000; ++i) text += ",(0 0 0)";
        EXPECT_EQ(complaintOf(text + ")", Wanted::Geometry), "");
    }
    std::string polygons = "MULTIPOLYGON(((0 0 0))";
    std::string members = "GEOMETRYCOLLECTION(POINT(0 0 0)";
    for (int i = 0; i < 1'000; ++i) {
        polygons += ",((0 0 0))";
        members += i % 2 == 0 ? ",POLYGON((0 0 0))" : ",MULTIPOLYGON(((0 0 0)))";
    }
    EXPECT_EQ(complaintOf(polygons + ")", Wanted::Geometry), "");
    EXPECT_EQ(complaintOf(members + ")", Wanted::Geometry), "");
}

TEST(PlainReader, EchoesNothing) {
    for (const char* const text :
         {"POINT(1 2 3)", "POINT(1 2 3) ;", "#POINT(1 2 3)", "POINTZ(1 2 3)"}) {
        EXPECT_EQ(outputOf([&] { readPlainText(text); }), "") << text;
    }
}

// ---- Out of the ordinary -----------------------------------------------------------------------

constexpr const char* kOddTexts[] = {
    "",
    " ",
    "POINT",
    "POINT(",
    "POINT()",
    "POINT(1 2)",
    "POINT(1 2 3",
    "POINT(1 2 3 4)",
    "POINT(1 2 3,4 5 6)",
    "POINT((1 2 3))",
    "POINT(1 2 3))",
    "POINT(1 2 3)POINT(1 2 3)",
    "POINT(1 2 3),POINT(1 2 3)",
    "POINT(1,2,3)",
    "POINT 1 2 3",
    "(1 2 3)",
    "Point(1 2 3)",
    "pOINT(1 2 3)",
    "POINTS(1 2 3)",
    "POINT Z (1 2 3)",
    "POINTEMPTY",
    "POINT EMPTY",
    "CIRCLE(1 2 3)",
    "PO INT(1 2 3)",
    "POINT(1-2-3)",
    "POINT(1 2-3)",
    "POINT(1.5.5 2 3)",
    "POINT(1 2 3.5.5)",
    "POINT(--1 2 3)",
    "POINT(1 ---2 3)",
    "POINT(- 1 2 3)",
    "POINT(+1 2 3)",
    "POINT(.5 2 3)",
    "POINT(-.5 2 3)",
    "POINT(1e5 2 3)",
    "POINT(1 2 3e5)",
    "POINT(1e 2 3)",
    "POINT(1e+ 2 3)",
    "POINT(1e+x 2 3)",
    "POINT(1e+5e 2 3)",
    "POINT(1e+5.5 2 3)",
    "POINT(1.e5 2 3)",
    "POINT(1x 2 3)",
    "POINT(1 2 3x)",
    "POINT(0x10 2 3)",
    "POINT(inf nan 3)",
    "POINT(1e+999 -1e+999 1e-999)",
    "POINT(1\v2\f3)",
    "POINT(1 2 3)\r\n",
    "POINT(1 2 3);",
    "\xEF\xBB\xBFPOINT(1 2 3)",
    "POINT(1\2402 3)",
    "LINESTRING()",
    "LINESTRING(1 2 3,)",
    "LINESTRING(,1 2 3)",
    "LINESTRING((1 2 3))",
    "LINESTRING(1 2 3 4 5 6)",
    "LINESTRING(1 2 3,4 5)",
    "POLYGON(1 2 3)",
    "POLYGON()",
    "POLYGON(())",
    "POLYGON((1 2 3),)",
    "POLYGON((1 2 3),())",
    "POLYGON(((1 2 3)))",
    "MULTIPOINT(1 2 3)",
    "MULTIPOINT(1 2 3,4 5 6)",
    "MULTIPOINT((1 2 3),4 5 6)",
    "MULTIPOINT((1 2 3,4 5 6))",
    "MULTIPOINT((1 2 3)(4 5 6))",
    "MULTIPOINT()",
    "MULTIPOINT((1 2 3),)",
    "MULTIPOLYGON((1 2 3))",
    "MULTIPOLYGON(((1 2 3)),(4 5 6))",
    "MULTIPOLYGON(((1 2 3),))",
    "GEOMETRYCOLLECTION",
    "GEOMETRYCOLLECTION()",
    "GEOMETRYCOLLECTION(1 2 3)",
    "GEOMETRYCOLLECTION(POINT(1 2 3),)",
    "GEOMETRYCOLLECTION(POINT(1 2 3)POINT(1 2 3))",
    "GEOMETRYCOLLECTION(GEOMETRYCOLLECTION(POINT(1 2 3)))",
    "GEOMETRYCOLLECTION(GEOMETRYCOLLECTION(1 2 3))",
    "GEOMETRYCOLLECTION(POINT(1 2 3))POINT(1 2 3)",
    "GEOMETRYCOLLECTIONPOINT(1 2 3)",
};

TEST(PlainReader, ReadsOddTextsAsTheGrammarOrNotAtAll) {
    std::string complaint;
    outputOf([&] {
        for (const char* const text : kOddTexts) {
            complaint += complaintOf(text, Wanted::GeometryOrNothing);
        }
    });
    EXPECT_EQ(complaint, "");
}

TEST(PlainReader, LeavesTheEchoToTheGrammar) {
    for (const char* const text : kOddTexts) {
        const std::string expected = outputOf([&] { byGrammar(text); });
        atEachWidth([&] { EXPECT_EQ(outputOf([&] { byBoth(text); }), expected) << text; });
    }
}

TEST(PlainReader, AgreesWithTheGrammarOnMutatedTexts) {
    const std::uint64_t seed = std::random_device{}();
    RandomText random{seed};
    std::string complaint;
    int wellFormed = 0;
    constexpr int kTexts = kIsSlowBuild ? 10'000 : 60'000;
    outputOf([&] {
        for (int i = 0; i < kTexts && complaint.empty(); ++i) {
            const std::string text = random.nextMutated();
            complaint = complaintOf(text, Wanted::GeometryOrNothing);
            wellFormed += plainlyRead(text) ? 1 : 0;
        }
    });
    EXPECT_EQ(complaint, "") << "seed " << seed;
    // Both outcomes have to be there in number, or the comparison says little.
    EXPECT_GT(wellFormed, kTexts / 50);
    EXPECT_LT(wellFormed, kTexts / 2);
}

TEST(PlainReader, AgreesWithTheGrammarOnCutTexts) {
    std::string complaint;
    outputOf([&] {
        for (const std::string text : kPlainTexts) {
            for (std::size_t size = 0; size < text.size(); ++size) {
                complaint += complaintOf(text.substr(0, size), Wanted::GeometryOrNothing);
            }
        }
    });
    EXPECT_EQ(complaint, "");
}

// Short texts have every number near their end, where vectors of full length would leave the text.
TEST(PlainReader, ReadsNumbersOfEveryLengthNearTheEnd) {
    const std::string digits = "1234567890123456789012345";
    std::string complaint;
    for (std::size_t whole = 1; whole < digits.size(); ++whole) {
        for (std::size_t decimals = 0; decimals < digits.size(); ++decimals) {
            const std::string sign = (whole + decimals) % 3 == 0 ? "-" : "";
            const std::string number =
                sign + digits.substr(0, whole) + "." + digits.substr(0, decimals);
            complaint += complaintOf("POINT(" + number + " 1 2)", Wanted::GeometryOrNothing);
            complaint += complaintOf("POINT(1 2 " + number + ")", Wanted::GeometryOrNothing);
            complaint += complaintOf("LINESTRING(1 2 " + number + "," + number + " 4 5)   ",
                                     Wanted::GeometryOrNothing);
        }
    }
    EXPECT_EQ(complaint, "");
}

// ---- Around the text ---------------------------------------------------------------------------

TEST(PlainReader, ReadsNothingBehindTheTerminator) {
    RandomText random{11};
    for (int i = 0; i < 300; ++i) {
        const std::string text = random.next();
        for (const std::size_t size : {text.size(), random.below(text.size())}) {
            const std::string cut = text.substr(0, size);
            const FencedBlock block{cut.c_str(), size + 1, Fence::Behind};
            atEachWidth([&] {
                const Block geometry = readPlainText({block.as<char>(), size});
                EXPECT_EQ(contentsOf(geometry), contentsOf(plainlyRead(cut)));
            });
        }
    }
}

TEST(PlainReader, ClearsTheErrorOfTheTextBefore) {
    EXPECT_EQ(parsed("POINT(1 2)").error, errorAt(")"));
    atEachWidth([] { EXPECT_EQ(parsed("POINT(1 2 3)").error, ""); });
}

TEST(PlainReader, ReadsNothingWithAnotherDecimalPoint) {
    const NumericLocale locale;
    if (!locale.isSet()) GTEST_SKIP() << "the system cannot be given a decimal comma";

    for (const char* const text : {"POINT(1.5 2 3)", "POINT(1 2 3)"}) {
        atEachWidth([&] {
            EXPECT_FALSE(readPlainText(text));
            EXPECT_EQ(byBoth(text), byGrammar(text));
        });
    }
}

// ---- No memory ---------------------------------------------------------------------------------

// One block for the geometry, which is cut to its length at the end.
constexpr int kRoom = 1;
constexpr int kCut = 2;

TEST(PlainReaderMemory, WhenRefusedLeavesTheTextToTheGrammar) {
    const std::string text = "POLYGON((1 2 3,4 5 6),(7 8 9))";
    const Outcome expected = byGrammar(text);
    bool isRead = true;
    int blocksInUse = 99;
    {
        const AllocationFailure failure{kRoom};
        isRead = readPlainText(text) != nullptr;
        blocksInUse = failure.blocksInUse();
        EXPECT_TRUE(failure.happened());
    }
    EXPECT_FALSE(isRead);
    EXPECT_EQ(blocksInUse, 0);

    GeometryBuffer* geometry = nullptr;
    std::uint32_t status = 99;
    {
        const AllocationFailure failure{kRoom};
        status = vexaParse_string(text.c_str(), &geometry);
        blocksInUse = failure.blocksInUse();
    }
    EXPECT_EQ(status, 0U);
    EXPECT_EQ(blocksInUse, 1);
    EXPECT_EQ(contentsOf(Block{geometry}), expected.contents);
}

TEST(PlainReaderMemory, IsNotNeededToCutTheBlock) {
    const std::string text = "POLYGON((1 2 3,4 5 6),(7 8 9))";
    Block geometry;
    bool happened = false;
    {
        const AllocationFailure failure{kCut};
        geometry = readPlainText(text);
        happened = failure.happened();
    }
    EXPECT_TRUE(happened);
    ASSERT_TRUE(geometry);
    EXPECT_EQ(contentsOf(geometry), byGrammar(text).contents);
}

TEST(PlainReaderMemory, IsAskedForTwiceHoweverLongTheText) {
    for (const int vertices : {1, 100, 10'000}) {
        std::string text = "LINESTRING(1 2 3";
        for (int i = 1; i < vertices; ++i) text += ",4 5 6";
        text += ")";
        const AllocationWatch heap;
        const Block geometry = readPlainText(text);
        EXPECT_EQ(heap.requests(), 2);
        EXPECT_EQ(heap.blocksInUse(), 1);
    }
}

TEST(PlainReaderMemory, IsGivenBackForTextsThatAreNotPlain) {
    for (const char* const text : kOddTexts) {
        const AllocationWatch heap;
        readPlainText(text);
        EXPECT_EQ(heap.blocksInUse(), 0) << text;
    }
}

}  // namespace

}  // namespace vexa::test
