#include "platform/number_print.h"

#include "numbers/decimal_printing.h"

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace vexa::platform {

namespace {

constexpr int kDefaultPrecision = 6;
constexpr int kFullPrecision = 17;

#ifdef _UCRT
constexpr int kExponentDigits = 2;
constexpr bool kTiesGoAwayFromZero = false;
#else
constexpr int kExponentDigits = 3;
constexpr bool kTiesGoAwayFromZero = true;
#endif

char* printByRuntime(char* out, int room, const char* format, double value, int precision) {
    // A precision below -1 is not the default to every runtime.
    const int digits = precision < 0 ? kDefaultPrecision : precision;
    const int length = _snprintf(out, static_cast<std::size_t>(room), format, digits, value);
    char* const end = out + std::clamp(length, 0, room);
    std::replace(out, end, *std::localeconv()->decimal_point, '.');
    return end;
}

// The power of two that the last bit of a number has, which is not 0.
int lastBitOf(double value) {
    constexpr int kMantissaBits = 53;
    int exponent = 0;
    const double fraction = std::frexp(value, &exponent);
    const auto mantissa =
        static_cast<unsigned long long>(std::ldexp(std::fabs(fraction), kMantissaBits));
    return exponent - kMantissaBits + __builtin_ctzll(mantissa);
}

/// Whether the digits behind the precision may be exactly one half. For an odd mantissa and a
/// binary exponent of -n the decimal fraction has n digits: one half means that the last of them is
/// the first one cut off.
bool mayBeTie(double value, int precision) {
    if (value == 0) return false;

    constexpr double kLog10Of2 = 0.30102999566398120;
    const int lastBit = lastBitOf(value);
    const int leastMagnitude = static_cast<int>(std::floor(std::ilogb(value) * kLog10Of2));
    if (lastBit >= 0) return leastMagnitude + 1 >= precision;

    const int firstCutDigit = precision - leastMagnitude;
    return -lastBit == firstCutDigit || -lastBit == firstCutDigit - 1;
}

char* widenExponent(char* first, char* last) {
    char* const mark = std::find(first, last, 'e');
    if (mark == last) return last;

    char* const digits = mark + 2;
    const auto missing = kExponentDigits - (last - digits);
    if (missing <= 0) return last;

    std::copy_backward(digits, last, last + missing);
    std::fill_n(digits, missing, '0');
    return last + missing;
}

}  // namespace

// The C++ conversion is several times faster than the runtime's print and gives the same digits
// but where the runtime has ways of its own: infinities and not-a-numbers ("1.#INF"), more digits
// than a double can tell apart, and halves, which the older runtime rounds away from zero.
char* printGeneral(char* out, double value, int precision) noexcept {
    if (!std::isfinite(value) || precision > kFullPrecision) {
        return printByRuntime(out, kLongestNumber, "%.*g", value, precision);
    }
    const int digits = precision < 0 ? kDefaultPrecision : std::max(precision, 1);
    if (kTiesGoAwayFromZero && mayBeTie(value, digits)) {
        return printByRuntime(out, kLongestNumber, "%.*g", value, precision);
    }
    char* end = printQuickly(out, value, digits);
    if (!end) {
        end =
            std::to_chars(out, out + kLongestNumber, value, std::chars_format::general, digits).ptr;
    }
    return widenExponent(out, end);
}

// The decimal fraction of a number whose last bit is 2^-n has n digits.
char* printFraction(char* out, double value, int precision) noexcept {
    if (kTiesGoAwayFromZero && value != 0 && lastBitOf(value) == -(precision + 1)) {
        return printByRuntime(out, kLongestFraction, "%.*f", value, precision);
    }
    return printFractionQuickly(out, value, precision);
}

}  // namespace vexa::platform
