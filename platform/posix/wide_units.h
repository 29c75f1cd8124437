#pragma once

#include "vexakit/types.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vexa::platform {

/// Wide text is looked at so many units at a time.
constexpr std::size_t kUnitsAtOnce = 8;

/// Whether eight units are all ASCII.
inline bool areAscii(const VexaWChar* units) noexcept {
#if defined(__SSE2__)
    const __m128i wide = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
    const __m128i high = _mm_and_si128(wide, _mm_set1_epi16(static_cast<short>(0xFF80)));
    return _mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) == 0xFFFF;
#else
    std::uint64_t halves[2];
    std::memcpy(halves, units, sizeof(halves));
    return ((halves[0] | halves[1]) & 0xFF80FF80FF80FF80U) == 0;
#endif
}

/// Writes eight units as eight bytes where all are ASCII; otherwise writes nothing.
inline bool packAscii(const VexaWChar* units, char* bytes) noexcept {
    if (!areAscii(units)) return false;
#if defined(__SSE2__)
    const __m128i wide = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(bytes), _mm_packus_epi16(wide, wide));
#else
    for (std::size_t i = 0; i < kUnitsAtOnce; ++i) bytes[i] = static_cast<char>(units[i]);
#endif
    return true;
}

/// Copies the ASCII units that `units` starts with, at most `count`; returns how many they are.
inline std::size_t copyAscii(const VexaWChar* units, std::size_t count, char* bytes) noexcept {
    std::size_t done = 0;
    while (count - done >= kUnitsAtOnce && packAscii(units + done, bytes + done)) {
        done += kUnitsAtOnce;
    }
    for (; done < count && units[done] < 0x80; ++done) bytes[done] = static_cast<char>(units[done]);
    return done;
}

/// The sum of what `bytesAt(index)` says of each unit, for encodings in which ASCII is one byte.
template <typename BytesAt>
std::size_t sumOfBytes(const VexaWChar* units, std::size_t count, BytesAt bytesAt) noexcept {
    std::size_t bytes = 0;
    std::size_t i = 0;
    for (; count - i >= kUnitsAtOnce; i += kUnitsAtOnce) {
        if (areAscii(units + i)) {
            bytes += kUnitsAtOnce;
        } else {
            for (std::size_t k = 0; k < kUnitsAtOnce; ++k) bytes += bytesAt(i + k);
        }
    }
    for (; i < count; ++i) bytes += bytesAt(i);
    return bytes;
}

/// Units before the terminator.
#if defined(__SSE2__)
// An aligned load stays within its page of memory, so it may pass the end of the text: what it finds
// there is not looked at.
[[gnu::no_sanitize_address, gnu::no_sanitize_thread]] inline std::size_t wideLength(
    const VexaWChar* text) noexcept {
    const VexaWChar* at = text;
    for (; reinterpret_cast<std::uintptr_t>(at) % sizeof(__m128i) != 0; ++at) {
        if (*at == 0) return static_cast<std::size_t>(at - text);
    }
    for (;; at += kUnitsAtOnce) {
        const __m128i units = _mm_load_si128(reinterpret_cast<const __m128i*>(at));
        const int zeros = _mm_movemask_epi8(_mm_cmpeq_epi16(units, _mm_setzero_si128()));
        if (zeros != 0) {
            return static_cast<std::size_t>(at - text) +
                   static_cast<std::size_t>(__builtin_ctz(static_cast<unsigned>(zeros))) / 2;
        }
    }
}
#else
inline std::size_t wideLength(const VexaWChar* text) noexcept {
    return std::char_traits<VexaWChar>::length(text);
}
#endif

}  // namespace vexa::platform
