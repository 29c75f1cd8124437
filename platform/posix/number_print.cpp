#include "platform/number_print.h"

#include <charconv>

namespace vexa::platform {

// The C++ conversion is the C runtime's "%.*g" in the "C" locale, without the detour through a
// format string: a negative precision is 6, 0 is 1, infinities are "inf" and not-a-numbers "nan".
char* printGeneral(char* out, double value, int precision) noexcept {
    return std::to_chars(out, out + kLongestNumber, value, std::chars_format::general, precision)
        .ptr;
}

char* printFraction(char* out, double value, int precision) noexcept {
    return std::to_chars(out, out + kLongestFraction, value, std::chars_format::fixed, precision)
        .ptr;
}

}  // namespace vexa::platform
