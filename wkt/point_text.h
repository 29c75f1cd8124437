#pragma once

#include "vexakit/types.h"

#include <cstdint>
#include <string_view>

namespace vexa {

/// How the points of one list are printed.
struct PointFormat {
    int precision;
    VexaWChar decimalPoint;
    bool inParentheses;
};

/// Prints a point as "x y z" or "(x y z)" into the room, with a terminator where there is room for
/// one.
///
/// @return the characters of the text; -1 where the room, which is at least 1, is too small:
///         nothing is written then
std::int64_t printPoint(const Point3d& point, const PointFormat& format, VexaWChar* out,
                        std::int64_t room);

}  // namespace vexa
