#include "great_circle.h"

#include <algorithm>
#include <cmath>

namespace world {
namespace {

double radians(double degrees) {
    double result = 0;
    check(transform_degrees2radians(degrees, &result) == VEXA_SUCCESS, "no angle");
    return result;
}

double degrees(double radians) {
    double result = 0;
    check(transform_radians2degrees(radians, &result) == VEXA_SUCCESS, "no angle");
    return result;
}

/// The place on a globe of radius 1.
Point3d onGlobe(const Point3d& place) {
    const double longitude = radians(place.x);
    const double latitude = radians(place.y);
    return {std::cos(latitude) * std::cos(longitude), std::cos(latitude) * std::sin(longitude),
            std::sin(latitude)};
}

Point3d onPlane(const Point3d& place) {
    return {degrees(std::atan2(place.y, place.x)),
            degrees(std::atan2(place.z, std::hypot(place.x, place.y))), 0};
}

Point3d cross(const Point3d& u, const Point3d& v) {
    return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}

double dot(const Point3d& u, const Point3d& v) {
    return u.x * v.x + u.y * v.y + u.z * v.z;
}

double angleBetween(const Point3d& u, const Point3d& v, const Point3d& normal) {
    return std::atan2(std::sqrt(dot(normal, normal)), dot(u, v));
}

bool crossesDateLine(const std::vector<Point3d>& path) {
    constexpr double kHalfTurn = 180;
    const auto leaps = [](const Point3d& from, const Point3d& to) {
        return std::abs(to.x - from.x) > kHalfTurn;
    };
    return std::adjacent_find(path.begin(), path.end(), leaps) != path.end();
}

}  // namespace

Geometry greatCircle(const Point3d& from, const Point3d& to, std::uint32_t count) {
    const Point3d start = onGlobe(from);
    const Point3d axis = cross(start, onGlobe(to));
    const double angle = angleBetween(start, onGlobe(to), axis);
    const Point3d centre{0, 0, 0};

    std::vector<Point3d> path;
    path.reserve(count);
    for (std::uint32_t index = 0; index < count; ++index) {
        Transform turn{};
        Point3d place = start;
        const double part = static_cast<double>(index) / (count - 1);
        check(
            transform_initRotationAboutLine(&turn, &centre, &axis, angle * part) == VEXA_SUCCESS &&
                transform_point(&turn, &place) == VEXA_SUCCESS,
            "the globe does not turn");
        path.push_back(onPlane(place));
    }
    check(!crossesDateLine(path), "the flight crosses the date line");

    GeometryBuffer* line = nullptr;
    check(vexaWKB_createLine(path.data(), count, &line) == VEXA_SUCCESS, "no line can be made");
    return Geometry{line};
}

std::vector<Point3d> verticesOf(const GeometryBuffer& line) {
    std::uint32_t count = 0;
    check(vexaWKB_lineGetPointCount(&line, &count) == VEXA_SUCCESS,
          "the line's vertices cannot be counted");
    std::vector<Point3d> vertices(count);
    check(vexaWKB_lineGetPoints(&line, count, vertices.data(), &count) == VEXA_SUCCESS,
          "the line's vertices cannot be read");
    return vertices;
}

}  // namespace world
