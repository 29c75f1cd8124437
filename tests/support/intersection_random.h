#pragma once

#include "tests/support/intersection_model.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <ostream>
#include <random>
#include <utility>

namespace vexa::test {

// ---- Printing -----------------------------------------------------------------------------------

inline void print(std::ostream& out, const Points& points) {
    out << '(';
    for (const Point3d& p : points) out << ' ' << p.x << ' ' << p.y << ' ' << p.z << ',';
    out << ')';
}

/// For messages: the whole shape where it is small.
inline void PrintTo(const Shape& shape, std::ostream* out) {
    *out << std::setprecision(17) << "type " << shape.type << ' ';
    if (shape.type == VEXA_POINT || shape.type == VEXA_MULTIPOINT) print(*out, shape.points);
    for (const Paths& paths : shape.parts) {
        *out << '{';
        for (const Runs& runs : paths) {
            *out << '[';
            for (const Points& run : runs) print(*out, run);
            *out << ']';
        }
        *out << '}';
    }
}

// ---- Random geometry ----------------------------------------------------------------------------

/// Where vertices are put.
enum class Placing {
    Grid,         ///< small integers in z = 0: touches, level vertices, repeated vertices
    Plane,        ///< anywhere in z = 0
    ShearedGrid,  ///< small integers in a tilted plane, all exact
    TiltedPlane,  ///< anywhere in a rotated plane, rounded
    Cells,        ///< integers 0 to 2 in space
    Space,        ///< anywhere
    NearlyFlat,   ///< small integers, z off by up to 1e-9
};

class RandomShapes {
public:
    RandomShapes(std::uint64_t seed, Placing placing, std::size_t largest)
        : random_(seed), placing_(placing), largest_(largest) {
        const double turn = real(0, 6.28);
        xAxis_ = {std::cos(turn), std::sin(turn) * 0.6, std::sin(turn) * 0.8};
        yAxis_ = {-std::sin(turn), std::cos(turn) * 0.6, std::cos(turn) * 0.8};
    }

    /// Coordinates and tolerances are multiplied by `scale`, then coordinates moved by `shift`.
    void resize(double scale, double shift) {
        scale_ = scale;
        shift_ = shift;
    }

    /// One vertex in so many gets a NaN, an infinity, or the largest or smallest number.
    void sprinkleSpecials(std::size_t oneIn) { specials_ = oneIn; }

    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(random_() % bound); }
    bool oneIn(std::size_t bound) { return below(bound) == 0; }
    double real(double low, double high) {
        return low + (high - low) * (static_cast<double>(random_() >> 11) * 0x1p-53);
    }

    Shape ofType(std::uint32_t type) {
        switch (type) {
            case VEXA_POINT: return pointShape(vertex());
            case VEXA_LINESTRING: return lineShape(line());
            case VEXA_POLYGON: return polygonShape(rings());
            case VEXA_MULTIPOINT: return multipointShape(vertices(count()));
            case VEXA_MULTILINESTRING: return multilineShape(lines());
            default: return multipolygonShape(polygons());
        }
    }

    /// Mostly what callers use; also what nobody should.
    double tolerance() {
        constexpr double kTolerances[] = {0,
                                          0,
                                          0,
                                          1e-14,
                                          1e-9,
                                          0.01,
                                          0.3,
                                          0.5,
                                          1.0,
                                          20.0,
                                          1e9,
                                          -0.0,
                                          -1.0,
                                          -1e9,
                                          std::numeric_limits<double>::infinity(),
                                          -std::numeric_limits<double>::infinity(),
                                          std::numeric_limits<double>::quiet_NaN(),
                                          std::numeric_limits<double>::max(),
                                          std::numeric_limits<double>::denorm_min()};
        return scale_ * kTolerances[below(std::size(kTolerances))];
    }

    Point3d vertex() {
        Point3d point = placed();
        if (specials_ > 0 && oneIn(specials_)) {
            constexpr double kSpecials[] = {std::numeric_limits<double>::quiet_NaN(),
                                            std::numeric_limits<double>::infinity(),
                                            -std::numeric_limits<double>::infinity(),
                                            std::numeric_limits<double>::max(),
                                            std::numeric_limits<double>::lowest(),
                                            std::numeric_limits<double>::denorm_min(),
                                            1e160,
                                            -0.0};
            double* const coordinates[] = {&point.x, &point.y, &point.z};
            *coordinates[below(3)] = kSpecials[below(std::size(kSpecials))];
        }
        return point;
    }

    Points vertices(std::size_t count) {
        Points points;
        for (std::size_t i = 0; i < count; ++i) {
            const bool repeats = !points.empty() && oneIn(12);
            points.push_back(repeats ? points.back() : vertex());
        }
        return points;
    }

    /// A way of short steps, so that many tests get far before something is hit.
    Points trailOf(std::size_t count) {
        if (oneIn(2)) return vertices(count);
        Points points;
        const double reach = real(0.01, 0.3);
        double x = real(-8, 8);
        double y = real(-8, 8);
        for (std::size_t i = 0; i < count; ++i) {
            points.push_back(inPlane(x, y));
            x += real(-reach, reach);
            y += real(-reach, reach);
        }
        return points;
    }

    /// Around a centre: an outline that does not cross itself, mostly closed by its first vertex.
    Points outline(std::size_t count) {
        if (count < 3 || oneIn(4)) return vertices(count);
        if (count > 20 && oneIn(4)) return comb(count);
        Points points;
        const double x = real(-4, 4);
        const double y = real(-4, 4);
        const double size = real(1, 6);
        for (std::size_t i = 0; i < count; ++i) {
            const double angle =
                6.283185307179586 * static_cast<double>(i) / static_cast<double>(count);
            const double radius = size * real(0.6, 1);
            points.push_back(inPlane(x + radius * std::cos(angle), y + radius * std::sin(angle)));
        }
        if (!oneIn(3)) points.push_back(points.front());
        return points;
    }

private:
    /// Teeth, so that a line along them meets the outline many times.
    Points comb(std::size_t count) {
        Points points;
        const double left = -static_cast<double>(below(count));
        const double top = real(0, 3);
        for (std::size_t i = 0; i < count; ++i) {
            points.push_back(inPlane(left + static_cast<double>(i), i % 2 == 0 ? -1 : top));
        }
        points.push_back(inPlane(left + static_cast<double>(count), -3));
        points.push_back(inPlane(left, -3));
        return points;
    }

    Point3d placed() {
        const auto digit = [this](std::size_t range) {
            const std::size_t half = range / 2;
            return static_cast<double>(below(range)) - static_cast<double>(half);
        };
        switch (placing_) {
            case Placing::Cells: return resized({digit(3), digit(3), digit(3)});
            case Placing::Space: return resized({real(-5, 5), real(-5, 5), real(-5, 5)});
            case Placing::Grid:
            case Placing::ShearedGrid:
            case Placing::NearlyFlat: return inPlane(digit(9), digit(9));
            default: return inPlane(real(-5, 5), real(-5, 5));
        }
    }

    Point3d resized(const Point3d& p) const {
        return {p.x * scale_ + shift_, p.y * scale_ - shift_, p.z * scale_ + 2 * shift_};
    }

    /// A place in the plane of the drawing, brought to where the vertices are to be.
    Point3d inPlane(double x, double y) { return resized(placedInPlane(x, y)); }

    Point3d placedInPlane(double x, double y) {
        switch (placing_) {
            case Placing::Grid: return {std::round(x), std::round(y), 0};
            case Placing::ShearedGrid:
                x = std::round(x);
                y = std::round(y);
                return {x, y, 2 * x - y};
            case Placing::NearlyFlat: return {std::round(x), std::round(y), real(-1e-9, 1e-9)};
            case Placing::TiltedPlane:
                return {x * xAxis_.x + y * yAxis_.x + 1, x * xAxis_.y + y * yAxis_.y - 2,
                        x * xAxis_.z + y * yAxis_.z + 3};
            case Placing::Cells: return {std::round(x), std::round(y), std::round(x - y)};
            case Placing::Space: return {x, y, x * 0.3 + real(-1, 1)};
            default: return {x, y, 0};
        }
    }

    std::size_t count() { return oneIn(6) ? below(3) : 1 + below(largest_); }

    Runs runsOf(Points points) {
        Runs runs;
        while (points.size() > 1 && oneIn(3)) {
            const auto cut = static_cast<std::ptrdiff_t>(below(points.size()));
            runs.emplace_back(points.begin(), points.begin() + cut);
            points.erase(points.begin(), points.begin() + cut);
        }
        runs.push_back(std::move(points));
        return runs;
    }

    Runs line() { return oneIn(20) ? Runs{} : runsOf(trailOf(count())); }
    Paths lines() {
        Paths lines;
        for (std::size_t left = fewer(); left > 0; --left) lines.push_back(line());
        return lines;
    }
    Runs ring() { return oneIn(30) ? Runs{} : runsOf(outline(count() + below(4))); }
    Paths rings() {
        Paths rings = {ring()};
        for (std::size_t left = oneIn(2) ? below(3) : 0; left > 0; --left) rings.push_back(ring());
        return rings;
    }
    Polygons polygons() {
        Polygons polygons;
        for (std::size_t left = fewer(); left > 0; --left) polygons.push_back(rings());
        return polygons;
    }
    std::size_t fewer() { return oneIn(10) ? 0 : 1 + below(4); }

    std::mt19937_64 random_;
    Placing placing_;
    std::size_t largest_;
    std::size_t specials_ = 0;
    double scale_ = 1;
    double shift_ = 0;
    Point3d xAxis_;
    Point3d yAxis_;
};

}  // namespace vexa::test
