#pragma once

#include "platform/multibyte.h"

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vexa {

/// The bytes that end a token of text in the ANSI code page.
class Delimiters {
public:
    static constexpr std::size_t kFew = 4;

    /// @param bytes  zero-terminated; have to last as long as this object
    explicit Delimiters(const char* bytes) noexcept : bytes_(bytes) {
        constexpr unsigned kBitsOfByte = 8;
        std::size_t count = 0;
        for (; count < kFew && bytes[count] != '\0'; ++count) {
            four_ |= std::uint32_t{static_cast<unsigned char>(bytes[count])} << kBitsOfByte * count;
        }
        areSimple_ = bytes[count] == '\0' && !platform::isDoubleBytePage();
    }

    /// Whether they are a few that end a token wherever they are, as no byte is part of another
    /// character.
    [[nodiscard]] bool areSimple() const noexcept { return areSimple_; }

    /// The few, a byte each from the lowest on; what is left is zero, as the terminator.
    [[nodiscard]] std::uint32_t four() const noexcept { return four_; }

    /// Where the token at `text` ends: at the first delimiter that is no trail byte, else at the
    /// terminator.
    [[nodiscard]] const char* endOfToken(const char* text) const noexcept {
#if defined(__SSE2__)
        if (areSimple_) [[likely]]
            return endByBlocks(text);
#endif
        return endByCharacters(text, bytes_);
    }

private:
    static const char* endByCharacters(const char* text, const char* delimiters) noexcept;

#if defined(__SSE2__)

    // An aligned block stays within its page of memory, so it may pass both ends of the text: what it
    // finds there is not looked at.
    [[nodiscard, gnu::no_sanitize_address, gnu::no_sanitize_thread]] const char* endByBlocks(
        const char* text) const noexcept {
        const std::size_t before = reinterpret_cast<std::uintptr_t>(text) % sizeof(__m128i);
        const auto* block = reinterpret_cast<const __m128i*>(text - before);
        unsigned ends = endsIn(_mm_load_si128(block)) >> before << before;
        while (ends == 0) ends = endsIn(_mm_load_si128(++block));
        return reinterpret_cast<const char*>(block) + __builtin_ctz(ends);
    }

    // A bit for each byte.
    [[nodiscard]] unsigned endsIn(__m128i block) const noexcept {
        const __m128i bytes = _mm_cvtsi32_si128(static_cast<int>(four_));
        const __m128i pairs = _mm_unpacklo_epi8(bytes, bytes);
        const __m128i quads = _mm_unpacklo_epi16(pairs, pairs);
        const __m128i some = _mm_or_si128(_mm_cmpeq_epi8(block, _mm_shuffle_epi32(quads, 0x00)),
                                          _mm_cmpeq_epi8(block, _mm_shuffle_epi32(quads, 0x55)));
        const __m128i others = _mm_or_si128(_mm_cmpeq_epi8(block, _mm_shuffle_epi32(quads, 0xAA)),
                                            _mm_cmpeq_epi8(block, _mm_shuffle_epi32(quads, 0xFF)));
        const __m128i zeros = _mm_cmpeq_epi8(block, _mm_setzero_si128());
        return static_cast<unsigned>(
            _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(some, others), zeros)));
    }

#endif

    const char* bytes_;
    std::uint32_t four_ = 0;
    bool areSimple_;
};

}  // namespace vexa
