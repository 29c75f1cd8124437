#pragma once

#include <cstdarg>
#include <cstddef>
#include <optional>

namespace vexa::platform {

/// The values behind a format, taken one by one.
struct Values {
    va_list list;
};

/// What a size prefix says of a value.
enum class ValueSize { None, Char, Short, Long32, Long64, Wide, LongDouble };

/// One directive of a format: "%", flags, width, precision, size, kind.
template <typename Unit>
struct FormatDirective {
    bool leftAligned = false;
    bool plus = false;
    bool blank = false;
    bool alternate = false;
    bool zeros = false;
    std::size_t width = 0;
    std::optional<std::size_t> precision;
    ValueSize size = ValueSize::None;
    /// The character that says what to print; 0 where the format ends before it.
    Unit kind = 0;
};

namespace detail {

template <typename Unit>
bool readFlag(Unit unit, FormatDirective<Unit>& directive) {
    switch (unit) {
        case '-': return directive.leftAligned = true;
        case '+': return directive.plus = true;
        case ' ': return directive.blank = true;
        case '#': return directive.alternate = true;
        case '0': return directive.zeros = true;
        default: return false;
    }
}

constexpr std::size_t kGreatestNumber = 0x7FFFFFFF;

/// A number of digits, which may be none; more than an `int` has are the greatest one.
template <typename Unit>
std::size_t readDigits(const Unit*& format) {
    std::size_t number = 0;
    for (; *format >= '0' && *format <= '9'; ++format) {
        number = number * 10 + static_cast<std::size_t>(*format - '0');
        if (number > kGreatestNumber) number = kGreatestNumber;
    }
    return number;
}

template <typename Unit>
bool readStar(const Unit*& format) {
    if (*format != '*') return false;
    ++format;
    return true;
}

template <typename Unit>
void readWidth(const Unit*& format, Values& values, FormatDirective<Unit>& directive) {
    if (!readStar(format)) {
        directive.width = readDigits(format);
        return;
    }
    const long long width = va_arg(values.list, int);
    directive.leftAligned |= width < 0;
    directive.width = static_cast<std::size_t>(width < 0 ? -width : width);
}

template <typename Unit>
void readPrecision(const Unit*& format, Values& values, FormatDirective<Unit>& directive) {
    if (*format != '.') return;
    ++format;
    if (!readStar(format)) {
        directive.precision = readDigits(format);
        return;
    }
    // A negative one counts as none.
    const int precision = va_arg(values.list, int);
    if (precision >= 0) directive.precision = static_cast<std::size_t>(precision);
}

template <typename Unit>
bool readText(const Unit*& format, const char* text) {
    const Unit* at = format;
    for (; *text != '\0'; ++text, ++at) {
        if (*at != static_cast<Unit>(*text)) return false;
    }
    format = at;
    return true;
}

template <typename Unit>
void readSize(const Unit*& format, FormatDirective<Unit>& directive) {
    struct Prefix {
        const char* text;
        ValueSize size;
    };
    // A longer one before the one that it starts with.
    static constexpr Prefix kPrefixes[] = {
        {"hh", ValueSize::Char},  {"h", ValueSize::Short},    {"ll", ValueSize::Long64},
        {"l", ValueSize::Long32}, {"I64", ValueSize::Long64}, {"I32", ValueSize::Long32},
        {"I", ValueSize::Long64}, {"z", ValueSize::Long64},   {"t", ValueSize::Long64},
        {"j", ValueSize::Long64}, {"w", ValueSize::Wide},     {"L", ValueSize::LongDouble},
    };
    for (const Prefix& prefix : kPrefixes) {
        if (!readText(format, prefix.text)) continue;
        directive.size = prefix.size;
        return;
    }
}

}  // namespace detail

/// Reads a directive from behind its "%" and moves `format` behind it. Widths and precisions given
/// as "*" are taken from the values.
template <typename Unit>
FormatDirective<Unit> readDirective(const Unit*& format, Values& values) {
    FormatDirective<Unit> directive;
    while (detail::readFlag(*format, directive)) ++format;
    detail::readWidth(format, values, directive);
    detail::readPrecision(format, values, directive);
    detail::readSize(format, directive);
    directive.kind = *format;
    if (*format != 0) ++format;
    return directive;
}

}  // namespace vexa::platform
