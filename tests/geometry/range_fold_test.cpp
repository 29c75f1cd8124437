#include "geometry/range.h"
#include "tests/support/geometry_bytes.h"
#include "tests/support/geometry_samples.h"
#include "vexakit/geometry.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <ios>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

double nanOf(std::uint64_t payload) {
    return std::bit_cast<double>(0x7FF8'0000'0000'0000U | payload);
}

std::uint64_t bitsOf(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

/// The range of hand-made bytes, in a block that ends where they end.
Range3d told(const Bytes& bytes) {
    const Block block = blockOf(wordsAt(bytes.data(), bytes.size()));
    Range3d range = {{-1, -2, -3}, {-4, -5, -6}};
    EXPECT_EQ(vexaWKB_getRange(block.get(), &range.low, &range.high), kSuccess);
    return range;
}

constexpr double Point3d::*kCoordinates[] = {&Point3d::x, &Point3d::y, &Point3d::z};

// ---- One level ----------------------------------------------------------------------------------

using Values = std::vector<double>;

struct FoldCase {
    const char* name;
    std::vector<Values> parts;
    double low;
    double high;
};

/// How the parts become parts of a buffer; a part is a run of vertices.
struct Level {
    const char* name;
    std::function<Bytes(const Runs&)> build;
};

Paths pathsOfOneRun(const Runs& parts) {
    Paths paths;
    for (const Points& part : parts) paths.push_back({part});
    return paths;
}

const Level kLevels[] = {
    {"RunsOfALine", [](const Runs& parts) { return lineOf(parts); }},
    {"RunsOfARing", [](const Runs& parts) { return polygonOf({parts}); }},
    {"RingsOfAPolygon", [](const Runs& parts) { return polygonOf(pathsOfOneRun(parts)); }},
    {"RunsOfALineOfMany", [](const Runs& parts) { return multilineOf({parts}); }},
    {"LinesOfMany", [](const Runs& parts) { return multilineOf(pathsOfOneRun(parts)); }},
    {"RunsOfAPolygonOfMany", [](const Runs& parts) { return multipolygonOf({{parts}}); }},
    {"RingsOfAPolygonOfMany",
     [](const Runs& parts) { return multipolygonOf({pathsOfOneRun(parts)}); }},
    {"PolygonsOfMany",
     [](const Runs& parts) {
         Polygons polygons;
         for (const Points& part : parts) polygons.push_back({{part}});
         return multipolygonOf(polygons);
     }},
};

const FoldCase kOnePart[] = {
    {"ANumberAfterNaNDisplacesItInLow", {{1, kNaN, 5}}, 5, 5},
    {"NaNLastStaysInLow", {{1, 5, kNaN}}, kNaN, 5},
    {"NaNAfterTheFirst", {{1, kNaN}}, kNaN, 1},
    {"NaNFirstLeavesLowAndStaysInHigh", {{kNaN, 3, 1, 7}}, 1, kNaN},
    {"NaNFirstAndLast", {{kNaN, 3, kNaN}}, kNaN, kNaN},
    {"NaNAlone", {{kNaN}}, kNaN, kNaN},
    {"TheMinimumBeforeNaNIsForgotten", {{-9, 2, kNaN, 4, 3}}, 3, 4},
    {"TheSecondNaNReplacesTheFirst", {{1, nanOf(7), nanOf(9)}}, nanOf(9), 1},
    {"NaNKeepsItsPayload", {{nanOf(0x1234)}}, nanOf(0x1234), nanOf(0x1234)},
    {"NaNKeepsItsSign", {{-nanOf(5)}}, -nanOf(5), -nanOf(5)},
    {"OfTwoZerosTheFirstStays", {{0.0, -0.0}}, 0.0, 0.0},
    {"OfTwoZerosTheNegativeFirstStays", {{-0.0, 0.0}}, -0.0, -0.0},
    {"AZeroReachedLater", {{1, 0.0, -0.0, -1, -0.0}}, -1, 1},
    {"TheFirstLowZero", {{1, -0.0, 0.0}}, -0.0, 1},
    {"TheFirstHighZero", {{-1, -0.0, 0.0}}, -1, -0.0},
    {"ANumberAfterNaNGivesUpNoZero", {{0.0, kNaN, -0.0}}, -0.0, 0.0},
    {"Infinities", {{3, kInfinity, -kInfinity, 4}}, -kInfinity, kInfinity},
    {"InfinityAlone", {{kInfinity}}, kInfinity, kInfinity},
    {"TheLeastNumbers", {{5e-324, -5e-324, 0.0}}, -5e-324, 5e-324},
};

const FoldCase kManyParts[] = {
    {"APartThatStartsWithNaNLosesItsOthersToHigh", {{1, 2}, {kNaN, 7}}, 1, 2},
    {"AFirstPartThatStartsWithNaNKeepsHighForEver", {{kNaN, 7}, {9}}, 7, kNaN},
    {"APartThatEndsWithNaNGivesItToLow", {{1}, {5, kNaN}}, kNaN, 5},
    {"APartWithNaNInsideIsFoldedAsOneBox", {{1}, {5, kNaN, 7}}, 1, 7},
    {"TheNextPartDisplacesNaN", {{1, kNaN}, {5}}, 5, 5},
    {"APartOfNaNAlone", {{1, 2}, {kNaN}, {3}}, 3, 3},
    {"APartOfNaNAtTheEnd", {{1, 2}, {3}, {nanOf(3)}}, nanOf(3), 3},
    {"TheFirstOfTwoZerosStaysAcrossParts", {{0.0}, {-0.0}}, 0.0, 0.0},
    {"TheNegativeZeroStaysAcrossParts", {{-0.0}, {0.0}}, -0.0, -0.0},
    {"AnEmptyPartBetween", {{1, 5}, {}, {3}}, 1, 5},
    {"AnEmptyPartFirst", {{}, {3, 4}}, 3, 4},
    {"AnEmptyPartFirstTakesNoNaNToHigh", {{}, {kNaN, 4}}, 4, -kInfinity},
    {"AnEmptyPartDisplacesNaN", {{1, kNaN}, {}}, kInfinity, 1},
    {"AnEmptyPartBehindNaNFirst", {{kNaN}, {}}, kInfinity, kNaN},
    {"EmptyPartsAlone", {{}, {}}, kInfinity, -kInfinity},
    {"ManyParts", {{4}, {2, 9}, {-3}, {8, 1}}, -3, 9},
};

void PrintTo(const FoldCase& row, std::ostream* out) {
    *out << row.name;
}
void PrintTo(const Level& level, std::ostream* out) {
    *out << level.name;
}

/// The values stand in one coordinate; the others hold numbers that no slip could mistake for them.
Runs partsIn(double Point3d::*coordinate, const std::vector<Values>& values) {
    Runs parts;
    for (const Values& part : values) {
        Points& points = parts.emplace_back();
        for (const double value : part) {
            points.push_back({100, 200, 300});
            points.back().*coordinate = value;
        }
    }
    return parts;
}

class RangeFold : public testing::TestWithParam<std::tuple<Level, FoldCase>> {};

TEST_P(RangeFold, IsLiteral) {
    const auto& [level, row] = GetParam();
    for (const auto coordinate : kCoordinates) {
        const Range3d range = told(level.build(partsIn(coordinate, row.parts)));
        EXPECT_EQ(bitsOf(range.low.*coordinate), bitsOf(row.low)) << range.low.*coordinate;
        EXPECT_EQ(bitsOf(range.high.*coordinate), bitsOf(row.high)) << range.high.*coordinate;
    }
}

std::string nameOf(const testing::TestParamInfo<std::tuple<Level, FoldCase>>& info) {
    return std::string{std::get<0>(info.param).name} + std::get<1>(info.param).name;
}

INSTANTIATE_TEST_SUITE_P(OnePart, RangeFold,
                         testing::Combine(testing::ValuesIn(kLevels), testing::ValuesIn(kOnePart)),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(ManyParts, RangeFold,
                         testing::Combine(testing::ValuesIn(kLevels),
                                          testing::ValuesIn(kManyParts)),
                         nameOf);

class MultiPointFold : public testing::TestWithParam<FoldCase> {};

TEST_P(MultiPointFold, IsLiteral) {
    for (const auto coordinate : kCoordinates) {
        const Range3d range = told(multipointOf(partsIn(coordinate, GetParam().parts).front()));
        EXPECT_EQ(bitsOf(range.low.*coordinate), bitsOf(GetParam().low));
        EXPECT_EQ(bitsOf(range.high.*coordinate), bitsOf(GetParam().high));
    }
}

INSTANTIATE_TEST_SUITE_P(Table, MultiPointFold, testing::ValuesIn(kOnePart),
                         [](const auto& row) { return std::string{row.param.name}; });

TEST(PointRange, IsTheCopyOfThePoint) {
    const double signalling = std::bit_cast<double>(std::uint64_t{0x7FF0'0000'0000'0001});
    const Range3d range = told(test::pointOf(Point3d{-0.0, nanOf(77), signalling}));
    for (const Point3d& corner : {range.low, range.high}) {
        EXPECT_EQ(bitsOf(corner.x), bitsOf(-0.0));
        EXPECT_EQ(bitsOf(corner.y), bitsOf(nanOf(77)));
        EXPECT_EQ(bitsOf(corner.z), 0x7FF0'0000'0000'0001U);
    }
}

// ---- All levels, compared with the plainest fold ------------------------------------------------

/// The bits of the six numbers: low x, y, z, high x, y, z.
using BoxBits = std::array<std::uint64_t, 6>;

struct BoxModel {
    std::array<double, 3> low = {kInfinity, kInfinity, kInfinity};
    std::array<double, 3> high = {-kInfinity, -kInfinity, -kInfinity};

    BoxBits bits() const {
        return {bitsOf(low[0]),  bitsOf(low[1]),  bitsOf(low[2]),
                bitsOf(high[0]), bitsOf(high[1]), bitsOf(high[2])};
    }
};

BoxModel boxOf(const Point3d& point) {
    return {{point.x, point.y, point.z}, {point.x, point.y, point.z}};
}

template <class Element>
BoxModel boxOf(const std::vector<Element>& elements) {
    BoxModel box;
    for (std::size_t i = 0; i != elements.size(); ++i) {
        const BoxModel next = boxOf(elements[i]);
        if (i == 0) box = next;
        for (std::size_t k = 0; i != 0 && k != 3; ++k) {
            if (next.low[k] < box.low[k] || std::isunordered(next.low[k], box.low[k])) {
                box.low[k] = next.low[k];
            }
            if (next.high[k] > box.high[k]) box.high[k] = next.high[k];
        }
    }
    return box;
}

BoxBits bitsOf(const Range3d& range) {
    return {bitsOf(range.low.x),  bitsOf(range.low.y),  bitsOf(range.low.z),
            bitsOf(range.high.x), bitsOf(range.high.y), bitsOf(range.high.z)};
}

/// Nested lists of random lengths, salted with whatever a comparison can stumble over.
class SaltedShapes {
public:
    explicit SaltedShapes(std::uint32_t seed) : engine_(seed) {}

    std::uint32_t below(std::uint32_t bound) {
        return static_cast<std::uint32_t>(engine_() % bound);
    }

    Points points(std::uint32_t most = 6) {
        Points points(below(most + 1));
        for (Point3d& point : points) {
            for (const auto coordinate : kCoordinates) point.*coordinate = value();
        }
        return points;
    }
    Runs runs() {
        return listOf<Points>([this] { return points(); });
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

    double value() {
        switch (below(12)) {
            case 0: return nanOf(1 + below(1000));
            case 1: return -nanOf(1 + below(1000));
            case 2: return kInfinity;
            case 3: return -kInfinity;
            case 4: return 0.0;
            case 5: return -0.0;
            case 6: return 5e-324;
            case 7: return std::numeric_limits<double>::max();
            default: return static_cast<double>(below(2001)) / 8 - 125;
        }
    }

    std::mt19937_64 engine_;
};

class RangeSeeds : public testing::Test {
protected:
    template <class Check>
    static void forSeeds(Check check) {
        for (std::uint32_t seed = 1; seed <= 4000; ++seed) {
            SCOPED_TRACE("seed " + std::to_string(seed));
            SaltedShapes shapes(seed);
            check(shapes);
            if (HasFailure()) return;
        }
    }
};

using RangeFoldOfAnything = RangeSeeds;

TEST_F(RangeFoldOfAnything, IsThatOfALine) {
    forSeeds([](SaltedShapes& shapes) {
        const Runs runs = shapes.runs();
        EXPECT_EQ(bitsOf(told(lineOf(runs))), boxOf(runs).bits());
    });
}

TEST_F(RangeFoldOfAnything, IsThatOfAPolygonAndAMultiLine) {
    forSeeds([](SaltedShapes& shapes) {
        const Paths paths = shapes.paths();
        EXPECT_EQ(bitsOf(told(polygonOf(paths))), boxOf(paths).bits());
        EXPECT_EQ(bitsOf(told(multilineOf(paths))), boxOf(paths).bits());
    });
}

TEST_F(RangeFoldOfAnything, IsThatOfAMultiPoint) {
    forSeeds([](SaltedShapes& shapes) {
        const Points points = shapes.points(40);
        EXPECT_EQ(bitsOf(told(multipointOf(points))), boxOf(points).bits());
    });
}

TEST_F(RangeFoldOfAnything, IsThatOfAMultiPolygon) {
    forSeeds([](SaltedShapes& shapes) {
        const Polygons polygons = shapes.polygons();
        EXPECT_EQ(bitsOf(told(multipolygonOf(polygons))), boxOf(polygons).bits());
    });
}

TEST_F(RangeFoldOfAnything, IsThatOfTheElementsAlone) {
    forSeeds([](SaltedShapes& shapes) {
        const Points points = shapes.points();
        const Runs runs = shapes.runs();
        const Paths paths = shapes.paths();
        const Bytes run = Bytes().word(kGarbage).count(points.size()).points(points);
        EXPECT_EQ(bitsOf(rangeOf(points)), boxOf(points).bits());
        EXPECT_EQ(bitsOf(runRange(*run.at<PointRun>(0))), boxOf(points).bits());
        EXPECT_EQ(bitsOf(pathRange(*Bytes().path(runs).at<Path>(0))), boxOf(runs).bits());
        EXPECT_EQ(bitsOf(pathListRange(*Bytes().pathList(paths).at<PathList>(0))),
                  boxOf(paths).bits());
    });
}

}  // namespace
