#include "platform/decimal_point.h"

#include <clocale>
#include <cstdlib>

namespace vexa::platform {

std::string_view decimalPoint() noexcept {
    return std::localeconv()->decimal_point;
}

VexaWChar wideDecimalPoint() noexcept {
    const std::string_view point = decimalPoint();
    VexaWChar wide = L'.';
    std::mbtowc(&wide, point.data(), point.size());
    return wide;
}

}  // namespace vexa::platform
