#pragma once

#include "platform/vector_width.h"
#include "vexakit/types.h"

#include <cstddef>

#if VEXAKIT_HAS_WIDE_VECTORS
#include <immintrin.h>
#endif

/// A transform as the registers of each kind of processor want it, made once for many runs of points.
/// All kernels add the terms in the order of the formula and fuse none of them: m0 x + m1 y + m2 z + m3.
namespace vexa {

class PlainKernel {
public:
    explicit PlainKernel(const Transform& transform) : transform_(transform) {}

    /// `out` may be `in`.
    void apply(Point3d* out, const Point3d* in, std::size_t count) const {
        for (std::size_t i = 0; i < count; ++i) applyToOne(out[i], in[i]);
    }

    [[gnu::always_inline]] void applyToOne(Point3d& out, const Point3d& in) const {
        const double* const m = transform_.m;
        const auto [x, y, z] = in;
        out = {m[0] * x + m[1] * y + m[2] * z + m[3], m[4] * x + m[5] * y + m[6] * z + m[7],
               m[8] * x + m[9] * y + m[10] * z + m[11]};
    }

    [[nodiscard]] const double* row(std::size_t i) const { return transform_.m + 4 * i; }

private:
    Transform transform_;
};

#if VEXAKIT_HAS_WIDE_VECTORS

/// Four points at a time.
class Avx2Kernel {
public:
    static constexpr std::size_t kPoints = 4;

    VEXAKIT_AVX2 [[gnu::always_inline]] explicit Avx2Kernel(const Transform& transform)
        : plain_(transform) {}

    VEXAKIT_AVX2 [[gnu::always_inline]] void apply(Point3d* out, const Point3d* in,
                                                   std::size_t count) const {
        for (; count >= kPoints; count -= kPoints, out += kPoints, in += kPoints) {
            applyToFour(&out->x, &in->x);
        }
        plain_.apply(out, in, count);
    }

private:
    VEXAKIT_AVX2 [[gnu::always_inline]] static __m256d pairs(const double* low,
                                                             const double* high) {
        return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(low)), _mm_loadu_pd(high),
                                    1);
    }

    // One coordinate of four points.
    VEXAKIT_AVX2 [[gnu::always_inline]] __m256d rowApplied(std::size_t i, __m256d x, __m256d y,
                                                           __m256d z) const {
        const double* const row = plain_.row(i);
        const __m256d xy = _mm256_add_pd(_mm256_mul_pd(_mm256_set1_pd(row[0]), x),
                                         _mm256_mul_pd(_mm256_set1_pd(row[1]), y));
        const __m256d xyz = _mm256_add_pd(xy, _mm256_mul_pd(_mm256_set1_pd(row[2]), z));
        return _mm256_add_pd(xyz, _mm256_set1_pd(row[3]));
    }

    // Pairs of coordinates, two points apart: with these each coordinate is one blend or shuffle away,
    // and nothing crosses the halves of a register but on the way out.
    VEXAKIT_AVX2 [[gnu::always_inline]] void applyToFour(double* out, const double* in) const {
        const __m256d xy02 = pairs(in, in + 6);
        const __m256d zx0123 = pairs(in + 2, in + 8);
        const __m256d yz13 = pairs(in + 4, in + 10);

        const __m256d x = _mm256_blend_pd(xy02, zx0123, 0b1010);
        const __m256d y = _mm256_shuffle_pd(xy02, yz13, 0b0101);
        const __m256d z = _mm256_blend_pd(zx0123, yz13, 0b1010);
        const __m256d newX = rowApplied(0, x, y, z);
        const __m256d newY = rowApplied(1, x, y, z);
        const __m256d newZ = rowApplied(2, x, y, z);

        const __m256d newXy02 = _mm256_unpacklo_pd(newX, newY);
        const __m256d newZx0123 = _mm256_blend_pd(newZ, newX, 0b1010);
        const __m256d newYz13 = _mm256_unpackhi_pd(newY, newZ);
        _mm256_storeu_pd(out, _mm256_permute2f128_pd(newXy02, newZx0123, 0x20));
        _mm256_storeu_pd(out + 4, _mm256_blend_pd(newYz13, newXy02, 0b1100));
        _mm256_storeu_pd(out + 8, _mm256_permute2f128_pd(newZx0123, newYz13, 0x31));
    }

    PlainKernel plain_;
};

/// Eight points at a time: three registers x y z x y z x y | z x y z x y z x | y z x y z x y z come out
/// as they went in. What a lane is made of are the coordinates of its own point, spread over the lanes
/// by one permutation each, and coefficients that repeat every third lane.
class Avx512Kernel {
public:
    static constexpr std::size_t kPoints = 8;

    VEXAKIT_AVX512 [[gnu::always_inline]] explicit Avx512Kernel(const Transform& transform)
        : four_(transform) {
        const __m512d firstTwoRows = _mm512_loadu_pd(transform.m);
        const __m512d lastTwoRows = _mm512_loadu_pd(transform.m + 4);
        const __m512i rows[] = {_mm512_setr_epi64(0, 4, 12, 0, 4, 12, 0, 4),
                                _mm512_setr_epi64(12, 0, 4, 12, 0, 4, 12, 0),
                                _mm512_setr_epi64(4, 12, 0, 4, 12, 0, 4, 12)};
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t k = 0; k < 4; ++k) {
                const __m512i column = _mm512_set1_epi64(static_cast<long long>(k));
                coefficients_[i][k] = _mm512_permutex2var_pd(
                    firstTwoRows, _mm512_add_epi64(rows[i], column), lastTwoRows);
            }
        }
    }

    // What is left goes by vectors of the same shape at each call: a store that only covers part of
    // what is read next makes the processor wait.
    VEXAKIT_AVX512 [[gnu::always_inline]] void apply(Point3d* out, const Point3d* in,
                                                     std::size_t count) const {
        for (; count >= kPoints; count -= kPoints, out += kPoints, in += kPoints) {
            applyToEight(&out->x, &in->x);
        }
        four_.apply(out, in, count);
    }

private:
    VEXAKIT_AVX512 [[gnu::always_inline]] __m512d lanes(std::size_t i, __m512d x, __m512d y,
                                                        __m512d z) const {
        const __m512d* const m = coefficients_[i];
        const __m512d xy = _mm512_add_pd(_mm512_mul_pd(m[0], x), _mm512_mul_pd(m[1], y));
        return _mm512_add_pd(_mm512_add_pd(xy, _mm512_mul_pd(m[2], z)), m[3]);
    }

    // The y of the middle register's last point lies behind it: a load of its own brings it near.
    VEXAKIT_AVX512 [[gnu::always_inline]] void applyToEight(double* out, const double* in) const {
        const __m512d a = _mm512_loadu_pd(in);
        const __m512d b = _mm512_loadu_pd(in + 8);
        const __m512d c = _mm512_loadu_pd(in + 16);
        const __m512d from9 = _mm512_loadu_pd(in + 9);

        const __m512d first =
            lanes(0, _mm512_permutex2var_pd(a, _mm512_setr_epi64(0, 0, 0, 3, 3, 3, 6, 6), a),
                  _mm512_permutex2var_pd(a, _mm512_setr_epi64(1, 1, 1, 4, 4, 4, 7, 7), a),
                  _mm512_permutex2var_pd(a, _mm512_setr_epi64(2, 2, 2, 5, 5, 5, 8, 8), b));
        const __m512d second =
            lanes(1, _mm512_permutex2var_pd(a, _mm512_setr_epi64(6, 9, 9, 9, 12, 12, 12, 15), b),
                  _mm512_permutex2var_pd(a, _mm512_setr_epi64(7, 9, 9, 9, 12, 12, 12, 15), from9),
                  _mm512_permutex2var_pd(b, _mm512_setr_epi64(0, 3, 3, 3, 6, 6, 6, 9), c));
        const __m512d third =
            lanes(2, _mm512_permutex2var_pd(b, _mm512_setr_epi64(7, 7, 10, 10, 10, 13, 13, 13), c),
                  _mm512_permutex2var_pd(c, _mm512_setr_epi64(0, 0, 3, 3, 3, 6, 6, 6), c),
                  _mm512_permutex2var_pd(c, _mm512_setr_epi64(1, 1, 4, 4, 4, 7, 7, 7), c));
        _mm512_storeu_pd(out, first);
        _mm512_storeu_pd(out + 8, second);
        _mm512_storeu_pd(out + 16, third);
    }

    __m512d coefficients_[3][4];
    Avx2Kernel four_;
};

#endif

}  // namespace vexa
