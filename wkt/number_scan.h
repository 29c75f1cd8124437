#pragma once

#include <span>

namespace vexa {

/// The value that `atof` gives the text of a number: any number of "-", digits, perhaps "." and
/// digits, perhaps an exponent with its sign. Correctly rounded; infinite where too large.
///
/// @param token    the text, followed by a byte that may be overwritten for the time of the call
/// @param isPoint  whether "." is the decimal point of the locale; where it is not, it ends the
///                 number
double numberOf(std::span<char> token, bool isPoint) noexcept;

}  // namespace vexa
