#include "tests/support/allocations.h"
#include "tests/support/parse_support.h"

#include <array>
#include <optional>

namespace vexa::test {

namespace {

// ---- Texts of any length -----------------------------------------------------------------------

struct Shape {
    const char* name;
    const char* open;
    const char* item;
    const char* close;
};

constexpr Shape kShapes[] = {
    {"Vertices", "LINESTRING(", "1 2 3", ")"},
    {"RingVertices", "POLYGON((", "1 2 3", "))"},
    {"Rings", "POLYGON(", "(1 2 3)", ")"},
    {"Points", "MULTIPOINT(", "(1 2 3)", ")"},
    {"Lines", "MULTILINESTRING(", "(1 2 3)", ")"},
    {"Polygons", "MULTIPOLYGON(", "((1 2 3))", ")"},
    {"PolygonRings", "MULTIPOLYGON((", "(1 2 3)", "))"},
    {"Members", "GEOMETRYCOLLECTION(", "POINT(1 2 3)", ")"},
    {"CutMembers", "GEOMETRYCOLLECTION(", "POLYGON((1 2 3),(4 5 6))", ")"},
};

std::string textOf(const Shape& shape, int items) {
    std::string text = shape.open;
    for (int i = 0; i < items; ++i) {
        if (i > 0) text += ',';
        text += shape.item;
    }
    return text + shape.close;
}

class ParseMemory : public testing::TestWithParam<Shape> {};

struct Use {
    int requests;
    std::size_t bytes;
};

Use useOf(const std::string& text) {
    GeometryBuffer* geometry = nullptr;
    std::uint32_t status = 99;
    std::optional<Use> use;
    {
        const AllocationWatch heap;
        status = vexaParse_string(text.c_str(), &geometry);
        use = {heap.requests(), heap.bytes()};
    }
    EXPECT_EQ(status, 0U);
    vexaWKB_destroyGeom(&geometry);
    return *use;
}

TEST_P(ParseMemory, IsAskedForInFewPiecesAndGrowsWithTheText) {
    const Use small = useOf(textOf(GetParam(), 1'000));
    const Use large = useOf(textOf(GetParam(), 100'000));

    // A hundred times the text is seven doublings; where a doubling falls makes up for the rest.
    EXPECT_LE(large.requests, small.requests + 8);
    EXPECT_LE(large.bytes, 3 * (100 * small.bytes));
}

TEST_P(ParseMemory, IsGivenBackButForTheResult) {
    const std::string text = textOf(GetParam(), 500);
    GeometryBuffer* geometry = nullptr;
    const AllocationWatch heap;

    vexaParse_string(text.c_str(), &geometry);
    EXPECT_EQ(heap.blocksInUse(), 1);
    vexaWKB_destroyGeom(&geometry);
    EXPECT_EQ(heap.blocksInUse(), 0);
}

TEST_P(ParseMemory, IsGivenBackWholeAfterASyntaxError) {
    const std::string text = textOf(GetParam(), 500) + ",";
    GeometryBuffer* geometry = nullptr;
    const AllocationWatch heap;

    EXPECT_EQ(vexaParse_string(text.c_str(), &geometry), 1U);
    EXPECT_EQ(heap.blocksInUse(), 0);
    EXPECT_EQ(vexaParse_string(text.c_str(), nullptr), 1U);
    EXPECT_EQ(vexaParse_string(textOf(GetParam(), 5).c_str(), nullptr), 0x8000U);
    EXPECT_EQ(heap.blocksInUse(), 0);
}

// ---- Refused allocations -----------------------------------------------------------------------

// The copy of the text and its record: without memory for them the process ends.
constexpr int kOfTheScanner = 2;

/// One parse with the n-th allocation refused; whether it was asked for so many.
bool parsesWithoutAllocation(int nth, const std::string& text) {
    GeometryBuffer untouched{};
    GeometryBuffer* geometry = &untouched;
    std::uint32_t status = 99;
    int blocksInUse = 99;
    bool happened = false;
    {
        const AllocationFailure failure{nth};
        status = vexaParse_string(text.c_str(), &geometry);
        happened = failure.happened();
        blocksInUse = failure.blocksInUse();
    }
    const bool failed = status != 0;
    EXPECT_EQ(status, failed ? 0x8000U : 0U);
    EXPECT_EQ(geometry == &untouched, failed);
    EXPECT_EQ(blocksInUse, failed ? 0 : 1);
    EXPECT_STREQ(vexaParse_errorString(), "");
    if (!failed) {
        EXPECT_EQ(contentsOf(*geometry), contentsOf(*parsed(text).geometry));
        vexaWKB_destroyGeom(&geometry);
    }
    // The first block of the geometry cannot be done without.
    EXPECT_TRUE(failed || nth != kOfTheScanner + 1);
    return happened;
}

TEST_P(ParseMemory, WhenRefusedLeavesNothingBehind) {
    const std::string text = textOf(GetParam(), 300);
    const std::vector<std::uint32_t> expected = contentsOf(*parsed(text).geometry);

    int nth = kOfTheScanner + 1;
    while (parsesWithoutAllocation(nth, text)) {
        ++nth;
        EXPECT_EQ(contentsOf(*parsed(text).geometry), expected);
    }

    // The geometry grew several times, and each time was refused once.
    EXPECT_GT(nth, kOfTheScanner + 4);
}

INSTANTIATE_TEST_SUITE_P(Table, ParseMemory, testing::ValuesIn(kShapes), kRowName);

TEST(ParseMemory, OfAnyPartCanBeRefused) {
    // Lists whose growth falls on every kind of step as they get longer.
    for (const Shape& shape : kShapes) {
        for (int items = 1; items < 40; ++items) {
            SCOPED_TRACE(shape.name);
            SCOPED_TRACE(items);
            const std::string text = textOf(shape, items);
            int nth = kOfTheScanner + 1;
            while (parsesWithoutAllocation(nth, text)) ++nth;
        }
    }
}

TEST(ConversionMemory, WhenRefusedFailsAndIsGivenBack) {
    const WideText text = widened(textOf(kShapes[2], 300));
    std::vector<std::byte> out(1 << 16, std::byte{0xA5});
    const std::vector<std::byte> untouched = out;
    constexpr int kNarrowText = 1;
    for (int nth :
         {kNarrowText, kNarrowText + kOfTheScanner + 1, kNarrowText + kOfTheScanner + 2}) {
        SCOPED_TRACE(nth);
        std::uint32_t size = 7;
        {
            const AllocationFailure failure{nth};
            EXPECT_EQ(vexaWKB_getSizeFromTextGeom(text.c_str(), &size), 32768);
            EXPECT_EQ(failure.blocksInUse(), 0);
        }
        {
            const AllocationFailure failure{nth};
            EXPECT_EQ(vexaWKB_convertTextToBinary(text.c_str(), out.data(), 1 << 16), 32768);
            EXPECT_EQ(failure.blocksInUse(), 0);
        }
        EXPECT_EQ(size, 7U);
        EXPECT_EQ(out, untouched);
    }
}

TEST(ConversionMemory, IsGivenBackWhateverTheOutcome) {
    std::array<std::byte, 64> out{};
    const WideText good = widened("POINT(1 2 3)");
    const WideText bad = widened("POINT(1 2)");
    std::uint32_t size = 0;
    const AllocationWatch heap;

    vexaWKB_convertTextToBinary(good.c_str(), out.data(), 64);
    vexaWKB_convertTextToBinary(good.c_str(), out.data(), 39);
    vexaWKB_convertTextToBinary(good.c_str(), nullptr, 64);
    vexaWKB_convertTextToBinary(bad.c_str(), out.data(), 64);
    vexaWKB_getSizeFromTextGeom(good.c_str(), &size);
    vexaWKB_getSizeFromTextGeom(good.c_str(), nullptr);
    vexaWKB_getSizeFromTextGeom(bad.c_str(), &size);

    EXPECT_GE(heap.requests(), 7);
    EXPECT_EQ(heap.blocksInUse(), 0);
}

}  // namespace

}  // namespace vexa::test
