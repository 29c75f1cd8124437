// Building, copying and reading back a line, beside a block from the heap and a copy of the bytes.
#include "bench/samples.h"
#include "bench/works.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace vexa::bench {

namespace {

constexpr double kReach = 1.15;

using Points = std::shared_ptr<const std::vector<Point3d>>;

std::uint32_t countOf(const Points& points) {
    return static_cast<std::uint32_t>(points->size());
}

/// What a round has made is freed in it, so the look at it is part of the first round; later rounds
/// go without.
struct Look {
    const std::vector<Point3d>* expected;
    bool isOn = true;
    bool isRight = false;

    void at(const Point3d* vertices) {
        benchmark::DoNotOptimize(vertices);
        benchmark::ClobberMemory();
        if (!isOn) return;
        const std::size_t bytes = expected->size() * sizeof(Point3d);
        isRight = std::memcmp(vertices, expected->data(), bytes) == 0;
    }
};
using SharedLook = std::shared_ptr<Look>;

void copyAndFree(const Points& points, Look& look) {
    const std::size_t bytes = points->size() * sizeof(Point3d);
    auto* const block = static_cast<Point3d*>(std::malloc(bytes));
    if (!block) std::abort();
    std::memcpy(block, points->data(), bytes);
    look.at(block);
    std::free(block);
}

/// Behind the header, the line's count of runs and the run's count of vertices.
const Point3d* verticesOf(const GeometryBuffer* line) {
    constexpr std::size_t kHeaders = sizeof(GeometryBuffer) + sizeof(Path) + sizeof(PointRun);
    return reinterpret_cast<const Point3d*>(reinterpret_cast<const char*>(line) + kHeaders);
}

void buildAndFree(const Points& points, Look& look) {
    GeometryBuffer* line = nullptr;
    if (vexaWKB_createLine(points->data(), countOf(points), &line) != VEXA_SUCCESS) std::abort();
    look.at(verticesOf(line));
    vexaWKB_destroyGeom(&line);
}

void copyBufferAndFree(const GeometryBuffer* line, Look& look) {
    GeometryBuffer* copy = nullptr;
    if (vexaWKB_copy(line, &copy) != VEXA_SUCCESS) std::abort();
    look.at(verticesOf(copy));
    vexaWKB_destroyGeom(&copy);
}

void readBackAndFree(const GeometryBuffer* line, Look& look) {
    std::uint32_t count = 0;
    if (vexaWKB_lineGetPointCount(line, &count) != VEXA_SUCCESS) std::abort();
    auto* const block = static_cast<Point3d*>(std::malloc(count * sizeof(Point3d)));
    if (!block) std::abort();
    if (vexaWKB_lineGetPoints(line, count, block, &count) != VEXA_SUCCESS) std::abort();
    look.at(block);
    std::free(block);
}

template <class Round>
void enter(Contest& contest, const Points& points, Round round) {
    const auto isRight = [](const SharedLook& look) {
        look->isOn = false;
        return look->isRight;
    };
    const auto ours = std::make_shared<Look>(Look{points.get()});
    contest.ours([=] { round(*ours); }, [=] { return isRight(ours); });
    const auto theirs = std::make_shared<Look>(Look{points.get()});
    contest.peer(
        "malloc + memcpy", kReach, [=] { copyAndFree(points, *theirs); },
        [=] { return isRight(theirs); });
}

SharedGeometry builtLine(const Points& points) {
    GeometryBuffer* line = nullptr;
    if (vexaWKB_createLine(points->data(), countOf(points), &line) != VEXA_SUCCESS) std::abort();
    return Geometry{line};
}

void enterBuild(Contest& contest, const Points& points) {
    enter(contest, points, [=](Look& look) { buildAndFree(points, look); });
}

void enterCopy(Contest& contest, const Points& points) {
    const SharedGeometry line = builtLine(points);
    enter(contest, points, [=](Look& look) { copyBufferAndFree(line.get(), look); });
}

void enterReadBack(Contest& contest, const Points& points) {
    const SharedGeometry line = builtLine(points);
    enter(contest, points, [=](Look& look) { readBackAndFree(line.get(), look); });
}

void add(Works& works, const std::string& name, void (*enterWork)(Contest&, const Points&)) {
    for (const std::size_t size : {100UL, 1000UL, 100000UL, 1000000UL}) {
        works.add({"buffers", name, size}, [=](Contest& contest) {
            enterWork(contest, std::make_shared<const std::vector<Point3d>>(wanderingPoints(size)));
        });
    }
}

}  // namespace

void addBuffers(Works& works) {
    add(works, "build linestring", enterBuild);
    add(works, "copy linestring", enterCopy);
    add(works, "read back linestring", enterReadBack);
}

}  // namespace vexa::bench
