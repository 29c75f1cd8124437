#include "bench/samples.h"

#include "bench/fail.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <random>

namespace vexa::bench {

namespace {

constexpr int kExactDigits = 17;

void appendNumber(std::string& text, double value, int digits) {
    std::array<char, 32> number{};
    const auto end = std::to_chars(number.data(), number.data() + number.size(), value,
                                   std::chars_format::general, digits);
    text.append(number.data(), end.ptr);
}

void appendPoint(std::string& text, const Point3d& point, int digits) {
    appendNumber(text, point.x, digits);
    text += ' ';
    appendNumber(text, point.y, digits);
    text += ' ';
    appendNumber(text, point.z, digits);
}

/// Items between `open` and `close`, commas in between.
template <class Items, class Append>
void appendList(std::string& text, const char* open, const char* close, const Items& items,
                Append append) {
    const char* separator = "";
    text += open;
    for (const auto& item : items) {
        text += separator;
        append(item);
        separator = ",";
    }
    text += close;
}

const char* keyword(std::uint32_t type) {
    constexpr std::array kKeywords = {"",           "point",           "linestring",  "polygon",
                                      "multipoint", "multilinestring", "multipolygon"};
    return kKeywords.at(type);
}

double roundedNumber(double value, int digits) {
    std::string text;
    appendNumber(text, value, digits);
    double result = 0;
    std::from_chars(text.data(), text.data() + text.size(), result);
    return result;
}

}  // namespace

std::string textOf(const Shape& shape, int digits) {
    std::string text = keyword(shape.type);
    const auto bare = [&](const Point3d& point) { appendPoint(text, point, digits); };
    const auto enclosed = [&](const Point3d& point) {
        text += '(';
        bare(point);
        text += ')';
    };
    const auto list = [&](const std::vector<Point3d>& part) {
        appendList(text, "(", ")", part, bare);
    };
    const auto polygon = [&](const std::vector<Point3d>& ring) {
        text += '(';
        list(ring);
        text += ')';
    };
    switch (shape.type) {
        case VEXA_POINT:
        case VEXA_LINESTRING: list(shape.parts.front()); break;
        case VEXA_MULTIPOINT: appendList(text, "(", ")", shape.parts.front(), enclosed); break;
        case VEXA_MULTIPOLYGON: appendList(text, "(", ")", shape.parts, polygon); break;
        default: appendList(text, "(", ")", shape.parts, list);
    }
    return text;
}

Geometry parsed(const std::string& text) {
    GeometryBuffer* geometry = nullptr;
    if (vexaParse_string(text.c_str(), &geometry) != VEXA_SUCCESS) {
        fail("not understood: " + text.substr(0, 60) + "...");
    }
    return Geometry{geometry};
}

Geometry geometryOf(const Shape& shape) {
    return parsed(textOf(shape, kExactDigits));
}

std::vector<Point3d> rounded(std::vector<Point3d> points, int digits) {
    for (Point3d& point : points) {
        point = {roundedNumber(point.x, digits), roundedNumber(point.y, digits),
                 roundedNumber(point.z, digits)};
    }
    return points;
}

std::vector<Point3d> wanderingPoints(std::size_t count) {
    constexpr unsigned kSeed = 20;
    std::mt19937_64 random{kSeed};
    std::uniform_real_distribution<double> longitude{-180, 180};
    std::uniform_real_distribution<double> latitude{-90, 90};
    std::uniform_real_distribution<double> height{0, 9000};
    std::vector<Point3d> points(count);
    for (Point3d& point : points) point = {longitude(random), latitude(random), height(random)};
    return points;
}

std::vector<std::vector<Point3d>> inParts(const std::vector<Point3d>& points, std::size_t length) {
    std::vector<std::vector<Point3d>> parts;
    for (auto first = points.begin(); first != points.end();) {
        const auto last =
            first + std::min(static_cast<std::ptrdiff_t>(length), points.end() - first);
        parts.emplace_back(first, last);
        first = last;
    }
    return parts;
}

}  // namespace vexa::bench
