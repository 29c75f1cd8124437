#pragma once

#include "vexakit/types.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vexa::platform {

/// Text is looked at so many characters at a time.
constexpr std::size_t kAtOnce = 16;

constexpr bool isAscii(VexaWChar unit) {
    return unit < 0x80;
}

constexpr bool isAscii(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

#if defined(__SSE2__)

inline __m128i load(const void* from) noexcept {
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

inline void store(void* to, __m128i value) noexcept {
    _mm_storeu_si128(static_cast<__m128i*>(to), value);
}

/// Whether sixteen units are all ASCII.
inline bool areAscii(const VexaWChar* units) noexcept {
    const __m128i both = _mm_or_si128(load(units), load(units + 8));
    const __m128i high = _mm_and_si128(both, _mm_set1_epi16(static_cast<short>(0xFF80)));
    return _mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) == 0xFFFF;
}

/// Whether sixteen bytes are all ASCII.
inline bool areAscii(const char* bytes) noexcept {
    return _mm_movemask_epi8(load(bytes)) == 0;
}

/// Copies sixteen ASCII characters from one width to the other.
inline void copyBlock(const VexaWChar* units, char* bytes) noexcept {
    store(bytes, _mm_packus_epi16(load(units), load(units + 8)));
}

inline void copyBlock(const char* bytes, VexaWChar* units) noexcept {
    const __m128i block = load(bytes);
    store(units, _mm_unpacklo_epi8(block, _mm_setzero_si128()));
    store(units + 8, _mm_unpackhi_epi8(block, _mm_setzero_si128()));
}

#else

template <std::uint64_t kMask, typename Character>
bool haveNone(const Character* characters) noexcept {
    std::uint64_t words[kAtOnce * sizeof(Character) / sizeof(std::uint64_t)];
    std::memcpy(words, characters, sizeof(words));
    std::uint64_t all = 0;
    for (const std::uint64_t word : words) all |= word;
    return (all & kMask) == 0;
}

inline bool areAscii(const VexaWChar* units) noexcept {
    return haveNone<0xFF80FF80FF80FF80U>(units);
}

inline bool areAscii(const char* bytes) noexcept {
    return haveNone<0x8080808080808080U>(bytes);
}

template <typename From, typename To>
void copyBlock(const From* from, To* to) noexcept {
    for (std::size_t i = 0; i < kAtOnce; ++i) to[i] = static_cast<To>(from[i]);
}

#endif

/// Copies the ASCII characters that `from` starts with, at most `count`, from one width to the
/// other; returns how many they are.
template <typename From, typename To>
std::size_t copyAscii(const From* from, std::size_t count, To* to) noexcept {
    constexpr std::size_t kTwoBlocks = 2 * kAtOnce;
    std::size_t done = 0;
    while (count - done >= kTwoBlocks && areAscii(from + done) && areAscii(from + done + kAtOnce)) {
        copyBlock(from + done, to + done);
        copyBlock(from + done + kAtOnce, to + done + kAtOnce);
        done += kTwoBlocks;
    }
    if (count - done >= kAtOnce && areAscii(from + done)) {
        copyBlock(from + done, to + done);
        done += kAtOnce;
    }
    for (; done < count && isAscii(from[done]); ++done) {
        to[done] = static_cast<To>(from[done]);
    }
    return done;
}

/// How many ASCII characters `text` starts with, at most `count`.
template <typename Character>
std::size_t asciiRun(const Character* text, std::size_t count) noexcept {
    std::size_t done = 0;
    while (count - done >= kAtOnce && areAscii(text + done)) done += kAtOnce;
    while (done < count && isAscii(text[done])) ++done;
    return done;
}

/// The sum of what `sizeAt(index)` says of each unit, for encodings in which ASCII is one byte.
template <typename SizeAt>
std::size_t sumOfBytes(const VexaWChar* units, std::size_t count, SizeAt sizeAt) noexcept {
    std::size_t bytes = 0;
    std::size_t i = 0;
    for (; count - i >= kAtOnce; i += kAtOnce) {
        if (areAscii(units + i)) {
            bytes += kAtOnce;
        } else {
            for (std::size_t k = 0; k < kAtOnce; ++k) bytes += sizeAt(i + k);
        }
    }
    for (; i < count; ++i) bytes += sizeAt(i);
    return bytes;
}

}  // namespace vexa::platform
