// Intersection tests that find nothing, so that nothing is left out, at sizes that show the growth.
#include "bench/samples.h"

#include <cmath>
#include <functional>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

namespace vexa::bench {

namespace {

constexpr double kTolerance = 1e-9;
constexpr double kTurn = 6.283185307179586;

using Curve = std::function<Point3d(double)>;

std::vector<Point3d> along(const Curve& curve, std::size_t count) {
    std::vector<Point3d> points(count);
    for (std::size_t i = 0; i < count; ++i) {
        points[i] = curve(static_cast<double>(i) / static_cast<double>(count));
    }
    return points;
}

Point3d polar(double angle, double radius) {
    return {radius * std::cos(angle), radius * std::sin(angle), 0};
}

/// A coast: a circle with bays.
Curve coast(double radius) {
    return
        [=](double t) { return polar(kTurn * t, radius * (1 + 0.1 * std::sin(40 * kTurn * t))); };
}

/// Ten turns outwards, `gap` of a turn's width off the middle.
Curve spiral(double gap) {
    return [=](double t) { return polar(10 * kTurn * t, 1 + 10 * t + gap); };
}

/// All over a band around the coast.
std::vector<Point3d> pointsAround(double radius, std::size_t count) {
    std::vector<Point3d> points = wanderingPoints(count);
    for (Point3d& point : points) {
        point = polar(point.x / 360 * kTurn, radius * (1.12 + 0.001 * (point.y + 90)));
    }
    return points;
}

void miss(benchmark::State& state, const GeometryBuffer& first, const GeometryBuffer& second) {
    std::uint32_t result = 0;
    for (auto _ : state) {
        vexaWKB_intersectGeometry(&first, &second, kTolerance, &result);
        benchmark::DoNotOptimize(result);
    }
    if (result != 0) state.SkipWithError("there is nothing to find");
}

void add(const std::string& name, std::size_t count, Geometry first, Geometry second) {
    const std::shared_ptr<GeometryBuffer> a = std::move(first);
    const std::shared_ptr<GeometryBuffer> b = std::move(second);
    benchmark::RegisterBenchmark(("intersect " + name + "/" + std::to_string(count)).c_str(),
                                 [=](benchmark::State& state) { miss(state, *a, *b); })
        ->Unit(benchmark::kMicrosecond);
}

const bool kRegistered = [] {
    for (const std::size_t count : {100UL, 10000UL, 100000UL}) {
        add("line, line side by side", count, lineOf(along(coast(1), count)),
            lineOf(along(coast(1.001), count)));
        add("line, line spirals", count, lineOf(along(spiral(0), count)),
            lineOf(along(spiral(0.5), count)));
        add("points, polygon", count, made(vexaWKB_createMultiPoint, pointsAround(1, count)),
            made(vexaWKB_createPolygon, along(coast(1), count)));
        add("line, polygon", count, lineOf(along(coast(1.001), count)),
            made(vexaWKB_createPolygon, along(coast(1), count)));
    }
    return true;
}();

}  // namespace

}  // namespace vexa::bench
