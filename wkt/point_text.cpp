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

}  // namespace

std::int64_t printPoint(const Point3d& point, const PointFormat& format, VexaWChar* out,
                        std::int64_t room) {
    Scratch scratch;  // NOLINT(*-member-init): 2.4 KB that no print reads before it writes
    const std::string_view text = narrowText(point, format, scratch);
    const auto length = static_cast<std::int64_t>(text.size());
    if (length > room) return -1;

    VexaWChar* const end = std::transform(text.begin(), text.end(), out, [](char character) {
        return static_cast<VexaWChar>(character);
    });
    if (format.decimalPoint != '.') {
        std::replace(out, end, static_cast<VexaWChar>('.'), format.decimalPoint);
    }
    if (length < room) *end = 0;
    return length;
}

}  // namespace vexa
