// Well-known text to buffers, beside a bare loop of number conversions over the same text.
#include "bench/number_loops.h"
#include "bench/samples.h"
#include "bench/works.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace vexa::bench {

namespace {

constexpr std::size_t kLarge = 100000;
constexpr std::size_t kHole = 100;  // vertices of a ring among many
constexpr std::size_t kPart = 10;   // vertices of a polygon among many

double reachAt(std::size_t size) {
    return size >= kLarge ? 0.85 : 1.25;
}

Shape manyRings(const std::vector<Point3d>& points) {
    return {VEXA_POLYGON, inParts(points, kHole)};
}

Shape manyPolygons(const std::vector<Point3d>& points) {
    return {VEXA_MULTIPOLYGON, inParts(points, kPart)};
}

struct Kind {
    const char* name;
    Shape (*shapeOf)(const std::vector<Point3d>& points);
};
constexpr Kind kKinds[] = {
    {"linestring", [](const std::vector<Point3d>& points) { return lineOf(points); }},
    {"polygon of many holes", manyRings},
    {"multipolygon", manyPolygons},
    {"multipoint", [](const std::vector<Point3d>& points) { return pointsOf(points); }},
};

/// Whether the geometry is written as the very text that it was made from.
bool readsAs(const GeometryBuffer& geometry, const std::string& text, int digits) {
    std::vector<VexaWChar> written(text.size() + 2);
    const auto before = static_cast<std::int32_t>(vexaWKT_setPrecision(digits));
    const std::int64_t length =
        vexaWKT_geometry(&geometry, written.data(), static_cast<std::int64_t>(written.size()) - 1);
    vexaWKT_setPrecision(before);
    return length == static_cast<std::int64_t>(text.size()) &&
           std::equal(text.begin(), text.end(), written.begin());
}

/// Parses all texts, keeping the last one's geometry.
struct ParseAll {
    void operator()() {
        for (const std::string& text : *texts) {
            GeometryBuffer* geometry = nullptr;
            if (vexaParse_string(text.c_str(), &geometry) != VEXA_SUCCESS) std::abort();
            benchmark::DoNotOptimize(geometry);
            vexaWKB_destroyGeom(&geometry);
        }
    }
    std::shared_ptr<std::vector<std::string>> texts;
};

void enter(Contest& contest, std::vector<std::string> list, const std::vector<Point3d>& points,
           int digits) {
    const auto texts = std::make_shared<std::vector<std::string>>(std::move(list));
    contest.ours(ParseAll{texts}, [=] {
        return std::all_of(texts->begin(), texts->end(), [=](const std::string& text) {
            return readsAs(*parsed(text), text, digits);
        });
    });
    const auto sum = std::make_shared<double>(0);
    const auto loop = [texts, sum] {
        *sum = 0;
        for (const std::string& text : *texts) *sum += sumOfNumbers(text);
        benchmark::DoNotOptimize(sum.get());
    };
    double expected = 0;
    if (texts->size() == 1) expected = sumOfCoordinates(points);
    if (texts->size() > 1) {
        for (const Point3d& point : points) expected += point.x + point.y + point.z;
    }
    contest.peer("from_chars loop", reachAt(contest.size()), loop,
                 [=] { return *sum == expected; });
}

std::string withDigits(const std::string& name, int digits) {
    return "parse " + name + ", " + std::to_string(digits) + " digits";
}

void addGeometries(Works& works, const Kind& kind, int digits) {
    for (const std::size_t size : {10UL, 1000UL, kLarge, 1000000UL}) {
        works.add({"parse", withDigits(kind.name, digits), size}, [=](Contest& contest) {
            const auto points = rounded(wanderingPoints(size), digits);
            enter(contest, {textOf(kind.shapeOf(points), digits)}, points, digits);
        });
    }
}

void addPoints(Works& works, int digits) {
    constexpr std::size_t kTexts = 1000;
    works.add({"parse", withDigits("points", digits), kTexts}, [=](Contest& contest) {
        const auto points = rounded(wanderingPoints(kTexts), digits);
        std::vector<std::string> texts;
        texts.reserve(points.size());
        for (const Point3d& point : points) {
            texts.push_back(textOf({VEXA_POINT, {{point}}}, digits));
        }
        enter(contest, std::move(texts), points, digits);
    });
}

}  // namespace

void addParsing(Works& works) {
    for (const int digits : {6, 17}) {
        for (const Kind& kind : kKinds) addGeometries(works, kind, digits);
        addPoints(works, digits);
    }
}

}  // namespace vexa::bench
