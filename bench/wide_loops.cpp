#include "bench/wide_loops.h"

#include "platform/vector_width.h"

#include <cstring>

namespace vexa::bench {

namespace {

// The compiler's vectors: one text for each width.
using Vector2 = double __attribute__((vector_size(16)));
using Vector4 = double __attribute__((vector_size(32)));
using Vector8 = double __attribute__((vector_size(64)));

/// Eight sums side by side hide how long one addition takes.
constexpr std::size_t kSums = 8;

template <class Vector>
constexpr std::size_t kLanes = sizeof(Vector) / sizeof(double);

template <class Vector>
[[gnu::always_inline]] inline double sumBy(const double* numbers, std::size_t count) {
    constexpr std::size_t kStep = kSums * kLanes<Vector>;
    // Unrolled, the sums stay in registers from the first to the last.
    Vector sums[kSums];
#pragma GCC unroll kSums
    for (Vector& sum : sums) sum = Vector{};
    std::size_t i = 0;
    for (; i + kStep <= count; i += kStep) {
#pragma GCC unroll kSums
        for (std::size_t k = 0; k < kSums; ++k) {
            Vector vector;
            std::memcpy(&vector, numbers + i + k * kLanes<Vector>, sizeof vector);
            sums[k] += vector;
        }
    }
    for (; i + kLanes<Vector> <= count; i += kLanes<Vector>) {
        Vector vector;
        std::memcpy(&vector, numbers + i, sizeof vector);
        sums[0] += vector;
    }
#pragma GCC unroll kSums
    for (std::size_t k = 1; k < kSums; ++k) sums[0] += sums[k];
    double sum = 0;
    for (std::size_t lane = 0; lane < kLanes<Vector>; ++lane) sum += sums[0][lane];
    for (; i < count; ++i) sum += numbers[i];
    return sum;
}

template <class Vector>
[[gnu::always_inline]] inline void addBy(double* numbers, std::size_t count, double addend) {
    std::size_t i = 0;
    for (; i + kLanes<Vector> <= count; i += kLanes<Vector>) {
        Vector vector;
        std::memcpy(&vector, numbers + i, sizeof vector);
        vector += addend;
        std::memcpy(numbers + i, &vector, sizeof vector);
    }
    for (; i < count; ++i) numbers[i] += addend;
}

double sumPlain(const double* numbers, std::size_t count) {
    return sumBy<Vector2>(numbers, count);
}

void addPlain(double* numbers, std::size_t count, double addend) {
    addBy<Vector2>(numbers, count, addend);
}

#if VEXAKIT_HAS_WIDE_VECTORS

VEXAKIT_AVX2 double sumAvx2(const double* numbers, std::size_t count) {
    return sumBy<Vector4>(numbers, count);
}

VEXAKIT_AVX2 void addAvx2(double* numbers, std::size_t count, double addend) {
    addBy<Vector4>(numbers, count, addend);
}

VEXAKIT_AVX512 double sumAvx512(const double* numbers, std::size_t count) {
    return sumBy<Vector8>(numbers, count);
}

VEXAKIT_AVX512 void addAvx512(double* numbers, std::size_t count, double addend) {
    addBy<Vector8>(numbers, count, addend);
}

#endif

struct Loops {
    double (*sum)(const double*, std::size_t);
    void (*add)(double*, std::size_t, double);
};

Loops widest() {
#if VEXAKIT_HAS_WIDE_VECTORS
    // The functions are compiled for all of these.
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512vbmi2")) {
        return {sumAvx512, addAvx512};
    }
    if (__builtin_cpu_supports("avx2")) return {sumAvx2, addAvx2};
#endif
    return {sumPlain, addPlain};
}

const Loops kWidest = widest();

}  // namespace

double wideSum(const double* numbers, std::size_t count) {
    return kWidest.sum(numbers, count);
}

void wideAdd(double* numbers, std::size_t count, double addend) {
    kWidest.add(numbers, count, addend);
}

}  // namespace vexa::bench
