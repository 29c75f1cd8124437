#include "geometry/intersection/pair_tests.h"

#include "geometry/intersection/polygon_polygon.h"
#include "geometry/intersection/prepared_polygon.h"
#include "geometry/intersection/segment_distance.h"
#include "geometry/intersection/segment_set.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <tuple>

namespace vexa {

namespace {

/// Working arrays: on the stack while they are small, on the heap beyond.
class WorkMemory {  // NOLINT(*-member-init)
public:
    std::pmr::memory_resource* resource() { return &memory_; }

private:
    static constexpr std::size_t kOnStack = 16384;
    std::array<std::byte, kOnStack> room_;  // not worth clearing
    std::pmr::monotonic_buffer_resource memory_{room_.data(), room_.size()};
};

Outcome asOutcome(bool isMeeting) {
    return isMeeting ? Outcome::Meeting : Outcome::Apart;
}

// ---- Points against points ----------------------------------------------------------------------

bool areEqual(const Point3d& a, const Point3d& b) {
    return RangesOverlap({a, a}, {b, b});
}

bool isNumber(const Point3d& point) {
    return areEqual(point, point);
}

bool isBefore(const Point3d& a, const Point3d& b) {
    return std::tie(a.x, a.y, a.z) < std::tie(b.x, b.y, b.z);
}

bool anyEqualPair(const Points& first, const Points& second) {
    return std::any_of(first.begin(), first.end(), [&](const Point3d& a) {
        return std::any_of(second.begin(), second.end(),
                           [&](const Point3d& b) { return areEqual(a, b); });
    });
}

/// One of the two in order, so that each point of the other is looked up.
bool anyEqualBySorting(const Points& first, const Points& second) {
    WorkMemory memory;
    std::pmr::vector<Point3d> sorted{memory.resource()};
    sorted.reserve(second.size());
    std::copy_if(second.begin(), second.end(), std::back_inserter(sorted), isNumber);
    std::sort(sorted.begin(), sorted.end(), isBefore);
    return std::any_of(first.begin(), first.end(), [&](const Point3d& point) {
        return isNumber(point) && std::binary_search(sorted.begin(), sorted.end(), point, isBefore);
    });
}

bool anyEqual(const Points& first, const Points& second) {
    constexpr std::size_t kFewPairs = 512;
    if (first.size() * second.size() <= kFewPairs) return anyEqualPair(first, second);
    try {
        return anyEqualBySorting(first, second);
    } catch (const std::bad_alloc&) {
        return anyEqualPair(first, second);  // slower, but it needs no memory
    }
}

}  // namespace

Outcome anyMeet(const Points& first, const Points& second, const Asking&) {
    return anyEqual(first, second) ? Outcome::Meeting : Outcome::Untouched;
}

// ---- Points and paths against paths -------------------------------------------------------------

Outcome anyMeet(const Points& points, const Paths& paths, const Asking& asking) {
    if (points.empty() || (asking.isResultSet && !firstRunHasSegment(paths))) {
        return Outcome::Untouched;
    }
    WorkMemory memory;
    const Segments segments = segmentsOf(paths, memory.resource());
    if (segments.empty()) return Outcome::Untouched;

    return asOutcome(anyPointNearSegment(points, segments, asking.tolerance, memory.resource()));
}

Outcome anyMeet(const Paths& first, const Paths& second, const Asking& asking) {
    const bool firstStepAsks = firstRunHasSegment(first) && firstRunHasSegment(second);
    if (asking.isResultSet && !firstStepAsks) return Outcome::Untouched;

    WorkMemory memory;
    const Segments firstSegments = segmentsOf(first, memory.resource());
    const Segments secondSegments = segmentsOf(second, memory.resource());
    if (firstSegments.empty() || secondSegments.empty()) return Outcome::Untouched;

    return asOutcome(
        anySegmentsNear(firstSegments, secondSegments, asking.tolerance, memory.resource()));
}

// ---- Points and paths against polygons ----------------------------------------------------------

Outcome anyMeet(const Points& points, const Polygons& polygons, const Asking& asking) {
    Outcome outcome = Outcome::Untouched;
    if (points.empty()) return outcome;

    for (const PathList& polygon : polygons) {
        WorkMemory memory;
        PreparedPolygon prepared{polygon, asking.tolerance, memory.resource()};
        const bool isHeld = std::any_of(points.begin(), points.end(), [&](const Point3d& point) {
            return prepared.PointInPolygon(point);
        });
        if (isHeld) return Outcome::Meeting;
        outcome = Outcome::Apart;
    }
    return outcome;
}

Outcome anyMeet(const Paths& paths, const Polygons& polygons, const Asking& asking) {
    Outcome outcome = Outcome::Untouched;
    if (asking.isResultSet && !firstRunHasSegment(paths)) return outcome;

    WorkMemory segmentMemory;
    const Segments segments = segmentsOf(paths, segmentMemory.resource());
    if (segments.empty()) return outcome;

    for (const PathList& polygon : polygons) {
        WorkMemory memory;
        PreparedPolygon prepared{polygon, asking.tolerance, memory.resource()};
        const bool isHit = std::any_of(segments.begin(), segments.end(), [&](const Point3d* start) {
            return prepared.SegmentHitsPolygon(start[0], start[1]);
        });
        if (isHit) return Outcome::Meeting;
        outcome = Outcome::Apart;
    }
    return outcome;
}

// ---- Polygons against polygons ------------------------------------------------------------------

// The rings of the second are framed once, when the first of the first ones gets to them.
Outcome anyMeet(const Polygons& first, const Polygons& second, const Asking&) {
    WorkMemory framedMemory;
    std::pmr::vector<FramedRing> framed{framedMemory.resource()};
    framed.reserve(second.size());

    Outcome outcome = Outcome::Untouched;
    for (const PathList& polygon : first) {
        WorkMemory ringMemory;
        const FramedRing ring{outerRing(polygon), ringMemory.resource()};
        std::size_t index = 0;
        for (const PathList& other : second) {
            WorkMemory memory;
            if (index == framed.size()) {
                framed.emplace_back(outerRing(other), framedMemory.resource());
            }
            if (PolygonsIntersect(ring, framed[index], memory.resource())) return Outcome::Meeting;
            outcome = Outcome::Apart;
            ++index;
        }
    }
    return outcome;
}

}  // namespace vexa
