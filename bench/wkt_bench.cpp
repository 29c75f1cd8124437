// Parsing and writing well-known text, beside a bare loop of number conversions over the same
// numbers: what no reader or writer of these texts can do without.
#include "bench/samples.h"

#include <charconv>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

namespace vexa::bench {

namespace {

constexpr int kSingleDigits = 6;
constexpr int kFullDigits = 17;
void appendNumber(std::string& text, double value, int digits) {
    char number[32];
    char* const end =
        std::to_chars(number, number + sizeof number, value, std::chars_format::general, digits)
            .ptr;
    text.append(number, end);
}

std::string lineText(const std::vector<Point3d>& points, int digits) {
    std::string text = "LINESTRING(";
    for (const Point3d& point : points) {
        appendNumber(text, point.x, digits);
        text += ' ';
        appendNumber(text, point.y, digits);
        text += ' ';
        appendNumber(text, point.z, digits);
        text += ',';
    }
    text.back() = ')';
    return text;
}

/// Polygons of a hundred vertices a ring.
std::string polygonText(const std::vector<Point3d>& points, int digits) {
    constexpr std::size_t kRing = 100;
    std::string text = "POLYGON(";
    for (std::size_t first = 0; first < points.size(); first += kRing) {
        const std::size_t last = std::min(first + kRing, points.size());
        const std::string line = lineText({points.begin() + static_cast<std::ptrdiff_t>(first),
                                           points.begin() + static_cast<std::ptrdiff_t>(last)},
                                          digits);
        text += line.substr(line.find('('));
        text += ',';
    }
    text.back() = ')';
    return text;
}

using MakeText = std::string (*)(const std::vector<Point3d>&, int);

void parse(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        GeometryBuffer* geometry = nullptr;
        if (vexaParse_string(text.c_str(), &geometry) != VEXA_SUCCESS) std::abort();
        benchmark::DoNotOptimize(geometry);
        vexaWKB_destroyGeom(&geometry);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void fromCharsLoop(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        double sum = 0;
        const char* const end = text.data() + text.size();
        for (const char* at = text.data(); at != end;) {
            double value = 0;
            const auto result = std::from_chars(at, end, value);
            at = result.ec == std::errc{} ? result.ptr : at + 1;
            sum += value;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void write(benchmark::State& state, const std::string& text, int digits) {
    GeometryBuffer* parsed = nullptr;
    if (vexaParse_string(text.c_str(), &parsed) != VEXA_SUCCESS) std::abort();
    const Geometry geometry{parsed};
    std::vector<VexaWChar> out(text.size() * 2 + 2);
    const auto precision = static_cast<std::int32_t>(vexaWKT_setPrecision(digits));
    std::int64_t length = 0;
    for (auto _ : state) {
        length =
            vexaWKT_geometry(geometry.get(), out.data(), static_cast<std::int64_t>(out.size()) - 1);
        benchmark::DoNotOptimize(out.data());
    }
    vexaWKT_setPrecision(precision);
    if (length < 1) std::abort();
    state.SetBytesProcessed(state.iterations() * length);
}

void toCharsLoop(benchmark::State& state, const std::vector<Point3d>& points, int digits) {
    std::vector<char> out(points.size() * 96);
    std::int64_t length = 0;
    for (auto _ : state) {
        char* at = out.data();
        char* const end = at + out.size();
        for (const Point3d& point : points) {
            for (const double value : {point.x, point.y, point.z}) {
                at = std::to_chars(at, end, value, std::chars_format::general, digits).ptr;
                *at++ = ' ';
            }
        }
        length = at - out.data();
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(state.iterations() * length);
}

void registerWork(const std::string& type, MakeText makeText, std::size_t count, int digits) {
    const std::vector<Point3d> points = wanderingPoints(count);
    const std::string text = makeText(points, digits);
    const std::string work =
        type + "/" + std::to_string(count) + "/digits:" + std::to_string(digits);
    benchmark::RegisterBenchmark(("parse:parse " + work).c_str(),
                                 [=](benchmark::State& state) { parse(state, text); });
    benchmark::RegisterBenchmark(("from_chars loop:parse " + work).c_str(),
                                 [=](benchmark::State& state) { fromCharsLoop(state, text); });
    benchmark::RegisterBenchmark(("write:write " + work).c_str(),
                                 [=](benchmark::State& state) { write(state, text, digits); });
    benchmark::RegisterBenchmark(
        ("to_chars loop:write " + work).c_str(),
        [=](benchmark::State& state) { toCharsLoop(state, points, digits); });
}

const bool kRegistered = [] {
    for (const int digits : {kSingleDigits, kFullDigits}) {
        for (const std::size_t count : {10UL, 1000UL, 100000UL}) {
            registerWork("linestring", lineText, count, digits);
        }
        registerWork("polygon", polygonText, 100000, digits);
    }
    return true;
}();

}  // namespace

}  // namespace vexa::bench
