#include "tests/support/allocations.h"
#include "tests/support/transform_model.h"
#include "vexakit/geometry.h"
#include "vexakit/transform.h"

#include <cstdint>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

constexpr Transform kSome = {{1, 2, 3, 4, -5, 6, 7, 8, 9, -10, 11, 12}};

using Shape = std::vector<std::vector<std::vector<std::uint32_t>>>;  // vertices of each run
using Times = std::vector<std::uint32_t>;                            // one number a run

/// A multipolygon of this shape, each run transformed so many times. Paddings are 0.
Words multiPolygon(const Shape& shape, const Times& times) {
    Words body = {static_cast<std::uint32_t>(shape.size()), 0};
    std::size_t run = 0;
    for (const auto& rings : shape) {
        body = joined({body, {static_cast<std::uint32_t>(rings.size()), 0}});
        for (const auto& runs : rings) {
            body = joined({body, {static_cast<std::uint32_t>(runs.size()), 0}});
            for (const std::uint32_t vertices : runs) {
                Points points = trail(vertices, 1 + 10 * static_cast<double>(run));
                for (std::uint32_t i = 0; i != times[run]; ++i)
                    points = modelApplied(kSome, points);
                body = joined({body, runWords(points)});
                ++run;
            }
        }
    }
    return joined({headerWords(VEXA_MULTIPOLYGON), body});
}

struct RingCase {
    const char* name;
    Shape shape;
    Times times;
};

void PrintTo(const RingCase& row, std::ostream* out) {
    *out << row.name;
}

const RingCase kRingCases[] = {
    {"OneRing", {{{4}}}, {1}},
    {"OneRingEach", {{{4}}, {{3}}, {{5}}}, {1, 1, 1}},
    {"AllRunsOfTheRing", {{{4, 1, 2}}}, {1, 1, 1}},
    {"AHoleOfOneRunStays", {{{4}, {3}}}, {1, 0}},
    {"AHoleOfTwoRunsMoves", {{{4}, {3, 2}}}, {1, 1, 1}},
    {"TheRunsOfTheFirstRingDoNotCountForTheHole", {{{4, 2, 2}, {3}}}, {1, 1, 1, 0}},
    {"TheThirdRingNeedsThreeRuns", {{{4}, {3, 2}, {1, 1}}}, {1, 1, 1, 0, 0}},
    {"RingsOfOneTwoAndThreeRunsMove", {{{4}, {3, 2}, {1, 1, 1}}}, {1, 1, 1, 1, 1, 1}},
    {"ARingThatStaysHidesThoseBehindIt", {{{4}, {3}, {1, 1, 1}}}, {1, 0, 0, 0, 0}},
    {"AFirstRingWithoutRunsStopsItsPolygon", {{{}, {3, 2}}, {{4}}}, {0, 0, 1}},
    {"ASecondRingWithoutRunsEndsThePolygon", {{{4}, {}, {3, 3, 3}}, {{4}}}, {1, 0, 0, 0, 1}},
    {"AnEmptyRunIsPassed", {{{0, 4}}, {{0}}, {{2}}}, {1, 1, 1, 1}},

    // The word behind the last ring is the next polygon's count of rings: it is taken for a ring of
    // as many runs, whose first "run" is the header of the first ring.
    {"OneRingBeforeTwoRingsMovesThatFirstRingToo", {{{4}}, {{3}, {2}}}, {1, 2, 0}},
    {"OneRingBeforeThreeRings", {{{4}}, {{3}, {2}, {1}}}, {1, 2, 0, 0}},
    {"OneRingBeforeFourRingsReachesTheSecond", {{{4}}, {{3}, {2}, {1}, {1}}}, {1, 2, 1, 0, 0}},
    {"OneRingBeforeTwoRingsOfTwoRuns", {{{4}}, {{3, 1}, {2, 2}}}, {1, 2, 1, 1, 1}},
    {"TwoMovedRingsBeforeTwoRings", {{{4}, {1, 1}}, {{3}, {2}}}, {1, 1, 1, 1, 0}},
    {"TwoMovedRingsBeforeThreeRings", {{{4}, {1, 1}}, {{3}, {2}, {1}}}, {1, 1, 1, 2, 0, 0}},
    {"ThePolygonBeforeTheLast", {{{1}}, {{4}}, {{3}, {2}}, {{1}}}, {1, 1, 2, 0, 1}},

    // A polygon without rings takes the next one's count of rings for its first ring's runs.
    {"NoRings", {{}}, {}},
    {"NoRingsAtTheEnd", {{{4}}, {}}, {1}},
    {"NoRingsTwice", {{}, {}, {{4}}}, {1}},
    {"NoRingsBeforeOneRing", {{}, {{4}}}, {1}},
    {"NoRingsBeforeTwoRings", {{}, {{4}, {3}}}, {2, 0}},
    {"NoRingsBetween", {{{2}}, {}, {{4}, {3}}, {{2}}}, {1, 2, 0, 1}},
};

class MultiPolygonRings : public testing::TestWithParam<RingCase> {};

TEST_P(MultiPolygonRings, MoveWhileTheWordBehindExceedsTheRingsDone) {
    const RingCase& row = GetParam();
    const Block block = blockOf(multiPolygon(row.shape, Times(row.times.size(), 0)));
    const Words expected = multiPolygon(row.shape, row.times);

    EXPECT_EQ(vexaWKB_transformMultiPolygon(&kSome, block.get()), kSuccess);
    EXPECT_EQ(wordsOf(block, bytesOf(expected)), expected);
}

TEST_P(MultiPolygonRings, MoveAsTheBytesSay) {
    const RingCase& row = GetParam();
    const Words before = multiPolygon(row.shape, Times(row.times.size(), 0));
    EXPECT_EQ(MultiPolygonModel(before, kSome).words(), multiPolygon(row.shape, row.times));
}

// The list's own counts tell its end.
TEST_P(MultiPolygonRings, DoNotDependOnTheSizeWord) {
    const RingCase& row = GetParam();
    for (const std::uint32_t size : {1U, 24U, 48U, 100U, 0xFFFF'FFFFU}) {
        Words before = multiPolygon(row.shape, Times(row.times.size(), 0));
        Words expected = multiPolygon(row.shape, row.times);
        before[3] = expected[3] = size;
        const Block block = blockOf(before);

        EXPECT_EQ(vexaWKB_transformMultiPolygon(&kSome, block.get()), kSuccess);
        EXPECT_EQ(wordsOf(block, bytesOf(expected)), expected) << "size word " << size;
    }
}

INSTANTIATE_TEST_SUITE_P(Table, MultiPolygonRings, testing::ValuesIn(kRingCases),
                         [](const auto& row) { return std::string{row.param.name}; });

// What stands behind the list in the caller's block is no count.
TEST(TransformMultiPolygon, ReadsNothingBehindItsList) {
    const Words behind = {5, 0, 0, 1, 0, 0, 0, 0, 0, 0, 7, 7, 7, 7};
    const Block block = blockOf(joined({multiPolygon({{{4}}}, {0}), behind}));
    const Words expected = joined({multiPolygon({{{4}}}, {1}), behind});
    EXPECT_EQ(vexaWKB_transformMultiPolygon(&kSome, block.get()), kSuccess);
    EXPECT_EQ(wordsOf(block, bytesOf(expected)), expected);
}

TEST(TransformMultiPolygon, MovesTheSingleRingOfEachPolygonThatTheLibraryMade) {
    Block block = made(vexaWKB_createMultiPolygon, trail(4));
    ASSERT_EQ(grow(vexaWKB_addPolyToMultiPoly, block, trail(3, 20)), kSuccess);
    ASSERT_EQ(grow(vexaWKB_addPolyToMultiPoly, block, trail(5, 40)), kSuccess);
    const std::uint32_t size = block->size;

    EXPECT_EQ(vexaWKB_transformGeometry(&kSome, block.get()), kSuccess);
    EXPECT_EQ(block->size, size);
    const auto ring = [](const Points& points) {
        return listWords({listWords({runWords(modelApplied(kSome, points))})});
    };
    EXPECT_EQ(wordsOf(block, size),
              joined({headerWords(VEXA_MULTIPOLYGON, size),
                      listWords({ring(trail(4)), ring(trail(3, 20)), ring(trail(5, 40))})}));
}

// ---- Runs that would leave the list -------------------------------------------------------------

struct ReachCase {
    const char* name;
    std::uint32_t vertices;  // as the padding of the second polygon's first ring says
    bool isTransformed;
};

// Behind the first polygon's ring, the padding of the second polygon's first ring is taken for a
// count of vertices. From there to the end of the list are 120 bytes, five vertices.
constexpr ReachCase kReachCases[] = {
    {"UpToTheEnd", 5, true},
    {"OneVertexTooFar", 6, false},
    {"FarTooFar", 1000, false},
    {"WrappingTo16Bytes", 178'956'971, false},
    {"WrappingToZeroBytes", 0x1555'5555, false},
    {"TwoTo31", 0x8000'0000, false},
    {"Most", 0xFFFF'FFFF, false},
};

class RunReach : public testing::TestWithParam<ReachCase> {};

/// Polygons of one, two and one ring; the first rings of the first two have these vertices.
Words reaching(const Points& first, std::uint32_t padding, const Points& second) {
    const Words noVertices = listWords({runWords({})});
    return joined({headerWords(VEXA_MULTIPOLYGON),
                   listWords({listWords({listWords({runWords(first)})}),
                              listWords({listWords({runWords(second)}, padding), noVertices}),
                              listWords({noVertices})})});
}

TEST_P(RunReach, EndsItsPolygonOnlyWhereItPassesTheEnd) {
    const Words before = reaching(trail(2), GetParam().vertices, trail(3, 20));
    const Block block = blockOf(before);
    EXPECT_EQ(vexaWKB_transformMultiPolygon(&kSome, block.get()), kSuccess);

    const Words after = wordsOf(block, bytesOf(before));
    EXPECT_EQ(after, MultiPolygonModel(before, kSome).words());
    const Words eachRingOnce = reaching(modelApplied(kSome, trail(2)), GetParam().vertices,
                                        modelApplied(kSome, trail(3, 20)));
    EXPECT_EQ(after == eachRingOnce, !GetParam().isTransformed);
}

INSTANTIATE_TEST_SUITE_P(Table, RunReach, testing::ValuesIn(kReachCases),
                         [](const auto& row) { return std::string{row.param.name}; });

// ---- Any list -----------------------------------------------------------------------------------

/// Paddings and coordinates that read as small counts now and then, so that a walk that has lost its
/// way goes on for a while.
class RandomMultiPolygon {
public:
    explicit RandomMultiPolygon(std::uint32_t seed) : random_(seed) {}

    Words words() {
        return joined({headerWords(VEXA_MULTIPOLYGON, 1 + random_.below(200)), polygons()});
    }
    Transform transform() {
        return random_.below(3) == 0 ? Transform{{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}}
                                     : random_.transform();
    }

private:
    Words listOf(std::uint32_t most, Words (RandomMultiPolygon::*element)()) {
        const std::uint32_t count = random_.below(most + 1);
        Words words = {count, padding()};
        for (std::uint32_t i = 0; i != count; ++i) words = joined({words, (this->*element)()});
        return words;
    }
    Words polygons() { return listOf(4, &RandomMultiPolygon::rings); }
    Words rings() { return listOf(3, &RandomMultiPolygon::runs); }
    Words runs() { return listOf(3, &RandomMultiPolygon::run); }
    Words run() {
        const std::uint32_t count = random_.below(4);
        Words words = {padding(), count};
        for (std::uint32_t i = 0; i != 3 * count; ++i) words = joined({words, coordinate()});
        return words;
    }

    Words coordinate() {
        if (random_.below(2) == 0) return {random_.below(3), random_.below(3)};
        const double number = random_.number();
        return wordsAt(&number, sizeof number);
    }
    std::uint32_t padding() {
        constexpr std::uint32_t kPaddings[] = {0, 0, 0, 0, 1, 2, 3, 0x8000'0001, 0xDEAD'BEEF};
        return kPaddings[random_.below(std::size(kPaddings))];
    }

    RandomNumbers random_;
};

// Coordinates that were counts make no NaN here: neither counts nor paddings have its bits.
TEST(TransformMultiPolygon, WalksAnyListAsTheBytesSay) {
    int farRings = 0;
    int farRuns = 0;
    int strayRuns = 0;
    for (std::uint32_t seed = 1; seed <= 20'000; ++seed) {
        RandomMultiPolygon random(seed);
        const Transform transform = random.transform();
        const Words before = random.words();
        const MultiPolygonModel model(before, transform);
        const Block block = blockOf(before);

        ASSERT_EQ(vexaWKB_transformMultiPolygon(&transform, block.get()), kSuccess);
        ASSERT_EQ(wordsOf(block, bytesOf(before)), model.words()) << seedText(seed);
        farRings += model.farRings();
        farRuns += model.farRuns();
        strayRuns += model.strayRuns();
    }
    EXPECT_GT(farRings, 1000) << "the lists are too plain";
    EXPECT_GT(farRuns, 1000);
    EXPECT_GT(strayRuns, 1000);
}

// ---- Memory -------------------------------------------------------------------------------------

TEST(TransformMultiPolygon, TransformsNothingWhereMemoryIsLacking) {
    for (const std::size_t polygons : {std::size_t{1}, std::size_t{3}, std::size_t{2000}}) {
        const Shape shape(polygons, {{3}});
        const Words before = multiPolygon(shape, Times(polygons, 0));
        const Block block = blockOf(before);
        int refusals = 0;
        for (;;) {
            AllocationFailure failure(refusals + 1);
            const std::uint32_t status = vexaWKB_transformMultiPolygon(&kSome, block.get());
            const int left = failure.blocksInUse();
            if (!failure.happened()) {
                EXPECT_EQ(status, kSuccess);
                EXPECT_EQ(left, 0);
                break;
            }
            ++refusals;
            EXPECT_EQ(status, kFailure);
            EXPECT_EQ(left, 0);
            EXPECT_EQ(wordsOf(block, bytesOf(before)), before) << "allocation " << refusals;
            ASSERT_LT(refusals, 10);
        }
        EXPECT_EQ(wordsOf(block, bytesOf(before)), multiPolygon(shape, Times(polygons, 1)));
        if (polygons == 2000) {
            EXPECT_GT(refusals, 0) << "so many places need the heap";
        }
    }
}

TEST(TransformGeometry, PassesOnThatMemoryIsLacking) {
    const Words before = multiPolygon(Shape(2000, {{3}}), Times(2000, 0));
    const Block block = blockOf(before);
    const AllocationFailure failure(1);
    EXPECT_EQ(vexaWKB_transformGeometry(&kSome, block.get()), kFailure);
    EXPECT_TRUE(failure.happened());
    EXPECT_EQ(wordsOf(block, bytesOf(before)), before);
}

}  // namespace
