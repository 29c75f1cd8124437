#pragma once

#include "geometry/intersection/line_cells.h"
#include "geometry/intersection/pair_tests.h"

#include <algorithm>
#include <memory_resource>
#include <vector>

namespace vexa {

/// The edges of two polylines that lie nearly along one line, in x and y alone, however far apart they are on
/// it: see `LineCells`. There may be others among them, but none along one axis.
class AlignedEdges {
public:
    /// @param largest  no coordinate is larger in magnitude; finite, as are products of it
    AlignedEdges(Points first, Points second, double largest, std::pmr::memory_resource* memory);

    /// Whether the test holds for some pair, by their starts.
    template <class Test>
    bool any(const Test& test) const {
        return std::any_of(others_.begin(), others_.end(), [&](const Point3d* other) {
            return cells_.anyNear(other, [&](LineCells::Key key) {
                const auto [begin, end] =
                    std::equal_range(edges_.begin(), edges_.end(), KeyedEdge{key, nullptr});
                return std::any_of(begin, end,
                                   [&](const KeyedEdge& it) { return test(it.start, other); });
            });
        });
    }

private:
    struct KeyedEdge {
        LineCells::Key key;
        const Point3d* start;

        bool operator<(const KeyedEdge& other) const { return key < other.key; }
    };

    void findOthersAlong(Points first, Points second);
    void findEdgesUnderOthers(Points edges);

    LineCells cells_;
    /// Edges of the first polyline, in the order of their cells, and of the second.
    std::pmr::vector<KeyedEdge> edges_;
    std::pmr::vector<const Point3d*> others_;
};

}  // namespace vexa
