#pragma once

namespace vexa {

/// The most digits that `printQuickly` prints, and room that it may write to.
constexpr int kMostQuickDigits = 17;
constexpr int kQuickRoom = 48;

/// Prints a number as "%.*g" does in the "C" locale, with two digits of an exponent, where that can be
/// seen from 128 bits of the scaled number: nearly always.
///
/// @param out  room for `kQuickRoom` characters, of which those behind the text hold anything
/// @param precision  1 to `kMostQuickDigits`
/// @return just past the text; null for what is not finite, subnormal, far from 1 (beyond some 30
///         powers of ten), or all but halfway between two texts: nothing is known then
char* printQuickly(char* out, double value, int precision) noexcept;

/// Prints a number between -1 and 1 as "%.*f" does in the "C" locale, exact halves to the even digit.
///
/// @param out  room for 24 characters, of which those behind the text hold anything
/// @param decimals  0 to `kMostQuickDigits`
/// @return just past the text
char* printFractionQuickly(char* out, double value, int decimals) noexcept;

}  // namespace vexa
