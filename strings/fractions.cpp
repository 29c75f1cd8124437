#include "platform/decimal_point.h"
#include "platform/number_print.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>

using namespace vexa;

namespace {

constexpr int kDecimals = 6;
// A fraction is looked at to five decimal places.
constexpr double kPlaces = 100000.0;

struct Step {
    int places;
    int denominator;
};
constexpr Step kSteps[] = {{25000, 4}, {12500, 8}, {6250, 16}, {3125, 32}};

// Text in the making: ASCII, and at most one decimal point.
class NumberText {
public:
    void add(char character) { *end_++ = character; }
    void add(std::string_view text) { end_ = std::copy(text.begin(), text.end(), end_); }
    void add(int number) { end_ = std::to_chars(end_, text_.data() + text_.size(), number).ptr; }
    void addDecimals(double fraction) { end_ = platform::printFraction(end_, fraction, kDecimals); }

    [[nodiscard]] std::string_view view() const {
        return {text_.data(), static_cast<std::size_t>(end_ - text_.data())};
    }

private:
    // A whole part, a blank, a fraction.
    static constexpr std::size_t kRoom = 12 + platform::kLongestFraction;

    std::array<char, kRoom> text_;
    char* end_ = text_.data();
};

bool isWholeInRange(double value) {
    constexpr double kBelow = std::numeric_limits<std::int32_t>::min() - 1.0;
    constexpr double kAbove = std::numeric_limits<std::int32_t>::max() + 1.0;
    return value > kBelow && value < kAbove;
}

// The fraction of a number, between -1 and 1. The one half is told by its places: that of a negative
// number is two quarters.
void addFraction(double fraction, NumberText& text) {
    const int places = static_cast<int>(fraction * kPlaces);
    if (places == 0) return;
    if (places == 50000) return text.add("1/2");

    for (const auto& [size, denominator] : kSteps) {
        if (places % size != 0) continue;
        text.add(places / size);
        text.add('/');
        text.add(denominator);
        return;
    }
    text.addDecimals(fraction);
}

void addDouble(double value, NumberText& text) {
    const int whole = static_cast<int>(value);
    const double fraction = value - whole;
    if (whole == 0) return addFraction(fraction, text);

    text.add(whole);
    NumberText part;
    addFraction(fraction, part);
    const std::string_view rest = part.view();
    if (rest.empty()) return;
    if (rest.front() == '0') return text.add(rest.substr(1));
    text.add(' ');
    text.add(rest);
}

// Unlike a double's, the whole part is always followed by a blank and by the fraction as it stands.
void addFloat(float value, NumberText& text) {
    const int whole = static_cast<int>(value);
    if (whole != 0) {
        text.add(whole);
        text.add(' ');
    }
    addDouble(static_cast<double>(value) - whole, text);
}

char* copyPoint(char* out) {
    const std::string_view point = platform::decimalPoint();
    return std::copy(point.begin(), point.end(), out);
}

VexaWChar* copyPoint(VexaWChar* out) {
    *out = platform::wideDecimalPoint();
    return out + 1;
}

template <typename Character>
uint32_t give(const NumberText& text, Character* result) {
    for (const char character : text.view()) {
        if (character == '.') {
            result = copyPoint(result);
        } else {
            *result++ = static_cast<Character>(character);
        }
    }
    *result = 0;
    return VEXA_SUCCESS;
}

template <typename Character>
uint32_t convertDouble(double value, Character* result) {
    if (!result || !isWholeInRange(value)) return VEXA_FAILURE;

    NumberText text;
    addDouble(value, text);
    return give(text, result);
}

template <typename Character>
uint32_t convertFloat(float value, Character* result) {
    if (!result || !isWholeInRange(static_cast<double>(value))) return VEXA_FAILURE;

    NumberText text;
    addFloat(value, text);
    return give(text, result);
}

}  // namespace

uint32_t string_convertDoubleToFracA(double value, char* result) {
    return convertDouble(value, result);
}

uint32_t string_convertDoubleToFracW(double value, VexaWChar* result) {
    return convertDouble(value, result);
}

uint32_t string_convertFloatToFracA(float value, char* result) {
    return convertFloat(value, result);
}

uint32_t string_convertFloatToFracW(float value, VexaWChar* result) {
    return convertFloat(value, result);
}
