#pragma once

#include "platform/vector_width.h"
#include "transform/point_kernels.h"
#include "vexakit/types.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace vexa {

/// Points that are transformed from one place to another, which may be the same.
struct PointMove {
    Point3d* out = nullptr;
    const Point3d* in = nullptr;
    /// Nothing is moved for a count below 1.
    std::int32_t count = 0;
};

/// One array of points.
class OneMove {
public:
    explicit OneMove(const PointMove& move) : move_(move) {}

    bool next(PointMove& move) {
        if (isDone_) return false;
        isDone_ = true;
        move = move_;
        return true;
    }

private:
    PointMove move_;
    bool isDone_ = false;
};

/// The runs of a walk, each where it is.
template <class Walk>
class MovesInPlace {
public:
    explicit MovesInPlace(const Walk& walk) : walk_(walk) {}

    // A walk shows a buffer as it is read; the vertices of the caller's own buffer may be written.
    bool next(PointMove& move) {
        std::span<const Point3d> run;
        if (!walk_.next(run)) return false;
        auto* const vertices = const_cast<Point3d*>(run.data());
        move = {vertices, vertices, static_cast<std::int32_t>(run.size())};
        return true;
    }

private:
    Walk walk_;
};

namespace run_transform {

template <class Moves>
void plainly(const Transform& transform, Moves moves) {
    const PlainKernel kernel(transform);
    for (PointMove move; moves.next(move);) {
        if (move.count > 0) kernel.apply(move.out, move.in, static_cast<std::size_t>(move.count));
    }
}

#if VEXAKIT_HAS_WIDE_VECTORS

template <class Moves>
VEXAKIT_AVX2 void byAvx2(const Transform& transform, Moves moves) {
    const Avx2Kernel kernel(transform);
    for (PointMove move; moves.next(move);) {
        if (move.count > 0) kernel.apply(move.out, move.in, static_cast<std::size_t>(move.count));
    }
}

template <class Moves>
VEXAKIT_AVX512 void byAvx512(const Transform& transform, Moves moves) {
    const Avx512Kernel kernel(transform);
    for (PointMove move; moves.next(move);) {
        if (move.count > 0) kernel.apply(move.out, move.in, static_cast<std::size_t>(move.count));
    }
}

#endif

}  // namespace run_transform

/// Transforms one run of points after the other, by vectors no wider than that. The transform is read
/// before the first point is written, as it may lie among them; a walk reads its counts between runs.
template <class Moves>
void transformRuns(const Transform& transform, const Moves& moves,
                   platform::VectorWidth widest = platform::VectorWidth::Avx512) {
    switch (std::min(widest, platform::vectorWidth())) {
#if VEXAKIT_HAS_WIDE_VECTORS
        case platform::VectorWidth::Avx512: return run_transform::byAvx512(transform, moves);
        case platform::VectorWidth::Avx2: return run_transform::byAvx2(transform, moves);
#endif
        default: return run_transform::plainly(transform, moves);
    }
}

}  // namespace vexa
