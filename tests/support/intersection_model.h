#pragma once

#include "tests/support/intersection_model_primitives.h"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace vexa::test {

/// A geometry as lists of lists. A point has one point; a linestring one list of paths with one
/// path; a polygon and a multilinestring one list of paths.
struct Shape {
    std::uint32_t type = 0;
    Points points;
    Polygons parts;
};

inline Shape pointShape(const Point3d& point) {
    return {VEXA_POINT, {point}, {}};
}
inline Shape lineShape(Runs runs) {
    return {VEXA_LINESTRING, {}, {{std::move(runs)}}};
}
inline Shape polygonShape(Paths rings) {
    return {VEXA_POLYGON, {}, {std::move(rings)}};
}
inline Shape multipointShape(Points points) {
    return {VEXA_MULTIPOINT, std::move(points), {}};
}
inline Shape multilineShape(Paths lines) {
    return {VEXA_MULTILINESTRING, {}, {std::move(lines)}};
}
inline Shape multipolygonShape(Polygons polygons) {
    return {VEXA_MULTIPOLYGON, {}, std::move(polygons)};
}

/// The shape as a geometry buffer.
inline Bytes bufferOf(const Shape& shape) {
    switch (shape.type) {
        case VEXA_POINT: return pointOf(shape.points.front());
        case VEXA_LINESTRING: return lineOf(shape.parts.front().front());
        case VEXA_POLYGON: return polygonOf(shape.parts.front());
        case VEXA_MULTIPOINT: return multipointOf(shape.points);
        case VEXA_MULTILINESTRING: return multilineOf(shape.parts.front());
        default: return multipolygonOf(shape.parts);
    }
}

namespace model {

inline Range3d boxOfPath(const Runs& runs) {
    return boxOfList(runs, boxOfPoints);
}
inline Range3d boxOfPaths(const Paths& paths) {
    return boxOfList(paths, boxOfPath);
}
inline Range3d boxOfShape(const Shape& shape) {
    switch (shape.type) {
        case VEXA_POINT:
        case VEXA_MULTIPOINT: return boxOfPoints(shape.points);
        case VEXA_LINESTRING: return boxOfPath(shape.parts.front().front());
        case VEXA_POLYGON:
        case VEXA_MULTILINESTRING: return boxOfPaths(shape.parts.front());
        default: return boxOfList(shape.parts, boxOfPaths);
    }
}

/// Runs the test of the shapes' types. The one flag is both what the caller handed in and what ends
/// every loop.
class Intersection {
public:
    Intersection(double tolerance, std::uint32_t result) : tolerance_(tolerance), result_(result) {}

    std::uint32_t result() const { return result_; }

    void intersect(const Shape& first, const Shape& second) {
        if (first.type > second.type) {
            ordered(second, first);
        } else {
            ordered(first, second);
        }
    }

private:
    void ordered(const Shape& first, const Shape& second) {
        if (!rangesOverlap(boxOfShape(first), boxOfShape(second))) {
            result_ = 0;
            return;
        }
        // A single geometry is a list of one, so six types come down to three kinds of member.
        switch (kindOf(first)) {
            case Kind::Points:
                untilHit(first.points, [&](const Point3d& p) { pointAgainst(p, second); });
                return;
            case Kind::Lines:
                untilHit(first.parts.front(), [&](const Runs& line) { lineAgainst(line, second); });
                return;
            case Kind::Polygons:
                untilHit(first.parts, [&](const Paths& p) { polygonAgainst(p, first, second); });
                return;
        }
    }

    enum class Kind { Points, Lines, Polygons };

    static Kind kindOf(const Shape& shape) {
        if (shape.type == VEXA_POINT || shape.type == VEXA_MULTIPOINT) return Kind::Points;
        if (shape.type == VEXA_POLYGON || shape.type == VEXA_MULTIPOLYGON) return Kind::Polygons;
        return Kind::Lines;
    }

    void pointAgainst(const Point3d& p, const Shape& other) {
        switch (kindOf(other)) {
            case Kind::Points:
                untilHit(other.points, [&](const Point3d& q) {
                    if (p.x == q.x && p.y == q.y && p.z == q.z) result_ = 1;
                });
                return;
            case Kind::Lines:
                untilHit(other.parts.front(), [&](const Runs& line) { pointNearPath(p, line); });
                return;
            case Kind::Polygons:
                untilHit(other.parts, [&](const Paths& polygon) {
                    result_ = pointInPolygon(p, polygon, tolerance_) ? 1 : 0;
                });
                return;
        }
    }

    void lineAgainst(const Runs& line, const Shape& other) {
        switch (kindOf(other)) {
            case Kind::Points:
                untilHit(other.points, [&](const Point3d& p) { pointNearPath(p, line); });
                return;
            case Kind::Lines:
                untilHit(other.parts.front(), [&](const Runs& with) { pathsNear(line, with); });
                return;
            case Kind::Polygons:
                untilHit(other.parts, [&](const Paths& polygon) { pathHits(line, polygon); });
                return;
        }
    }

    void polygonAgainst(const Paths& polygon, const Shape& first, const Shape& other) {
        switch (kindOf(other)) {
            case Kind::Points:
                untilHit(other.points, [&](const Point3d& p) {
                    result_ = pointInPolygon(p, polygon, tolerance_) ? 1 : 0;
                });
                return;
            case Kind::Lines:
                untilHit(other.parts.front(), [&](const Runs& line) { pathHits(line, polygon); });
                return;
            case Kind::Polygons:
                untilHit(other.parts, [&](const Paths& member) {
                    const bool isMemberFirst = first.type != other.type;
                    const bool hit = isMemberFirst
                                         ? ringsIntersect(outerRing(member), outerRing(polygon))
                                         : ringsIntersect(outerRing(polygon), outerRing(member));
                    result_ = hit ? 1 : 0;
                });
                return;
        }
    }

    void pointNearPath(const Point3d& p, const Runs& path) {
        untilHit(path, [&](const Points& run) {
            untilHit(edgesOf(run, false), [&](const Edge& segment) {
                result_ = pointNearSegment(p, segment.start, segment.end, tolerance_) ? 1 : 0;
            });
        });
    }

    void pathsNear(const Runs& pathA, const Runs& pathB) {
        untilHit(pathA, [&](const Points& runA) {
            untilHit(pathB, [&](const Points& runB) { runsNear(runA, runB); });
        });
    }

    void runsNear(const Points& runA, const Points& runB) {
        untilHit(edgesOf(runA, false), [&](const Edge& a) {
            untilHit(edgesOf(runB, false), [&](const Edge& b) {
                result_ = segmentsNear(a.start, a.end, b.start, b.end, tolerance_) ? 1 : 0;
            });
        });
    }

    void pathHits(const Runs& path, const Paths& polygon) {
        untilHit(path, [&](const Points& run) {
            untilHit(edgesOf(run, false), [&](const Edge& segment) {
                result_ = segmentHitsPolygon(segment.start, segment.end, polygon, tolerance_);
            });
        });
    }

    /// Steps through a list. Whatever wrote the 1 that the result reads after a step ends it.
    template <class List, class Step>
    void untilHit(const List& list, Step step) {
        for (const auto& element : list) {
            step(element);
            if (result_ == 1) return;
        }
    }

    double tolerance_;
    std::uint32_t result_;
};

/// The flag that `vexaWKB_intersectGeometry` leaves behind.
inline std::uint32_t intersect(const Shape& first, const Shape& second, double tolerance,
                               std::uint32_t result) {
    Intersection test(tolerance, result);
    test.intersect(first, second);
    return test.result();
}

}  // namespace model
}  // namespace vexa::test
