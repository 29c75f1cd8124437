#include "numbers/decimal_printing.h"

#include "numbers/powers_of_ten.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vexa {

namespace {

constexpr int kMantissaBits = 52;
constexpr int kBias = 1023;

// ---- The decimal exponent ----------------------------------------------------------------------

// The numbers of one binary exponent: they are 10^exponent and more, from `next` on of the mantissa's
// 64 bits 10^(exponent + 1) and more.
struct Magnitude {
    std::uint64_t next;
    int exponent;
};

constexpr int kLeastBinaryExponent = -88;  // of 10^-26.5
constexpr int kGreatestBinaryExponent = 127;

constexpr Magnitude magnitudeOf(int binaryExponent) {
    // Of 10^n the leading bit is 2^(127 + exponent).
    const auto leadingBit = [](int n) { return powerOfTen(n).exponent + 127; };
    int n = kLeastPowerOfTen;
    while (leadingBit(n + 1) < binaryExponent) ++n;
    if (leadingBit(n + 1) != binaryExponent) return {UINT64_MAX, n};

    const PowerOfTen& power = powerOfTen(n + 1);
    const bool isWhole = power.low == 0 && n + 1 >= 0;
    return {power.high + (isWhole ? 0 : 1), n};
}

constexpr auto kMagnitudes = [] {
    std::array<Magnitude, kGreatestBinaryExponent - kLeastBinaryExponent + 1> magnitudes{};
    for (int i = kLeastBinaryExponent; i <= kGreatestBinaryExponent; ++i) {
        magnitudes[static_cast<std::size_t>(i - kLeastBinaryExponent)] = magnitudeOf(i);
    }
    return magnitudes;
}();

// ---- Digits ------------------------------------------------------------------------------------

/// 64 bits, the first of them set, times 2^(exponent - 63).
struct Binary {
    std::uint64_t bits;
    int exponent;
};

/// The number is digits * 10^(exponent - precision + 1), with as many digits as the precision.
struct Decimal {
    std::uint64_t digits;
    int exponent;
};

// False where the digits depend on bits that are not at hand.
bool scaledTo(int precision, const Binary& number, Decimal& result) {
    const Magnitude& magnitude =
        kMagnitudes[static_cast<std::size_t>(number.exponent - kLeastBinaryExponent)];
    const int exponent = magnitude.exponent + (number.bits >= magnitude.next ? 1 : 0);
    const int scale = precision - 1 - exponent;
    if (scale < kLeastPowerOfTen || scale > kGreatestPowerOfTen) return false;

    // The leading 128 of 192 bits; what is cut off of the power and here makes less than two units.
    const PowerOfTen& power = powerOfTen(scale);
    const UInt128 low = UInt128{number.bits} * power.low;
    const UInt128 product = UInt128{number.bits} * power.high + (low >> 64);

    // As many of them as stand before the point, 57 at most, and 64 behind it.
    const int whole = number.exponent - 63 + power.exponent + 64 + 128;
    const auto digits = static_cast<std::uint64_t>(product >> 64) >> (64 - whole);
    const auto rest = static_cast<std::uint64_t>(product >> (64 - whole));
    constexpr std::uint64_t kHalf = std::uint64_t{1} << 63;
    if (rest - (kHalf - 2) <= 2) return false;

    result = {digits + (rest >> 63), exponent};
    if (result.digits == kIntegerPowersOfTen[precision]) {
        result = {kIntegerPowersOfTen[precision - 1], exponent + 1};
    }
    return true;
}

/// Sixteen digits, a byte each, the first in the lowest; bit n is set where digit n is not zero.
struct SixteenDigits {
    UInt128 digits;
    unsigned nonzero;
};

#if defined(__SSE2__)

// Parts numbers below 100^n into halves: the quotient stays, the remainder goes behind it.
SixteenDigits sixteenDigits(std::uint64_t number) {
    const __m128i eights = _mm_set_epi64x(static_cast<long long>(number % kIntegerPowersOfTen[8]),
                                          static_cast<long long>(number / kIntegerPowersOfTen[8]));
    const __m128i tenThousands =
        _mm_srli_epi64(_mm_mul_epu32(eights, _mm_set1_epi64x(0xD1B7'1759)), 45);
    const __m128i belowTenThousand =
        _mm_sub_epi64(eights, _mm_mul_epu32(tenThousands, _mm_set1_epi64x(10'000)));
    const __m128i fours = _mm_or_si128(tenThousands, _mm_slli_epi64(belowTenThousand, 32));

    const __m128i hundreds = _mm_srli_epi16(_mm_mulhi_epu16(fours, _mm_set1_epi16(5'243)), 3);
    const __m128i belowHundred =
        _mm_sub_epi16(fours, _mm_mullo_epi16(hundreds, _mm_set1_epi16(100)));
    const __m128i twos = _mm_or_si128(hundreds, _mm_slli_epi32(belowHundred, 16));

    const __m128i tens = _mm_mulhi_epu16(twos, _mm_set1_epi16(6'554));
    const __m128i belowTen = _mm_sub_epi16(twos, _mm_mullo_epi16(tens, _mm_set1_epi16(10)));
    const __m128i ones = _mm_or_si128(tens, _mm_slli_epi16(belowTen, 8));

    const __m128i isZero = _mm_cmpeq_epi8(ones, _mm_setzero_si128());
    const auto low = static_cast<std::uint64_t>(_mm_cvtsi128_si64(ones));
    const auto high = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(ones, ones)));
    return {UInt128{high} << 64 | low, ~static_cast<unsigned>(_mm_movemask_epi8(isZero)) & 0xFFFF};
}

#else

std::uint64_t eightDigits(std::uint64_t number) {
    const std::uint64_t four = number / 10'000 | (number % 10'000) << 32;
    const std::uint64_t hundreds = (four * 10'486 >> 20) & 0x0000'007F'0000'007F;
    const std::uint64_t two = hundreds | (four - 100 * hundreds) << 16;
    const std::uint64_t tens = (two * 103 >> 10) & 0x000F'000F'000F'000F;
    return tens | (two - 10 * tens) << 8;
}

SixteenDigits sixteenDigits(std::uint64_t number) {
    const std::uint64_t first = eightDigits(number / kIntegerPowersOfTen[8]);
    const std::uint64_t last = eightDigits(number % kIntegerPowersOfTen[8]);
    const int zeros = last != 0 ? std::countl_zero(last) / 8 : 8 + std::countl_zero(first) / 8;
    return {UInt128{last} << 64 | first, 0xFFFFU >> zeros};
}

#endif

/// Seventeen digits as characters, and how many there are without the zeros at the end. They stay in
/// registers: what is stored in pieces and loaded as a whole makes the machine wait.
struct Digits {
    char first;
    UInt128 others;
    int count;
};

Digits spelt(std::uint64_t number) {
    constexpr std::uint64_t kEightZeros = 0x3030'3030'3030'3030;
    const std::uint64_t first = number / kIntegerPowersOfTen[16];
    const SixteenDigits others = sixteenDigits(number - first * kIntegerPowersOfTen[16]);
    return {static_cast<char>('0' + first),
            others.digits | UInt128{kEightZeros} << 64 | kEightZeros,
            1 + static_cast<int>(std::bit_width(others.nonzero))};
}

// ---- Text --------------------------------------------------------------------------------------

void put(char* out, UInt128 characters) {
    std::memcpy(out, &characters, sizeof characters);
}

// Behind the digits that count anything may stand: what comes next is written over it.
char* putFixed(char* out, const Digits& digits, int exponent) {
    if (exponent < 0) {
        constexpr std::uint64_t kZeros = 0x3030'3030'3030'2E30;  // "0.000000"
        std::memcpy(out, &kZeros, sizeof kZeros);
        char* const first = out + 1 - exponent;
        *first = digits.first;
        put(first + 1, digits.others);
        return first + digits.count;
    }
    *out = digits.first;
    put(out + 1, digits.others);
    char* const point = out + 1 + exponent;
    if (digits.count <= exponent + 1) return point;

    *point = '.';
    put(point + 1, digits.others >> 8 * exponent);
    return out + digits.count + 1;
}

char* putWithExponent(char* out, const Digits& digits, int exponent) {
    out = putFixed(out, digits, 0);
    const int magnitude = exponent < 0 ? -exponent : exponent;
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    *out++ = static_cast<char>('0' + magnitude / 10);
    *out++ = static_cast<char>('0' + magnitude % 10);
    return out;
}

}  // namespace

char* printQuickly(char* out, double value, int precision) noexcept {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    *out = '-';
    out += bits >> 63;
    const std::uint64_t magnitude = bits << 1 >> 1;
    if (magnitude == 0) {
        *out = '0';
        return out + 1;
    }
    const int exponent = static_cast<int>(magnitude >> kMantissaBits) - kBias;
    if (exponent < kLeastBinaryExponent || exponent > kGreatestBinaryExponent) return nullptr;

    const Binary binary = {(magnitude << 11) | std::uint64_t{1} << 63, exponent};
    Decimal decimal{};
    if (!scaledTo(precision, binary, decimal)) return nullptr;

    const Digits digits = spelt(decimal.digits * kIntegerPowersOfTen[kMostQuickDigits - precision]);
    const bool isFixed = decimal.exponent >= -4 && decimal.exponent < precision;
    return isFixed ? putFixed(out, digits, decimal.exponent)
                   : putWithExponent(out, digits, decimal.exponent);
}

// The product of the mantissa and the power of ten has 110 bits at most: nothing is cut off.
char* printFractionQuickly(char* out, double value, int decimals) noexcept {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const std::uint64_t magnitude = bits << 1 >> 1;
    const int exponent = static_cast<int>(magnitude >> kMantissaBits);
    const std::uint64_t mantissa = (magnitude & ((std::uint64_t{1} << kMantissaBits) - 1)) |
                                   (exponent == 0 ? 0 : std::uint64_t{1} << kMantissaBits);
    const int shift = kBias + kMantissaBits - std::max(exponent, 1);

    std::uint64_t digits = 0;
    if (shift < 128) {
        const UInt128 product = UInt128{mantissa} * kIntegerPowersOfTen[decimals];
        const UInt128 half = UInt128{1} << (shift - 1);
        digits = static_cast<std::uint64_t>(product >> shift);
        const UInt128 rest = product - (UInt128{digits} << shift);
        if (rest > half || (rest == half && digits % 2 != 0)) ++digits;
    }
    *out = '-';
    out += bits >> 63;
    const std::uint64_t whole = digits / kIntegerPowersOfTen[decimals];
    const Digits text = spelt((digits - whole * kIntegerPowersOfTen[decimals]) *
                              kIntegerPowersOfTen[kMostQuickDigits - decimals]);
    *out = static_cast<char>('0' + whole);
    if (decimals == 0) return out + 1;
    out[1] = '.';
    out[2] = text.first;
    put(out + 3, text.others);
    return out + 2 + decimals;
}

}  // namespace vexa
