#include "platform/wide_characters.h"

#include <cwchar>
#include <cwctype>

namespace vexa::platform {

std::size_t wideLength(const VexaWChar* text) noexcept {
    return std::wcslen(text);
}

std::size_t wideLengthWithin(const VexaWChar* text, std::size_t most) noexcept {
    return wcsnlen(text, most);
}

bool isWideSpace(VexaWChar unit) noexcept {
    return std::iswspace(unit) != 0;
}

bool isWideControl(VexaWChar unit) noexcept {
    return std::iswcntrl(unit) != 0;
}

void toWideUpper(VexaWChar* text) noexcept {
    _wcsupr(text);
}

void toWideLower(VexaWChar* text) noexcept {
    _wcslwr(text);
}

}  // namespace vexa::platform
