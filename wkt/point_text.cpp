#include "wkt/point_text.h"

#include "platform/number_print.h"

#include <algorithm>
#include <array>

namespace vexa {

namespace {

constexpr std::size_t kLongestPoint = 3 * platform::kLongestNumber + 4;
using Scratch = std::array<char, kLongestPoint>;

std::string_view narrowText(const Point3d& point, const PointFormat& format, Scratch& scratch) {
    char* end = scratch.data();
    if (format.inParentheses) *end++ = '(';
    end = platform::printGeneral(end, point.x, format.precision);
    *end++ = ' ';
    end = platform::printGeneral(end, point.y, format.precision);
    *end++ = ' ';
    end = platform::printGeneral(end, point.z, format.precision);
    if (format.inParentheses) *end++ = ')';
    return {scratch.data(), static_cast<std::size_t>(end - scratch.data())};
}

template <std::size_t Count>
void widenBlock(const char* text, VexaWChar* out) {
    for (std::size_t i = 0; i < Count; ++i) out[i] = static_cast<VexaWChar>(text[i]);
}

// In whole blocks, of which the last may overlap its neighbour: how often a loop runs that takes the
// rest character by character is never foreseen.
VexaWChar* widen(std::string_view text, VexaWChar* out) {
    constexpr std::size_t kBlock = 16;
    const std::size_t size = text.size();
    if (size < kBlock) return std::copy(text.begin(), text.end(), out);

    for (std::size_t i = 0; i + kBlock < size; i += kBlock) {
        widenBlock<kBlock>(text.data() + i, out + i);
    }
    widenBlock<kBlock>(text.data() + size - kBlock, out + size - kBlock);
    return out + size;
}

}  // namespace

std::int64_t printPoint(const Point3d& point, const PointFormat& format, VexaWChar* out,
                        std::int64_t room) {
    Scratch scratch;  // NOLINT(*-member-init): 2.4 KB that no print reads before it writes
    const std::string_view text = narrowText(point, format, scratch);
    const auto length = static_cast<std::int64_t>(text.size());
    if (length > room) return -1;

    VexaWChar* const end = widen(text, out);
    if (format.decimalPoint != '.') {
        std::replace(out, end, static_cast<VexaWChar>('.'), format.decimalPoint);
    }
    if (length < room) *end = 0;
    return length;
}

}  // namespace vexa
