#include "tests/faults/allocation_faults.h"
#include "tests/support/parse_support.h"
#include "tests/support/writer_check.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vexa::test {

namespace {

constexpr std::uint32_t kStatusNotCalled = 0xBAD;

/// Long enough for the geometry to outgrow its room a few times.
std::string listOf(const char* open, const char* item, const char* close) {
    std::string text = open;
    for (int i = 0; i != 100; ++i) text.append(i == 0 ? "" : ",").append(item);
    return text + close;
}

// ---- Narrow text --------------------------------------------------------------------------------

class Parsing : public FaultyCall {
public:
    explicit Parsing(const std::string& text) : text_(text), given_(text) {}

    void make() override { status_ = vexaParse_string(text_.c_str(), &result_); }
    bool isDone() override { return status_ == kSuccess; }
    void expectDone() override {
        EXPECT_EQ(contentsOf(*result_), contentsOf(*parsed(given_).geometry));
        EXPECT_EQ(text_, given_);
    }
    void expectTold() override {
        EXPECT_EQ(status_, kFailure);
        EXPECT_EQ(result_, &untouched_);
        EXPECT_EQ(text_, given_);
        EXPECT_STREQ(vexaParse_errorString(), "");
    }
    void giveBack() override {
        if (result_ != &untouched_) vexaWKB_destroyGeom(&result_);
        result_ = &untouched_;
    }

private:
    std::string text_;
    std::string given_;
    std::uint32_t status_ = kStatusNotCalled;
    GeometryBuffer untouched_{};
    GeometryBuffer* result_ = &untouched_;
};

/// A text that is no geometry: where memory lasts to its end, that is told and nothing else.
class ParsingInVain : public FaultyCall {
public:
    explicit ParsingInVain(std::string text) : text_(std::move(text)) {}

    void make() override { status_ = vexaParse_string(text_.c_str(), &result_); }
    bool isDone() override { return status_ == VEXA_SYNTAX_ERROR; }
    void expectDone() override {
        EXPECT_EQ(result_, &untouched_);
        EXPECT_EQ(vexaParse_errorString(), errorAt(")"));
    }
    void expectTold() override {
        EXPECT_EQ(status_, kFailure);
        EXPECT_EQ(result_, &untouched_);
        EXPECT_STREQ(vexaParse_errorString(), "");
    }

private:
    std::string text_;
    std::uint32_t status_ = kStatusNotCalled;
    GeometryBuffer untouched_{};
    GeometryBuffer* result_ = &untouched_;
};

// ---- Wide text ----------------------------------------------------------------------------------

class Converting : public FaultyCall {
public:
    explicit Converting(const std::string& text) : text_(widened(text)) {
        const Block geometry = parsed(text).geometry;
        std::uint32_t size = 0;
        EXPECT_EQ(vexaWKB_getSize(geometry.get(), &size), kSuccess);
        expected_ = wordsOf(*geometry, size);
        out_.assign(expected_.size(), kUntouched);
    }

    void make() override {
        const auto capacity = static_cast<std::uint32_t>(out_.size() * sizeof(std::uint32_t));
        status_ = vexaWKB_convertTextToBinary(text_.c_str(), out_.data(), capacity);
    }
    bool isDone() override { return status_ == VEXA_SUCCESS; }
    void expectDone() override { EXPECT_EQ(out_, expected_); }
    void expectTold() override {
        EXPECT_EQ(status_, VEXA_FAILURE);
        EXPECT_EQ(out_, std::vector<std::uint32_t>(expected_.size(), kUntouched));
    }

private:
    static constexpr std::uint32_t kUntouched = 0xA5A5A5A5;

    WideText text_;
    std::vector<std::uint32_t> expected_;
    std::vector<std::uint32_t> out_;
    std::int64_t status_ = kStatusNotCalled;
};

class Measuring : public FaultyCall {
public:
    explicit Measuring(const std::string& text) : text_(widened(text)) {
        EXPECT_EQ(vexaWKB_getSize(parsed(text).geometry.get(), &expected_), kSuccess);
    }

    void make() override { status_ = vexaWKB_getSizeFromTextGeom(text_.c_str(), &size_); }
    bool isDone() override { return status_ == VEXA_SUCCESS; }
    void expectDone() override { EXPECT_EQ(size_, expected_); }
    void expectTold() override {
        EXPECT_EQ(status_, VEXA_FAILURE);
        EXPECT_EQ(size_, kUntouched);
    }

private:
    static constexpr std::uint32_t kUntouched = 0xA5A5A5A5;

    WideText text_;
    std::uint32_t expected_ = 0;
    std::uint32_t size_ = kUntouched;
    std::int64_t status_ = kStatusNotCalled;
};

// ---- The table ----------------------------------------------------------------------------------

// The geometry is cut to its size at the end; where that fails it stays in its larger block. Plain text for
// whose geometry there is no room is read by the scanner. The scanner's copy of the text and its record end
// the process, which its own tests show.
template <class Call>
FaultCase textCase(const char* name, const std::string& text, Lack lack, std::vector<int> fatal) {
    return {name, [=] { return std::make_unique<Call>(text); }, lack, std::move(fatal)};
}

std::vector<FaultCase> plainCases() {
    const std::string line = listOf("LINESTRING(", "1 2 3", ")");
    const std::string polygons = listOf("MULTIPOLYGON(", "((1 2 3,4 5 6,7 8 9,1 2 3))", ")");
    const std::string collection = listOf("GEOMETRYCOLLECTION(", "POINT(1 2 3)", ")");
    return {
        textCase<Parsing>("vexaParse_string_Point", "POINT(1 2 3)", Lack::IsMadeUpFor, {}),
        textCase<Parsing>("vexaParse_string_Line", line, Lack::IsMadeUpFor, {}),
        textCase<Parsing>("vexaParse_string_MultiPolygon", polygons, Lack::IsMadeUpFor, {}),
        textCase<Parsing>("vexaParse_string_Collection", collection, Lack::IsMadeUpFor, {}),
        textCase<Converting>("vexaWKB_convertTextToBinary", polygons, Lack::IsSometimesMadeUpFor,
                             {}),
        textCase<Measuring>("vexaWKB_getSizeFromTextGeom", polygons, Lack::IsSometimesMadeUpFor,
                            {}),
    };
}

// Numbers without a blank between them are for the scanner alone.
std::vector<FaultCase> oddCases() {
    constexpr auto kSometimes = Lack::IsSometimesMadeUpFor;
    const std::vector<int> ofNarrowText = {2, 3};
    const std::vector<int> ofWideText = {3, 4};
    const std::string line = listOf("LINESTRING(", "1 2-3", ")");
    const std::string polygons = listOf("MULTIPOLYGON(", "((1 2-3,4 5-6,7 8-9,1 2-3))", ")");
    const std::string collection = listOf("GEOMETRYCOLLECTION(", "POINT(1 2-3)", ")");
    return {
        textCase<Parsing>("vexaParse_string_OddPoint", "POINT(1 2-3)", kSometimes, ofNarrowText),
        textCase<Parsing>("vexaParse_string_OddLine", line, kSometimes, ofNarrowText),
        textCase<Parsing>("vexaParse_string_OddMultiPolygon", polygons, kSometimes, ofNarrowText),
        textCase<Parsing>("vexaParse_string_OddCollection", collection, kSometimes, ofNarrowText),
        textCase<Converting>("vexaWKB_convertTextToBinary_Odd", polygons, kSometimes, ofWideText),
        textCase<Measuring>("vexaWKB_getSizeFromTextGeom_Odd", polygons, kSometimes, ofWideText),
        textCase<ParsingInVain>("vexaParse_string_InVain", line + ")", kSometimes, ofNarrowText),
    };
}

class TextFaults : public AllocationFaults {};

TEST_P(TextFaults, AreMadeUpForOrTold) {
    expectFaultsTaken(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Plain, TextFaults, testing::ValuesIn(plainCases()), kFaultCaseName);
INSTANTIATE_TEST_SUITE_P(Odd, TextFaults, testing::ValuesIn(oddCases()), kFaultCaseName);

// ---- The other way ------------------------------------------------------------------------------

// Numbers of any length are printed on the stack: there is nothing to be refused.
TEST(WrittenNumbers, NeedNoMemoryAtAnyPrecision) {
    const Point3d point = {4.9406564584124654e-324, -1.7976931348623157e+308, 0.1};
    GeometryBuffer* made = nullptr;
    ASSERT_EQ(vexaWKB_createLine(&point, 1, &made), kSuccess);
    const Block line{made};
    std::vector<VexaWChar> text(4000);
    for (const std::int32_t precision : {17, 300, 301, 767, 800, 2147483647}) {
        const PrecisionScope scope(precision);
        std::int64_t written = 0;
        bool happened = true;
        {
            const HeapFailure failure{1};
            written = vexaWKT_linestring(line.get(), text.data(), 4000);
            happened = failure.happened();
        }
        EXPECT_FALSE(happened) << "precision " << precision;
        EXPECT_GT(written, 3 * std::int64_t{17}) << "precision " << precision;
    }
}

}  // namespace

}  // namespace vexa::test
