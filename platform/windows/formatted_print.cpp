#include "platform/formatted_print.h"

#include <cstdio>
#include <cwchar>

namespace vexa::platform {

int printNarrow(char* out, std::size_t room, const char* format, va_list values) noexcept {
    return _vsnprintf(out, room, format, values);
}

int printWide(VexaWChar* out, std::size_t room, const VexaWChar* format, va_list values) noexcept {
    return _vsnwprintf(out, room, format, values);
}

int printedWideLength(const VexaWChar* format, va_list values) noexcept {
    return _vscwprintf(format, values);
}

}  // namespace vexa::platform
