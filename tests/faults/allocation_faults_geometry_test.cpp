#include "tests/faults/allocation_faults.h"
#include "tests/support/geometry_samples.h"
#include "vexakit/transform.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace vexa::test {

namespace {

constexpr std::uint32_t kNotCalled = 0xBAD;

/// Vertices for a call, to be seen unchanged.
class Given {
public:
    explicit Given(Points points) : points_(std::move(points)), before_(wordsOf(points_)) {}

    [[nodiscard]] const Point3d* data() const { return points_.data(); }
    [[nodiscard]] std::uint32_t count() const { return countOf(points_); }
    [[nodiscard]] bool isUnchanged() const { return wordsOf(points_) == before_; }

private:
    Points points_;
    Words before_;
};

// ---- A new buffer -------------------------------------------------------------------------------

/// A call that hands a new buffer out.
class Making : public FaultyCall {
public:
    explicit Making(Words expected) : expected_(std::move(expected)) {}

    bool isDone() override { return status_ == kSuccess; }
    void expectDone() override {
        EXPECT_EQ(wordsAt(result_, bytesOf(expected_)), expected_);
        EXPECT_TRUE(isInputUnchanged());
    }
    void expectTold() override {
        EXPECT_EQ(status_, kFailure);
        EXPECT_EQ(result_, &untouched_);
        EXPECT_TRUE(isInputUnchanged());
    }
    void giveBack() override {
        if (result_ != &untouched_) vexaWKB_destroyGeom(&result_);
        result_ = &untouched_;
    }

protected:
    [[nodiscard]] virtual bool isInputUnchanged() const = 0;

    std::uint32_t status_ = kNotCalled;
    GeometryBuffer untouched_{};
    GeometryBuffer* result_ = &untouched_;

private:
    Words expected_;
};

class Creation : public Making {
public:
    Creation(Build create, Points points, Words expected)
        : Making(std::move(expected)), create_(create), points_(std::move(points)) {}

    void make() override { status_ = create_(points_.data(), points_.count(), &result_); }

private:
    bool isInputUnchanged() const override { return points_.isUnchanged(); }

    Build create_;
    Given points_;
};

class Copy : public Making {
public:
    explicit Copy(const Words& source) : Making(source), words_(source), source_(blockOf(source)) {}

    void make() override { status_ = vexaWKB_copy(source_.get(), &result_); }

private:
    bool isInputUnchanged() const override { return wordsOf(source_, bytesOf(words_)) == words_; }

    Words words_;
    Block source_;
};

// ---- A buffer of the caller's -------------------------------------------------------------------

/// A call that changes a buffer.
class Change : public FaultyCall {
public:
    Change(Words before, Words after)
        : before_(std::move(before)), after_(std::move(after)), geometry_(blockOf(before_)) {}

    bool isDone() override { return status_ == kSuccess; }
    void expectDone() override { EXPECT_EQ(wordsOf(geometry_, bytesOf(after_)), after_); }
    void expectTold() override {
        EXPECT_EQ(status_, kFailure);
        EXPECT_FALSE(hasMoved_);
        EXPECT_EQ(wordsOf(geometry_, bytesOf(before_)), before_);
    }

protected:
    GeometryBuffer* geometry() { return geometry_.get(); }
    void moveTo(GeometryBuffer* handle) {
        hasMoved_ = handle != geometry_.get();
        static_cast<void>(geometry_.release());
        geometry_.reset(handle);
    }

    std::uint32_t status_ = kNotCalled;

private:
    Words before_;
    Words after_;
    Block geometry_;
    bool hasMoved_ = false;
};

class Append : public Change {
public:
    Append(Build append, Points points, Words before, Words after)
        : Change(std::move(before), std::move(after)),
          append_(append),
          points_(std::move(points)) {}

    void make() override {
        GeometryBuffer* handle = geometry();
        status_ = append_(points_.data(), points_.count(), &handle);
        moveTo(handle);
    }
    void expectDone() override {
        Change::expectDone();
        EXPECT_TRUE(points_.isUnchanged());
    }
    void expectTold() override {
        Change::expectTold();
        EXPECT_TRUE(points_.isUnchanged());
    }

private:
    Build append_;
    Given points_;
};

using TransformBuffer = std::uint32_t (*)(const Transform* transform, GeometryBuffer* geometry);

constexpr Transform kTwice = {{2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0}};

class Transforming : public Change {
public:
    Transforming(TransformBuffer transform, Words before, Words after)
        : Change(std::move(before), std::move(after)), transform_(transform) {}

    void make() override { status_ = transform_(&matrix_, geometry()); }
    void expectTold() override {
        Change::expectTold();
        EXPECT_THAT(matrix_.m, testing::ElementsAreArray(kTwice.m));
    }

private:
    TransformBuffer transform_;
    Transform matrix_ = kTwice;
};

// ---- The table ----------------------------------------------------------------------------------

Words pathWords(const Points& points) {
    return listWords({runWords(points)});
}

Words bodyOf(std::uint32_t type, const Points& points) {
    switch (type) {
        case VEXA_POINT: return wordsOf(points);
        case VEXA_LINESTRING: return pathWords(points);
        case VEXA_MULTIPOINT: return joined({{countOf(points), 0}, wordsOf(points)});
        case VEXA_MULTIPOLYGON: return listWords({listWords({pathWords(points)})});
        default: return listWords({pathWords(points)});
    }
}

/// A buffer as its constructor makes it.
Words bufferWords(std::uint32_t type, const Points& points) {
    const Words body = bodyOf(type, points);
    const std::uint32_t size = type == VEXA_MULTIPOLYGON ? 0 : 16 + bytesOf(body);
    return joined({headerWords(type, size), body});
}

std::uint32_t createPoint(const Point3d* points, std::uint32_t /*count*/, GeometryBuffer** result) {
    return vexaWKB_createPoint(points, result);
}

FaultCase creationCase(const char* name, Build create, std::uint32_t type, std::uint32_t count) {
    return {name, [=] {
                const Points points = trail(count);
                return std::make_unique<Creation>(create, points, bufferWords(type, points));
            }};
}

FaultCase copyCase(const char* name, const Words& source) {
    return {name, [=] { return std::make_unique<Copy>(source); }};
}

/// What an append leaves of the first header word on: the count, the size and the new part.
FaultCase appendCase(const char* name, Build append, std::uint32_t type, const Words& part,
                     std::uint32_t size) {
    constexpr std::size_t kCountWord = 4;
    constexpr std::size_t kSizeWord = 3;
    return {name, [=] {
                const Words before = bufferWords(type, trail(4));
                Words after = joined({before, part});
                ++after[kCountWord];
                if (size != 0) after[kSizeWord] = size;
                return std::make_unique<Append>(append, trail(3, 50), before, after);
            }};
}

FaultCase transformCase(const char* name, TransformBuffer transform) {
    return {name, [=] {
                Points twice = trail(4);
                for (Point3d& point : twice) point = {2 * point.x, 2 * point.y, 2 * point.z};
                return std::make_unique<Transforming>(transform,
                                                      bufferWords(VEXA_MULTIPOLYGON, trail(4)),
                                                      bufferWords(VEXA_MULTIPOLYGON, twice));
            }};
}

std::vector<FaultCase> geometryCases() {
    const Points four = trail(4);
    const Points added = trail(3, 50);
    const Words line = bufferWords(VEXA_LINESTRING, four);
    // Its size is to be computed first.
    const Words collection =
        joined({headerWords(VEXA_GEOMETRYCOLLECTION), listWords({line, line})});
    constexpr std::uint32_t kGrownMultiPolygon = 16 + 8 + 2 * (8 + 8 + 8) + (4 + 3) * 24;
    return {
        creationCase("vexaWKB_createPoint", createPoint, VEXA_POINT, 1),
        creationCase("vexaWKB_createLine", vexaWKB_createLine, VEXA_LINESTRING, 4),
        creationCase("vexaWKB_createPolygon", vexaWKB_createPolygon, VEXA_POLYGON, 4),
        creationCase("vexaWKB_createMultiPoint", vexaWKB_createMultiPoint, VEXA_MULTIPOINT, 4),
        creationCase("vexaWKB_createMultiLine", vexaWKB_createMultiLine, VEXA_MULTILINESTRING, 4),
        creationCase("vexaWKB_createMultiPolygon", vexaWKB_createMultiPolygon, VEXA_MULTIPOLYGON,
                     4),
        copyCase("vexaWKB_copy_Point", bufferWords(VEXA_POINT, trail(1))),
        copyCase("vexaWKB_copy_Line", line),
        copyCase("vexaWKB_copy_Polygon", bufferWords(VEXA_POLYGON, four)),
        copyCase("vexaWKB_copy_MultiPoint", bufferWords(VEXA_MULTIPOINT, four)),
        copyCase("vexaWKB_copy_MultiLine", bufferWords(VEXA_MULTILINESTRING, four)),
        copyCase("vexaWKB_copy_MultiPolygon", bufferWords(VEXA_MULTIPOLYGON, four)),
        copyCase("vexaWKB_copy_Collection", collection),
        appendCase("vexaWKB_addLineToLine", vexaWKB_addLineToLine, VEXA_LINESTRING, runWords(added),
                   0),
        appendCase("vexaWKB_addRingToPolygon", vexaWKB_addRingToPolygon, VEXA_POLYGON,
                   pathWords(added), 0),
        appendCase("vexaWKB_addLineToMultiLine", vexaWKB_addLineToMultiLine, VEXA_MULTILINESTRING,
                   pathWords(added), 0),
        appendCase("vexaWKB_addPolyToMultiPoly", vexaWKB_addPolyToMultiPoly, VEXA_MULTIPOLYGON,
                   listWords({pathWords(added)}), kGrownMultiPolygon),
        transformCase("vexaWKB_transformMultiPolygon", vexaWKB_transformMultiPolygon),
        transformCase("vexaWKB_transformGeometry", vexaWKB_transformGeometry),
    };
}

class GeometryFaults : public AllocationFaults {};

TEST_P(GeometryFaults, AreToldAndLeaveAllAsItWas) {
    expectFaultsTaken(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, GeometryFaults, testing::ValuesIn(geometryCases()), kFaultCaseName);

}  // namespace

}  // namespace vexa::test
