#include "tests/support/allocations.h"
#include "tests/support/parse_support.h"

#include <array>
#include <optional>
#include <ostream>
#include <tuple>

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

// ---- Ways to parse -----------------------------------------------------------------------------

std::uint32_t parseByGrammar(const char* text, GeometryBuffer** result) {
    Parser parser;
    Block geometry;
    const std::uint32_t status = parser.parse(scanBytes(text).get(), geometry);
    EXPECT_EQ(*parser.errorText() != '\0', status == 1);
    if (status == 0) *result = geometry.release();
    return status;
}

std::uint32_t parseWhole(const char* text, GeometryBuffer** result) {
    const std::uint32_t status = vexaParse_string(text, result);
    EXPECT_EQ(*vexaParse_errorString() != '\0', status == 1);
    return status;
}

struct Way {
    const char* name;
    std::uint32_t (*parse)(const char* text, GeometryBuffer** result);
    /// Whether the texts are plain; others go without a blank that only the scanner can do without.
    bool isPlain;
    /// The first of the requests for memory that is for the grammar's geometry.
    int firstBlock;
};

// The copy of the text and its record: without memory for them the process ends.
constexpr int kOfTheScanner = 2;
// Room for the whole geometry is asked for before a text shows that it is not plain.
constexpr int kOfThePlainReader = 1;

constexpr Way kByGrammar = {"ByGrammar", parseByGrammar, true, kOfTheScanner + 1};
constexpr Way kOddText = {"OddText", parseWhole, false, kOfThePlainReader + kOfTheScanner + 1};
constexpr Way kPlainText = {"PlainText", parseWhole, true, 0};

std::string textFor(const Way& way, const Shape& shape, int items) {
    std::string text = textOf(shape, items);
    if (way.isPlain) return text;
    for (std::size_t at = 0; (at = text.find("2 3", at)) != std::string::npos;) {
        text.replace(at, 3, "2-3");
    }
    return text;
}

void PrintTo(const Way& way, std::ostream* out) {
    *out << way.name;
}
void PrintTo(const Shape& shape, std::ostream* out) {
    *out << shape.name;
}

constexpr auto kNames = [](const auto& row) {
    return std::string{std::get<0>(row.param).name} + std::get<1>(row.param).name;
};

// ---- What is asked for -------------------------------------------------------------------------

class ParseMemory : public testing::TestWithParam<std::tuple<Way, Shape>> {
protected:
    static const Way& way() { return std::get<0>(GetParam()); }
    static std::string text(int items) { return textFor(way(), std::get<1>(GetParam()), items); }
};

struct Use {
    int requests;
    std::size_t bytes;
};

Use useOf(const Way& way, const std::string& text) {
    GeometryBuffer* geometry = nullptr;
    std::uint32_t status = 99;
    std::optional<Use> use;
    {
        const AllocationWatch heap;
        status = way.parse(text.c_str(), &geometry);
        use = {heap.requests(), heap.bytes()};
    }
    EXPECT_EQ(status, 0U);
    vexaWKB_destroyGeom(&geometry);
    return *use;
}

TEST_P(ParseMemory, IsAskedForInFewPiecesAndGrowsWithTheText) {
    const Use small = useOf(way(), text(1'000));
    const Use large = useOf(way(), text(100'000));

    // A hundred times the text is seven doublings; where a doubling falls makes up for the rest.
    EXPECT_LE(large.requests, small.requests + 8);
    EXPECT_LE(large.bytes, 3 * (100 * small.bytes));
}

TEST_P(ParseMemory, IsGivenBackButForTheResult) {
    const std::string parsedText = text(500);
    GeometryBuffer* geometry = nullptr;
    const AllocationWatch heap;

    way().parse(parsedText.c_str(), &geometry);
    EXPECT_EQ(heap.blocksInUse(), 1);
    vexaWKB_destroyGeom(&geometry);
    EXPECT_EQ(heap.blocksInUse(), 0);
}

TEST_P(ParseMemory, IsGivenBackWholeAfterASyntaxError) {
    const std::string wrong = text(500) + ",";
    GeometryBuffer* geometry = nullptr;
    const AllocationWatch heap;

    EXPECT_EQ(way().parse(wrong.c_str(), &geometry), 1U);
    EXPECT_EQ(heap.blocksInUse(), 0);
    EXPECT_EQ(vexaParse_string(wrong.c_str(), nullptr), 1U);
    EXPECT_EQ(vexaParse_string(text(5).c_str(), nullptr), 0x8000U);
    EXPECT_EQ(heap.blocksInUse(), 0);
}

INSTANTIATE_TEST_SUITE_P(Table, ParseMemory,
                         testing::Combine(testing::Values(kByGrammar, kOddText, kPlainText),
                                          testing::ValuesIn(kShapes)),
                         kNames);

// ---- Refused allocations -----------------------------------------------------------------------

struct Attempt {
    /// Whether so many allocations were asked for that one was refused.
    bool happened;
    std::uint32_t status;
};

/// One parse with the n-th allocation refused.
Attempt attemptWithoutAllocation(int nth, const Way& way, const std::string& text) {
    GeometryBuffer untouched{};
    GeometryBuffer* geometry = &untouched;
    Attempt attempt{false, 99};
    int blocksInUse = 99;
    {
        const AllocationFailure failure{nth};
        attempt.status = way.parse(text.c_str(), &geometry);
        attempt.happened = failure.happened();
        blocksInUse = failure.blocksInUse();
    }
    const bool failed = attempt.status != 0;
    EXPECT_EQ(attempt.status, failed ? 0x8000U : 0U);
    EXPECT_EQ(geometry == &untouched, failed);
    EXPECT_EQ(blocksInUse, failed ? 0 : 1);
    if (!failed) {
        EXPECT_EQ(contentsOf(*geometry), contentsOf(*parsed(text).geometry));
        vexaWKB_destroyGeom(&geometry);
    }
    return attempt;
}

/// Refuses each of the grammar's requests in turn; returns how many there are.
int refuseEachBlock(const Way& way, const std::string& text) {
    for (int nth = way.firstBlock;; ++nth) {
        const Attempt attempt = attemptWithoutAllocation(nth, way, text);
        // The first block of the geometry cannot be done without.
        EXPECT_TRUE(attempt.status != 0 || nth != way.firstBlock);
        if (!attempt.happened) return nth - way.firstBlock;
    }
}

class RefusedMemory : public ParseMemory {};

TEST_P(RefusedMemory, LeavesNothingBehind) {
    // The geometry grew several times, and each time was refused once.
    EXPECT_GT(refuseEachBlock(way(), text(300)), 3);
}

TEST_P(RefusedMemory, MayBeForAnyPart) {
    // Lists whose growth falls on every kind of step as they get longer.
    for (int items = 1; items < 40; ++items) {
        SCOPED_TRACE(items);
        EXPECT_GE(refuseEachBlock(way(), text(items)), 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, RefusedMemory,
                         testing::Combine(testing::Values(kByGrammar, kOddText),
                                          testing::ValuesIn(kShapes)),
                         kNames);

class RefusedPlainMemory : public ParseMemory {};

// For its room the grammar can step in, and what is cut off at the end may stay.
TEST_P(RefusedPlainMemory, CanBeDoneWithout) {
    for (const int items : {1, 2, 39, 300}) {
        int nth = 1;
        for (;; ++nth) {
            SCOPED_TRACE(testing::Message() << items << " items, request " << nth);
            const Attempt attempt = attemptWithoutAllocation(nth, way(), text(items));
            EXPECT_EQ(attempt.status, 0U);
            if (!attempt.happened) break;
        }
        EXPECT_GT(nth, kOfThePlainReader + 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, RefusedPlainMemory,
                         testing::Combine(testing::Values(kPlainText), testing::ValuesIn(kShapes)),
                         kNames);

// ---- Conversions -------------------------------------------------------------------------------

constexpr int kNarrowText = 1;

TEST(ConversionMemory, WhenRefusedFailsAndIsGivenBack) {
    const WideText text = widened(textFor(kOddText, kShapes[2], 300));
    std::vector<std::byte> out(1 << 16, std::byte{0xA5});
    const std::vector<std::byte> untouched = out;
    for (const int nth :
         {kNarrowText, kNarrowText + kOddText.firstBlock, kNarrowText + kOddText.firstBlock + 1}) {
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

TEST(ConversionMemory, OfPlainTextIsNeededForTheNarrowTextAlone) {
    const WideText text = widened(textFor(kPlainText, kShapes[2], 300));
    std::uint32_t expected = 0;
    ASSERT_EQ(vexaWKB_getSizeFromTextGeom(text.c_str(), &expected), 0);
    for (const int nth : {kNarrowText, kNarrowText + 1, kNarrowText + 2}) {
        SCOPED_TRACE(nth);
        const bool isNarrowText = nth == kNarrowText;
        std::uint32_t size = 7;
        const AllocationFailure failure{nth};
        EXPECT_EQ(vexaWKB_getSizeFromTextGeom(text.c_str(), &size), isNarrowText ? 32768 : 0);
        EXPECT_TRUE(failure.happened());
        EXPECT_EQ(failure.blocksInUse(), 0);
        EXPECT_EQ(size, isNarrowText ? 7U : expected);
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
