#include "platform/posix/utf8.h"

#include "platform/posix/wide_units.h"

#include <algorithm>

namespace vexa::platform {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isHighSurrogate(VexaWChar unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool isLowSurrogate(VexaWChar unit) {
    return (unit & 0xFC00) == 0xDC00;
}

// The character that the text starts with, and the units it takes.
struct Character {
    char32_t code;
    std::size_t units;
};

Character firstOf(std::span<const VexaWChar> text) {
    const VexaWChar unit = text[0];
    if (isHighSurrogate(unit) && text.size() > 1 && isLowSurrogate(text[1])) {
        const char32_t high = unit & 0x3FFU;
        const char32_t low = text[1] & 0x3FFU;
        return {0x10000 + (high << 10) + low, 2};
    }
    if (isHighSurrogate(unit) || isLowSurrogate(unit)) return {kReplacement, 1};
    return {unit, 1};
}

std::size_t sizeOf(char32_t code) {
    if (code < 0x80) return 1;
    if (code < 0x800) return 2;
    return code < 0x10000 ? 3 : 4;
}

// The last six bits of what `code` has above its lowest `shift` bits, as a trail byte.
char trail(char32_t code, unsigned shift) {
    return static_cast<char>(0x80 | ((code >> shift) & 0x3F));
}

// Writes a character that is not ASCII.
void put(char32_t code, char* out) {
    switch (sizeOf(code)) {
        case 2:
            out[0] = static_cast<char>(0xC0 | (code >> 6));
            out[1] = trail(code, 0);
            break;
        case 3:
            out[0] = static_cast<char>(0xE0 | (code >> 12));
            out[1] = trail(code, 6);
            out[2] = trail(code, 0);
            break;
        default:
            out[0] = static_cast<char>(0xF0 | (code >> 18));
            out[1] = trail(code, 12);
            out[2] = trail(code, 6);
            out[3] = trail(code, 0);
    }
}

}  // namespace

std::size_t utf8Size(std::span<const VexaWChar> text) noexcept {
    return sumOfBytes(text.data(), text.size(), [=](std::size_t i) -> std::size_t {
        // The high half was counted as if it were alone, three bytes; the pair has four.
        if (i > 0 && isLowSurrogate(text[i]) && isHighSurrogate(text[i - 1])) return 1;
        return sizeOf(text[i]);
    });
}

std::size_t wideToUtf8(std::span<const VexaWChar> text, std::span<char> room) noexcept {
    std::size_t used = 0;
    while (!text.empty()) {
        const std::size_t left = room.size() - used;
        if (text[0] < 0x80 && left > 0) {
            const std::size_t ascii =
                copyAscii(text.data(), std::min(text.size(), left), &room[used]);
            used += ascii;
            text = text.subspan(ascii);
            continue;
        }
        const auto [code, units] = firstOf(text);
        const std::size_t size = sizeOf(code);
        if (left < size) return 0;
        put(code, &room[used]);
        used += size;
        text = text.subspan(units);
    }
    return used;
}

}  // namespace vexa::platform
