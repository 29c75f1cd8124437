#include "bench/shapes.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace vexa::bench {

namespace {

using Points = std::vector<Point3d>;

constexpr double kTurn = 6.283185307179586;
constexpr double kBeside = 1.001;
constexpr unsigned kSeed = 20;

Point3d polar(double angle, double radius) {
    return {radius * std::cos(angle), radius * std::sin(angle), 0};
}

/// A vertex of the coast, a circle with forty bays, as seen from its middle: copies of it at two
/// scales never meet as long as their vertices lie at the same angles.
Point3d coastVertex(double turn, double scale) {
    constexpr double kBays = 40;
    return polar(kTurn * turn, scale * (1 + 0.1 * std::sin(kBays * kTurn * turn)));
}

double turnOf(std::size_t index, std::size_t count) {
    return static_cast<double>(index) / static_cast<double>(count - 1);
}

/// Once around; the last vertex is the first again.
Points coast(std::size_t count, double scale) {
    Points points(count);
    for (std::size_t i = 0; i < count; ++i) points[i] = coastVertex(turnOf(i, count), scale);
    points.back() = points.front();
    return points;
}

Points lineEnteringAtTheEnd(std::size_t count) {
    Points points = coast(count, kBeside);
    points.back() = coastVertex(1, 0.9);
    return points;
}

/// Out to the coast's second half, back along it.
Points neighbourOf(std::size_t count) {
    constexpr double kFarSide = 1.3;
    const std::size_t steps = (count - 3) / 2;
    const std::size_t last = count - 2;
    Points ring;
    for (std::size_t i = 0; i <= steps; ++i) {
        ring.push_back(coastVertex(turnOf(last - i, count), kFarSide));
    }
    for (std::size_t i = steps + 1; i-- > 0;) {
        ring.push_back(coastVertex(turnOf(last - i, count), kBeside));
    }
    ring.push_back(ring.front());
    return ring;
}

Points spiral(std::size_t count, double gap) {
    // Twenty vertices a turn keep the chords of one arm off the other.
    const double turns = std::min(10.0, static_cast<double>(count) / 20);
    Points points(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double turn = turns * turnOf(i, count);
        points[i] = polar(kTurn * turn, 1 + turn + gap);
    }
    return points;
}

/// Teeth of four vertices each, two at least, from `back` to `tips`, `shift` up; closed behind its back.
Points comb(std::size_t count, double back, double tips, double shift) {
    constexpr double kWidth = 0.4;
    const std::size_t teeth = std::max<std::size_t>(2, (count - 3) / 4);
    const double behind = back < tips ? back - 0.5 : back + 0.5;
    Points ring;
    for (std::size_t i = 0; i < teeth; ++i) {
        const double y = static_cast<double>(i) + shift;
        ring.insert(ring.end(), {{back, y, 0}, {tips, y, 0}});
        ring.insert(ring.end(), {{tips, y + kWidth, 0}, {back, y + kWidth, 0}});
    }
    ring.insert(ring.end(), {{behind, ring.back().y, 0}, {behind, ring.front().y, 0}});
    ring.push_back(ring.front());
    return ring;
}

/// Whether the point lies beyond the chord of the coast at its angle.
bool isOffCoast(const Point3d& point, const Points& ring) {
    const std::size_t chords = ring.size() - 1;
    double turn = std::atan2(point.y, point.x) / kTurn;
    if (turn < 0) turn += 1;
    const auto chord =
        std::min(static_cast<std::size_t>(turn * static_cast<double>(chords)), chords - 1);
    const Point3d& a = ring[chord];
    const Point3d& b = ring[chord + 1];
    return (b.x - a.x) * (point.y - a.y) - (b.y - a.y) * (point.x - a.x) < -1e-6;
}

Point3d greatest(const Points& points) {
    Point3d high = points.front();
    for (const Point3d& point : points) {
        high = {std::max(high.x, point.x), std::max(high.y, point.y), 0};
    }
    return high;
}

/// All over the ring's box, none inside the ring.
Points pointsAround(const Points& ring, std::size_t count) {
    const Point3d corner = greatest(ring);
    std::mt19937_64 random{kSeed};
    std::uniform_real_distribution<double> across{-corner.x, corner.x};
    std::uniform_real_distribution<double> up{-corner.y, corner.y};
    Points points;
    while (points.size() < count) {
        const Point3d point = {across(random), up(random), 0};
        if (isOffCoast(point, ring)) points.push_back(point);
    }
    return points;
}

Points scattered(std::size_t count, unsigned seed) {
    std::mt19937_64 random{seed};
    std::uniform_real_distribution<double> place{-1, 1};
    Points points(count);
    for (Point3d& point : points) point = {place(random), place(random), 0};
    return points;
}

/// Arcs of ten vertices around the places of a square grid, `part` of a full turn each.
std::vector<Points> arcsOnGrid(std::size_t count, double offset, double part) {
    constexpr std::size_t kVertices = 10;
    constexpr double kRadius = 0.34;
    const auto columns = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count))));
    std::vector<Points> arcs(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t row = i / columns;
        const double x = static_cast<double>(i - row * columns) + offset;
        const double y = static_cast<double>(row) + offset;
        for (std::size_t k = 0; k < kVertices; ++k) {
            const Point3d off = polar(kTurn * part * turnOf(k, kVertices), kRadius);
            arcs[i].push_back({x + off.x, y + off.y, 0});
        }
        if (part == 1) arcs[i].back() = arcs[i].front();
    }
    return arcs;
}

Shape linesOnGrid(std::size_t count, double offset) {
    return {VEXA_MULTILINESTRING, arcsOnGrid(count, offset, 0.5)};
}

Shape polygonsOnGrid(std::size_t count, double offset) {
    return {VEXA_MULTIPOLYGON, arcsOnGrid(count, offset, 1)};
}

}  // namespace

Shape lineOf(Points points) {
    return {VEXA_LINESTRING, {std::move(points)}};
}

Shape polygonOf(Points ring) {
    return {VEXA_POLYGON, {std::move(ring)}};
}

Shape pointsOf(Points points) {
    return {VEXA_MULTIPOINT, {std::move(points)}};
}

ShapePair linesSideBySide(std::size_t count) {
    return {lineOf(coast(count, 1)), lineOf(coast(count, kBeside))};
}

ShapePair interleavedSpirals(std::size_t count) {
    return {lineOf(spiral(count, 0)), lineOf(spiral(count, 0.5))};
}

ShapePair linesCrossingAtTheEnd(std::size_t count) {
    return {lineOf(coast(count, 1)), lineOf(lineEnteringAtTheEnd(count))};
}

ShapePair polygonAndLineAround(std::size_t count) {
    return {polygonOf(coast(count, 1)), lineOf(coast(count, kBeside))};
}

ShapePair polygonAndLineEnteringAtTheEnd(std::size_t count) {
    return {polygonOf(coast(count, 1)), lineOf(lineEnteringAtTheEnd(count))};
}

ShapePair neighbourPolygons(std::size_t count) {
    return {polygonOf(coast(count, 1)), polygonOf(neighbourOf(count))};
}

ShapePair interlockedCombs(std::size_t count) {
    return {polygonOf(comb(count, 0, 1, 0)), polygonOf(comb(count, 1.2, 0.2, 0.5))};
}

ShapePair neighbourEnteringAtTheEnd(std::size_t count) {
    Points ring = neighbourOf(count);
    // Half a step back, so that it meets the coast beside its vertices.
    const double step = turnOf(1, count);
    ring[ring.size() - 2] = coastVertex(turnOf(count - 2, count) - step / 2, 0.8);
    return {polygonOf(coast(count, 1)), polygonOf(ring)};
}

ShapePair polygonAndThousandPointsAround(std::size_t count) {
    const Points ring = coast(count, 1);
    return {polygonOf(ring), pointsOf(pointsAround(ring, 1000))};
}

ShapePair polygonAndPointBeside(std::size_t count) {
    const Points ring = coast(count, 1);
    const Point3d corner = greatest(ring);
    return {polygonOf(ring), {VEXA_POINT, {{{0.95 * corner.x, 0.95 * corner.y, 0}}}}};
}

ShapePair multipointsApart(std::size_t count) {
    return {pointsOf(scattered(count, kSeed)), pointsOf(scattered(count, kSeed + 1))};
}

ShapePair linesOnGrids(std::size_t count) {
    return {linesOnGrid(count, 0), linesOnGrid(count, 0.5)};
}

ShapePair polygonsOnGrids(std::size_t count) {
    return {polygonsOnGrid(count, 0), polygonsOnGrid(count, 0.5)};
}

ShapePair polygonsAndLinesOnGrids(std::size_t count) {
    return {polygonsOnGrid(count, 0), linesOnGrid(count, 0.5)};
}

}  // namespace vexa::bench
