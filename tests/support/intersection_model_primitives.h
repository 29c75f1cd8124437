#pragma once

#include "tests/support/intersection_model_rings.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace vexa::test::model {

// ---- Segments -----------------------------------------------------------------------------------

/// No value where the quotient would be too large to trust.
inline std::optional<double> guardedDivide(double numerator, double denominator) {
    if (std::abs(denominator) > std::abs(numerator) * 1e-12) return numerator / denominator;
    return std::nullopt;
}

inline bool pointNearSegment(const Point3d& p, const Point3d& a, const Point3d& b,
                             double tolerance) {
    const Point3d d = difference(b, a);
    const double t = guardedDivide(dot(difference(p, a), d), dot(d, d)).value_or(0);
    Point3d closest = stepAlong(a, t, d);
    if (t <= 0) closest = a;
    if (t >= 1) closest = b;
    return length(difference(p, closest)) <= tolerance;
}

struct LineParameters {
    double onA = 0;
    double onB = 0;
};

/// Where the lines through two segments come closest. No value for parallel or empty ones.
inline std::optional<LineParameters> closestApproach(const Point3d& startA, const Point3d& dA,
                                                     const Point3d& startB, const Point3d& dB) {
    if (length(dA) == 0 || length(dB) == 0) return std::nullopt;

    const Point3d a = normalised(dA);
    const Point3d b = normalised(dB);
    const Point3d w = difference(startB, startA);

    double p = dot(dA, a);
    double q = -dot(dB, a);
    double r = dot(dA, b);
    double u = -dot(dB, b);
    const double largestFirst = std::max(std::abs(p), std::abs(r));
    const double largestSecond = std::max(std::abs(q), std::abs(u));
    if (largestFirst == 0 || largestSecond == 0) return std::nullopt;
    const double scaleFirst = 1 / largestFirst;
    const double scaleSecond = 1 / largestSecond;
    p *= scaleFirst;
    r *= scaleFirst;
    q *= scaleSecond;
    u *= scaleSecond;

    const double sigma1 = 0.5 * std::sqrt((q + r) * (q + r) + (p - u) * (p - u));
    const double sigma2 = 0.5 * std::sqrt((q - r) * (q - r) + (p + u) * (p + u));
    if (std::abs(sigma2 - sigma1) <= 1e-12 * (sigma1 + sigma2)) return std::nullopt;

    const double determinant = (sigma2 - sigma1) * (sigma1 + sigma2);
    const double s = (u * dot(w, a) - q * dot(w, b)) / determinant;
    const double t = (p * dot(w, b) - r * dot(w, a)) / determinant;
    return LineParameters{s * scaleFirst, t * scaleSecond};
}

inline Point3d clampedTo(const Point3d& start, const Point3d& end, double parameter) {
    if (parameter < 0) return start;
    if (parameter > 1) return end;
    return stepAlong(start, parameter, difference(end, start));
}

inline bool segmentsNear(const Point3d& startA, const Point3d& endA, const Point3d& startB,
                         const Point3d& endB, double tolerance) {
    const auto closest =
        closestApproach(startA, difference(endA, startA), startB, difference(endB, startB));
    if (!closest) return false;

    const Point3d onA = clampedTo(startA, endA, closest->onA);
    const Point3d onB = clampedTo(startB, endB, closest->onB);
    return length(difference(onA, onB)) <= tolerance;
}

// ---- Crossings in the plane ---------------------------------------------------------------------

inline double cross2d(const Point3d& u, const Point3d& v) {
    return u.x * v.y - u.y * v.x;
}

struct Edge {
    Point3d start;
    Point3d end;
};

inline std::vector<Edge> edgesOf(const Points& vertices, bool isClosed) {
    std::vector<Edge> edges;
    for (std::size_t i = 1; i < vertices.size(); ++i) {
        edges.push_back({vertices[i - 1], vertices[i]});
    }
    if (isClosed && vertices.size() > 1) edges.push_back({vertices.back(), vertices.front()});
    return edges;
}

inline bool edgeCrossesEdge(const Edge& one, const Edge& other) {
    const Point3d d = difference(one.end, one.start);
    const Point3d f = difference(other.end, other.start);
    const Point3d g = difference(other.start, one.start);
    double k = cross2d(d, f);
    double a = cross2d(g, f);
    double b = cross2d(g, d);
    if (k < 0) {
        k = -k;
        a = -a;
        b = -b;
    }
    if (k == 0) return false;
    const double slack = 1e-12 * k;
    return -slack <= a && a <= k + slack && -slack <= b && b <= k + slack;
}

inline bool edgesCross(const Points& e, bool closeE, const Points& r, bool closeR) {
    for (const Edge& one : edgesOf(e, closeE)) {
        for (const Edge& other : edgesOf(r, closeR)) {
            if (edgeCrossesEdge(one, other)) return true;
        }
    }
    return false;
}

// ---- Points and segments against rings ----------------------------------------------------------

/// A ring's points beside what the tests ask of them.
struct FramedRing {
    explicit FramedRing(const Points& points)
        : plane(polygonNormal(points)),
          frame(fitRingFrame(points)),
          local(frame.isFitted ? intoFrame(frame, points) : points) {}

    double height(const Point3d& p) const { return dot(plane.normal, difference(p, plane.origin)); }
    bool holds(const Point3d& p, double tolerance) const {
        return classifyPointInRings(intoFrame(frame, p), local, tolerance) >= 0;
    }

    Plane plane;
    Frame frame;
    Points local;
};

inline Points pointsOfRuns(const Runs& runs) {
    Points points;
    for (const Points& run : runs) points.insert(points.end(), run.begin(), run.end());
    return points;
}

inline bool pointInRing(const Point3d& p, const Runs& ring, double tolerance) {
    const FramedRing framed(pointsOfRuns(ring));
    if (std::abs(framed.height(p)) > tolerance) return false;
    return framed.holds(p, tolerance);
}

/// A closed ring's vertices, each that is repeated by an edge of no length only once.
inline Points withoutRepeats(const Points& ring) {
    const auto isSamePlace = [](const Point3d& a, const Point3d& b) {
        return a.x == b.x && a.y == b.y;
    };
    Points vertices = ring;
    vertices.erase(std::unique(vertices.begin(), vertices.end(), isSamePlace), vertices.end());
    while (vertices.size() > 1 && isSamePlace(vertices.back(), vertices.front())) {
        vertices.pop_back();
    }
    return vertices;
}

/// The parameters on the line from `start` to `end` at which it meets the closed ring. A separator is a
/// vertex like others here: only the normal and the classification heed it.
inline std::vector<double> crossingsOfLine(const Point3d& start, const Point3d& end,
                                           const Points& ring) {
    std::vector<double> parameters;
    const Point3d d = {end.x - start.x, end.y - start.y, 0};
    if (d.x == 0 && d.y == 0) return parameters;

    const auto side = [&](const Point3d& v) { return cross2d(d, difference(v, start)); };
    const auto parameter = [&](const Point3d& v) {
        return ((v.x - start.x) * d.x + (v.y - start.y) * d.y) / (d.x * d.x + d.y * d.y);
    };
    for (const Point3d& vertex : withoutRepeats(ring)) {
        if (side(vertex) == 0) parameters.push_back(parameter(vertex));
    }
    for (const Edge& edge : edgesOf(ring, true)) {
        const double before = side(edge.start);
        const double after = side(edge.end);
        if ((before < 0 && after > 0) || (before > 0 && after < 0)) {
            const double share = before / (before - after);
            parameters.push_back(
                parameter(stepAlong(edge.start, share, difference(edge.end, edge.start))));
        }
    }
    return parameters;
}

inline bool segmentInPlaneHitsRing(const Point3d& start, const Point3d& end, const FramedRing& ring,
                                   double tolerance) {
    if (std::abs(ring.height(start)) > tolerance) return false;
    if (std::abs(ring.height(end)) > tolerance) return false;
    if (ring.holds(start, tolerance) || ring.holds(end, tolerance)) return true;

    const std::vector<double> parameters =
        crossingsOfLine(intoFrame(ring.frame, start), intoFrame(ring.frame, end), ring.local);
    constexpr std::size_t kMostCrossings = 32;
    if (parameters.size() > kMostCrossings) return false;
    return std::any_of(parameters.begin(), parameters.end(),
                       [](double parameter) { return 0 <= parameter && parameter <= 1; });
}

inline bool segmentHitsRing(const Point3d& start, const Point3d& end, const Runs& runs,
                            double tolerance) {
    const FramedRing ring(pointsOfRuns(runs));
    const Point3d direction = difference(end, start);
    const auto parameter = guardedDivide(-ring.height(start), dot(direction, ring.plane.normal));
    if (!parameter) return segmentInPlaneHitsRing(start, end, ring, tolerance);
    return ring.holds(stepAlong(start, *parameter, direction), tolerance);
}

// ---- Points and segments against polygons -------------------------------------------------------

inline Runs outerRing(const Paths& polygon) {
    return polygon.empty() ? Runs{} : polygon.front();
}

template <class HitsRing>
bool hitsOuterRingButNoHole(const Paths& polygon, HitsRing hitsRing) {
    if (!hitsRing(outerRing(polygon))) return false;
    for (std::size_t i = 1; i < polygon.size(); ++i) {
        if (hitsRing(polygon[i])) return false;
    }
    return true;
}

inline bool pointInPolygon(const Point3d& p, const Paths& polygon, double tolerance) {
    return hitsOuterRingButNoHole(
        polygon, [&](const Runs& ring) { return pointInRing(p, ring, tolerance); });
}

inline bool segmentHitsPolygon(const Point3d& start, const Point3d& end, const Paths& polygon,
                               double tolerance) {
    return hitsOuterRingButNoHole(
        polygon, [&](const Runs& ring) { return segmentHitsRing(start, end, ring, tolerance); });
}

// ---- Rings against rings ------------------------------------------------------------------------

/// Whether a ring that is given in the frame of another one reaches into it.
inline bool walksInto(const Points& moving, const Points& fixed, double tolerance) {
    const auto isInPlane = [&](const Point3d& v) { return std::abs(v.z) <= tolerance; };
    const auto isHeld = [&](const Point3d& v) {
        return classifyPointInRings(v, fixed, tolerance) >= 0;
    };

    if (isInPlane(moving.front()) && isHeld(moving.front())) return true;
    for (std::size_t i = 1; i < moving.size(); ++i) {
        const Point3d& from = moving[i - 1];
        const Point3d& to = moving[i];
        if (isInPlane(from) && isHeld(to)) return true;
        if (isInPlane(from) && isInPlane(to)) {
            if (edgesCross({from, to}, false, fixed, true)) return true;
        } else if (from.z * to.z < 0) {
            const Point3d d = difference(to, from);
            const double drop = from.z - to.z;
            const Point3d cut = {from.x + d.x * from.z / drop, from.y + d.y * from.z / drop,
                                 from.z + d.z * from.z / drop};
            if (isHeld(cut)) return true;
        }
    }
    return false;
}

inline double largestIn(const Range3d& box) {
    return std::max({largestComponent(box.low), largestComponent(box.high),
                     largestComponent(difference(box.high, box.low))});
}

inline bool polygonsIntersect(const Points& a, const Points& b) {
    const Frame frameA = fitRingFrame(a);
    const Frame frameB = fitRingFrame(b);
    if (!frameA.isFitted || !frameB.isFitted) return false;

    const Points aInA = intoFrame(frameA, a);
    const Points bInA = intoFrame(frameA, b);
    const Points aInB = intoFrame(frameB, a);
    const Points bInB = intoFrame(frameB, b);
    const Range3d boxA = boxOfPoints(aInA);
    const Range3d boxB = boxOfPoints(bInA);
    const double tolerance = 1e-12 * (largestIn(boxA) + largestIn(boxB));
    if (!rangesOverlap(boxA, boxB)) return false;
    if (!rangesOverlap(boxOfPoints(bInB), boxOfPoints(aInB))) return false;

    if (!areParallel(frameA.normal, frameB.normal)) {
        return walksInto(bInA, aInA, tolerance) || walksInto(aInB, bInB, tolerance);
    }

    const Range3d both = folded(boxA, boxB);
    if (both.high.z - both.low.z >= tolerance) return false;
    return classifyPointInRings(bInA.front(), aInA, tolerance) >= 0 ||
           classifyPointInRings(aInB.front(), bInB, tolerance) >= 0 ||
           edgesCross(aInA, false, bInA, false);
}

inline bool ringsIntersect(const Runs& a, const Runs& b) {
    return polygonsIntersect(pointsOfRuns(a), pointsOfRuns(b));
}

}  // namespace vexa::test::model
