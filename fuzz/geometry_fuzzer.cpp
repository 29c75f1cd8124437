// Buffers of any shape through sizes, accessors, ranges, copies and transforms. A buffer lies in a heap
// block of just its size.
#include "fuzz/shapes.h"
#include "tests/support/transform_model.h"
#include "vexakit/geometry.h"
#include "vexakit/transform.h"

#include <bit>
#include <cstring>

namespace vexa::fuzz {

namespace {

using test::isSame;

bool isSame(const Point3d& one, const Point3d& other) {
    return isSame(one.x, other.x) && isSame(one.y, other.y) && isSame(one.z, other.z);
}

Paths transformed(Paths paths, const Transform& transform) {
    for (Runs& runs : paths) {
        for (Points& run : runs) run = test::modelApplied(transform, run);
    }
    return paths;
}

test::Words wordsOf(const test::Bytes& bytes) {
    return test::wordsAt(bytes.data(), bytes.size());
}

// The words of the shape's buffer after the transform. Multipolygons have rules of their own.
test::Words transformedWords(const Shape& shape, const Transform& transform) {
    const test::Words before = wordsOf(bufferOf(shape));
    if (shape.type == VEXA_MULTIPOLYGON) {
        return test::MultiPolygonModel(before, transform).words();
    }
    Shape moved = shape;
    moved.points = test::modelApplied(transform, moved.points);
    for (Paths& paths : moved.parts) paths = transformed(paths, transform);
    return wordsOf(bufferOf(moved));
}

// As bits; where these are not the same, they have to be two NaNs. Doubles start at even words.
bool areSame(const test::Words& one, const test::Words& other) {
    if (one.size() != other.size()) return false;
    for (std::size_t i = 0; i + 1 < one.size(); i += 2) {
        double a = 0;
        double b = 0;
        std::memcpy(&a, &one[i], sizeof a);
        std::memcpy(&b, &other[i], sizeof b);
        if (!isSame(a, b)) return false;
    }
    return true;
}

GeometryBuffer* cloneOf(const test::Bytes& bytes, std::size_t size) {
    auto* const block = static_cast<GeometryBuffer*>(std::malloc(size));
    std::memcpy(static_cast<void*>(block), bytes.geometry(), size);
    return block;
}

void checkRange(const GeometryBuffer* geometry, const Shape& shape) {
    const Range3d expected = test::model::boxOfShape(shape);
    Point3d low{};
    Point3d high{};
    require(vexaWKB_getRange(geometry, &low, &high) == VEXA_SUCCESS, "every shape has a range");
    require(isSame(low, expected.low) && isSame(high, expected.high), "the range is the fold's");
}

void readAll(const GeometryBuffer* geometry, std::uint32_t capacity) {
    std::uint32_t number = 0;
    std::uint32_t index = 0;
    ExactRoom<char> room(capacity * sizeof(Point3d));
    auto* const points = reinterpret_cast<Point3d*>(room.data());
    vexaWKB_getType(geometry, &number);
    vexaWKB_pointGetPoint(geometry, points);
    vexaWKB_lineGetPointCount(geometry, &number);
    vexaWKB_lineGetPoints(geometry, capacity, points, &number);
    vexaWKB_polygonGetPointCount(geometry, &number);
    vexaWKB_polygonGetPoints(geometry, capacity, points, &number);
    vexaWKB_mpointGetPointCount(geometry, &number);
    vexaWKB_mpointGetPoints(geometry, capacity, points, &number);
    vexaWKB_mlineGetLineCount(geometry, &number);
    vexaWKB_mpolygonGetPolyCount(geometry, &number);
    for (index = 0; index < 5; ++index) {
        vexaWKB_mpointGetPoint(geometry, index, points);
        vexaWKB_mlineGetPointCount(geometry, index, &number);
        vexaWKB_mlineGetPoints(geometry, index, capacity, points, &number);
        vexaWKB_mpolygonGetPointCount(geometry, index, &number);
        vexaWKB_mpolygonGetPoints(geometry, index, capacity, points, &number);
    }
}

}  // namespace

}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    Input input(data, size);
    const Shape shape = takeShape(input);
    const vexa::test::Bytes bytes = bufferOf(shape);
    std::uint32_t bufferSize = 0;
    require(vexaWKB_calculateSize(bytes.geometry(), &bufferSize) == VEXA_SUCCESS, "a size");

    GeometryBuffer* geometry = cloneOf(bytes, bufferSize);
    checkRange(geometry, shape);
    readAll(geometry, input.ConsumeIntegralInRange<std::uint32_t>(1, 40));

    GeometryBuffer* copy = nullptr;
    require(vexaWKB_copy(geometry, &copy) == VEXA_SUCCESS, "a copy");
    require(std::memcmp(copy, geometry, bufferSize) == 0 || copy->size != geometry->size,
            "the copy is the same");
    Transform transform{};
    for (double& element : transform.m) element = takeCoordinate(input);
    vexaWKB_transformGeometry(&transform, geometry);
    require(
        areSame(vexa::test::wordsAt(geometry, bytes.size()), transformedWords(shape, transform)),
        "each vertex is transformed as the formula says");
    std::uint32_t sizeAfterwards = 0;
    vexaWKB_calculateSize(geometry, &sizeAfterwards);
    require(sizeAfterwards == bufferSize, "a transform leaves the structure alone");

    vexaWKB_destroyGeom(&copy);
    vexaWKB_destroyGeom(&geometry);
    return 0;
}
