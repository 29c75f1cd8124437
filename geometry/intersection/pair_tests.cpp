#include "geometry/intersection/pair_tests.h"

#include "geometry/intersection/equal_points.h"
#include "geometry/intersection/segment_pairs.h"
#include "geometry/intersection/segment_set.h"
#include "geometry/intersection/work_memory.h"

namespace vexa {

namespace {

Outcome asOutcome(bool isMeeting) {
    return isMeeting ? Outcome::Meeting : Outcome::Apart;
}

}  // namespace

Outcome anyMeet(const Points& first, const Points& second, const Asking&) {
    return anyEqual(first, second) ? Outcome::Meeting : Outcome::Untouched;
}

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
    if (!hasSegment(first) || !hasSegment(second)) return Outcome::Untouched;

    WorkMemory memory;
    return asOutcome(anySegmentsNear(first, second, asking.tolerance, memory.resource()));
}

}  // namespace vexa
