#include "platform/wide_characters.h"
#include "vexakit/strings.h"

#include <string_view>

using namespace vexa;

namespace {

using View = std::basic_string_view<VexaWChar>;

View viewOf(const VexaWChar* text) {
    return {text, platform::wideLength(text)};
}

// Text is handed in as constant and out as it may be: whether it is constant the caller knows.
VexaWChar* mutableText(const VexaWChar* text) {
    return const_cast<VexaWChar*>(text);
}

VexaWChar* placeIn(const VexaWChar* text, size_t index) {
    return index == View::npos ? nullptr : mutableText(text) + index;
}

}  // namespace

size_t string_numCharsW(const VexaWChar* text) {
    return text ? platform::wideLength(text) : 0;
}

extern "C" [[gnu::alias("string_numCharsW")]] size_t string_safeLengthW(const VexaWChar* text);

size_t string_getCharCountW(const VexaWChar* text, VexaWChar character) {
    if (!text) return 0;

    size_t count = 0;
    for (; *text != 0; ++text) count += *text == character ? 1 : 0;
    return count;
}

VexaWChar* string_incrementW(const VexaWChar* position) {
    return position ? mutableText(position) + 1 : nullptr;
}

extern "C" [[gnu::alias("string_incrementW")]] VexaWChar* string_nextCharW(
    const VexaWChar* position);

VexaWChar* string_decrementW(const VexaWChar* start, const VexaWChar* position) {
    if (!start || !position || position <= start) return nullptr;
    return mutableText(position) - 1;
}

VexaWChar* string_getLastCharW(const VexaWChar* text) {
    const size_t size = string_numCharsW(text);
    return size > 0 ? mutableText(text) + (size - 1) : nullptr;
}

VexaWChar* string_strchrW(const VexaWChar* text, VexaWChar character) {
    if (!text) return nullptr;

    for (; *text != character; ++text) {
        if (*text == 0) return nullptr;
    }
    return mutableText(text);
}

VexaWChar* string_strrchrW(const VexaWChar* text, VexaWChar character) {
    if (!text) return nullptr;
    if (character == 0) return mutableText(text) + platform::wideLength(text);
    return placeIn(text, viewOf(text).rfind(character));
}

VexaWChar* string_strstrW(const VexaWChar* text, const VexaWChar* part) {
    if (!text || !part || *text == 0 || *part == 0) return nullptr;
    return placeIn(text, viewOf(text).find(viewOf(part)));
}

int string_isSpaceW(VexaWChar character) {
    return character != 0 && platform::isWideSpace(character) ? 1 : 0;
}

VexaWChar* string_skipWhiteSpaceW(const VexaWChar* text) {
    if (!text) return nullptr;

    while (string_isSpaceW(*text) != 0) ++text;
    return mutableText(text);
}
