// Ranges and transforms beside loops that touch the same memory.
#include "bench/samples.h"

#include <algorithm>
#include <array>
#include <string>

#include <benchmark/benchmark.h>

namespace vexa::bench {

namespace {

std::int64_t bytesOf(const std::vector<Point3d>& points) {
    return static_cast<std::int64_t>(points.size() * sizeof(Point3d));
}

void range(benchmark::State& state, const std::vector<Point3d>& points) {
    const Geometry line = lineOf(points);
    Point3d low{};
    Point3d high{};
    for (auto _ : state) {
        vexaWKB_getLineRange(line.get(), &low, &high);
        benchmark::DoNotOptimize(low);
        benchmark::DoNotOptimize(high);
    }
    state.SetBytesProcessed(state.iterations() * bytesOf(points));
}

/// Four sums at once: as fast as the memory gives its numbers.
void sumLoop(benchmark::State& state, const std::vector<Point3d>& points) {
    const double* const first = &points.front().x;
    const std::size_t count = points.size() * 3 / 8 * 8;
    for (auto _ : state) {
        std::array<double, 8> sums{};
        for (std::size_t i = 0; i < count; i += sums.size()) {
            for (std::size_t k = 0; k < sums.size(); ++k) sums[k] += first[i + k];
        }
        benchmark::DoNotOptimize(sums);
    }
    state.SetBytesProcessed(state.iterations() * bytesOf(points));
}

void transform(benchmark::State& state, std::vector<Point3d> points) {
    Transform rotation{};
    const Point3d origin = {0, 0, 0};
    const Point3d direction = {1, 2, 3};
    transform_initRotationAboutLine(&rotation, &origin, &direction, 0.1);
    for (auto _ : state) {
        transform_pointArray(&rotation, points.size(), points.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * bytesOf(points));
}

void addLoop(benchmark::State& state, std::vector<Point3d> points) {
    double* const first = &points.front().x;
    const std::size_t count = points.size() * 3;
    for (auto _ : state) {
        for (std::size_t i = 0; i < count; ++i) first[i] += 1;
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * bytesOf(points));
}

template <class Work>
void add(const std::string& name, Work work, const std::vector<Point3d>& points) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) { work(state, points); });
}

const bool kRegistered = [] {
    for (const std::size_t count : {100UL, 1000UL, 1000000UL}) {
        const std::vector<Point3d> points = wanderingPoints(count);
        const std::string work = "linestring/" + std::to_string(count);
        add("range:range " + work, range, points);
        add("sum loop:range " + work, sumLoop, points);
        add("transform:transform points/" + std::to_string(count), transform, points);
        add("add loop:transform points/" + std::to_string(count), addLoop, points);
    }
    return true;
}();

}  // namespace

}  // namespace vexa::bench
