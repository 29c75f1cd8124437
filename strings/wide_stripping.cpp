#include "strings/wide_stripping.h"

#include "platform/wide_characters.h"
#include "vexakit/strings.h"

using namespace vexa;

VexaWChar* string_stripLeadWhiteSpaceW(VexaWChar* text) {
    if (text) keepFrom(text, string_skipWhiteSpaceW(text));
    return text;
}

VexaWChar* string_stripTrailWhiteSpaceW(VexaWChar* text) {
    if (!text) return nullptr;

    size_t end = platform::wideLength(text);
    while (end > 0 && platform::isWideSpace(text[end - 1])) text[--end] = 0;
    return text;
}

VexaWChar* string_stripWhiteSpaceW(VexaWChar* text) {
    if (!text) return nullptr;

    VexaWChar* out = text;
    for (const VexaWChar* at = text; *at != 0; ++at) {
        if (!platform::isWideSpace(*at)) *out++ = *at;
    }
    *out = 0;
    return text;
}

VexaWChar* string_stripCharW(VexaWChar* text, VexaWChar character) {
    if (text) stripEverySecond(text, equals(character));
    return text;
}

VexaWChar* string_stripCtlCharW(VexaWChar* text) {
    if (!text) return nullptr;

    VexaWChar* out = text;
    for (const VexaWChar* at = text; *at != 0;) {
        while (*at != 0 && platform::isWideControl(*at)) ++at;
        // Only a control character that ends the text takes the terminator along: behind any other
        // end the old tail stays.
        *out++ = *at;
        if (*at != 0) ++at;
    }
    return text;
}

VexaWChar* string_stripLeadingCharW(VexaWChar* text, VexaWChar character, uint32_t count) {
    if (text) stripLeading(text, count, equals(character));
    return text;
}

VexaWChar* string_stripTrailingCharW(VexaWChar* text, VexaWChar character, uint32_t count) {
    if (text) stripTrailing(text, count, equals(character));
    return text;
}

VexaWChar* string_stripLeadingCtlCharW(VexaWChar* text, uint32_t count) {
    if (text) stripLeading(text, count, &platform::isWideControl);
    return text;
}

VexaWChar* string_stripTrailingCtlCharW(VexaWChar* text, uint32_t count) {
    if (text) stripTrailing(text, count, &platform::isWideControl);
    return text;
}
