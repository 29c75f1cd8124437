#include "geometry/intersection/level_lines.h"
#include "geometry/intersection/level_point.h"
#include "geometry/intersection/level_rings.h"
#include "geometry/intersection/level_shapes.h"
#include "geometry/intersection/pair_tests.h"
#include "geometry/intersection/polygon_polygon.h"
#include "geometry/intersection/prepared_polygon.h"
#include "geometry/intersection/segment_pairs.h"
#include "geometry/intersection/segment_set.h"
#include "geometry/intersection/work_memory.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <optional>
#include <vector>

namespace vexa {

namespace {

// ---- Points -------------------------------------------------------------------------------------

/// A polygon that is asked by points. Looking at all its vertices for each of the first few is quicker
/// than to prepare it.
class AskedPolygon {
public:
    AskedPolygon(const PathList& polygon, double tolerance)
        : polygon_(polygon), tolerance_(tolerance) {}

    bool holds(const Point3d& point) {
        if (quickLooks_ > 0) {
            --quickLooks_;
            const auto levelPoint = LevelPoint::of(point, tolerance_);
            const auto isHeld = levelPoint ? levelPoint->isHeldBy(polygon_) : std::nullopt;
            if (isHeld) return *isHeld;
        }
        if (!prepared_) prepared_.emplace(polygon_, tolerance_, memory_.resource());
        return prepared_->PointInPolygon(point);
    }

private:
    const PathList& polygon_;
    double tolerance_;
    int quickLooks_ = 4;
    WorkMemory memory_;
    std::optional<PreparedPolygon> prepared_;
};

/// Asks for each point, or for those alone that are near the polygon.
bool isAnyHeld(const Points& points, const std::optional<PointTree>& tree, const PathList& polygon,
               double tolerance) {
    AskedPolygon asked{polygon, tolerance};
    const auto holds = [&](const Point3d& point) { return asked.holds(point); };
    const auto isHeld = tree ? tree->anyNear(outerRing(polygon), holds) : std::nullopt;
    return isHeld ? *isHeld : std::any_of(points.begin(), points.end(), holds);
}

// Without memory every point is asked.
std::optional<PointTree> pointTree(const Points& points, const Polygons& polygons, double tolerance,
                                   std::pmr::memory_resource* memory) {
    constexpr std::size_t kFewPoints = 8;
    if (points.size() <= kFewPoints || polygons.size() < 2) return std::nullopt;
    try {
        return PointTree::of(points, tolerance, memory);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

}  // namespace

Outcome anyMeet(const Points& points, const Polygons& polygons, const Asking& asking) {
    Outcome outcome = Outcome::Untouched;
    if (points.empty()) return outcome;

    WorkMemory memory;
    const std::optional<PointTree> tree =
        pointTree(points, polygons, asking.tolerance, memory.resource());
    for (const PathList& polygon : polygons) {
        if (isAnyHeld(points, tree, polygon, asking.tolerance)) return Outcome::Meeting;
        outcome = Outcome::Apart;
    }
    return outcome;
}

// ---- Paths --------------------------------------------------------------------------------------

namespace {

/// Whether the test holds for some segment, by its start.
template <class Test>
bool anySegment(const Paths& paths, const Test& test) {
    RunWalk runs{paths};
    for (Points run; runs.next(run);) {
        for (std::size_t i = 1; i < run.size(); ++i) {
            if (test(&run[i - 1])) return true;
        }
    }
    return false;
}

// Without memory to find out every segment is asked.
LevelLines::Before beforePolygon(const std::optional<LevelLines>& lines, const PathList& polygon,
                                 std::pmr::vector<const Point3d*>& asked,
                                 std::pmr::memory_resource* memory) {
    if (!lines) return LevelLines::Before::Unknown;
    try {
        const RingVertices ring{outerRing(polygon), memory};
        return lines->before(ring.get(), asked, memory);
    } catch (const std::bad_alloc&) {
        return LevelLines::Before::Unknown;
    }
}

bool anySegmentHits(const Paths& paths, const std::optional<LevelLines>& lines,
                    const PathList& polygon, double tolerance) {
    WorkMemory memory;
    std::pmr::vector<const Point3d*> asked{memory.resource()};
    const auto before = beforePolygon(lines, polygon, asked, memory.resource());
    if (before == LevelLines::Before::Apart) return false;

    PreparedPolygon prepared{polygon, tolerance, memory.resource()};
    const auto hits = [&](const Point3d* start) {
        return prepared.SegmentHitsPolygon(start[0], start[1]);
    };
    return before == LevelLines::Before::Listed ? std::any_of(asked.begin(), asked.end(), hits)
                                                : anySegment(paths, hits);
}

/// Below this many segments and vertices each segment is asked at once.
constexpr std::size_t kFewQuestions = 16;

std::optional<LevelLines> levelLines(const Paths& paths, const Polygons& polygons, double tolerance,
                                     std::pmr::memory_resource* memory) {
    const bool areFew = countSegments(RunWalk{paths}, kFewQuestions) <= kFewQuestions &&
                        countSegments(RunWalk{polygons}, kFewQuestions) <= kFewQuestions;
    const std::optional<Range3d> area = areFew ? std::nullopt : plainRange(RunWalk{polygons});
    if (!area) return std::nullopt;
    try {
        return LevelLines::of(paths, *area, tolerance, memory);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

}  // namespace

Outcome anyMeet(const Paths& paths, const Polygons& polygons, const Asking& asking) {
    Outcome outcome = Outcome::Untouched;
    if (asking.isResultSet && !firstRunHasSegment(paths)) return outcome;
    if (!hasSegment(paths)) return outcome;

    WorkMemory memory;
    const std::optional<LevelLines> lines =
        levelLines(paths, polygons, asking.tolerance, memory.resource());
    for (const PathList& polygon : polygons) {
        if (anySegmentHits(paths, lines, polygon, asking.tolerance)) return Outcome::Meeting;
        outcome = Outcome::Apart;
    }
    return outcome;
}

// ---- Polygons -----------------------------------------------------------------------------------

namespace {

/// The outer rings of polygons, framed when a question gets to them.
class FramedRings {
public:
    FramedRings(const Polygons& polygons, std::pmr::memory_resource* memory)
        : memory_(memory), rings_(memory), framed_(polygons.size(), memory) {
        rings_.reserve(polygons.size());
        for (const PathList& polygon : polygons) rings_.push_back(outerRing(polygon));
    }

    const Path* path(std::size_t number) const { return rings_[number]; }

    const FramedRing& operator[](std::size_t number) {
        std::optional<FramedRing>& ring = framed_[number];
        if (!ring) ring.emplace(rings_[number], memory_);
        return *ring;
    }

private:
    std::pmr::memory_resource* memory_;
    std::pmr::vector<const Path*> rings_;
    std::pmr::vector<std::optional<FramedRing>> framed_;
};

// Without memory for it, and for few pairs, every pair is asked.
std::optional<OuterRingTree> outerRingTree(const Polygons& first, const Polygons& second,
                                           std::pmr::memory_resource* memory) {
    constexpr std::size_t kFewPairs = 8;
    if (std::size_t{first.size()} * second.size() <= kFewPairs) return std::nullopt;
    try {
        return std::optional<OuterRingTree>{std::in_place, second, memory};
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

}  // namespace

Outcome anyMeet(const Polygons& first, const Polygons& second, const Asking&) {
    if (first.size() == 0 || second.size() == 0) return Outcome::Untouched;

    WorkMemory treeMemory;
    WorkMemory framedMemory;
    const std::optional<OuterRingTree> tree = outerRingTree(first, second, treeMemory.resource());
    FramedRings framed{second, framedMemory.resource()};
    for (const PathList& polygon : first) {
        WorkMemory ringMemory;
        std::optional<FramedRing> ring;
        const auto intersects = [&](std::size_t number) {
            WorkMemory memory;
            const Sure sure =
                levelRings(outerRing(polygon), framed.path(number), memory.resource());
            if (sure != Sure::Unsure) return sure == Sure::Meeting;
            if (!ring) ring.emplace(outerRing(polygon), ringMemory.resource());
            return PolygonsIntersect(*ring, framed[number], memory.resource());
        };
        if (tree) {
            if (tree->anyNear(outerRing(polygon), intersects)) return Outcome::Meeting;
            continue;
        }
        for (std::size_t number = 0; number < second.size(); ++number) {
            if (intersects(number)) return Outcome::Meeting;
        }
    }
    return Outcome::Apart;
}

}  // namespace vexa
