#include "platform/posix/wide_length.h"

#if defined(__SSE2__)
#include <algorithm>
#include <cstdint>
#include <emmintrin.h>
#endif

namespace vexa::platform {

#if defined(__SSE2__)

namespace {

constexpr std::size_t kLine = 4 * sizeof(__m128i);
constexpr std::size_t kUnitsOfLine = kLine / sizeof(VexaWChar);

// A bit for each zero of a line of the cache.
[[gnu::always_inline]] inline std::uint32_t zerosIn(const VexaWChar* line) {
    const __m128i zero = _mm_setzero_si128();
    const auto* blocks = reinterpret_cast<const __m128i*>(line);
    const __m128i zeros0 = _mm_cmpeq_epi16(_mm_load_si128(blocks), zero);
    const __m128i zeros1 = _mm_cmpeq_epi16(_mm_load_si128(blocks + 1), zero);
    const __m128i zeros2 = _mm_cmpeq_epi16(_mm_load_si128(blocks + 2), zero);
    const __m128i zeros3 = _mm_cmpeq_epi16(_mm_load_si128(blocks + 3), zero);
    const __m128i first = _mm_packs_epi16(zeros0, zeros1);
    const __m128i second = _mm_packs_epi16(zeros2, zeros3);
    const auto low = static_cast<std::uint32_t>(_mm_movemask_epi8(first));
    const auto high = static_cast<std::uint32_t>(_mm_movemask_epi8(second));
    return low | high << 16;
}

std::size_t unitByUnit(const VexaWChar* text, std::size_t most) {
    std::size_t done = 0;
    while (done < most && text[done] != 0) ++done;
    return done;
}

}  // namespace

// An aligned load stays within its page of memory, so it may pass both ends of the text: what it finds
// there is not looked at.
[[gnu::no_sanitize_address, gnu::no_sanitize_thread]] std::size_t unitsBeforeTerminator(
    const VexaWChar* text, std::size_t most) noexcept {
    const std::size_t bytesBefore = reinterpret_cast<std::uintptr_t>(text) % kLine;
    // Between two units of a line nothing is found.
    if (most == 0 || bytesBefore % sizeof(VexaWChar) != 0) return unitByUnit(text, most);

    const std::size_t before = bytesBefore / sizeof(VexaWChar);
    const VexaWChar* line = text - before;
    std::uint32_t zeros = zerosIn(line) >> before << before;
    std::size_t done = kUnitsOfLine - before;
    for (; zeros == 0 && done < most; done += kUnitsOfLine) {
        line += kUnitsOfLine;
        zeros = zerosIn(line);
    }
    if (zeros == 0) return most;
    const auto place = static_cast<std::size_t>(__builtin_ctz(zeros));
    return std::min(done - kUnitsOfLine + place, most);
}

#else

std::size_t unitsBeforeTerminator(const VexaWChar* text, std::size_t most) noexcept {
    std::size_t done = 0;
    while (done < most && text[done] != 0) ++done;
    return done;
}

#endif

}  // namespace vexa::platform
