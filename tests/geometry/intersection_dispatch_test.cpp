#include "tests/support/intersection_asking.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr double kNear = 1e-9;

const PairTest& pairTestOf(std::uint32_t first, std::uint32_t second) {
    for (const PairTest& pair : kPairTests) {
        if (pair.first == first && pair.second == second) return pair;
    }
    throw std::out_of_range("no such pair");
}

/// One of each type, all of them through or around the origin.
Shape atOrigin(std::uint32_t type, double x = 0) {
    switch (type) {
        case VEXA_POINT: return pointShape({x, 0, 0});
        case VEXA_LINESTRING: return line({{x - 1, -1, -1}, {x, 0, 0}, {x + 1, -1, 0.5}});
        case VEXA_POLYGON: return squareShape(x - 2, -2, 4);
        case VEXA_MULTIPOINT: return multipointShape({{x + 1, 1, 1}, {x, 0, 0}});
        case VEXA_MULTILINESTRING:
            return multilineShape({{{{x + 5, 5, 5}, {x + 6, 6, 5}}},
                                   {{{x, -3, 0}, {x, 3, 0.5}, {x - 1, 0, 0}, {x + 1, 0, 0}}}});
        default: return multipolygonShape({{{square(x + 9, 9, 1)}}, {{square(x - 3, -3, 6)}}});
    }
}

struct Cell {
    std::uint32_t first;
    std::uint32_t second;
};

class IntersectGeometry : public testing::TestWithParam<Cell> {
protected:
    const Cell cell_ = GetParam();
    const bool isSwapped_ = cell_.first > cell_.second;
    const PairTest& pair_ =
        isSwapped_ ? pairTestOf(cell_.second, cell_.first) : pairTestOf(cell_.first, cell_.second);
};

TEST_P(IntersectGeometry, AnswersAsTheTestOfTheTwoTypes) {
    const Shape first = atOrigin(cell_.first);
    for (const double x : {0.0, 0.25, 1.0, 3.0, 30.0}) {
        const Shape second = atOrigin(cell_.second, x);
        for (const double tolerance : {0.0, kNear, 0.5}) {
            const Asked direct = isSwapped_ ? ask(pair_.test, second, first, tolerance)
                                            : ask(pair_.test, first, second, tolerance);
            const Asked expected = {0, model::intersect(first, second, tolerance, 0)};
            EXPECT_EQ(direct, expected) << pair_.name << " at " << x;
            EXPECT_EQ(ask(first, second, tolerance), expected) << "at " << x;
            EXPECT_EQ(ask(kTypedEntries[cell_.second - 1], first, second, tolerance), expected)
                << "at " << x;
        }
    }
}

TEST_P(IntersectGeometry, HitsAtOnePlaceAndMissesFarAway) {
    const Shape first = atOrigin(cell_.first);
    EXPECT_EQ(ask(first, atOrigin(cell_.second), kNear), kHit);
    EXPECT_EQ(ask(first, atOrigin(cell_.second, 100), kNear), kMiss);
}

TEST_P(IntersectGeometry, RejectsANullInEachPlaceAndTouchesNothing) {
    const Bytes first = bufferOf(atOrigin(cell_.first));
    const Bytes second = bufferOf(atOrigin(cell_.second));
    const std::vector<IntersectionTest> tests = {vexaWKB_intersectGeometry,
                                                 kTypedEntries[cell_.second - 1], pair_.test};
    for (const IntersectionTest test : tests) {
        std::uint32_t result = 77;
        EXPECT_EQ(test(nullptr, second.geometry(), 1, &result), 0x8000U);
        EXPECT_EQ(test(first.geometry(), nullptr, 1, &result), 0x8000U);
        EXPECT_EQ(test(nullptr, nullptr, 1, &result), 0x8000U);
        EXPECT_EQ(result, 77U);
        EXPECT_EQ(test(first.geometry(), second.geometry(), 1, nullptr), 0x8000U);
        EXPECT_EQ(test(nullptr, nullptr, 1, nullptr), 0x8000U);
    }
}

TEST_P(IntersectGeometry, LeavesTheBuffersAsTheyWere) {
    const Bytes first = bufferOf(atOrigin(cell_.first));
    const Bytes second = bufferOf(atOrigin(cell_.second));
    const std::vector<std::byte> before(first.data(), first.data() + first.size());
    const std::vector<std::byte> alsoBefore(second.data(), second.data() + second.size());
    EXPECT_EQ(ask(vexaWKB_intersectGeometry, first, second, kNear), kHit);
    EXPECT_EQ(std::vector<std::byte>(first.data(), first.data() + first.size()), before);
    EXPECT_EQ(std::vector<std::byte>(second.data(), second.data() + second.size()), alsoBefore);
}

std::vector<Cell> allCells() {
    std::vector<Cell> cells;
    for (std::uint32_t first = 1; first <= 6; ++first) {
        for (std::uint32_t second = 1; second <= 6; ++second) cells.push_back({first, second});
    }
    return cells;
}

INSTANTIATE_TEST_SUITE_P(EachPairOfTypes, IntersectGeometry, testing::ValuesIn(allCells()),
                         [](const auto& row) {
                             return std::to_string(row.param.first) + "With" +
                                    std::to_string(row.param.second);
                         });

constexpr std::uint32_t kUnknownTypes[] = {0, 7, 8, 9, 0x80000001, 0xFFFFFFFF};

TEST(IntersectGeometryTypes, RejectsAnUnknownTypeInEitherPlace) {
    const Bytes known = bufferOf(atOrigin(VEXA_LINESTRING));
    for (const std::uint32_t type : kUnknownTypes) {
        Bytes unknown = known;
        unknown.setWord(8, type);
        EXPECT_EQ(ask(vexaWKB_intersectGeometry, unknown, known, 1, 77), (Asked{0x8000, 77}));
        EXPECT_EQ(ask(vexaWKB_intersectGeometry, known, unknown, 1, 77), (Asked{0x8000, 77}));
        EXPECT_EQ(ask(vexaWKB_intersectGeometry, unknown, unknown, 1, 77), (Asked{0x8000, 77}));
    }
}

TEST(IntersectGeometryTypes, TypedEntriesRejectAnUnknownTypeInFirstPlace) {
    for (std::uint32_t type = 1; type <= 6; ++type) {
        for (const std::uint32_t unknownType : kUnknownTypes) {
            Bytes unknown = bufferOf(atOrigin(type));
            unknown.setWord(8, unknownType);
            EXPECT_EQ(ask(kTypedEntries[type - 1], unknown, bufferOf(atOrigin(type)), 1, 77),
                      (Asked{0x8000, 77}))
                << "entry " << type << ", type " << unknownType;
        }
    }
}

TEST(IntersectGeometryTypes, TypedEntriesTakeTheSecondForTheirOwnTypeWhateverItSays) {
    for (std::uint32_t first = 1; first <= 6; ++first) {
        for (std::uint32_t second = 1; second <= 6; ++second) {
            for (const std::uint32_t written : {0U, 1U, 6U, 7U}) {
                Bytes typed = bufferOf(atOrigin(second));
                typed.setWord(8, written);
                EXPECT_EQ(ask(kTypedEntries[second - 1], bufferOf(atOrigin(first)), typed, kNear),
                          kHit)
                    << first << " with " << second << ", type word " << written;
            }
        }
    }
}

// The second argument is the typed one, and goes first. A ring of three points that are no triangle
// has another plane than its neighbour, so that the order matters here.
TEST(IntersectGeometryTypes, TypedEntriesPutTheirOwnFirstBeforeOneOfTheSameType) {
    const Shape triangle = multipolygonShape({{{{{1, -3, 1}, {0, 0, 1}, {-3, -3, 1}}}}});
    const Shape scattered = multipolygonShape({{{{{7.2, 7.2, 1}}, {{1, 1, 1}}, {{1, 0, 1}}}}});
    ASSERT_EQ(ask(vexaWKB_intersectMultiPolygonMultiPolygon, triangle, scattered, 1), kHit);
    ASSERT_EQ(ask(vexaWKB_intersectMultiPolygonMultiPolygon, scattered, triangle, 1), kMiss);

    EXPECT_EQ(ask(triangle, scattered, 1), kHit);
    EXPECT_EQ(ask(scattered, triangle, 1), kMiss);
    EXPECT_EQ(ask(vexaWKB_intersectGeometryMultiPolygon, triangle, scattered, 1), kMiss);
    EXPECT_EQ(ask(vexaWKB_intersectGeometryMultiPolygon, scattered, triangle, 1), kHit);
}

TEST(IntersectGeometryTypes, PairTestsLookAtNoTypeWord) {
    for (const PairTest& pair : kPairTests) {
        Bytes first = bufferOf(atOrigin(pair.first));
        Bytes second = bufferOf(atOrigin(pair.second));
        first.setWord(8, 7);
        second.setWord(8, 0);
        EXPECT_EQ(ask(pair.test, first, second, kNear), kHit) << pair.name;
    }
}

TEST(IntersectGeometryTypes, NoSizeOrHeaderWordCounts) {
    for (const PairTest& pair : kPairTests) {
        Bytes first = bufferOf(atOrigin(pair.first));
        Bytes second = bufferOf(atOrigin(pair.second));
        first.setWord(kSizeOffset, 0);
        second.setWord(kSizeOffset, 16);
        EXPECT_EQ(ask(pair.test, first, second, kNear), kHit) << pair.name;
    }
}

/// Two coplanar rings of which the larger is out of its plane at one corner, by more than the
/// tolerance taken in the small ring's frame and less than the one taken in its own: whichever is
/// walked first decides.
class IntersectPolygonsOrder : public testing::Test {
protected:
    const Paths small_ = {{square(500, 500, 1)}};
    const Paths large_ = {
        {{{0, 0, 0}, {1000, 0, 0}, {1000, 1000, 0}, {0, 1000, 1.2e-9}, {0, 0, 0}}}};
    const Shape smallPolygon_ = polygonShape(small_);
    const Shape largePolygon_ = polygonShape(large_);
    const Shape smallMulti_ = multipolygonShape({small_});
    const Shape largeMulti_ = multipolygonShape({large_});
};

TEST_F(IntersectPolygonsOrder, OfTwoPolygonsTheFirstGoesFirst) {
    EXPECT_EQ(ask(vexaWKB_intersectPolygonPolygon, smallPolygon_, largePolygon_, 0), kMiss);
    EXPECT_EQ(ask(vexaWKB_intersectPolygonPolygon, largePolygon_, smallPolygon_, 0), kHit);
    EXPECT_EQ(ask(smallPolygon_, largePolygon_, 0), kMiss);
    EXPECT_EQ(ask(largePolygon_, smallPolygon_, 0), kHit);
}

TEST_F(IntersectPolygonsOrder, TypedEntriesOfEqualTypesPutTheSecondFirst) {
    EXPECT_EQ(ask(vexaWKB_intersectGeometryPolygon, largePolygon_, smallPolygon_, 0), kMiss);
    EXPECT_EQ(ask(vexaWKB_intersectGeometryPolygon, smallPolygon_, largePolygon_, 0), kHit);
    EXPECT_EQ(ask(vexaWKB_intersectGeometryMultiPolygon, largeMulti_, smallMulti_, 0), kMiss);
    EXPECT_EQ(ask(vexaWKB_intersectGeometryMultiPolygon, smallMulti_, largeMulti_, 0), kHit);
}

TEST_F(IntersectPolygonsOrder, OfTwoMultipolygonsTheFirstGoesFirst) {
    EXPECT_EQ(ask(vexaWKB_intersectMultiPolygonMultiPolygon, smallMulti_, largeMulti_, 0), kMiss);
    EXPECT_EQ(ask(smallMulti_, largeMulti_, 0), kMiss);
    EXPECT_EQ(ask(largeMulti_, smallMulti_, 0), kHit);
}

TEST_F(IntersectPolygonsOrder, AMemberGoesBeforeTheLonePolygonInEitherOrder) {
    EXPECT_EQ(ask(vexaWKB_intersectPolygonMultiPolygon, largePolygon_, smallMulti_, 0), kMiss);
    EXPECT_EQ(ask(vexaWKB_intersectPolygonMultiPolygon, smallPolygon_, largeMulti_, 0), kHit);
    EXPECT_EQ(ask(largePolygon_, smallMulti_, 0), kMiss);
    EXPECT_EQ(ask(smallMulti_, largePolygon_, 0), kMiss);
    EXPECT_EQ(ask(smallPolygon_, largeMulti_, 0), kHit);
    EXPECT_EQ(ask(largeMulti_, smallPolygon_, 0), kHit);
}

}  // namespace
}  // namespace vexa::test
