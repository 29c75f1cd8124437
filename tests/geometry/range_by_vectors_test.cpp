#include "geometry/range_by_vectors.h"

#include "geometry/range.h"
#include "tests/support/fenced_block.h"
#include "tests/support/geometry_bytes.h"
#include "tests/support/geometry_samples.h"
#include "tests/support/vector_widths.h"
#include "vexakit/geometry.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <span>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double Point3d::*kCoordinates[] = {&Point3d::x, &Point3d::y, &Point3d::z};

/// The bits of both corners.
using Corners = std::array<std::uint64_t, 6>;

Corners cornersOf(const Range3d& range) {
    return std::bit_cast<Corners>(range);
}

Corners cornersOf(const GeometryBuffer* geometry) {
    Range3d range = {{-1, -2, -3}, {-4, -5, -6}};
    EXPECT_EQ(vexaWKB_getRange(geometry, &range.low, &range.high), kSuccess);
    return cornersOf(range);
}

/// The same corners at every width, of a block that ends with its last vertex.
void agreeOn(const Bytes& buffer) {
    const Block block = blockOf(wordsAt(buffer.data(), buffer.size()));
    const Corners expected = plainly([&] { return cornersOf(block.get()); });
    atEachWidth([&] { ASSERT_EQ(cornersOf(block.get()), expected); });
}

void agreeOnRun(const Points& run) {
    agreeOn(lineOf({run}));
    agreeOn(multipointOf(run));
    agreeOn(multipolygonOf({{{run}}}));
}

// ---- Coordinates -------------------------------------------------------------------------------

/// What the coordinates of a geometry are like.
enum class Kind { Ordinary, SmallIntegers, NotBelowZero, NotAboveZero, Infinite, AnyBits };
constexpr Kind kKinds[] = {Kind::Ordinary,     Kind::SmallIntegers, Kind::NotBelowZero,
                           Kind::NotAboveZero, Kind::Infinite,      Kind::AnyBits};

class RandomShapes {
public:
    explicit RandomShapes(std::uint64_t seed) : engine_(seed) {}

    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(engine_() % bound); }

    /// Each coordinate has a kind of its own.
    void chooseKinds() {
        for (Kind& kind : kinds_) kind = kKinds[below(std::size(kKinds))];
    }
    void chooseKind(Kind kind) { kinds_.fill(kind); }

    Points points(std::size_t count) {
        Points points(count);
        for (Point3d& point : points) {
            for (std::size_t i = 0; i < 3; ++i) point.*kCoordinates[i] = value(kinds_[i]);
        }
        return points;
    }
    Points run() { return points(below(4) == 0 ? below(80) : below(6)); }
    Runs runs() {
        return listOf<Points>([this] { return run(); });
    }
    Paths paths() {
        return listOf<Runs>([this] { return runs(); });
    }
    Polygons polygons() {
        return listOf<Paths>([this] { return paths(); });
    }

private:
    template <class Element, class Make>
    std::vector<Element> listOf(Make make) {
        std::vector<Element> list(below(5));
        for (Element& element : list) element = make();
        return list;
    }

    double value(Kind kind) {
        const double sign = below(2) == 0 ? 1 : -1;
        switch (kind) {
            case Kind::SmallIntegers: return sign * static_cast<double>(below(4));
            case Kind::NotBelowZero: return below(3) == 0 ? 0 * sign : 1.5;
            case Kind::NotAboveZero: return below(3) == 0 ? 0 * sign : -1.5;
            case Kind::Infinite: return below(4) == 0 ? sign : sign * kInfinity;
            // Huge and tiny ones, and now and then a NaN.
            case Kind::AnyBits: return std::bit_cast<double>(engine_());
            default: return std::uniform_real_distribution<double>(-1e6, 1e6)(engine_);
        }
    }

    std::mt19937_64 engine_;
    std::array<Kind, 3> kinds_{};
};

// ---- One run -----------------------------------------------------------------------------------

TEST(RangeAtEachWidth, IsTheSameForRunsOfEveryLength) {
    std::vector<std::size_t> counts = {100, 127, 128, 129, 255, 256, 257, 511, 700};
    for (std::size_t count = 0; count <= 70; ++count) counts.push_back(count);
    for (const std::size_t count : counts) {
        for (const Kind kind : kKinds) {
            for (std::uint64_t seed = 1; seed <= 4; ++seed) {
                SCOPED_TRACE(testing::Message() << count << " vertices of kind "
                                                << static_cast<int>(kind) << ", seed " << seed);
                RandomShapes shapes{seed * 1000 + count};
                shapes.chooseKind(kind);
                agreeOnRun(shapes.points(count));
                if (testing::Test::HasFailure()) return;
            }
        }
    }
}

TEST(RangeAtEachWidth, TakesTheExtremeFromAnyPlace) {
    for (const std::size_t count : {12U, 13U, 16U, 23U, 31U, 40U}) {
        for (std::size_t place = 0; place < count; ++place) {
            for (const auto coordinate : kCoordinates) {
                for (const double extreme : {-1e300, 1e300, -kInfinity, kInfinity}) {
                    SCOPED_TRACE(testing::Message() << place << " of " << count);
                    Points points = trail(static_cast<std::uint32_t>(count));
                    points[place].*coordinate = extreme;
                    agreeOnRun(points);
                }
            }
        }
        if (testing::Test::HasFailure()) return;
    }
}

TEST(RangeAtEachWidth, IsTheSameWithANaNAtAnyPlace) {
    const auto signalling = std::bit_cast<double>(std::uint64_t{0x7FF0'0000'0000'0321});
    const auto quiet = std::bit_cast<double>(std::uint64_t{0xFFF8'0000'0000'0123});
    for (std::size_t count = 1; count <= 40; ++count) {
        for (std::size_t place = 0; place < count; ++place) {
            SCOPED_TRACE(testing::Message() << place << " of " << count);
            for (const auto coordinate : kCoordinates) {
                Points points = trail(static_cast<std::uint32_t>(count));
                points[place].*coordinate = quiet;
                agreeOnRun(points);
                points[count - 1 - place].*coordinate = signalling;
                agreeOnRun(points);
            }
            if (testing::Test::HasFailure()) return;
        }
    }
}

// ---- Zeros -------------------------------------------------------------------------------------

/// Vertices whose coordinate is a number but for two zeros of unlike sign.
Points withZeros(std::size_t count, double Point3d::*coordinate, double others, std::size_t first,
                 std::size_t second, double sign) {
    Points points = trail(static_cast<std::uint32_t>(count));
    for (Point3d& point : points) point.*coordinate = others;
    points[first].*coordinate = 0.0 * sign;
    points[second].*coordinate = -0.0 * sign;
    return points;
}

TEST(RangeAtEachWidth, KeepsTheFirstZeroThatItMeets) {
    for (const std::size_t count : {12U, 15U, 16U, 19U, 24U, 33U}) {
        for (std::size_t second = 1; second < count; ++second) {
            for (std::size_t first = 0; first < second; ++first) {
                const double sign = (first + second) % 2 == 0 ? 1 : -1;
                for (const auto coordinate : kCoordinates) {
                    for (const double others : {5.0, -5.0, 0.0 * sign}) {
                        SCOPED_TRACE(testing::Message() << first << " and " << second << " of "
                                                        << count << " among " << others);
                        const Points points =
                            withZeros(count, coordinate, others, first, second, sign);
                        const Bytes buffer = multipointOf(points);
                        const double expected = 0.0 * sign;
                        atEachWidth([&] {
                            Range3d range{};
                            vexaWKB_getRange(buffer.geometry(), &range.low, &range.high);
                            const double zero =
                                others < 0 ? range.high.*coordinate : range.low.*coordinate;
                            ASSERT_EQ(std::bit_cast<std::uint64_t>(zero),
                                      std::bit_cast<std::uint64_t>(expected));
                        });
                    }
                }
                if (testing::Test::HasFailure()) return;
            }
        }
    }
}

TEST(RangeAtEachWidth, KeepsTheFirstZeroOfAllParts) {
    const auto whose = [](double value) { return Points(7, {value, -value, value - 3}); };
    for (const double sign : {1.0, -1.0}) {
        for (std::size_t place = 0; place < 6; ++place) {
            SCOPED_TRACE(place);
            Paths rings(6, Runs{{}, whose(4)});
            rings[place] = {whose(4), whose(0.0 * sign), {}, whose(-0.0 * sign)};
            rings.push_back({whose(-0.0 * sign)});
            agreeOn(polygonOf(rings));
            agreeOn(multilineOf(rings));
            agreeOn(multipolygonOf({{}, rings, rings}));

            Range3d range{};
            vexaWKB_getRange(polygonOf(rings).geometry(), &range.low, &range.high);
            EXPECT_EQ(std::bit_cast<std::uint64_t>(range.low.x),
                      std::bit_cast<std::uint64_t>(0.0 * sign));
            EXPECT_EQ(std::bit_cast<std::uint64_t>(range.high.y),
                      std::bit_cast<std::uint64_t>(-0.0 * sign));
        }
    }
}

// ---- Parts -------------------------------------------------------------------------------------

TEST(RangeAtEachWidth, IsTheSameForAnyParts) {
    for (std::uint64_t seed = 1; seed <= 4000; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        RandomShapes shapes{seed};
        shapes.chooseKinds();
        agreeOn(lineOf(shapes.runs()));
        agreeOn(polygonOf(shapes.paths()));
        agreeOn(multilineOf(shapes.paths()));
        agreeOn(multipolygonOf(shapes.polygons()));
        if (testing::Test::HasFailure()) return;
    }
}

TEST(RangeAtEachWidth, IsTheSameWithANaNInAnyPart) {
    const auto nan = std::bit_cast<double>(std::uint64_t{0x7FF8'0000'0000'0007});
    for (const std::size_t length : {1U, 3U, 5U, 9U, 17U}) {
        for (std::size_t ring = 0; ring < 4; ++ring) {
            for (std::size_t place = 0; place < length; ++place) {
                SCOPED_TRACE(testing::Message() << "ring " << ring << ", vertex " << place);
                Paths rings(4, Runs{trail(static_cast<std::uint32_t>(length)), {}});
                rings[ring][0][place].*kCoordinates[(ring + place) % 3] = nan;
                agreeOn(polygonOf(rings));
                agreeOn(multipolygonOf({rings, {}, rings}));
            }
        }
    }
}

TEST(RangeAtEachWidth, IsEmptyForEmptyParts) {
    const Polygons kEmpty[] = {{}, {{}}, {{}, {}}, {{{}}}, {{{}, {}}, {{{}}}}, {{{{}, {}, {}}}}};
    const Corners expected =
        cornersOf(Range3d{{kInfinity, kInfinity, kInfinity}, {-kInfinity, -kInfinity, -kInfinity}});
    for (const Polygons& polygons : kEmpty) {
        const Bytes bytes = multipolygonOf(polygons);
        const Block block = blockOf(wordsAt(bytes.data(), bytes.size()));
        atEachWidth([&] { EXPECT_EQ(cornersOf(block.get()), expected); });
    }
}

// ---- The vectors themselves --------------------------------------------------------------------

TEST(RangeByVectors, TakesRunsOfEveryLength) {
    for (std::size_t count = 0; count <= 70; ++count) {
        RandomShapes shapes{count};
        for (const Kind kind : {Kind::Ordinary, Kind::SmallIntegers, Kind::Infinite}) {
            SCOPED_TRACE(testing::Message() << count << " vertices");
            shapes.chooseKind(kind);
            const Points points = shapes.points(count);
            // A block that ends with the last vertex.
            const std::unique_ptr<Point3d[]> block{new Point3d[count]};
            std::copy(points.begin(), points.end(), block.get());
            const std::span<const Point3d> run{block.get(), count};
            const Bytes line = lineOf({points});
            const Corners expected = plainly([&] { return cornersOf(line.geometry()); });
            atEachWidth([&] {
                const std::optional<Range3d> range = rangeByVectors(RunWalk{run});
                ASSERT_EQ(range.has_value(), platform::vectorWidth() != VectorWidth::Plain);
                if (!range) return;
                ASSERT_EQ(cornersOf(*range), expected);
            });
        }
    }
}

TEST(RangeByVectors, LeavesEveryNaNToTheFold) {
    for (std::size_t count = 1; count <= 40; ++count) {
        for (std::size_t place = 0; place < count; ++place) {
            for (const auto coordinate : kCoordinates) {
                Points points = trail(static_cast<std::uint32_t>(count));
                points[place].*coordinate = std::numeric_limits<double>::quiet_NaN();
                atEachWidth([&] {
                    ASSERT_FALSE(rangeByVectors(RunWalk{points})) << place << " of " << count;
                });
            }
        }
    }
}

TEST(RangeByVectors, ReadsNothingAroundTheVertices) {
    for (std::size_t count = 0; count <= 40; ++count) {
        const Points points = trail(static_cast<std::uint32_t>(count));
        const std::size_t bytes = count * sizeof(Point3d);
        for (const Fence fence : {Fence::Before, Fence::Behind}) {
            const FencedBlock block{points.data(), bytes, fence};
            const std::span<const Point3d> run{block.as<Point3d>(), count};
            const Corners expected = plainly([&] { return cornersOf(rangeOf(run)); });
            atEachWidth([&] {
                EXPECT_EQ(cornersOf(rangeOf(run)), expected);
                EXPECT_EQ(cornersOf(rangeByVectors(RunWalk{run}).value_or(rangeOf(run))), expected);
            });
        }
    }
}

}  // namespace

}  // namespace vexa::test
