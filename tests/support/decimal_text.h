#pragma once

#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <system_error>

/// Numbers and texts of numbers that conversions between the two stumble over.
namespace vexa::test {

// ---- Exact decimals ----------------------------------------------------------------------------

/// The digits of a whole number of any size.
class WholeNumber {
public:
    explicit WholeNumber(std::uint64_t value) : digits_(std::to_string(value)) {}

    WholeNumber& times(int factor) {
        int carry = 0;
        for (std::size_t i = digits_.size(); i-- > 0;) {
            carry += (digits_[i] - '0') * factor;
            digits_[i] = static_cast<char>('0' + carry % 10);
            carry /= 10;
        }
        for (; carry > 0; carry /= 10) {
            digits_.insert(digits_.begin(), static_cast<char>('0' + carry % 10));
        }
        return *this;
    }

    const std::string& digits() const { return digits_; }

private:
    std::string digits_;
};

/// Digits with a point before the last `decimals` of them, a digit at least before it.
inline std::string withPoint(std::string digits, std::size_t decimals) {
    if (digits.size() <= decimals) digits.insert(0, decimals + 1 - digits.size(), '0');
    if (decimals > 0) digits.insert(digits.size() - decimals, 1, '.');
    return digits;
}

/// The whole text of mantissa * 2^exponent.
inline std::string exactText(std::uint64_t mantissa, int exponent) {
    WholeNumber number{mantissa};
    for (int i = 0; i < exponent; ++i) number.times(2);
    // 2^-n is 5^n 10^-n.
    for (int i = exponent; i < 0; ++i) number.times(5);
    return withPoint(number.digits(), exponent < 0 ? static_cast<std::size_t>(-exponent) : 0);
}

/// The number just between a positive double and the next greater one, as a whole text.
inline std::string textOfHalfAbove(double value) {
    constexpr int kMantissaBits = 53;
    int exponent = 0;
    const double fraction = std::frexp(value, &exponent);
    const auto mantissa = static_cast<std::uint64_t>(std::ldexp(fraction, kMantissaBits));
    return exactText(2 * mantissa + 1, exponent - kMantissaBits - 1);
}

/// The text without all that follows so many digits.
inline std::string cutBehindDigits(const std::string& text, std::size_t digits) {
    std::size_t end = 0;
    for (bool counts = false; end < text.size() && digits > 0; ++end) {
        counts = counts || (text[end] != '0' && text[end] != '.');
        if (counts && text[end] != '.') --digits;
    }
    // Of a whole number all the digits count.
    while (end < text.size() && end < text.find('.')) ++end;
    return text.substr(0, end);
}

/// The text with its last digit one greater, or smaller where that one is a nine.
inline std::string besideInLastDigit(std::string text) {
    const std::size_t last = text.find_last_not_of('.');
    text[last] = static_cast<char>(text[last] == '9' ? '8' : text[last] + 1);
    return text;
}

// ---- Random numbers ----------------------------------------------------------------------------

using Random = std::mt19937_64;

inline std::size_t below(Random& random, std::size_t bound) {
    return static_cast<std::size_t>(random() % bound);
}

/// A finite double of any magnitude.
inline double anyDouble(Random& random) {
    for (;;) {
        const auto value = std::bit_cast<double>(random());
        if (std::isfinite(value)) return value;
    }
}

/// A double between 10^least and 10^(most + 1), about, of either sign.
inline double doubleOfMagnitude(Random& random, int least, int most) {
    const auto powers = static_cast<std::size_t>(most - least) + 1;
    const int power = least + static_cast<int>(below(random, powers));
    const double digits = 1 + 9 * std::ldexp(static_cast<double>(random() >> 11), -53);
    return std::pow(10, power) * (below(random, 2) == 0 ? digits : -digits);
}

/// A number such as maps hold: with a few decimals, below some millions.
inline double coordinate(Random& random) {
    const int decimals = static_cast<int>(below(random, 10));
    const double scale = std::pow(10, decimals);
    const double size = std::pow(10, static_cast<double>(below(random, 8)));
    const double value = std::ldexp(static_cast<double>(random() >> 11), -52) * size - size;
    return std::round(value * scale) / scale;
}

// ---- Texts of doubles --------------------------------------------------------------------------

inline std::string shortestText(double value, std::chars_format format) {
    char room[1100];
    return {room, std::to_chars(room, room + sizeof room, value, format).ptr};
}

inline std::string text(double value, std::chars_format format, int precision) {
    char room[2200];
    return {room, std::to_chars(room, room + sizeof room, value, format, precision).ptr};
}

}  // namespace vexa::test
