#pragma once

#include "geometry/intersection/pair_tests.h"
#include "geometry/intersection/stretches.h"

#include <memory_resource>
#include <optional>
#include <vector>

namespace vexa {

/// Lines that lie in one level plane, as flat maps have them, before polygons that may lie in it, too.
/// There the boxes of segments and edges are a proof, and most segments need no question: a line that
/// comes near no edge of a ring is inside the ring or outside it as a whole.
class LevelLines {
public:
    /// @param area  the box of all polygons that are going to be asked
    /// @return nothing for lines that are not level, or too few to pay, or where the tolerance is none
    static std::optional<LevelLines> of(const Paths& lines, const Range3d& area, double tolerance,
                                        std::pmr::memory_resource* memory);

    /// What can be said of the lines before one ring.
    enum class Before {
        Unknown,  ///< nothing: each segment has to be asked
        Apart,    ///< no segment hits what the ring surrounds
        Listed    ///< no segment but those of the list may hit it
    };

    /// @param ring  vertices, closed from the last to the first
    /// @param asked  gets the starts of the segments that have to be asked
    Before before(Points ring, std::pmr::vector<const Point3d*>& asked,
                  std::pmr::memory_resource* memory) const;

private:
    LevelLines(const Paths& lines, const Range3d& box, const Range3d& area,
               const NearFilter& filter, std::pmr::memory_resource* memory)
        : box_(box), filter_(filter), stretches_(RunWalk{lines}, area, filter, memory) {}

    Range3d box_;
    NearFilter filter_;
    StretchTree stretches_;
};

}  // namespace vexa
