#include "platform/number_print.h"

#include "numbers/decimal_printing.h"

#include <algorithm>
#include <charconv>

namespace vexa::platform {

// The C++ conversion is the C runtime's "%.*g" in the "C" locale, without the detour through a
// format string: a negative precision is 6, 0 is 1, infinities are "inf" and not-a-numbers "nan".
char* printGeneral(char* out, double value, int precision) noexcept {
    constexpr int kDefaultPrecision = 6;
    const int digits = precision < 0 ? kDefaultPrecision : std::max(precision, 1);
    if (digits <= kMostQuickDigits) {
        if (char* const end = printQuickly(out, value, digits)) return end;
    }
    return std::to_chars(out, out + kLongestNumber, value, std::chars_format::general, digits).ptr;
}

char* printFraction(char* out, double value, int precision) noexcept {
    return printFractionQuickly(out, value, precision);
}

}  // namespace vexa::platform
