#include "geometry/range_by_vectors.h"

#include "platform/wide_vectors.h"

#include <cstddef>
#include <cstdint>
#include <limits>

namespace vexa {

namespace {

using platform::VectorWidth;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

#if VEXAKIT_HAS_WIDE_VECTORS

constexpr std::size_t kCoordinates = 3;

/// The one value of each coordinate.
struct Corner {
    __m128d xy;
    __m128d z;
};

// Coordinates lie in the registers as they come: x y z x | y z x y | z x y z. So do their minima and
// maxima, of which the outermost are left in the end.
template <class Outer>
VEXAKIT_AVX2 [[gnu::always_inline]] inline Corner cornerOf(__m256d xyzx, __m256d yzxy, __m256d zxyz,
                                                           Outer outer) {
    const __m128d xy = outer(_mm256_castpd256_pd128(xyzx), _mm256_extractf128_pd(yzxy, 1));
    const __m128d zx = outer(_mm256_extractf128_pd(xyzx, 1), _mm256_castpd256_pd128(zxyz));
    const __m128d yz = outer(_mm256_castpd256_pd128(yzxy), _mm256_extractf128_pd(zxyz, 1));
    return {outer(xy, _mm_shuffle_pd(zx, yz, 0b01)), outer(zx, _mm_unpackhi_pd(yz, yz))};
}

constexpr auto kLesser = [](__m128d a, __m128d b) { return _mm_min_pd(a, b); };
constexpr auto kGreater = [](__m128d a, __m128d b) { return _mm_max_pd(a, b); };

// Stored as corners are copied, so that a copy need not wait for the stores.
VEXAKIT_AVX2 [[gnu::always_inline]] inline void store(const Corner& corner, Point3d& point) {
    _mm_storeu_pd(&point.x, corner.xy);
    _mm_store_sd(&point.z, corner.z);
}

/// Four vertices a step.
struct Avx2Lanes {
    static constexpr std::size_t kVertices = 4;
    static constexpr std::size_t kWidth = 4;

    __m256d low[kCoordinates];
    __m256d high[kCoordinates];
    __m256d unordered;

    // Loads of their own: as parts of the operations on it each number would be loaded three times.
    VEXAKIT_AVX2 [[gnu::always_inline]] static __m256d load(const double* at) {
        __m256d lanes = _mm256_loadu_pd(at);
        asm("" : "+x"(lanes));
        return lanes;
    }

    VEXAKIT_AVX2 [[gnu::always_inline]] void clear() {
        for (__m256d& lanes : low) lanes = _mm256_set1_pd(kInfinity);
        for (__m256d& lanes : high) lanes = _mm256_set1_pd(-kInfinity);
        unordered = _mm256_setzero_pd();
    }

    VEXAKIT_AVX2 [[gnu::always_inline]] void fold(std::size_t i, __m256d lanes) {
        low[i] = _mm256_min_pd(low[i], lanes);
        high[i] = _mm256_max_pd(high[i], lanes);
    }

    VEXAKIT_AVX2 [[gnu::always_inline]] void notice(__m256d a, __m256d b) {
        unordered = _mm256_or_pd(unordered, _mm256_cmp_pd(a, b, _CMP_UNORD_Q));
    }

    VEXAKIT_AVX2 [[gnu::always_inline]] void addFour(const double* at) {
        const __m256d first = load(at);
        const __m256d second = load(at + kWidth);
        const __m256d third = load(at + 2 * kWidth);
        notice(first, second);
        notice(third, third);
        fold(0, first);
        fold(1, second);
        fold(2, third);
    }

    // Unordered comparisons take two registers each, so eight vertices need three of them.
    VEXAKIT_AVX2 [[gnu::always_inline]] void addEight(const double* at) {
        __m256d lanes[2 * kCoordinates];
        for (std::size_t i = 0; i < 2 * kCoordinates; ++i) {
            lanes[i] = load(at + i * kWidth);
            fold(i % kCoordinates, lanes[i]);
        }
        notice(lanes[0], lanes[1]);
        notice(lanes[2], lanes[3]);
        notice(lanes[4], lanes[5]);
    }

    // Takes its x twice, in the lanes of the first register.
    VEXAKIT_AVX2 [[gnu::always_inline]] void addOne(const double* at) {
        const __m256d yz = _mm256_castpd128_pd256(_mm_loadu_pd(at + 1));
        const __m256d x = _mm256_broadcast_sd(at);
        const __m256d lanes = _mm256_blend_pd(_mm256_permute4x64_pd(yz, 0b00010000), x, 0b1001);
        notice(lanes, lanes);
        fold(0, lanes);
    }

    // What is left of a long run is folded together with some of its vertices that were folded before.
    VEXAKIT_AVX2 [[gnu::always_inline]] void add(std::span<const Point3d> run) {
        const double* at = &run.data()->x;
        std::size_t left = run.size();
        if (left < kVertices) {
            for (; left != 0; --left, at += kCoordinates) addOne(at);
            return;
        }
        for (; left >= 2 * kVertices; left -= 2 * kVertices, at += 2 * kVertices * kCoordinates) {
            addEight(at);
        }
        if (left >= kVertices) addFour(at);
        if (left % kVertices != 0) addFour(at + left * kCoordinates - kVertices * kCoordinates);
    }

    VEXAKIT_AVX2 [[gnu::always_inline]] bool isOrdered() const {
        return _mm256_movemask_pd(unordered) == 0;
    }

    VEXAKIT_AVX2 [[gnu::always_inline]] void storeBox(Range3d& box) const {
        store(cornerOf(low[0], low[1], low[2], kLesser), box.low);
        store(cornerOf(high[0], high[1], high[2], kGreater), box.high);
    }
};

VEXAKIT_AVX2 bool foldByAvx2(const RunWalk& runs, Range3d& box) {
    Avx2Lanes lanes;
    lanes.clear();
    RunWalk walk = runs;
    for (std::span<const Point3d> run; walk.next(run);) lanes.add(run);
    lanes.storeBox(box);
    return lanes.isOrdered();
}

/// Eight vertices a step; what is left of a run is folded under a mask.
struct Avx512Lanes {
    static constexpr std::size_t kVertices = 8;
    static constexpr std::size_t kWidth = 8;
    static constexpr __mmask8 kEveryLane = 0xFF;

    __m512d low[kCoordinates];
    __m512d high[kCoordinates];
    __mmask8 unordered;

    // Loads of their own: as parts of the operations on it each number would be loaded three times.
    VEXAKIT_AVX512 [[gnu::always_inline]] static __m512d load(const double* at) {
        __m512d lanes = _mm512_loadu_pd(at);
        asm("" : "+v"(lanes));
        return lanes;
    }

    VEXAKIT_AVX512 [[gnu::always_inline]] void clear() {
        for (__m512d& lanes : low) lanes = _mm512_set1_pd(kInfinity);
        for (__m512d& lanes : high) lanes = _mm512_set1_pd(-kInfinity);
        unordered = 0;
    }

    VEXAKIT_AVX512 [[gnu::always_inline]] void notice(__m512d a, __m512d b) {
        unordered = _kor_mask8(unordered, _mm512_cmp_pd_mask(a, b, _CMP_UNORD_Q));
    }

    VEXAKIT_AVX512 [[gnu::always_inline]] void fold(std::size_t i, __m512d lanes,
                                                    __mmask8 here = kEveryLane) {
        low[i] = _mm512_mask_min_pd(low[i], here, low[i], lanes);
        high[i] = _mm512_mask_max_pd(high[i], here, high[i], lanes);
    }

    VEXAKIT_AVX512 [[gnu::always_inline]] void addEight(const double* at) {
        const __m512d first = load(at);
        const __m512d second = load(at + kWidth);
        const __m512d third = load(at + 2 * kWidth);
        notice(first, second);
        notice(third, third);
        fold(0, first);
        fold(1, second);
        fold(2, third);
    }

    VEXAKIT_AVX512 [[gnu::always_inline]] void addSixteen(const double* at) {
        __m512d lanes[2 * kCoordinates];
        for (std::size_t i = 0; i < 2 * kCoordinates; ++i) {
            lanes[i] = load(at + i * kWidth);
            fold(i % kCoordinates, lanes[i]);
        }
        notice(lanes[0], lanes[1]);
        notice(lanes[2], lanes[3]);
        notice(lanes[4], lanes[5]);
    }

    // Nothing is read where the mask has no bit.
    VEXAKIT_AVX512 [[gnu::always_inline]] void addSome(std::size_t i, const double* at,
                                                       std::uint32_t mask) {
        const auto here = static_cast<__mmask8>(mask);
        const __m512d lanes = _mm512_maskz_loadu_pd(here, at);
        notice(lanes, lanes);
        fold(i, lanes, here);
    }

    // Not a loop: registers have no index.
    VEXAKIT_AVX512 [[gnu::always_inline]] void addRest(const double* at, std::size_t numbers) {
        const std::uint32_t mask = (1U << numbers) - 1;
        if (numbers == 0) return;
        addSome(0, at, mask);
        if (numbers <= kWidth) return;
        addSome(1, at + kWidth, mask >> kWidth);
        if (numbers <= 2 * kWidth) return;
        addSome(2, at + 2 * kWidth, mask >> 2 * kWidth);
    }

    VEXAKIT_AVX512 [[gnu::always_inline]] void add(std::span<const Point3d> run) {
        const double* at = &run.data()->x;
        std::size_t left = run.size();
        for (; left >= 2 * kVertices; left -= 2 * kVertices, at += 2 * kVertices * kCoordinates) {
            addSixteen(at);
        }
        if (left >= kVertices) {
            addEight(at);
            left -= kVertices;
            at += kVertices * kCoordinates;
        }
        addRest(at, left * kCoordinates);
    }

    [[nodiscard]] bool isOrdered() const { return unordered == 0; }

    VEXAKIT_AVX512 [[gnu::always_inline]] static __m256d half(__m512d lanes) {
        return _mm512_castpd512_pd256(lanes);
    }
    VEXAKIT_AVX512 [[gnu::always_inline]] static __m256d rest(__m512d lanes) {
        return _mm512_extractf64x4_pd(lanes, 1);
    }

    // Half a register each, the coordinates lie as in the narrower registers, twice.
    VEXAKIT_AVX512 [[gnu::always_inline]] void storeBox(Range3d& box) const {
        store(cornerOf(_mm256_min_pd(half(low[0]), rest(low[1])),
                       _mm256_min_pd(rest(low[0]), half(low[2])),
                       _mm256_min_pd(half(low[1]), rest(low[2])), kLesser),
              box.low);
        store(cornerOf(_mm256_max_pd(half(high[0]), rest(high[1])),
                       _mm256_max_pd(rest(high[0]), half(high[2])),
                       _mm256_max_pd(half(high[1]), rest(high[2])), kGreater),
              box.high);
    }
};

VEXAKIT_AVX512 bool foldByAvx512(const RunWalk& runs, Range3d& box) {
    Avx512Lanes lanes;
    lanes.clear();
    RunWalk walk = runs;
    for (std::span<const Point3d> run; walk.next(run);) lanes.add(run);
    lanes.storeBox(box);
    return lanes.isOrdered();
}

#endif

bool isZero(double value) {
    return value == 0;
}

// Of several zeros the first one met stays in a corner, with its sign; the lanes have forgotten which
// that was.
void takeSignsOfFirstZeros(RunWalk walk, unsigned sought, Range3d& box) {
    double* const corners[] = {&box.low.x,  &box.low.y,  &box.low.z,
                               &box.high.x, &box.high.y, &box.high.z};
    for (std::span<const Point3d> run; sought != 0 && walk.next(run);) {
        for (const Point3d& vertex : run) {
            const double values[] = {vertex.x, vertex.y, vertex.z};
            for (unsigned i = 0; i < 3; ++i) {
                if ((sought & 1U << i) == 0 || !isZero(values[i])) continue;
                sought &= ~(1U << i);
                if (isZero(*corners[i])) *corners[i] = values[i];
                if (isZero(*corners[i + 3])) *corners[i + 3] = values[i];
            }
            if (sought == 0) return;
        }
    }
}

// A bit for each coordinate of which a corner is zero.
unsigned zerosOf(const Range3d& box) {
    const auto haveZero = [](double low, double high) { return isZero(low) || isZero(high); };
    return (haveZero(box.low.x, box.high.x) ? 1U : 0U) |
           (haveZero(box.low.y, box.high.y) ? 2U : 0U) |
           (haveZero(box.low.z, box.high.z) ? 4U : 0U);
}

bool foldByVectors([[maybe_unused]] const RunWalk& walk, [[maybe_unused]] Range3d& box) {
    switch (platform::vectorWidth()) {
#if VEXAKIT_HAS_WIDE_VECTORS
        case VectorWidth::Avx512: return foldByAvx512(walk, box);
        case VectorWidth::Avx2: return foldByAvx2(walk, box);
#endif
        default: return false;
    }
}

}  // namespace

bool rangeByVectors(const RunWalk& walk, Range3d& box) {
    if (!foldByVectors(walk, box)) return false;
    const unsigned zeros = zerosOf(box);
    if (zeros != 0) [[unlikely]]
        takeSignsOfFirstZeros(walk, zeros, box);
    return true;
}

}  // namespace vexa
