#pragma once

#include "vexakit/types.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace vexa::test {

using WideString = std::basic_string<VexaWChar>;

/// A cell that nobody wrote: no text has this character.
constexpr VexaWChar kUntouchedCell = 0xA5A5;

inline WideString wide(std::string_view text) {
    WideString result;
    for (const char character : text) {
        result += static_cast<VexaWChar>(static_cast<unsigned char>(character));
    }
    return result;
}

/// Wide text to be read by people: "~" is an untouched cell, other characters beyond ASCII and the
/// zero are escaped.
inline std::string readable(const WideString& text) {
    std::ostringstream result;
    for (const VexaWChar character : text) {
        if (character == kUntouchedCell) {
            result << '~';
        } else if (character >= ' ' && character < 0x7F) {
            result << static_cast<char>(character);
        } else {
            result << "\\x" << std::hex << std::setw(4) << std::setfill('0')
                   << static_cast<unsigned>(character);
        }
    }
    return result.str();
}

/// An array for a text, between guard cells that nobody may touch.
class GuardedText {
public:
    explicit GuardedText(std::size_t cells) : cells_(kGuard + cells + kGuard, kUntouchedCell) {}

    VexaWChar* data() { return cells_.data() + kGuard; }
    std::size_t size() const { return cells_.size() - 2 * kGuard; }
    VexaWChar operator[](std::size_t index) const { return cells_[kGuard + index]; }

    /// The characters before the first zero; everything where there is none.
    WideString text() const {
        const auto first = cells_.begin() + kGuard;
        return {first, std::find(first, cells_.end() - kGuard, VexaWChar{0})};
    }

    /// Whether nothing was written at the index or behind it, nor in front of the array.
    bool isUntouchedFrom(std::size_t index) const {
        return std::all_of(cells_.begin(), cells_.begin() + kGuard, isUntouched) &&
               std::all_of(cells_.begin() + static_cast<std::ptrdiff_t>(kGuard + index),
                           cells_.end(), isUntouched);
    }
    bool areGuardsUntouched() const { return isUntouchedFrom(size()); }

private:
    static constexpr std::ptrdiff_t kGuard = 64;

    static bool isUntouched(VexaWChar cell) { return cell == kUntouchedCell; }

    std::vector<VexaWChar> cells_;
};

}  // namespace vexa::test
