#include "platform/wide_characters.h"

#include "platform/posix/wide_classes.h"
#include "platform/posix/wide_length.h"

namespace vexa::platform {

namespace {

constexpr VexaWChar kCaseBit = 0x20;

// The "C" locale knows the case of ASCII letters alone.
void changeCase(VexaWChar* text, VexaWChar first, VexaWChar last) {
    for (; *text != 0; ++text) {
        if (*text >= first && *text <= last) *text ^= kCaseBit;
    }
}

}  // namespace

std::size_t wideLength(const VexaWChar* text) noexcept {
    return unitsBeforeTerminator(text);
}

std::size_t wideLengthWithin(const VexaWChar* text, std::size_t most) noexcept {
    return unitsBeforeTerminator(text, most);
}

bool isWideSpace(VexaWChar unit) noexcept {
    return isSpaceUnit(unit);
}

bool isWideControl(VexaWChar unit) noexcept {
    return isControlUnit(unit);
}

void toWideUpper(VexaWChar* text) noexcept {
    changeCase(text, 'a', 'z');
}

void toWideLower(VexaWChar* text) noexcept {
    changeCase(text, 'A', 'Z');
}

}  // namespace vexa::platform
