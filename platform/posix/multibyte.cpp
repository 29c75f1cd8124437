#include "platform/multibyte.h"

#include "platform/posix/ansi_page.h"
#include "platform/posix/wide_classes.h"

namespace vexa::platform {

namespace {

unsigned valueOf(char byte) {
    return static_cast<unsigned char>(byte);
}

using OtherCase = unsigned (*)(const CodePage& page, unsigned code) noexcept;

void changeCase(char* text, OtherCase otherCase) {
    const CodePage& page = ansiPage();
    for (; *text != '\0'; ++text) {
        if (!isLeadByte(page, *text)) {
            *text = static_cast<char>(otherCase(page, valueOf(*text)));
            continue;
        }
        const unsigned other = otherCase(page, valueOf(text[0]) << 8 | valueOf(text[1]));
        *text++ = static_cast<char>(other >> 8);
        *text = static_cast<char>(other);
    }
}

}  // namespace

bool isDoubleBytePage() noexcept {
    return ansiPage().doubleByte != nullptr;
}

bool isLeadByte(char byte) noexcept {
    return isLeadByte(ansiPage(), byte);
}

bool isSpace(unsigned code) noexcept {
    if (code < 0x80) return isSpaceUnit(static_cast<VexaWChar>(code));
    if (code > 0xFFFF || !isLeadByte(static_cast<char>(code >> 8))) return false;
    return isSpaceUnit(unitOfCode(ansiPage(), code));
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
