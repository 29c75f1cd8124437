#pragma once

#include "vexakit/vexakit.h"

#include <cstdlib>
#include <memory>
#include <random>
#include <vector>

namespace vexa::bench {

struct Destroy {
    void operator()(GeometryBuffer* geometry) const { vexaWKB_destroyGeom(&geometry); }
};
using Geometry = std::unique_ptr<GeometryBuffer, Destroy>;

using Create = uint32_t (*)(const Point3d*, uint32_t, GeometryBuffer**);

inline Geometry made(Create create, const std::vector<Point3d>& points) {
    GeometryBuffer* geometry = nullptr;
    const auto count = static_cast<std::uint32_t>(points.size());
    if (create(points.data(), count, &geometry) != VEXA_SUCCESS) std::abort();
    return Geometry{geometry};
}

inline Geometry lineOf(const std::vector<Point3d>& points) {
    return made(vexaWKB_createLine, points);
}

/// Points all over the globe, at heights to match.
inline std::vector<Point3d> wanderingPoints(std::size_t count) {
    constexpr unsigned kSeed = 20;
    std::mt19937_64 random{kSeed};
    std::uniform_real_distribution<double> longitude{-180, 180};
    std::uniform_real_distribution<double> latitude{-90, 90};
    std::uniform_real_distribution<double> height{0, 9000};
    std::vector<Point3d> points(count);
    for (Point3d& point : points) point = {longitude(random), latitude(random), height(random)};
    return points;
}

}  // namespace vexa::bench
