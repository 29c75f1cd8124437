#pragma once

#include "vexakit/types.h"

#include <memory_resource>
#include <span>
#include <vector>

namespace vexa {

/// What a ring says of a point, in x and y alone.
enum class Side {
    Undecidable = -2,  ///< every trial ray met a vertex
    Outside = -1,
    OnBoundary = 0,  ///< a crossing or a vertex within the tolerance
    Inside = 1
};

inline bool isInsideOrOn(Side side) {
    return side == Side::Inside || side == Side::OnBoundary;
}

/// Counts the ring's edges to the left of the point, or below it, or along the first of 36 rays that
/// meets no vertex within the tolerance. The ring is closed from its last vertex to its first. What
/// decides is the first thing met from the last vertex on: a vertex level with the point, or a
/// crossing within the tolerance.
Side ClassifyPointInRing(const Point3d& point, std::span<const Point3d> ring, double tolerance);

/// The same for rings with separators between them: inside where an odd number of rings says so.
Side ClassifyPointInRings(const Point3d& point, std::span<const Point3d> points, double tolerance);

/// Tells the same as `ClassifyPointInRings` for many points. After the first few it sorts the edges into
/// bands across each axis, so that a point meets those at its own height alone. The points of the ring
/// stay as they are and where they are.
class RingClassifier {
public:
    RingClassifier(std::span<const Point3d> ring, double tolerance,
                   std::pmr::memory_resource* memory);

    Side classify(const Point3d& point);

private:
    using Coordinate = double Point3d::*;

    /// The edges, by their end vertices, that come near each band of one coordinate.
    struct Bands {
        Bands(Coordinate coordinate, std::pmr::memory_resource* memory)
            : level(coordinate), starts(memory), edges(memory) {}
        std::size_t bandOf(double value) const;
        std::span<const std::uint32_t> edgesAt(double value) const;

        Coordinate level;
        double low = 0;
        double perUnit = 0;
        std::pmr::vector<std::uint32_t> starts;
        std::pmr::vector<std::uint32_t> edges;
    };

    void makeIndex();
    bool isFilled(Bands& bands);
    void fill(Bands& bands) const;
    Side classifyByIndex(const Point3d& point);

    std::span<const Point3d> ring_;
    double tolerance_;
    int patience_;
    bool isIndexed_ = false;
    Bands byHeight_;
    Bands byAbscissa_;
};

}  // namespace vexa
