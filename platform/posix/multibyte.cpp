#include "platform/multibyte.h"

#include "platform/posix/ansi_page.h"
#include "platform/posix/wide_classes.h"

#include <cstring>

namespace vexa::platform {

namespace {

unsigned valueOf(char byte) {
    return static_cast<unsigned char>(byte);
}

bool isSingleByte() {
    return ansiPage().doubleByte == nullptr;
}

// Bytes of the character at the start of a text that is not empty.
std::size_t sizeOfFirst(const char* text) {
    return isLeadByte(text[0]) && text[1] != '\0' ? 2 : 1;
}

// A lead byte without its trail has a code that no character has.
unsigned codeOfFirst(const char* text) {
    return isLeadByte(text[0]) ? valueOf(text[0]) << 8 | valueOf(text[1]) : valueOf(text[0]);
}

// The first start of a character at or behind `place`, from a start before it.
const char* stepTo(const char* place, const char* at) {
    while (at < place) at += sizeOfFirst(at);
    return at;
}

using OtherCase = unsigned (*)(const CodePage& page, unsigned code) noexcept;

void changeCase(char* text, OtherCase otherCase) {
    const CodePage& page = ansiPage();
    while (*text != '\0') {
        const std::size_t size = sizeOfFirst(text);
        const unsigned code = size == 2 ? codeOfFirst(text) : valueOf(*text);
        const unsigned other = otherCase(page, code);
        if (size == 2) text[0] = static_cast<char>(other >> 8);
        text[size - 1] = static_cast<char>(other);
        text += size;
    }
}

}  // namespace

bool isLeadByte(char byte) noexcept {
    return isLeadByte(ansiPage(), byte);
}

bool isSpace(unsigned code) noexcept {
    if (code < 0x80) return isSpaceUnit(static_cast<VexaWChar>(code));
    if (code > 0xFFFF || !isLeadByte(static_cast<char>(code >> 8))) return false;
    return isSpaceUnit(unitOfCode(ansiPage(), code));
}

std::size_t characterCount(const char* text) noexcept {
    if (isSingleByte()) return std::strlen(text);

    std::size_t count = 0;
    while (*text != '\0') {
        const std::size_t size = sizeOfFirst(text);
        if (size == 1 && isLeadByte(*text)) break;
        text += size;
        ++count;
    }
    return count;
}

const char* nextCharacter(const char* at) noexcept {
    return at + sizeOfFirst(at);
}

// A byte is a trail where an odd number of lead bytes stands before it: each two of them are a
// character, and the one that is left over is its lead byte.
const char* previousCharacter(const char* start, const char* at) noexcept {
    const char* const last = at - 1;
    const char* firstLead = last;
    while (firstLead > start && isLeadByte(firstLead[-1])) --firstLead;
    return (last - firstLead) % 2 == 1 ? last - 1 : last;
}

const char* findCharacter(const char* text, unsigned code) noexcept {
    if (isSingleByte()) return std::strchr(text, static_cast<char>(code));

    for (; *text != '\0'; text += sizeOfFirst(text)) {
        if (codeOfFirst(text) == code) return text;
    }
    return code == 0 ? text : nullptr;
}

const char* findLastCharacter(const char* text, unsigned code) noexcept {
    if (isSingleByte()) return std::strrchr(text, static_cast<char>(code));

    const char* last = nullptr;
    for (; *text != '\0'; text += sizeOfFirst(text)) {
        if (codeOfFirst(text) == code) last = text;
    }
    return code == 0 ? text : last;
}

const char* findText(const char* text, const char* part) noexcept {
    if (isSingleByte()) return std::strstr(text, part);

    // Where the bytes begin or end inside a character, the search goes on behind it.
    const std::size_t size = std::strlen(part);
    for (const char* at = text; const char* const found = std::strstr(at, part);) {
        at = stepTo(found, at);
        if (at != found) continue;
        if (stepTo(found + size, found) == found + size) return found;
        at += sizeOfFirst(at);
    }
    return nullptr;
}

void toUpper(char* text) noexcept {
    changeCase(text, &upperCase);
}

void toLower(char* text) noexcept {
    changeCase(text, &lowerCase);
}

VexaWChar wideFromByte(char byte) noexcept {
    return static_cast<VexaWChar>(valueOf(byte));
}

}  // namespace vexa::platform
