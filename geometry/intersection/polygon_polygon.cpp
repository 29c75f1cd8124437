#include "geometry/intersection/polygon_polygon.h"

#include "geometry/intersection/edge_crossings.h"
#include "geometry/intersection/prepared_polygon.h"
#include "geometry/intersection/ring_classification.h"
#include "geometry/intersection/segment_distance.h"
#include "geometry/range.h"
#include "transform/vector.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace vexa {

namespace {

constexpr double kToleranceFactor = 1e-12;

using Points = std::span<const Point3d>;

std::pmr::vector<Point3d> transformed(const Transform& transform, Points points,
                                      std::pmr::memory_resource* memory) {
    std::pmr::vector<Point3d> result(points.size(), memory);
    applyTransformToPoints(transform, result.data(), points.data(),
                           static_cast<std::int32_t>(points.size()));
    return result;
}

/// The largest magnitude among a box's corners and its diagonal.
double magnitudeOf(const Range3d& box) {
    double largest = 0;
    for (const Point3d& vector : {box.low, box.high, box.high - box.low}) {
        largest =
            std::max({largest, std::fabs(vector.x), std::fabs(vector.y), std::fabs(vector.z)});
    }
    return largest;
}

/// Two rings in one plane, in that plane's frame and in the frame of the second.
bool coplanarRingsMeet(Points a, Points bInA, RingClassifier& inA, Points b, Points aInB,
                       double tolerance, std::pmr::memory_resource* memory) {
    if (isInsideOrOn(inA.classify(bInA.front()))) return true;

    RingClassifier inB{b, tolerance, memory};
    if (isInsideOrOn(inB.classify(aInB.front()))) return true;

    return openPolylinesCross(a, bInA, memory);
}

/// Whether a moving ring meets a fixed one: both in the fixed one's frame, where z is the height above
/// its plane. The moving ring is not closed by an edge from its last vertex to its first.
bool meetsOutsideThePlane(Points moving, Points fixed, RingClassifier& inFixed, double tolerance,
                          std::pmr::memory_resource* memory) {
    std::optional<RingEdges> edges;
    const auto isInPlane = [&](const Point3d& vertex) { return std::fabs(vertex.z) <= tolerance; };
    const auto isInside = [&](const Point3d& point) {
        return isInsideOrOn(inFixed.classify(point));
    };

    if (isInPlane(moving.front()) && isInside(moving.front())) return true;

    for (std::size_t i = 1; i < moving.size(); ++i) {
        const Point3d& start = moving[i - 1];
        const Point3d& end = moving[i];
        // The start lies in the plane and it is the end that is looked at: an end off the plane counts
        // by the x and y that it has there.
        if (isInPlane(start) && isInside(end)) return true;

        if (isInPlane(start) && isInPlane(end)) {
            if (!edges) edges.emplace(fixed, memory);
            if (edges->areCrossedBy(start, end)) return true;
        } else if (start.z * end.z < 0) {
            const Point3d cut = start + (end - start) * start.z / (start.z - end.z);
            if (isInside(cut)) return true;
        }
    }
    return false;
}

}  // namespace

FramedRing::FramedRing(const Path* ring, std::pmr::memory_resource* memory)
    : world(ring, memory), frame(FitRingFrame(world.get())), local(memory) {
    if (!frame) return;
    local = transformed(frame->toLocal, world.get(), memory);
    localBox = rangeOf(local);
}

bool PolygonsIntersect(const FramedRing& a, const FramedRing& b,
                       std::pmr::memory_resource* memory) {
    if (!a.frame || !b.frame) return false;

    const auto bInA = transformed(a.frame->toLocal, b.world.get(), memory);
    const auto aInB = transformed(b.frame->toLocal, a.world.get(), memory);
    const Range3d boxOfBInA = rangeOf(bInA);
    const Range3d boxOfAInB = rangeOf(aInB);
    if (!RangesOverlap(a.localBox, boxOfBInA) || !RangesOverlap(b.localBox, boxOfAInB)) {
        return false;
    }
    const double tolerance = kToleranceFactor * (magnitudeOf(a.localBox) + magnitudeOf(boxOfBInA));
    RingClassifier inA{a.local, tolerance, memory};
    if (areParallel(a.frame->normal, b.frame->normal)) {
        const double low = std::min(a.localBox.low.z, boxOfBInA.low.z);
        const double high = std::max(a.localBox.high.z, boxOfBInA.high.z);
        if (high - low >= tolerance) return false;  // the planes are apart
        return coplanarRingsMeet(a.local, bInA, inA, b.local, aInB, tolerance, memory);
    }
    if (meetsOutsideThePlane(bInA, a.local, inA, tolerance, memory)) return true;

    RingClassifier inB{b.local, tolerance, memory};
    return meetsOutsideThePlane(aInB, b.local, inB, tolerance, memory);
}

}  // namespace vexa
