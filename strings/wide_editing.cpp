#include "platform/wide_characters.h"
#include "vexakit/strings.h"

using namespace vexa;

namespace {

constexpr VexaWChar kBackslash = '\\';

}  // namespace

VexaWChar* string_toUpperW(VexaWChar* text) {
    if (text) platform::toWideUpper(text);
    return text;
}

VexaWChar* string_toLowerW(VexaWChar* text) {
    if (text) platform::toWideLower(text);
    return text;
}

VexaWChar* string_replaceCharW(VexaWChar* text, VexaWChar from, VexaWChar to) {
    if (!text) return nullptr;

    for (VexaWChar* at = text; *at != 0; ++at) {
        if (*at == from) *at = to;
    }
    return text;
}

VexaWChar* string_replaceCRW(VexaWChar* text) {
    if (!text) return nullptr;

    VexaWChar* out = text;
    for (const VexaWChar* at = text; *at != 0; ++at) {
        if (at[0] == kBackslash && (at[1] == 'n' || at[1] == 'N')) {
            *out++ = '\n';
            ++at;
        } else {
            *out++ = *at;
        }
    }
    *out = 0;
    return text;
}

VexaWChar* string_addFileSeperatorW(VexaWChar* path) {
    if (!path) return nullptr;

    const size_t size = platform::wideLength(path);
    if (size > 0 && path[size - 1] == kBackslash) return path;

    path[size] = kBackslash;
    path[size + 1] = 0;
    return path;
}
