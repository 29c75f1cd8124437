#include "platform/posix/wide_length.h"

#if defined(__SSE2__)
#include <algorithm>
#include <cstdint>
#include <emmintrin.h>
#endif

namespace vexa::platform {

#if defined(__SSE2__)

// An aligned load stays within its page of memory, so it may pass the end of the text: what it finds
// there is not looked at.
[[gnu::no_sanitize_address, gnu::no_sanitize_thread]] std::size_t unitsBeforeTerminator(
    const VexaWChar* text, std::size_t most) noexcept {
    constexpr std::size_t kUnits = sizeof(__m128i) / sizeof(VexaWChar);
    const __m128i zero = _mm_setzero_si128();
    std::size_t done = 0;
    for (; reinterpret_cast<std::uintptr_t>(text + done) % (4 * sizeof(__m128i)) != 0; ++done) {
        if (done == most || text[done] == 0) return done;
    }
    // Four blocks at a time, which lie in one line of the cache.
    for (; done < most; done += 4 * kUnits) {
        const auto* blocks = reinterpret_cast<const __m128i*>(text + done);
        const __m128i zeros0 = _mm_cmpeq_epi16(_mm_load_si128(blocks), zero);
        const __m128i zeros1 = _mm_cmpeq_epi16(_mm_load_si128(blocks + 1), zero);
        const __m128i zeros2 = _mm_cmpeq_epi16(_mm_load_si128(blocks + 2), zero);
        const __m128i zeros3 = _mm_cmpeq_epi16(_mm_load_si128(blocks + 3), zero);
        const __m128i first = _mm_packs_epi16(zeros0, zeros1);
        const __m128i second = _mm_packs_epi16(zeros2, zeros3);
        if (_mm_movemask_epi8(_mm_or_si128(first, second)) == 0) continue;
        const auto low = static_cast<std::uint32_t>(_mm_movemask_epi8(first));
        const auto high = static_cast<std::uint32_t>(_mm_movemask_epi8(second));
        const auto place = static_cast<std::size_t>(__builtin_ctz(low | high << 16));
        return std::min(done + place, most);
    }
    return most;
}

#else

std::size_t unitsBeforeTerminator(const VexaWChar* text, std::size_t most) noexcept {
    std::size_t done = 0;
    while (done < most && text[done] != 0) ++done;
    return done;
}

#endif

}  // namespace vexa::platform
