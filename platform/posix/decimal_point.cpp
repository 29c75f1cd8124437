#include "platform/decimal_point.h"

#include <cstdint>
#include <langinfo.h>

namespace vexa::platform {

std::string_view decimalPoint() noexcept {
    return nl_langinfo(RADIXCHAR);  // NOLINT(concurrency-mt-unsafe): as the numbers themselves are
}

// The wide functions have a point of their own, which does not depend on the locale's characters. The
// C library hands the number out in the place of the text's address.
VexaWChar wideDecimalPoint() noexcept {
#ifdef __GLIBC__
    // NOLINTNEXTLINE(concurrency-mt-unsafe): as the numbers themselves are
    const char* const point = nl_langinfo(_NL_NUMERIC_DECIMAL_POINT_WC);
    return static_cast<VexaWChar>(reinterpret_cast<std::uintptr_t>(point));
#else
    return static_cast<unsigned char>(decimalPoint().front());
#endif
}

}  // namespace vexa::platform
