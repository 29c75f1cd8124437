#pragma once

namespace vexa::platform {

/// Room that the text of every number fits, whatever the precision: a double has no more than 767
/// significant digits, and "%g" prints no zeros behind them.
constexpr int kLongestNumber = 800;

/// Prints a number as the C runtime of the platform prints "%.*g", but with "." for the decimal
/// point in every locale.
///
/// @param out  room for `kLongestNumber` characters; not terminated
/// @return just past the text
char* printGeneral(char* out, double value, int precision) noexcept;

/// The most decimals of a fraction, and room that the text of every such fraction fits.
constexpr int kMostDecimals = 17;
constexpr int kLongestFraction = 24;

/// Prints a number between -1 and 1 likewise as "%.*f".
///
/// @param out  room for `kLongestFraction` characters; not terminated
/// @param precision  0 to `kMostDecimals`
/// @return just past the text
char* printFraction(char* out, double value, int precision) noexcept;

}  // namespace vexa::platform
