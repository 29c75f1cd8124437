#include "tests/support/allocations.h"
#include "tests/support/geometry_bytes.h"
#include "tests/support/transform_model.h"
#include "vexakit/transform.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

using TransformBuffer = std::uint32_t (*)(const Transform*, GeometryBuffer*);

constexpr Transform kSome = {{1, 2, 3, 4, -5, 6, 7, 8, 9, -10, 11, 12}};

Words imageOf(const Bytes& bytes) {
    return wordsAt(bytes.data(), bytes.size());
}

Runs transformed(Runs runs, const Transform& transform) {
    for (Points& run : runs) run = modelApplied(transform, run);
    return runs;
}

Paths transformed(Paths paths, const Transform& transform) {
    for (Runs& path : paths) path = transformed(path, transform);
    return paths;
}

/// A buffer of one type from its parts, and what the same parts make when each vertex is
/// transformed. Every word that nobody may read or write holds garbage.
struct Kind {
    const char* name;
    std::uint32_t type;
    TransformBuffer call;
    std::function<Bytes(const Paths&, const Transform*)> build;
};

void PrintTo(const Kind& kind, std::ostream* out) {
    *out << kind.name;
}

Paths moved(const Paths& paths, const Transform* transform) {
    return transform ? transformed(paths, *transform) : paths;
}

Points flat(const Paths& paths) {
    Points all;
    for (const Runs& runs : paths) {
        for (const Points& run : runs) all = all + run;
    }
    return all;
}

const Kind kKinds[] = {
    {"Point", VEXA_POINT, vexaWKB_transformPoint,
     [](const Paths& parts, const Transform* by) { return pointOf(flat(moved(parts, by)).at(0)); }},
    {"Line", VEXA_LINESTRING, vexaWKB_transformLine,
     [](const Paths& parts, const Transform* by) { return lineOf(moved(parts, by).at(0)); }},
    {"Polygon", VEXA_POLYGON, vexaWKB_transformPolygon,
     [](const Paths& parts, const Transform* by) { return polygonOf(moved(parts, by)); }},
    {"MultiPoint", VEXA_MULTIPOINT, vexaWKB_transformMultiPoint,
     [](const Paths& parts, const Transform* by) { return multipointOf(flat(moved(parts, by))); }},
    {"MultiLine", VEXA_MULTILINESTRING, vexaWKB_transformMultiLine,
     [](const Paths& parts, const Transform* by) { return multilineOf(moved(parts, by)); }},
    {"MultiPolygon", VEXA_MULTIPOLYGON, vexaWKB_transformMultiPolygon,
     [](const Paths& parts, const Transform* by) {
         Polygons polygons;
         for (const Runs& ring : moved(parts, by)) polygons.push_back({ring});
         return multipolygonOf(polygons);
     }},
};

/// Several paths, each of several runs, one of them empty; the first has vertices.
const Paths kParts = {
    {trail(3), trail(1, 20)},
    {trail(5, 30), {}, trail(4, 50)},
    {trail(2, 70)},
};

class GeometryTransform : public testing::TestWithParam<Kind> {};

TEST_P(GeometryTransform, MovesEveryVertexAndNothingElse) {
    const Block block = blockOf(imageOf(GetParam().build(kParts, nullptr)));
    const Bytes expected = GetParam().build(kParts, &kSome);

    EXPECT_EQ(GetParam().call(&kSome, block.get()), kSuccess);
    EXPECT_EQ(wordsOf(block, expected.size()), imageOf(expected));
}

TEST_P(GeometryTransform, IsWhatTheDispatchCallsForItsType) {
    const Block block = blockOf(imageOf(GetParam().build(kParts, nullptr)));
    const Bytes expected = GetParam().build(kParts, &kSome);

    EXPECT_EQ(vexaWKB_transformGeometry(&kSome, block.get()), kSuccess);
    EXPECT_EQ(wordsOf(block, expected.size()), imageOf(expected));
}

TEST_P(GeometryTransform, LooksAtNoHeaderWord) {
    for (const std::uint32_t word : {0U, 1U, 6U, 7U, 24U, 0xFFFF'FFFFU}) {
        Bytes before = GetParam().build(kParts, nullptr);
        Bytes expected = GetParam().build(kParts, &kSome);
        for (Bytes* bytes : {&before, &expected}) {
            for (const std::size_t offset : {0U, 4U, 8U, 12U}) bytes->setWord(offset, word);
        }
        const Block block = blockOf(imageOf(before));

        EXPECT_EQ(GetParam().call(&kSome, block.get()), kSuccess);
        EXPECT_EQ(wordsOf(block, expected.size()), imageOf(expected)) << "words of " << word;
    }
}

TEST_P(GeometryTransform, FollowsTheFormulaBitForBit) {
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        RandomNumbers random(seed);
        const Transform transform = random.transform();
        Paths parts = {{random.points(1 + random.below(9))}};
        for (std::uint32_t paths = random.below(4); paths != 0; --paths) {
            Runs& path = parts.emplace_back(Runs{random.points(1)});
            for (std::uint32_t runs = random.below(3); runs != 0; --runs) {
                path.push_back(random.points(random.below(6)));
            }
        }
        const Block block = blockOf(imageOf(GetParam().build(parts, nullptr)));
        const Bytes expected = GetParam().build(parts, &transform);

        EXPECT_EQ(GetParam().call(&transform, block.get()), kSuccess);
        EXPECT_EQ(wordsOf(block, expected.size()), imageOf(expected)) << seedText(seed);
    }
}

TEST_P(GeometryTransform, RefusesNullPointers) {
    const Bytes before = GetParam().build(kParts, nullptr);
    const Block block = blockOf(imageOf(before));
    for (const TransformBuffer call : {GetParam().call, &vexaWKB_transformGeometry}) {
        EXPECT_EQ(call(nullptr, block.get()), kFailure);
        EXPECT_EQ(call(&kSome, nullptr), kFailure);
        EXPECT_EQ(call(nullptr, nullptr), kFailure);
    }
    EXPECT_EQ(wordsOf(block, before.size()), imageOf(before));
}

TEST_P(GeometryTransform, LeavesNothingOnTheHeap) {
    const Block block = blockOf(imageOf(GetParam().build(kParts, nullptr)));
    const AllocationWatch watch;
    EXPECT_EQ(GetParam().call(&kSome, block.get()), kSuccess);
    EXPECT_EQ(watch.blocksInUse(), 0);
    if (GetParam().type != VEXA_MULTIPOLYGON) {
        EXPECT_EQ(watch.requests(), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, GeometryTransform, testing::ValuesIn(kKinds),
                         [](const auto& row) { return std::string{row.param.name}; });

// ---- A transform that lies in the buffer ----------------------------------------------------

class TransformAmongVertices : public testing::TestWithParam<Kind> {};

TEST_P(TransformAmongVertices, IsReadOnce) {
    // Four points of a run hold the transform; others come before and after them, and other runs.
    const Points numbers = {{1, 2, 3}, {4, -5, 6}, {7, 8, 9}, {-10, 11, 12}};
    const Paths parts = {{trail(2) + numbers + trail(2), trail(5, 40)}, {trail(3)}};
    const Words before = imageOf(GetParam().build(parts, nullptr));
    const Block block = blockOf(before);

    const Words pattern = wordsOf(numbers);
    const auto place = std::search(before.begin(), before.end(), pattern.begin(), pattern.end());
    ASSERT_NE(place, before.end());
    const auto* const inside = reinterpret_cast<const Transform*>(
        reinterpret_cast<const std::uint32_t*>(block.get()) + (place - before.begin()));

    EXPECT_EQ(GetParam().call(inside, block.get()), kSuccess);
    EXPECT_EQ(wordsOf(block, bytesOf(before)), imageOf(GetParam().build(parts, &kSome)));
}

INSTANTIATE_TEST_SUITE_P(Table, TransformAmongVertices,
                         testing::ValuesIn(std::begin(kKinds) + 1, std::end(kKinds)),
                         [](const auto& row) { return std::string{row.param.name}; });

TEST(TransformPointBuffer, MayHoldTheStartOfItsTransform) {
    const Words words = joined({headerWords(VEXA_POINT, 40), wordsAt(&kSome, sizeof kSome)});
    const Block block = blockOf(words);
    const auto* const inside = reinterpret_cast<const Transform*>(block.get() + 1);

    EXPECT_EQ(vexaWKB_transformPoint(inside, block.get()), kSuccess);
    Transform expected = kSome;
    const Point3d moved = MatrixModel::of(kSome).applied({1, 2, 3});
    std::memcpy(&expected, &moved, sizeof moved);
    EXPECT_EQ(wordsOf(block, bytesOf(words)),
              joined({headerWords(VEXA_POINT, 40), wordsAt(&expected, sizeof expected)}));
}

// ---- Empty bodies, counts that are no counts, other types ---------------------------------------

struct StillCase {
    const char* name;
    TransformBuffer call;
    Words geometry;
};

void PrintTo(const StillCase& row, std::ostream* out) {
    *out << row.name;
}

/// A run that says so many vertices and has one. As a signed number its count is negative.
Words runTelling(std::uint32_t count) {
    return joined({{7, count}, wordsOf(trail(1))});
}

constexpr std::uint32_t kTwoTo31 = 0x8000'0000;
constexpr std::uint32_t kMost = 0xFFFF'FFFF;

const StillCase kStillCases[] = {
    {"LineOfNoRuns", vexaWKB_transformLine, joined({headerWords(2), listWords({}, 9)})},
    {"LineOfAnEmptyRun", vexaWKB_transformLine,
     joined({headerWords(2), listWords({runWords({})}, 9)})},
    {"LineOfTwoTo31Vertices", vexaWKB_transformLine,
     joined({headerWords(2), listWords({runTelling(kTwoTo31)}, 9)})},
    {"LineOfMostVertices", vexaWKB_transformLine,
     joined({headerWords(2), listWords({runTelling(kMost)}, 9)})},
    {"PolygonOfNoRings", vexaWKB_transformPolygon, joined({headerWords(3), listWords({}, 9)})},
    {"PolygonOfAnEmptyRing", vexaWKB_transformPolygon,
     joined({headerWords(3), listWords({listWords({}, 9)}, 9)})},
    {"PolygonOfTwoTo31Vertices", vexaWKB_transformPolygon,
     joined({headerWords(3), listWords({listWords({runTelling(kTwoTo31)})}, 9)})},
    {"MultiPointOfNone", vexaWKB_transformMultiPoint, joined({headerWords(4), {0, 9}})},
    {"MultiPointOfTwoTo31", vexaWKB_transformMultiPoint,
     joined({headerWords(4), {kTwoTo31, 9}, wordsOf(trail(1))})},
    {"MultiPointOfMost", vexaWKB_transformMultiPoint,
     joined({headerWords(4), {kMost, 9}, wordsOf(trail(1))})},
    {"MultiLineOfNoLines", vexaWKB_transformMultiLine, joined({headerWords(5), listWords({}, 9)})},
    {"MultiPolygonOfNone", vexaWKB_transformMultiPolygon,
     joined({headerWords(6), listWords({}, 9)})},
    {"MultiPolygonOfTwoTo31Vertices", vexaWKB_transformMultiPolygon,
     joined({headerWords(6), listWords({listWords({listWords({runTelling(kTwoTo31)})})}, 9)})},
};

class NothingToTransform : public testing::TestWithParam<StillCase> {};

TEST_P(NothingToTransform, SucceedsAndChangesNothing) {
    const Block block = blockOf(GetParam().geometry);
    EXPECT_EQ(GetParam().call(&kSome, block.get()), kSuccess);
    EXPECT_EQ(vexaWKB_transformGeometry(&kSome, block.get()), kSuccess);
    EXPECT_EQ(wordsOf(block, bytesOf(GetParam().geometry)), GetParam().geometry);
}

INSTANTIATE_TEST_SUITE_P(Table, NothingToTransform, testing::ValuesIn(kStillCases),
                         [](const auto& row) { return std::string{row.param.name}; });

TEST(TransformGeometry, RefusesACollectionAndEveryUnknownType) {
    const Bytes member = multipointOf({{1, 2, 3}});
    for (const std::uint32_t type : {7U, 0U, 8U, 9U, 0x8000'0001U, 0x1'0001U, kMost}) {
        Bytes before = collectionOf({member});
        before.setWord(8, type);
        const Block block = blockOf(imageOf(before));
        EXPECT_EQ(vexaWKB_transformGeometry(&kSome, block.get()), kFailure) << "type " << type;
        EXPECT_EQ(wordsOf(block, before.size()), imageOf(before)) << "type " << type;
    }
}

TEST(TransformPolygon, MovesOuterRingAndHole) {
    const Transform step = {{1, 0, 0, 10, 0, 1, 0, 20, 0, 0, 1, 30}};
    const Points ring = {{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {0, 0, 0}};
    const Points hole = {{2, 1, 0}, {4, 1, 0}, {4, 2, 0}, {2, 1, 0}};
    const Block block = blockOf(imageOf(polygonOf({{ring}, {hole}})));

    EXPECT_EQ(vexaWKB_transformPolygon(&step, block.get()), kSuccess);
    const Bytes expected = polygonOf({{{{10, 20, 30}, {19, 20, 30}, {19, 29, 30}, {10, 20, 30}}},
                                      {{{12, 21, 30}, {14, 21, 30}, {14, 22, 30}, {12, 21, 30}}}});
    EXPECT_EQ(wordsOf(block, expected.size()), imageOf(expected));
}

}  // namespace
