#pragma once

#include "vexakit/types.h"

#include <string>

namespace vexa::bench {

using WideText = std::basic_string<VexaWChar>;

/// Well-formed wide text in UTF-8, character by character: what every conversion has to give.
inline std::string utf8Of(const WideText& wide) {
    std::string bytes;
    const auto append = [&bytes](unsigned lead, unsigned code, int followers) {
        bytes += static_cast<char>(lead | (code >> (6 * followers)));
        while (followers-- > 0) {
            bytes += static_cast<char>(0x80 | ((code >> (6 * followers)) & 0x3F));
        }
    };
    for (std::size_t i = 0; i < wide.size(); ++i) {
        unsigned code = wide[i];
        if ((code & 0xFC00) == 0xD800) {
            code = 0x10000 + ((code & 0x3FF) << 10) + (wide[++i] & 0x3FF);
        }
        if (code < 0x80) {
            append(0, code, 0);
        } else if (code < 0x800) {
            append(0xC0, code, 1);
        } else if (code < 0x10000) {
            append(0xE0, code, 2);
        } else {
            append(0xF0, code, 3);
        }
    }
    return bytes;
}

/// Of characters below U+0100 outside of 80 to 9F, which are the same bytes in the western page.
inline std::string latin1Of(const WideText& wide) {
    std::string bytes;
    for (const VexaWChar unit : wide) bytes += static_cast<char>(unit);
    return bytes;
}

}  // namespace vexa::bench
