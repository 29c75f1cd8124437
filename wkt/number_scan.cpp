#include "wkt/number_scan.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace vexa {

namespace {

// What does not fit a double, from_chars refuses to round: strtod knows infinity from zero.
double outOfRange(std::span<char> token) {
    char& end = token.data()[token.size()];
    const char saved = end;
    end = '\0';
    const double value = std::strtod(token.data(), nullptr);
    end = saved;
    return value;
}

}  // namespace

double numberOf(std::span<char> token, bool isPoint) noexcept {
    if (token.size() > 1 && token[1] == '-') return 0;  // "--1": no number to atof
    if (!isPoint) token = {token.begin(), std::find(token.begin(), token.end(), '.')};

    double value = 0;
    const char* const first = token.data();
    const auto result = std::from_chars(first, first + token.size(), value);
    return result.ec == std::errc::result_out_of_range ? outOfRange(token) : value;
}

}  // namespace vexa
