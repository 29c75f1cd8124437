#pragma once

#include "platform/vector_width.h"
#include "vexakit/types.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#if VEXAKIT_HAS_WIDE_VECTORS
#include <emmintrin.h>
#endif

namespace vexa {

#if VEXAKIT_HAS_WIDE_VECTORS

/// The box of a few points, taken without a branch. What is not a number drops out of the corners, but
/// is taken note of.
class SmallBox {
public:
    template <std::size_t Count>
    static SmallBox of(const Point3d* points) {
        SmallBox box{points[0]};
        for (std::size_t i = 1; i < Count; ++i) box.add(points[i]);
        return box;
    }
    /// There has to be a point.
    static SmallBox of(std::span<const Point3d> points) {
        SmallBox box{points.front()};
        for (const Point3d& point : points.subspan(1)) box.add(point);
        return box;
    }

    /// Of several zeros any may stand in a corner.
    Range3d corners() const {
        Range3d box{};
        _mm_storeu_pd(&box.low.x, lowXY_);
        _mm_storeu_pd(&box.low.y, lowYZ_);
        _mm_storeu_pd(&box.high.x, highXY_);
        _mm_storeu_pd(&box.high.y, highYZ_);
        return box;
    }

    /// As the general boxes do, as long as all coordinates are numbers.
    bool overlaps(const SmallBox& other) const {
        const __m128d xy = _mm_and_pd(_mm_cmpge_pd(other.highXY_, lowXY_),  //
                                      _mm_cmpge_pd(highXY_, other.lowXY_));
        const __m128d yz = _mm_and_pd(_mm_cmpge_pd(other.highYZ_, lowYZ_),  //
                                      _mm_cmpge_pd(highYZ_, other.lowYZ_));
        return _mm_movemask_pd(_mm_and_pd(xy, yz)) == 0b11;
    }

    /// The largest magnitude of a coordinate in two boxes; not a number where some coordinate is none.
    static double largestOf(const SmallBox& a, const SmallBox& b) {
        const __m128d magnitude = _mm_max_pd(a.largestLanes(), b.largestLanes());
        const __m128d marked = _mm_or_pd(magnitude, _mm_or_pd(a.unordered_, b.unordered_));
        const double low = _mm_cvtsd_f64(marked);
        const double high = _mm_cvtsd_f64(_mm_unpackhi_pd(marked, marked));
        return low > high || std::isnan(low) ? low : high;
    }

private:
    explicit SmallBox(const Point3d& point)
        : lowXY_(_mm_loadu_pd(&point.x)),
          lowYZ_(_mm_loadu_pd(&point.y)),
          highXY_(lowXY_),
          highYZ_(lowYZ_),
          unordered_(_mm_cmpunord_pd(lowXY_, lowYZ_)) {}

    void add(const Point3d& point) {
        const __m128d xy = _mm_loadu_pd(&point.x);
        const __m128d yz = _mm_loadu_pd(&point.y);
        lowXY_ = _mm_min_pd(xy, lowXY_);
        lowYZ_ = _mm_min_pd(yz, lowYZ_);
        highXY_ = _mm_max_pd(xy, highXY_);
        highYZ_ = _mm_max_pd(yz, highYZ_);
        unordered_ = _mm_or_pd(unordered_, _mm_cmpunord_pd(xy, yz));
    }

    __m128d largestLanes() const {
        const __m128d sign = _mm_set1_pd(-0.0);
        const __m128d most = _mm_max_pd(highXY_, highYZ_);
        const __m128d least = _mm_min_pd(lowXY_, lowYZ_);
        return _mm_max_pd(most, _mm_xor_pd(least, sign));
    }

    // The y coordinates stand in both.
    __m128d lowXY_;
    __m128d lowYZ_;
    __m128d highXY_;
    __m128d highYZ_;
    /// All bits of a lane, which make a number none, where some coordinate was none.
    __m128d unordered_;
};

#else

/// The box of a few points, taken without a branch. What is not a number drops out of the corners, but
/// not out of the sum.
class SmallBox {
public:
    template <std::size_t Count>
    static SmallBox of(const Point3d* points) {
        SmallBox box{points[0]};
        for (std::size_t i = 1; i < Count; ++i) box.add(points[i]);
        return box;
    }
    /// There has to be a point.
    static SmallBox of(std::span<const Point3d> points) {
        SmallBox box{points.front()};
        for (const Point3d& point : points.subspan(1)) box.add(point);
        return box;
    }

    /// Of several zeros any may stand in a corner.
    Range3d corners() const { return {low_, high_}; }

    /// As the general boxes do, as long as all coordinates are numbers.
    bool overlaps(const SmallBox& other) const {
        return other.high_.x >= low_.x && high_.x >= other.low_.x &&  //
               other.high_.y >= low_.y && high_.y >= other.low_.y &&  //
               other.high_.z >= low_.z && high_.z >= other.low_.z;
    }

    /// The largest magnitude of a coordinate in two boxes; not a number where some coordinate is none, or
    /// is infinite.
    static double largestOf(const SmallBox& a, const SmallBox& b) {
        const double most =
            std::max({a.high_.x, a.high_.y, a.high_.z, b.high_.x, b.high_.y, b.high_.z});
        const double least = std::min({a.low_.x, a.low_.y, a.low_.z, b.low_.x, b.low_.y, b.low_.z});
        return std::max(most, -least) + 0 * (a.sum_ + b.sum_);
    }

private:
    explicit SmallBox(const Point3d& point)
        : low_(point), high_(point), sum_(point.x + point.y + point.z) {}

    void add(const Point3d& point) {
        low_ = {std::min(low_.x, point.x), std::min(low_.y, point.y), std::min(low_.z, point.z)};
        high_ = {std::max(high_.x, point.x), std::max(high_.y, point.y),
                 std::max(high_.z, point.z)};
        sum_ += point.x + point.y + point.z;
    }

    Point3d low_;
    Point3d high_;
    double sum_;
};

#endif

/// Whether products of six coordinates of that size, and of what is 2^-20 of it, are ordinary numbers.
inline bool isOrdinarySize(double largest) {
    return largest >= 0x1p-100 && largest <= 0x1p100;
}

}  // namespace vexa
