#include "transform/run_transform.h"

#include "tests/support/fenced_block.h"
#include "tests/support/geometry_bytes.h"
#include "tests/support/transform_model.h"
#include "tests/support/vector_widths.h"
#include "transform/matrix.h"
#include "vexakit/transform.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr std::uint32_t kMostPoints = 40;
constexpr std::size_t kNumbersOfPoint = 3;

using Numbers = std::vector<double>;

testing::AssertionResult areSame(const Numbers& actual, const Numbers& expected) {
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (isSame(actual[i], expected[i])) continue;
        return testing::AssertionFailure()
               << "number " << i << " is " << actual[i] << ", not " << expected[i];
    }
    return testing::AssertionSuccess();
}

// ---- Arrays ------------------------------------------------------------------------------------

/// Points at some place of an array whose other numbers nobody may touch, transformed in place.
Numbers transformed(const Transform& transform, const Points& points, std::size_t place) {
    constexpr std::size_t kSpare = 16;
    constexpr double kUntouched = -12345.5;
    alignas(64) double array[kNumbersOfPoint * kMostPoints + 2 * kSpare];
    std::fill(std::begin(array), std::end(array), kUntouched);
    if (!points.empty()) std::memcpy(array + place, points.data(), points.size() * sizeof(Point3d));

    auto* const first = reinterpret_cast<Point3d*>(array + place);
    EXPECT_EQ(transform_pointArray(&transform, points.size(), first), 0U);
    return {std::begin(array), std::end(array)};
}

TEST(PointArrayAtEachWidth, IsTheSameForEveryCountAtEveryAlignment) {
    for (std::uint32_t count = 0; count <= kMostPoints; ++count) {
        for (std::size_t place = 8; place < 16; ++place) {
            SCOPED_TRACE(testing::Message() << count << " points at number " << place);
            RandomNumbers random(100 * count + static_cast<std::uint32_t>(place));
            const Transform transform = random.transform();
            const Points points = random.points(count);
            const Numbers expected = plainly([&] { return transformed(transform, points, place); });
            atEachWidth([&] {
                const Numbers actual = transformed(transform, points, place);
                ASSERT_EQ(
                    std::memcmp(actual.data(), expected.data(), expected.size() * sizeof(double)),
                    0);
            });
        }
    }
}

TEST(PointArrayAtEachWidth, IsTheSameWithZerosInfinitiesAndHugeNumbers) {
    for (std::uint32_t seed = 1; seed <= 4000; ++seed) {
        SCOPED_TRACE(seedText(seed));
        RandomNumbers random(seed, RandomNumbers::WITH_ODD_ONES);
        const Transform transform = random.transform();
        const Points points = random.points(random.below(kMostPoints + 1));
        const Numbers expected = plainly([&] { return transformed(transform, points, 8); });
        atEachWidth([&] { ASSERT_TRUE(areSame(transformed(transform, points, 8), expected)); });
    }
}

// Each coefficient by itself, so that no other hides what it does.
TEST(PointArrayAtEachWidth, IsTheSameForEachOddCoefficient) {
    for (const double odd : {0.0, -0.0, kInfinity, -kInfinity, kNaN, 1e308, 5e-324}) {
        for (std::size_t entry = 0; entry < 12; ++entry) {
            SCOPED_TRACE(testing::Message() << odd << " at " << entry);
            RandomNumbers random(static_cast<std::uint32_t>(entry));
            Transform transform = random.transform();
            transform.m[entry] = odd;
            const Points points = random.points(9);
            const Numbers expected = plainly([&] { return transformed(transform, points, 9); });
            atEachWidth([&] { ASSERT_TRUE(areSame(transformed(transform, points, 9), expected)); });
        }
    }
}

TEST(PointArrayAtEachWidth, ReadsATransformAmongThePointsOnce) {
    constexpr std::uint32_t kPoints = 11;
    constexpr std::size_t kNumbers = kNumbersOfPoint * kPoints;
    const Points points = RandomNumbers(7).points(kPoints);
    for (std::size_t place = 0; place + 12 <= kNumbers; ++place) {
        const auto transformedByItself = [&] {
            Numbers numbers(kNumbers);
            std::memcpy(numbers.data(), points.data(), kNumbers * sizeof(double));
            EXPECT_EQ(transform_pointArray(reinterpret_cast<const Transform*>(&numbers[place]),
                                           kPoints, reinterpret_cast<Point3d*>(numbers.data())),
                      0U);
            return numbers;
        };
        Transform transform{};
        std::memcpy(&transform, reinterpret_cast<const double*>(points.data()) + place,
                    sizeof transform);
        const Points moved = modelApplied(transform, points);
        Numbers expected(kNumbers);
        std::memcpy(expected.data(), moved.data(), kNumbers * sizeof(double));
        atEachWidth([&] {
            const Numbers numbers = transformedByItself();
            ASSERT_TRUE(areSame(numbers, expected)) << "transform at number " << place;
        });
    }
}

TEST(PointArrayAtEachWidth, WritesBesideTheSource) {
    for (std::uint32_t count = 0; count <= kMostPoints; ++count) {
        RandomNumbers random(count);
        const Transform transform = random.transform();
        const Points in = random.points(count);
        const Words before = wordsOf(in);
        atEachWidth([&] {
            GuardedPoints out(count);
            applyTransformToPoints(transform, out.data(), in.data(),
                                   static_cast<std::int32_t>(count));
            EXPECT_TRUE(out.holdOnly(modelApplied(transform, in))) << count << " points";
        });
        EXPECT_EQ(wordsOf(in), before);
    }
}

TEST(PointArrayAtEachWidth, ReadsAndWritesNothingAroundThePoints) {
    for (std::uint32_t count = 0; count <= kMostPoints; ++count) {
        RandomNumbers random(count);
        const Transform transform = random.transform();
        const Points points = random.points(count);
        const Points expected = modelApplied(transform, points);
        const std::size_t bytes = count * sizeof(Point3d);
        for (const Fence fence : {Fence::Before, Fence::Behind}) {
            atEachWidth([&] {
                const FencedBlock block{points.data(), bytes, fence};
                transform_pointArray(&transform, count, block.as<Point3d>());
                EXPECT_EQ(wordsAt(block.as<Point3d>(), bytes), wordsOf(expected));
            });
        }
    }
}

// ---- The vectors themselves --------------------------------------------------------------------

/// Arrays of every count one after the other.
class TrailMoves {
public:
    TrailMoves(const Points& in, Point3d* out) : in_(in.data()), out_(out) {}

    bool next(PointMove& move) {
        if (count_ > static_cast<std::int32_t>(kMostPoints)) return false;
        move = {out_, in_, count_};
        in_ += count_;
        out_ += count_;
        ++count_;
        return true;
    }

private:
    const Point3d* in_;
    Point3d* out_;
    std::int32_t count_ = 0;
};

TEST(TransformRuns, TakesEveryRunOnce) {
    constexpr Transform kSome = {{1, 2, 3, 4, -5, 6, 7, 8, 9, -10, 11, 12}};
    const Points in = trail(kMostPoints * (kMostPoints + 1) / 2);
    atEachWidth([&] {
        GuardedPoints out(static_cast<std::uint32_t>(in.size()));
        transformRuns(kSome, TrailMoves(in, out.data()));
        EXPECT_TRUE(out.holdOnly(modelApplied(kSome, in)));
    });
}

TEST(TransformRuns, LeavesRunsOfNoPoints) {
    for (const std::int32_t count : {0, -1, INT32_MIN}) {
        const Points in = trail(1);
        atEachWidth([&] {
            GuardedPoints out(1);
            transformRuns(kIdentity, OneMove({out.data(), in.data(), count}));
            EXPECT_TRUE(out.holdOnly({}));
        });
    }
}

// ---- Geometries --------------------------------------------------------------------------------

struct Geometry {
    const char* name;
    std::uint32_t (*transform)(const Transform*, GeometryBuffer*);
    std::function<Bytes(RandomNumbers&)> build;
};

Points randomRun(RandomNumbers& random) {
    return random.points(random.below(random.below(4) == 0 ? kMostPoints : 7));
}

template <class Element>
std::vector<Element> listOf(RandomNumbers& random, Element (*make)(RandomNumbers&)) {
    std::vector<Element> list(random.below(5));
    for (Element& element : list) element = make(random);
    return list;
}

Runs randomPath(RandomNumbers& random) {
    return listOf(random, randomRun);
}
Paths randomPaths(RandomNumbers& random) {
    return listOf(random, randomPath);
}
Polygons randomPolygons(RandomNumbers& random) {
    return listOf(random, randomPaths);
}

const Geometry kGeometries[] = {
    {"Point", vexaWKB_transformPoint,
     [](RandomNumbers& random) { return test::pointOf(random.point()); }},
    {"Line", vexaWKB_transformLine,
     [](RandomNumbers& random) { return lineOf(randomPath(random)); }},
    {"Polygon", vexaWKB_transformPolygon,
     [](RandomNumbers& random) { return polygonOf(randomPaths(random)); }},
    {"MultiPoint", vexaWKB_transformMultiPoint,
     [](RandomNumbers& random) { return multipointOf(randomRun(random)); }},
    {"MultiLine", vexaWKB_transformMultiLine,
     [](RandomNumbers& random) { return multilineOf(randomPaths(random)); }},
    {"MultiPolygon", vexaWKB_transformMultiPolygon,
     [](RandomNumbers& random) { return multipolygonOf(randomPolygons(random)); }},
};

void PrintTo(const Geometry& row, std::ostream* out) {
    *out << row.name;
}

class GeometryAtEachWidth : public testing::TestWithParam<Geometry> {
protected:
    /// All that a block holds, after it was transformed; everything in it is a multiple of eight bytes.
    static Numbers transformed(const Transform& transform, const Bytes& bytes) {
        const Block block = blockOf(wordsAt(bytes.data(), bytes.size()));
        EXPECT_EQ(GetParam().transform(&transform, block.get()), 0U);
        Numbers numbers(bytes.size() / sizeof(double));
        std::memcpy(numbers.data(), block.get(), bytes.size());
        return numbers;
    }
};

TEST_P(GeometryAtEachWidth, IsTheSame) {
    for (const auto kind : {RandomNumbers::ORDINARY, RandomNumbers::WITH_ODD_ONES}) {
        for (std::uint32_t seed = 1; seed <= 500; ++seed) {
            SCOPED_TRACE(seedText(seed));
            RandomNumbers random(seed, kind);
            const Transform transform = random.transform();
            const Bytes bytes = GetParam().build(random);
            const Numbers expected = plainly([&] { return transformed(transform, bytes); });
            atEachWidth([&] { ASSERT_TRUE(areSame(transformed(transform, bytes), expected)); });
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Table, GeometryAtEachWidth, testing::ValuesIn(kGeometries),
                         [](const auto& row) { return std::string{row.param.name}; });

}  // namespace

}  // namespace vexa::test
