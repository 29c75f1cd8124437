#include "geometry/intersection/line_cells.h"

#include "platform/vector_width.h"

namespace vexa {

namespace {

LineCells::Key where(bool holds, LineCells::Key key) {
    return -static_cast<LineCells::Key>(holds) & key;
}

}  // namespace

// Without a branch, so that a compiler makes vectors of it.
[[gnu::always_inline]] inline void LineCells::fillEach(Block& block, const Point3d* starts,
                                                       std::size_t edges) const {
    for (std::size_t i = 0; i < edges; ++i) {
        const Line line = lineOf(starts + i);
        const double slope = line.slope;
        const double offset = line.offset * cellsPerUnit_;
        const Key direction = where(line.isSteep, kSteep);
        const Key own = keyOf(cellOf(slope * kSlopeCells), cellOf(offset));
        const Key first =
            keyOf(cellOf((slope - kReach) * kSlopeCells), cellOf(offset - kReach * kOffsetCells));
        const Key last =
            keyOf(cellOf((slope + kReach) * kSlopeCells), cellOf(offset + kReach * kOffsetCells));
        const Key beside = where(isNearAxis(slope), kLookCloser) & ~where(slope == 0, kLookCloser);
        block.own[i] =
            own | direction | where(slope == 0, kAlongAxis) | where(slope != slope, kNone);
        block.first[i] = first | direction;
        block.last[i] = last | direction | beside | where(isDiagonal(slope), kLookCloser);
    }
}

#if VEXAKIT_HAS_WIDE_VECTORS
VEXAKIT_AVX512 void LineCells::fillByAvx512(Block& block, const Point3d* starts,
                                            std::size_t edges) const {
    fillEach(block, starts, edges);
}
#endif

void LineCells::fill(Block& block, const Point3d* starts, std::size_t edges) const {
#if VEXAKIT_HAS_WIDE_VECTORS
    if (platform::vectorWidth() == platform::VectorWidth::Avx512) {
        return fillByAvx512(block, starts, edges);
    }
#endif
    fillEach(block, starts, edges);
}

}  // namespace vexa
