#include "platform/vector_width.h"

#include <algorithm>
#include <atomic>

namespace vexa::platform {

namespace {

VectorWidth widthOfProcessor() noexcept {
#if VEXAKIT_HAS_WIDE_VECTORS
    __builtin_cpu_init();
    const bool hasAvx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2");
    const bool hasAvx512 =
        __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vbmi2");
    if (hasAvx2 && hasAvx512) return VectorWidth::Avx512;
    if (hasAvx2) return VectorWidth::Avx2;
#endif
    return VectorWidth::Plain;
}

// Before the library is loaded to its end it is the plain form, which is right everywhere.
// NOLINTNEXTLINE(*-avoid-non-const-global-variables): the width of the process
std::atomic<VectorWidth> width{widthOfProcessor()};

}  // namespace

VectorWidth vectorWidth() noexcept {
    return width.load(std::memory_order_relaxed);
}

void limitVectorWidth(VectorWidth widest) noexcept {
    width.store(std::min(widest, widthOfProcessor()), std::memory_order_relaxed);
}

}  // namespace vexa::platform
