#include "platform/multibyte.h"

#include <cstdlib>
#include <mbctype.h>
#include <mbstring.h>

namespace vexa::platform {

bool isDoubleBytePage() noexcept {
    constexpr unsigned kLeadByteOfEachOfThem = 0x9F;
    return _ismbblead(kLeadByteOfEachOfThem) != 0;
}

bool isLeadByte(char byte) noexcept {
    return _ismbblead(static_cast<unsigned char>(byte)) != 0;
}

bool isSpace(unsigned code) noexcept {
    return _ismbcspace(code) != 0;
}

void toUpper(char* text) noexcept {
    _mbsupr(reinterpret_cast<unsigned char*>(text));
}

void toLower(char* text) noexcept {
    _mbslwr(reinterpret_cast<unsigned char*>(text));
}

VexaWChar wideFromByte(char byte) noexcept {
    VexaWChar wide = 0;
    std::mbtowc(&wide, &byte, 1);
    return wide;
}

}  // namespace vexa::platform
