#include "platform/multibyte.h"

#include <cstdlib>
#include <mbctype.h>
#include <mbstring.h>

namespace vexa::platform {

namespace {

const unsigned char* bytes(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}

const char* text(const unsigned char* bytes) {
    return reinterpret_cast<const char*>(bytes);
}

}  // namespace

bool isLeadByte(char byte) noexcept {
    return _ismbblead(static_cast<unsigned char>(byte)) != 0;
}

bool isSpace(unsigned code) noexcept {
    return _ismbcspace(code) != 0;
}

std::size_t characterCount(const char* text) noexcept {
    return _mbslen(bytes(text));
}

// The runtime's own step may take a lead byte and the terminator for one character.
const char* nextCharacter(const char* at) noexcept {
    return isLeadByte(at[0]) && at[1] == '\0' ? at + 1 : text(_mbsinc(bytes(at)));
}

// Where a lead byte without its trail starts the text, the runtime may step before it.
const char* previousCharacter(const char* start, const char* at) noexcept {
    const char* const previous = text(_mbsdec(bytes(start), bytes(at)));
    return previous < start ? at - 1 : previous;
}

const char* findCharacter(const char* where, unsigned code) noexcept {
    return text(_mbschr(bytes(where), code));
}

const char* findLastCharacter(const char* where, unsigned code) noexcept {
    return text(_mbsrchr(bytes(where), code));
}

const char* findText(const char* where, const char* part) noexcept {
    return text(_mbsstr(bytes(where), bytes(part)));
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
