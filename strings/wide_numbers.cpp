#include "vexakit/strings.h"

#include <algorithm>
#include <limits>

namespace {

bool isDigit(VexaWChar character) {
    return character >= '0' && character <= '9';
}

// The terminator, the blank and what lies below it.
bool endsNumber(VexaWChar character) {
    return character <= ' ';
}

int32_t saturated(int64_t number) {
    constexpr int64_t kGreatest = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::min(number, kGreatest));
}

}  // namespace

VexaWChar* string_readLongW(const VexaWChar* text, int32_t* value) {
    if (!text || !value) return nullptr;

    constexpr int kMostDigits = 10;
    *value = 0;
    VexaWChar* at = string_skipWhiteSpaceW(text);
    if (*at == 0) return at;

    int64_t number = 0;
    int digits = 0;
    for (; isDigit(*at) && digits < kMostDigits; ++at, ++digits) number = number * 10 + (*at - '0');
    if (digits == 0 || !endsNumber(*at)) return nullptr;

    *value = saturated(number);
    return string_skipWhiteSpaceW(at);
}
