#include "strings/short_tokens.h"

#include <cstddef>

#if VEXAKIT_HAS_WIDE_VECTORS
#include <immintrin.h>
#endif

namespace vexa {

#if VEXAKIT_HAS_WIDE_VECTORS

namespace {

constexpr int kOrOfThree = 0xFE;

// A block in one page of memory with the start of the text may pass the end of the text: what it finds
// there is not looked at.
bool isBlockInPage(const char* text) {
    constexpr std::size_t kSmallestPage = 4096;
    return reinterpret_cast<std::uintptr_t>(text) % kSmallestPage <=
           kSmallestPage - sizeof(__m256i);
}

VEXAKIT_AVX512 [[gnu::always_inline]] inline __m256i broadcast(std::uint32_t byte) {
    return _mm256_set1_epi8(static_cast<char>(byte));
}

// Where a token may end: a bit for each byte.
VEXAKIT_AVX512 [[gnu::always_inline]] inline std::uint32_t endsIn(__m256i block,
                                                                  std::uint32_t delimiters) {
    const __m256i zeros = _mm256_cmpeq_epi8(block, _mm256_setzero_si256());
    const __m256i first = _mm256_cmpeq_epi8(block, broadcast(delimiters));
    const __m256i second = _mm256_cmpeq_epi8(block, broadcast(delimiters >> 8));
    const __m256i third = _mm256_cmpeq_epi8(block, broadcast(delimiters >> 16));
    const __m256i fourth = _mm256_cmpeq_epi8(block, broadcast(delimiters >> 24));
    const __m256i some = _mm256_ternarylogic_epi32(first, second, zeros, kOrOfThree);
    const __m256i any = _mm256_ternarylogic_epi32(some, third, fourth, kOrOfThree);
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(any));
}

VEXAKIT_AVX512 [[gnu::no_sanitize_address, gnu::no_sanitize_thread]] TokenEnd takeByAvx512(
    const char* list, std::uint32_t delimiters, char* token) noexcept {
    // A second round for a list that starts with a delimiter, which is no token's end.
    for (const char* start = list; start <= list + 1; ++start) {
        if (!isBlockInPage(start)) break;
        const __m256i block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(start));
        const std::uint32_t ends = endsIn(block, delimiters);
        if (ends == 0) break;
        if (start == list && (ends & 1U) != 0) [[unlikely]]
            continue;

        const TokenEnd end = {start + __builtin_ctz(ends), start[__builtin_ctz(ends)] == '\0'};
        const std::uint32_t upToEnd = ends ^ (ends - 1);
        const __m256i text = _mm256_maskz_mov_epi8(upToEnd & ~ends, block);
        _mm256_mask_storeu_epi8(token, upToEnd, text);
        return end;
    }
    return {nullptr, false};
}

}  // namespace

TokenEnd takeShortToken(const char* list, std::uint32_t delimiters, char* token) noexcept {
    if (platform::vectorWidth() < platform::VectorWidth::Avx512) return {nullptr, false};
    return takeByAvx512(list, delimiters, token);
}

#else

TokenEnd takeShortToken(const char* /*list*/, std::uint32_t /*delimiters*/,
                        char* /*token*/) noexcept {
    return {nullptr, false};
}

#endif

}  // namespace vexa
