// Buffers to well-known text, beside a bare loop that prints the same numbers.
#include "bench/number_loops.h"
#include "bench/samples.h"
#include "bench/works.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace vexa::bench {

namespace {

constexpr double kReach = 0.45;
constexpr std::size_t kLarge = 100000;

/// The writer's precision is the process's: set for the time of a round.
class Precision {
public:
    explicit Precision(int digits)
        : before_(static_cast<std::int32_t>(vexaWKT_setPrecision(digits))) {}
    Precision(const Precision&) = delete;
    Precision& operator=(const Precision&) = delete;
    ~Precision() { vexaWKT_setPrecision(before_); }

private:
    std::int32_t before_;
};

void enter(Contest& contest, const Shape& shape, const std::vector<Point3d>& points, int digits) {
    const std::string text = textOf(shape, digits);
    const SharedGeometry geometry = parsed(text);
    const auto out = std::make_shared<std::vector<VexaWChar>>(text.size() + 64);
    const auto length = std::make_shared<std::int64_t>(0);
    const auto write = [=] {
        const Precision precision{digits};
        *length = vexaWKT_geometry(geometry.get(), out->data(),
                                   static_cast<std::int64_t>(out->size()) - 1);
        benchmark::DoNotOptimize(out->data());
    };
    contest.ours(write, [&] {
        return *length == static_cast<std::int64_t>(text.size()) &&
               std::equal(text.begin(), text.end(), out->begin());
    });

    const auto numbers = std::make_shared<std::vector<char>>(text.size() + 64);
    const auto end = std::make_shared<char*>(nullptr);
    const auto loop = [=] {
        *end = writeNumbers(points, digits, *numbers);
        benchmark::DoNotOptimize(numbers->data());
    };
    contest.peer("to_chars loop", kReach, loop, [&] {
        const std::string_view written{numbers->data(),
                                       static_cast<std::size_t>(*end - numbers->data())};
        return sumOfNumbers(written) == sumOfCoordinates(rounded(points, digits));
    });
}

void add(Works& works, const std::string& name, std::size_t size, int digits,
         Shape (*shapeOf)(const std::vector<Point3d>&)) {
    const std::string work = "write " + name + ", " + std::to_string(digits) + " digits";
    works.add({"write", work, size}, [=](Contest& contest) {
        const std::vector<Point3d> points = rounded(wanderingPoints(size), digits);
        enter(contest, shapeOf(points), points, digits);
    });
}

Shape line(const std::vector<Point3d>& points) {
    return lineOf(points);
}

Shape manyRings(const std::vector<Point3d>& points) {
    return {VEXA_POLYGON, inParts(points, 10)};
}

Shape manyPolygons(const std::vector<Point3d>& points) {
    return {VEXA_MULTIPOLYGON, inParts(points, 10)};
}

Shape multipoint(const std::vector<Point3d>& points) {
    return pointsOf(points);
}

}  // namespace

void addWriting(Works& works) {
    for (const int digits : {6, 17}) {
        for (const std::size_t size : {10UL, 1000UL, kLarge, 1000000UL}) {
            add(works, "linestring", size, digits, line);
        }
        add(works, "polygon of many holes", kLarge, digits, manyRings);
        add(works, "multipolygon", kLarge, digits, manyPolygons);
        add(works, "multipoint", kLarge, digits, multipoint);
    }
}

}  // namespace vexa::bench
