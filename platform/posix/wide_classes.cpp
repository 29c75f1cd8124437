#include "platform/posix/wide_classes.h"

#include <algorithm>

namespace vexa::platform {

namespace {

constexpr VexaWChar kFirstBeyondAscii = 0x80;

bool isIn(std::span<const tables::UnitRange> ranges, VexaWChar unit) {
    const auto range =
        std::lower_bound(ranges.begin(), ranges.end(), unit,
                         [](const tables::UnitRange& one, VexaWChar u) { return one.last < u; });
    return range != ranges.end() && range->first <= unit;
}

}  // namespace

bool isSpaceUnit(VexaWChar unit) noexcept {
    if (unit < kFirstBeyondAscii) return unit == ' ' || (unit >= '\t' && unit <= '\r');
    return isIn(tables::kWideSpaces, unit);
}

bool isControlUnit(VexaWChar unit) noexcept {
    constexpr VexaWChar kDelete = 0x7F;
    if (unit < kFirstBeyondAscii) return unit < ' ' || unit == kDelete;
    return isIn(tables::kWideControls, unit);
}

}  // namespace vexa::platform
