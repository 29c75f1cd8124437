#include "platform/posix/utf8_by_vectors.h"

#include "platform/wide_vectors.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace vexa::platform {

namespace {

#if VEXAKIT_HAS_WIDE_VECTORS

// As many of the lowest bits.
VEXAKIT_AVX512 [[gnu::always_inline]] inline std::uint64_t firstBits(unsigned count) {
    return _bzhi_u64(~std::uint64_t{0}, count);
}

// ---- Wide text ---------------------------------------------------------------------------------

constexpr std::size_t kUnitsOfBlock = 16;

// Sixteen units, or as many as there are and zeros behind them.
VEXAKIT_AVX512 [[gnu::always_inline]] inline __m512i loadUnits(const VexaWChar* from,
                                                               std::size_t count) {
    const auto most = static_cast<unsigned>(std::min(count, kUnitsOfBlock));
    const auto mask = static_cast<__mmask16>(_bzhi_u32(0xFFFF, most));
    return _mm512_cvtepu16_epi32(_mm256_maskz_loadu_epi16(mask, from));
}

VEXAKIT_AVX512 [[gnu::always_inline]] inline __mmask16 areKind(__m512i units, int bits, int kind) {
    const __m512i kinds = _mm512_and_si512(units, _mm512_set1_epi32(bits));
    return _mm512_cmpeq_epi32_mask(kinds, _mm512_set1_epi32(kind));
}

VEXAKIT_AVX512 [[gnu::always_inline]] inline __mmask16 areCodesFrom(__m512i codes, int least) {
    return _mm512_cmpge_epi32_mask(codes, _mm512_set1_epi32(least));
}

VEXAKIT_AVX512 [[gnu::always_inline]] inline __m512i replaced(__m512i words, __mmask16 where,
                                                              unsigned word) {
    return _mm512_mask_mov_epi32(words, where, _mm512_set1_epi32(static_cast<int>(word)));
}

/// What sixteen units are: characters; of a pair the first half is the whole of it and the second half
/// is nothing.
struct Characters {
    __m512i codes;
    __mmask16 pairs;
    __mmask16 nothing;
};

VEXAKIT_AVX512 [[gnu::always_inline]] inline Characters paired(__m512i units, __m512i next,
                                                               bool startsInPair) {
    const __mmask16 pairs = areKind(units, 0xFC00, 0xD800) & areKind(next, 0xFC00, 0xDC00);
    const auto seconds = static_cast<__mmask16>(pairs << 1 | (startsInPair ? 1 : 0));
    const auto lone = static_cast<__mmask16>(areKind(units, 0xF800, 0xD800) & ~pairs & ~seconds);
    const __m512i codes = _mm512_add_epi32(
        _mm512_slli_epi32(units, 10),
        _mm512_sub_epi32(next, _mm512_set1_epi32((0xD800 << 10) + 0xDC00 - 0x10000)));
    return {replaced(_mm512_mask_mov_epi32(units, pairs, codes), lone, 0xFFFD), pairs, seconds};
}

// Four bytes a character, its last byte in the highest, and zeros before its first. Each byte gets its
// bits of the code, the mark of its place, and loses what is too much.
VEXAKIT_AVX512 [[gnu::always_inline]] inline __m512i bytesOf(const Characters& characters) {
    const __m512i shifts = _mm512_set1_epi64(0x20262C32'00060C12);
    const __m512i bits = _mm512_multishift_epi64_epi8(shifts, characters.codes);
    const __mmask16 two = areCodesFrom(characters.codes, 0x80);
    const __mmask16 three = areCodesFrom(characters.codes, 0x800);
    __m512i kept = _mm512_set1_epi32(0x7F00'0000);
    __m512i marks = _mm512_setzero_si512();
    kept = replaced(kept, two, 0x3F1F'0000);
    marks = replaced(marks, two, 0x80C0'0000);
    kept = replaced(kept, three, 0x3F3F'0F00);
    marks = replaced(marks, three, 0x8080'E000);
    if (characters.pairs != 0) {
        kept = replaced(kept, characters.pairs, 0x3F3F'3F07);
        marks = replaced(marks, characters.pairs, 0x8080'80F0);
    }
    constexpr int kAndThenOr = 0xEA;
    return _mm512_ternarylogic_epi32(bits, kept, marks, kAndThenOr);
}

/// The UTF-8 of sixteen units: the bytes of it are those under the mask.
struct EncodedBlock {
    __m512i bytes;
    std::uint64_t mask;
    /// Whether the first unit behind the block is the second half of a pair.
    bool endsInPair;
};

VEXAKIT_AVX512 [[gnu::always_inline]] inline EncodedBlock encode(const VexaWChar* from,
                                                                 std::size_t left,
                                                                 bool startsInPair) {
    Characters characters = {loadUnits(from, left), 0, 0};
    if (areKind(characters.codes, 0xF800, 0xD800) != 0) {
        characters = paired(characters.codes, loadUnits(from + 1, left - 1), startsInPair);
    }
    const __m512i bytes = bytesOf(characters);

    // Of a character that is zero the last byte is taken, too.
    constexpr std::uint64_t kLastBytes = 0x8888'8888'8888'8888;
    std::uint64_t mask = _mm512_test_epi8_mask(bytes, bytes) | kLastBytes;
    if (characters.nothing != 0) {
        mask &= ~_mm512_movepi8_mask(_mm512_movm_epi32(characters.nothing));
    }
    if (left < kUnitsOfBlock) mask &= firstBits(static_cast<unsigned>(4 * left));
    return {bytes, mask, characters.pairs >> 15 != 0};
}

VEXAKIT_AVX512 Progress<VexaWChar, char> convertByAvx512(const VexaWChar* from,
                                                         const VexaWChar* end, char* to,
                                                         const char* limit) {
    bool isInPair = false;
    while (from != end) {
        const auto left = static_cast<std::size_t>(end - from);
        if (left >= kUnitsOfBlock && static_cast<std::size_t>(limit - to) >= kUnitsOfBlock) {
            const __m256i units = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
            if (_mm256_testz_si256(units, _mm256_set1_epi16(static_cast<short>(0xFF80))) != 0) {
                _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_cvtepi16_epi8(units));
                to += kUnitsOfBlock;
                from += kUnitsOfBlock;
                isInPair = false;
                continue;
            }
        }
        const EncodedBlock block = encode(from, left, isInPair);
        const auto count = static_cast<unsigned>(std::popcount(block.mask));
        if (count > static_cast<std::size_t>(limit - to)) break;

        _mm512_mask_storeu_epi8(to, firstBits(count),
                                _mm512_maskz_compress_epi8(block.mask, block.bytes));
        to += count;
        from += std::min(left, kUnitsOfBlock);
        isInPair = block.endsInPair;
    }
    return {from + (isInPair ? 1 : 0), to};
}

// ---- UTF-8 -------------------------------------------------------------------------------------

constexpr std::size_t kBytesOfBlock = 64;

VEXAKIT_AVX512 [[gnu::always_inline]] inline std::uint64_t areBytesFrom(__m512i bytes,
                                                                        unsigned char least) {
    return _mm512_cmpge_epu8_mask(bytes, _mm512_set1_epi8(static_cast<char>(least)));
}

VEXAKIT_AVX512 [[gnu::always_inline]] inline std::uint64_t areBytes(__m512i bytes,
                                                                    unsigned char one) {
    return _mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8(static_cast<char>(one)));
}

// A constant shift, as compilers differ in the sign of its type.
template <int kShift>
VEXAKIT_AVX512 [[gnu::always_inline]] inline __m512i field(__m512i bytes, int mask) {
    const __m512i part = _mm512_and_si512(bytes, _mm512_set1_epi16(static_cast<short>(mask)));
    return _mm512_slli_epi16(part, kShift);
}

// Thirty-two characters. What stands before the last byte belongs to the character where that one is a
// trail byte, and what stands before that where it is another.
VEXAKIT_AVX512 [[gnu::always_inline]] inline __m512i unitsOf(__m256i last, __m256i second,
                                                             __m256i third) {
    const __m512i lasts = _mm512_cvtepu8_epi16(last);
    const __m512i seconds = _mm512_cvtepu8_epi16(second);
    const __m512i thirds = _mm512_cvtepu8_epi16(third);
    const __mmask32 two = _mm512_cmpge_epu16_mask(lasts, _mm512_set1_epi16(0x80));
    const __mmask32 three = _mm512_mask_cmplt_epu16_mask(two, seconds, _mm512_set1_epi16(0xC0));
    __m512i units = lasts;
    units = _mm512_mask_mov_epi16(units, two,
                                  _mm512_or_si512(field<0>(lasts, 0x3F), field<6>(seconds, 0x3F)));
    return _mm512_mask_mov_epi16(units, three, _mm512_or_si512(units, field<12>(thirds, 0x0F)));
}

// Of a character of four bytes the third stands for the first half of the pair, the last for the second.
VEXAKIT_AVX512 [[gnu::always_inline]] inline __m512i withPairs(__m512i units, __mmask32 first,
                                                               __mmask32 second, __m256i last,
                                                               __m256i before, __m256i beforeThat) {
    const __m512i lasts = _mm512_cvtepu8_epi16(last);
    const __m512i befores = _mm512_cvtepu8_epi16(before);
    const __m512i leads = _mm512_cvtepu8_epi16(beforeThat);
    const __m512i high = _mm512_add_epi16(
        _mm512_or_si512(_mm512_or_si512(field<8>(leads, 0x07), field<2>(befores, 0x3F)),
                        _mm512_srli_epi16(field<0>(lasts, 0x30), 4)),
        _mm512_set1_epi16(static_cast<short>(0xD800 - 0x40)));
    const __m512i low =
        _mm512_or_si512(_mm512_or_si512(field<6>(befores, 0x0F), field<0>(lasts, 0x3F)),
                        _mm512_set1_epi16(static_cast<short>(0xDC00)));
    return _mm512_mask_mov_epi16(_mm512_mask_mov_epi16(units, first, high), second, low);
}

// The bytes of a character that goes on behind the block. Asked of the text itself: where the next block
// begins is known before anything else is.
std::size_t bytesOfCutCharacter(const char* end) {
    const auto byteBefore = [=](std::size_t n) { return static_cast<unsigned char>(*(end - n)); };
    if (byteBefore(1) >= 0xC0) return 1;
    if (byteBefore(2) >= 0xE0) return 2;
    return byteBefore(3) >= 0xF0 ? 3 : 0;
}

/// What a block that starts with a character has at each of its bytes.
struct ByteKinds {
    std::uint64_t trails;
    std::uint64_t leadsOfFour;
    /// Bytes that cannot stand where they do.
    std::uint64_t wrong;
};

VEXAKIT_AVX512 [[gnu::always_inline]] inline ByteKinds kindsOf(__m512i bytes) {
    const std::uint64_t trails =
        _mm512_cmplt_epi8_mask(bytes, _mm512_set1_epi8(static_cast<char>(0xC0)));
    const std::uint64_t leads = areBytesFrom(bytes, 0xC0);
    const std::uint64_t threes = areBytesFrom(bytes, 0xE0);
    const std::uint64_t fours = areBytesFrom(bytes, 0xF0);
    const std::uint64_t expected = leads << 1 | threes << 2 | fours << 3;
    std::uint64_t wrong = trails ^ expected;
    wrong |= areBytes(bytes, 0xC0) | areBytes(bytes, 0xC1) | areBytesFrom(bytes, 0xF5);

    // Behind these the second byte is not any trail byte.
    const std::uint64_t fromA0 = areBytesFrom(bytes, 0xA0);
    wrong |= (areBytes(bytes, 0xE0) << 1 & ~fromA0) | (areBytes(bytes, 0xED) << 1 & fromA0);
    if (fours != 0) {
        const std::uint64_t from90 = areBytesFrom(bytes, 0x90);
        wrong |= (areBytes(bytes, 0xF0) << 1 & ~from90) | (areBytes(bytes, 0xF4) << 1 & from90);
    }
    return {trails, fours, wrong};
}

// Bytes of whole characters before the first wrong byte. The character before it may be cut off by it.
VEXAKIT_AVX512 [[gnu::always_inline]] inline std::size_t charactersBefore(std::uint64_t wrong,
                                                                          std::uint64_t trails) {
    const auto right = static_cast<unsigned>(std::countr_zero(wrong));
    const std::uint64_t starts = ~trails & firstBits(right);
    return starts == 0 ? 0 : 63U - static_cast<unsigned>(std::countl_zero(starts));
}

VEXAKIT_AVX512 [[gnu::always_inline]] inline void storeUnits(VexaWChar* to, std::uint64_t stored,
                                                             __m512i low, __m512i high) {
    _mm512_mask_storeu_epi16(to, static_cast<__mmask32>(stored), low);
    _mm512_mask_storeu_epi16(to + 32, static_cast<__mmask32>(stored >> 32), high);
}

// The first bytes of a block, which are whole characters; `ends` are those that stand for a unit.
VEXAKIT_AVX512 [[gnu::always_inline]] inline void decode(const char* from, __m512i bytes,
                                                         std::uint64_t there,
                                                         const ByteKinds& kinds, std::uint64_t ends,
                                                         VexaWChar* to) {
    // Nothing before the block is read: its first byte is the first of a character.
    const __m512i before = _mm512_maskz_loadu_epi8(there << 1, from - 1);
    const __m512i beforeThat = _mm512_maskz_loadu_epi8(there << 2, from - 2);
    const __m512i a = _mm512_maskz_compress_epi8(ends, bytes);
    const __m512i b = _mm512_maskz_compress_epi8(ends, before);
    const __m512i c = _mm512_maskz_compress_epi8(ends, beforeThat);
    const __m256i lowA = _mm512_castsi512_si256(a);
    const __m256i lowB = _mm512_castsi512_si256(b);
    const __m256i lowC = _mm512_castsi512_si256(c);
    const __m256i highA = _mm512_extracti64x4_epi64(a, 1);
    const __m256i highB = _mm512_extracti64x4_epi64(b, 1);
    const __m256i highC = _mm512_extracti64x4_epi64(c, 1);
    __m512i low = unitsOf(lowA, lowB, lowC);
    __m512i high = unitsOf(highA, highB, highC);
    if (kinds.leadsOfFour != 0) {
        const std::uint64_t first = _pext_u64(kinds.leadsOfFour << 2, ends);
        const std::uint64_t second = _pext_u64(kinds.leadsOfFour << 3, ends);
        low = withPairs(low, static_cast<__mmask32>(first), static_cast<__mmask32>(second), lowA,
                        lowB, lowC);
        high = withPairs(high, static_cast<__mmask32>(first >> 32),
                         static_cast<__mmask32>(second >> 32), highA, highB, highC);
    }
    storeUnits(to, firstBits(static_cast<unsigned>(std::popcount(ends))), low, high);
}

VEXAKIT_AVX512 Progress<char, VexaWChar> convertByAvx512(const char* from, const char* end,
                                                         VexaWChar* to, const VexaWChar* limit) {
    while (from != end) {
        const std::size_t left = std::min(static_cast<std::size_t>(end - from), kBytesOfBlock);
        const auto room = static_cast<std::size_t>(limit - to);
        const std::uint64_t there = firstBits(static_cast<unsigned>(left));
        const __m512i bytes = _mm512_maskz_loadu_epi8(there, from);
        if (_mm512_movepi8_mask(bytes) == 0 && room >= left) {
            storeUnits(to, there, _mm512_cvtepu8_epi16(_mm512_castsi512_si256(bytes)),
                       _mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(bytes, 1)));
            to += left;
            from += left;
            continue;
        }
        // What a text lacks at its end shows as a zero in the place of a trail byte.
        std::size_t count = left == kBytesOfBlock ? left - bytesOfCutCharacter(from + left) : left;
        const ByteKinds kinds = kindsOf(bytes);
        const std::uint64_t wrong = kinds.wrong & firstBits(static_cast<unsigned>(count) + 1);
        if (wrong != 0) {
            count = charactersBefore(wrong, kinds.trails);
            if (count == 0) break;
        }
        // A byte is its character's last where none of its trail bytes follows.
        const std::uint64_t lasts = ~(kinds.trails >> 1) | std::uint64_t{1} << (count - 1);
        const std::uint64_t ends =
            (lasts | kinds.leadsOfFour << 2) & firstBits(static_cast<unsigned>(count));
        const auto units = static_cast<std::size_t>(std::popcount(ends));
        if (units > room) break;

        decode(from, bytes, there, kinds, ends, to);
        to += units;
        from += count;
    }
    return {from, to};
}

#endif

}  // namespace

bool hasUtf8Vectors() noexcept {
    return vectorWidth() == VectorWidth::Avx512;
}

Progress<VexaWChar, char> wideToUtf8ByVectors(const VexaWChar* from,
                                              [[maybe_unused]] const VexaWChar* end, char* to,
                                              [[maybe_unused]] const char* limit) noexcept {
#if VEXAKIT_HAS_WIDE_VECTORS
    if (hasUtf8Vectors()) return convertByAvx512(from, end, to, limit);
#endif
    return {from, to};
}

Progress<char, VexaWChar> utf8ToWideByVectors(const char* from, [[maybe_unused]] const char* end,
                                              VexaWChar* to,
                                              [[maybe_unused]] const VexaWChar* limit) noexcept {
#if VEXAKIT_HAS_WIDE_VECTORS
    if (hasUtf8Vectors()) return convertByAvx512(from, end, to, limit);
#endif
    return {from, to};
}

}  // namespace vexa::platform
