#pragma once

#include "platform/vector_width.h"

/// The processor's own vector functions, for code under VEXAKIT_AVX2 and VEXAKIT_AVX512.
#if VEXAKIT_HAS_WIDE_VECTORS
// They leave undefined on purpose what no lane of the result takes, and that shows where they are used.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#endif
