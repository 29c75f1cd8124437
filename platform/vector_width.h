#pragma once

/// Functions that are compiled for a wider processor than the build's.
#if defined(__x86_64__)
#define VEXAKIT_HAS_WIDE_VECTORS 1
#define VEXAKIT_AVX2 [[gnu::target("avx2,bmi2")]]
#define VEXAKIT_AVX512 \
    [[gnu::target("avx2,bmi2,avx512f,avx512bw,avx512vl,avx512dq,avx512vbmi,avx512vbmi2")]]
#else
#define VEXAKIT_HAS_WIDE_VECTORS 0
#endif

namespace vexa::platform {

/// Kinds of processor that loops over many numbers have a form for; each gives the same bits.
enum class VectorWidth { Plain, Avx2, Avx512 };

/// The widest kind that this machine and the limit allow. Asked of the processor when the library is
/// loaded.
VectorWidth vectorWidth() noexcept;

/// Tests and measurements see to it that every form runs.
void limitVectorWidth(VectorWidth widest) noexcept;

}  // namespace vexa::platform
