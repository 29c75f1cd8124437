#include "platform/decimal_point.h"

#include <cwchar>
#include <langinfo.h>

namespace vexa::platform {

std::string_view decimalPoint() noexcept {
    return nl_langinfo(RADIXCHAR);  // NOLINT(concurrency-mt-unsafe): as the numbers themselves are
}

VexaWChar wideDecimalPoint() noexcept {
    const std::string_view point = decimalPoint();
    if (point.size() == 1) return static_cast<unsigned char>(point.front());

    wchar_t wide = L'.';
    std::mbstate_t state{};
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the state is its own
    const std::size_t used = std::mbrtowc(&wide, point.data(), point.size(), &state);
    return used == point.size() ? static_cast<VexaWChar>(wide) : u'.';
}

}  // namespace vexa::platform
