#pragma once

#include "numbers/powers_of_ten.h"
#include "platform/vector_width.h"

#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>

#if VEXAKIT_HAS_WIDE_VECTORS
#include <immintrin.h>
#endif

/// Numbers of well-known text: a sign, digits, a point, digits, an exponent with its sign. Each way of
/// reading them gives the bits of from_chars.
namespace vexa {

constexpr bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Reads a number of any length that ends before `end`.
/// @return just past it; null where there is none, and for one that needs a closer look: with several
///         signs, with letters behind it that are no exponent, beyond what a double holds
inline const char* readAnyDecimal(const char* first, const char* end, double& value) {
    const char* const digit = first != end && *first == '-' ? first + 1 : first;
    if (digit == end || !isDigit(*digit)) return nullptr;

    const auto [last, error] = std::from_chars(first, end, value);
    if (error != std::errc{}) return nullptr;
    if (last != end && (*last == 'e' || *last == 'E')) return nullptr;

    // An exponent without a sign is none.
    for (const char* at = digit; at + 1 < last; ++at) {
        if ((*at == 'e' || *at == 'E') && isDigit(at[1])) return nullptr;
    }
    return last;
}

/// The double nearest to digits / 10^decimals; false where that is not seen at once.
inline bool nearestDouble(std::uint64_t digits, std::size_t decimals, double& value) {
    constexpr std::uint64_t kMostExact = std::uint64_t{1} << 53;
    static constexpr double kExactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    // Of two numbers that are exact the division rounds once.
    if (digits <= kMostExact && decimals < std::size(kExactPowersOfTen)) {
        value = static_cast<double>(digits) / kExactPowersOfTen[decimals];
        return true;
    }
    if (decimals == 0) {
        value = static_cast<double>(digits);
        return true;
    }
    constexpr auto kMostDecimals = static_cast<std::size_t>(-kLeastPowerOfTen);
    if (digits == 0 || decimals > kMostDecimals) return false;

    const PowerOfTen& power = powerOfTen(-static_cast<int>(decimals));
    const int shift = std::countl_zero(digits);
    const auto product = UInt128{digits << shift} * power.high;
    const auto leading = static_cast<std::uint64_t>(product >> 64);
    const int isShort = leading >> 63 == 0 ? 1 : 0;
    const std::uint64_t bits = leading << isShort;

    // Of these 64 bits 53 stay. The bits are less than three too few: where that may be felt in the one
    // that rounds, somebody else has to look. Exact halves are among those numbers.
    constexpr unsigned kHalf = 1U << 10;
    if ((bits & (2 * kHalf - 1)) - (kHalf - 3) < 3) return false;

    constexpr int kBias = 1023;
    constexpr unsigned kMantissaBits = 52;
    const std::uint64_t mantissa = ((bits >> 10) + 1) >> 1;
    const int exponent = power.exponent + 128 + 63 - shift - isShort;
    // The leading bit of the mantissa, and its carry, count the exponent up.
    value = std::bit_cast<double>(
        (static_cast<std::uint64_t>(exponent + kBias - 1) << kMantissaBits) + mantissa);
    return true;
}

#if VEXAKIT_HAS_WIDE_VECTORS

/// How far behind its first character a number is looked at by `readDecimalByVectors`.
constexpr std::size_t kDecimalLookahead = 64;

/// Up to sixteen digits.
struct DigitRun {
    std::uint64_t value;
    std::size_t length;
};

VEXAKIT_AVX2 [[gnu::always_inline]] inline DigitRun readDigits(const char* at) {
    // Loaded from place n on it brings n characters to the right end and leaves zeros before them.
    alignas(32) static constexpr signed char kToTheRight[32] = {
        -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
        0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15};

    const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    const __m128i digits = _mm_sub_epi8(characters, _mm_set1_epi8('0'));
    const __m128i isDigit = _mm_cmpeq_epi8(_mm_min_epu8(digits, _mm_set1_epi8(9)), digits);
    const auto mask = static_cast<unsigned>(_mm_movemask_epi8(isDigit));
    const auto length = static_cast<std::size_t>(std::countr_one(mask));

    const auto* const order = reinterpret_cast<const __m128i*>(kToTheRight + length);
    const __m128i aligned = _mm_shuffle_epi8(digits, _mm_loadu_si128(order));
    const __m128i pairs = _mm_maddubs_epi16(aligned, _mm_set1_epi16(0x010A));
    const __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(0x0001'0064));
    const __m128i packed = _mm_packus_epi32(fours, fours);
    const __m128i eights = _mm_madd_epi16(packed, _mm_set1_epi32(0x0001'2710));
    const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
    constexpr std::uint64_t kHundredMillion = 100'000'000;
    return {(both & 0xFFFF'FFFF) * kHundredMillion + (both >> 32), length};
}

/// Reads a number without an exponent, of up to 19 digits; what others need is left to
/// `readAnyDecimal`. The lookahead has to be readable.
/// @return just past it; null where there is no such number
VEXAKIT_AVX2 [[gnu::always_inline]] inline const char* readDecimalByVectors(const char* first,
                                                                            double& value) {
    constexpr std::size_t kMostDigits = 19;
    constexpr std::size_t kDigitsOfRun = 16;

    const bool isNegative = *first == '-';
    const char* at = first + isNegative;
    const DigitRun whole = readDigits(at);
    if (whole.length == 0 || whole.length == kDigitsOfRun) return nullptr;

    at += whole.length;
    std::uint64_t digits = whole.value;
    std::size_t decimals = 0;
    if (*at == '.') {
        ++at;
        const DigitRun fraction = readDigits(at);
        at += fraction.length;
        digits = digits * kIntegerPowersOfTen[fraction.length] + fraction.value;
        decimals = fraction.length;
        if (decimals == kDigitsOfRun) {
            for (; isDigit(*at) && whole.length + decimals < kMostDigits; ++at, ++decimals) {
                digits = digits * 10 + static_cast<std::uint64_t>(*at - '0');
            }
        }
        if (whole.length + decimals > kMostDigits || isDigit(*at)) return nullptr;
    }
    if (*at == 'e' || *at == 'E') return nullptr;

    double magnitude = 0;
    if (!nearestDouble(digits, decimals, magnitude)) return nullptr;
    const auto sign = static_cast<std::uint64_t>(isNegative) << 63;
    value = std::bit_cast<double>(std::bit_cast<std::uint64_t>(magnitude) | sign);
    return at;
}

#endif

}  // namespace vexa
