#include "platform/formatted_print.h"

#include "platform/decimal_point.h"
#include "platform/posix/format_directive.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string_view>
#include <type_traits>

namespace vexa::platform {

namespace {

// Takes the characters of a text, keeps those that fit, and counts them all.
template <typename Unit>
class Output {
public:
    Output(Unit* out, std::size_t room) : out_(out), room_(room) {}

    void put(Unit unit) {
        if (count_ < room_) out_[count_] = unit;
        ++count_;
    }

    void fill(Unit unit, std::size_t times) {
        if (count_ < room_) std::fill_n(out_ + count_, std::min(times, room_ - count_), unit);
        count_ += times;
    }

    template <typename Character>
    void put(std::basic_string_view<Character> text) {
        if (count_ < room_) {
            const std::size_t kept = std::min(text.size(), room_ - count_);
            std::transform(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(kept),
                           out_ + count_, &valueOf<Character>);
        }
        count_ += text.size();
    }

    [[nodiscard]] std::size_t count() const { return count_; }

    void terminate() {
        if (count_ < room_) out_[count_] = 0;
    }

private:
    // Narrow and wide characters stand for each other by their value.
    template <typename Character>
    static Unit valueOf(Character character) {
        return static_cast<Unit>(static_cast<std::make_unsigned_t<Character>>(character));
    }

    Unit* out_;
    std::size_t room_;
    std::size_t count_ = 0;
};

constexpr VexaWChar kHighestNarrow = 0xFF;

bool isNarrow(VexaWChar unit) {
    return unit <= kHighestNarrow;
}

template <typename Unit>
constexpr bool kIsWide = std::is_same_v<Unit, VexaWChar>;

// Prints the directives of one format.
template <typename Unit>
class Printer {
public:
    Printer(Output<Unit>& output, Values& values) : output_(output), values_(values) {}

    /// @return whether it could be printed
    bool print(const FormatDirective<Unit>& directive) {
        switch (directive.kind) {
            case 'd':
            case 'i': return printSigned(directive);
            case 'u': return printUnsigned(directive, 10);
            case 'o': return printUnsigned(directive, 8);
            case 'x':
            case 'X': return printUnsigned(directive, 16);
            case 'c':
            case 'C': return printCharacter(directive);
            case 's':
            case 'S': return printText(directive);
            case 'p': return printPointer(directive);
            case 'a':
            case 'A':
            case 'e':
            case 'E':
            case 'f':
            case 'F':
            case 'g':
            case 'G': return printFloating(directive);
            // It would let a format write to memory.
            case 'n': return false;
            case 0: return true;
            default: output_.put(directive.kind); return true;
        }
    }

private:
    using Directive = FormatDirective<Unit>;

    // The whole field: padding, what stands before the zeros, the zeros, a text of `size` characters.
    template <typename PutText>
    void putField(const Directive& directive, std::string_view prefix, std::size_t zeros,
                  std::size_t size, PutText putText) {
        const std::size_t used = prefix.size() + zeros + size;
        const std::size_t padding = directive.width > used ? directive.width - used : 0;
        const bool padsWithZeros = directive.zeros && !directive.leftAligned;
        if (!directive.leftAligned && !padsWithZeros) output_.fill(' ', padding);
        output_.put(prefix);
        output_.fill('0', zeros + (padsWithZeros ? padding : 0));
        putText();
        if (directive.leftAligned) output_.fill(' ', padding);
    }

    template <typename Character>
    void putField(const Directive& directive, std::string_view prefix, std::size_t zeros,
                  std::basic_string_view<Character> text) {
        putField(directive, prefix, zeros, text.size(), [&] { output_.put(text); });
    }

    bool printSigned(const Directive& directive) {
        const std::int64_t value = takeSigned(directive.size);
        const auto bits = static_cast<std::uint64_t>(value);
        const std::string_view sign = value < 0         ? "-"
                                      : directive.plus  ? "+"
                                      : directive.blank ? " "
                                                        : "";
        return printInteger(directive, sign, value < 0 ? 0 - bits : bits, 10);
    }

    bool printUnsigned(const Directive& directive, int base) {
        const std::uint64_t value = takeUnsigned(directive.size);
        std::string_view prefix;
        if (directive.alternate && base == 16 && value != 0) {
            prefix = directive.kind == 'x' ? "0x" : "0X";
        }
        return printInteger(directive, prefix, value, base);
    }

    bool printInteger(Directive directive, std::string_view prefix, std::uint64_t value, int base) {
        constexpr std::size_t kMostDigits = 22;
        std::array<char, kMostDigits> digits{};
        char* const first = digits.data();
        char* last = std::to_chars(first, first + digits.size(), value, base).ptr;
        if (value == 0 && directive.precision == 0U) last = first;
        if (directive.kind == 'X') std::transform(first, last, first, &upper);

        const auto size = static_cast<std::size_t>(last - first);
        std::size_t zeros = 0;
        if (directive.precision) {
            directive.zeros = false;  // the precision says how many
            if (*directive.precision > size) zeros = *directive.precision - size;
        }
        if (directive.alternate && base == 8 && zeros == 0 && (size == 0 || *first != '0')) {
            zeros = 1;
        }
        putField(directive, prefix, zeros, std::string_view(first, size));
        return true;
    }

    static char upper(char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }

    bool printPointer(Directive directive) {
        constexpr std::size_t kDigits = 16;
        directive.kind = 'X';
        directive.precision = kDigits;
        const auto value = reinterpret_cast<std::uintptr_t>(va_arg(values_.list, void*));
        return printInteger(directive, "", value, 16);
    }

    // A small letter means what the format is made of, a capital the other kind.
    bool takesWide(const Directive& directive) const {
        switch (directive.size) {
            case ValueSize::Char:
            case ValueSize::Short: return false;
            case ValueSize::Long32:
            case ValueSize::Wide: return true;
            default: break;
        }
        const bool isCapital = directive.kind == 'C' || directive.kind == 'S';
        return kIsWide<Unit> != isCapital;
    }

    bool printCharacter(const Directive& directive) {
        const int value = va_arg(values_.list, int);
        if (takesWide(directive)) {
            const auto unit = static_cast<VexaWChar>(value);
            const bool hasPlace = kIsWide<Unit> || isNarrow(unit);
            putField(directive, "", 0, std::basic_string_view(&unit, hasPlace ? 1 : 0));
        } else {
            const auto byte = static_cast<char>(value);
            putField(directive, "", 0, std::string_view(&byte, 1));
        }
        return true;
    }

    bool printText(const Directive& directive) {
        return takesWide(directive) ? printTextOf<VexaWChar>(directive)
                                    : printTextOf<char>(directive);
    }

    template <typename Character>
    bool printTextOf(const Directive& directive) {
        constexpr Character kNull[] = {'(', 'n', 'u', 'l', 'l', ')', 0};
        const auto* text = va_arg(values_.list, const Character*);
        if (!text) text = kNull;

        // A text that the precision cuts need not be terminated.
        const std::size_t most =
            directive.precision.value_or(std::numeric_limits<std::size_t>::max());
        std::size_t size = 0;
        while (size < most && text[size] != 0) ++size;
        const std::basic_string_view view(text, size);
        if constexpr (kIsWide<Character> && !kIsWide<Unit>) {
            if (!std::all_of(view.begin(), view.end(), &isNarrow)) return false;
        }
        putField(directive, "", 0, view);
        return true;
    }

    bool printFloating(const Directive& directive) {
        if (directive.size == ValueSize::LongDouble) {
            return printNumber(directive, va_arg(values_.list, long double));
        }
        return printNumber(directive, va_arg(values_.list, double));
    }

    // The directive for the C library, whose numbers these are, but for the width.
    template <typename Number>
    static std::array<char, 16> numberFormat(const Directive& directive) {
        std::array<char, 16> format{};
        char* at = format.data();
        *at++ = '%';
        if (directive.plus) *at++ = '+';
        if (directive.blank) *at++ = ' ';
        if (directive.alternate) *at++ = '#';
        *at++ = '.';
        *at++ = '*';
        if (std::is_same_v<Number, long double>) *at++ = 'L';
        *at = static_cast<char>(directive.kind);
        return format;
    }

    template <typename Number>
    bool printNumber(const Directive& directive, Number value) {
        constexpr std::size_t kUsualRoom = 512;
        const std::array<char, 16> format = numberFormat<Number>(directive);
        const int precision = directive.precision ? static_cast<int>(*directive.precision) : -1;
        const auto printTo = [&](char* out, std::size_t room) {
            return std::snprintf(out, room, format.data(), precision, value);
        };
        std::array<char, kUsualRoom> local;
        const int size = printTo(local.data(), local.size());
        if (size < 0) return false;

        const auto length = static_cast<std::size_t>(size);
        if (length < local.size()) {
            putNumber(directive, {local.data(), length}, std::isfinite(value));
            return true;
        }
        const std::unique_ptr<char, decltype(&std::free)> block{
            static_cast<char*>(std::malloc(length + 1)), &std::free};
        if (!block || printTo(block.get(), length + 1) != size) return false;

        putNumber(directive, {block.get(), length}, true);
        return true;
    }

    // Bytes that stand before the zeros of padding: the sign, and the mark of hexadecimal digits.
    static std::size_t prefixSize(std::string_view number) {
        const std::size_t sign = number.find_first_of("+- ") == 0 ? 1 : 0;
        const std::string_view digits = number.substr(sign);
        return sign + (digits.starts_with("0x") || digits.starts_with("0X") ? 2 : 0);
    }

    void putNumber(Directive directive, std::string_view number, bool isFinite) {
        directive.zeros &= isFinite;
        const std::string_view prefix = number.substr(0, prefixSize(number));
        number.remove_prefix(prefix.size());
        const std::string_view point = decimalPoint();
        const std::size_t place = kIsWide<Unit> ? number.find(point) : std::string_view::npos;
        if (place == std::string_view::npos) {
            putField(directive, prefix, 0, number);
            return;
        }
        // The wide functions have a decimal point of their own.
        putField(directive, prefix, 0, number.size() - point.size() + 1, [&] {
            output_.put(number.substr(0, place));
            output_.put(static_cast<Unit>(wideDecimalPoint()));
            output_.put(number.substr(place + point.size()));
        });
    }

    std::int64_t takeSigned(ValueSize size) {
        switch (size) {
            case ValueSize::Long64: return va_arg(values_.list, std::int64_t);
            case ValueSize::Short: return static_cast<std::int16_t>(va_arg(values_.list, int));
            case ValueSize::Char: return static_cast<std::int8_t>(va_arg(values_.list, int));
            default: return va_arg(values_.list, std::int32_t);
        }
    }

    std::uint64_t takeUnsigned(ValueSize size) {
        switch (size) {
            case ValueSize::Long64: return va_arg(values_.list, std::uint64_t);
            case ValueSize::Short: return static_cast<std::uint16_t>(va_arg(values_.list, int));
            case ValueSize::Char: return static_cast<std::uint8_t>(va_arg(values_.list, int));
            default: return va_arg(values_.list, std::uint32_t);
        }
    }

    Output<Unit>& output_;
    Values& values_;
};

constexpr int kFailed = -1;

/// @return the characters of the whole text; negative where the format fails or an `int` cannot tell
template <typename Unit>
int print(Output<Unit>& output, const Unit* format, va_list list) {
    Values values;
    va_copy(values.list, list);
    Printer<Unit> printer(output, values);
    bool isPrinted = true;
    while (isPrinted && *format != 0) {
        const Unit unit = *format++;
        if (unit == '%') {
            isPrinted = printer.print(readDirective(format, values));
        } else {
            output.put(unit);
        }
    }
    va_end(values.list);
    if (!isPrinted || output.count() > std::numeric_limits<int>::max()) return kFailed;
    return static_cast<int>(output.count());
}

template <typename Unit>
int printInto(Unit* out, std::size_t room, const Unit* format, va_list values) {
    Output<Unit> output(out, room);
    const int count = print(output, format, values);
    if (count < 0 || output.count() > room) return kFailed;
    output.terminate();
    return count;
}

}  // namespace

int printNarrow(char* out, std::size_t room, const char* format, va_list values) noexcept {
    return printInto(out, room, format, values);
}

int printWide(VexaWChar* out, std::size_t room, const VexaWChar* format, va_list values) noexcept {
    return printInto(out, room, format, values);
}

int printedWideLength(const VexaWChar* format, va_list values) noexcept {
    Output<VexaWChar> output(nullptr, 0);
    return print(output, format, values);
}

}  // namespace vexa::platform
