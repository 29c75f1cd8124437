#include "platform/posix/utf8.h"

#include "platform/posix/ascii_runs.h"
#include "platform/posix/utf8_by_vectors.h"

#include <algorithm>
#include <cstddef>

namespace vexa::platform {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstOfPairs = 0x10000;

bool isSurrogate(char32_t unit) {
    return (unit & 0xF800) == 0xD800;
}

bool isHighSurrogate(VexaWChar unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool isLowSurrogate(VexaWChar unit) {
    return (unit & 0xFC00) == 0xDC00;
}

// The character that a text starts with, and the units or bytes that it takes there.
struct Character {
    char32_t code;
    std::size_t length;
};

// ---- Wide text ---------------------------------------------------------------------------------

Character firstOf(const VexaWChar* text, std::size_t size) {
    const VexaWChar unit = text[0];
    if (!isSurrogate(unit)) return {unit, 1};
    if (!isHighSurrogate(unit) || size < 2 || !isLowSurrogate(text[1])) return {kReplacement, 1};

    const char32_t high = unit & 0x3FFU;
    const char32_t low = text[1] & 0x3FFU;
    return {kFirstOfPairs + (high << 10) + low, 2};
}

std::size_t bytesOf(char32_t code) {
    if (code < 0x80) return 1;
    if (code < 0x800) return 2;
    return code < kFirstOfPairs ? 3 : 4;
}

// The last six bits of what `code` has above its lowest `shift` bits, as a trail byte.
char trail(char32_t code, unsigned shift) {
    return static_cast<char>(0x80 | ((code >> shift) & 0x3F));
}

/// @return the bytes written
std::size_t put(char32_t code, char* out) {
    if (code < 0x80) {
        out[0] = static_cast<char>(code);
        return 1;
    }
    if (code < 0x800) {
        out[0] = static_cast<char>(0xC0 | (code >> 6));
        out[1] = trail(code, 0);
        return 2;
    }
    if (code < kFirstOfPairs) {
        out[0] = static_cast<char>(0xE0 | (code >> 12));
        out[1] = trail(code, 6);
        out[2] = trail(code, 0);
        return 3;
    }
    out[0] = static_cast<char>(0xF0 | (code >> 18));
    out[1] = trail(code, 12);
    out[2] = trail(code, 6);
    out[3] = trail(code, 0);
    return 4;
}

// ---- UTF-8 -------------------------------------------------------------------------------------

unsigned byteAt(const char* text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

bool isTrail(unsigned byte) {
    return (byte & 0xC0) == 0x80;
}

// The second byte narrows what the first allows: no overlong forms, no surrogates, nothing above
// U+10FFFF.
bool isSecond(unsigned first, unsigned second) {
    switch (first) {
        case 0xE0: return second >= 0xA0 && second <= 0xBF;
        case 0xED: return second >= 0x80 && second <= 0x9F;
        case 0xF0: return second >= 0x90 && second <= 0xBF;
        case 0xF4: return second >= 0x80 && second <= 0x8F;
        default: return isTrail(second);
    }
}

// Bytes of the characters that start so; 0 where none does.
std::size_t lengthFrom(unsigned first) {
    if (first < 0x80) return 1;
    if (first < 0xC2) return 0;
    if (first < 0xE0) return 2;
    if (first < 0xF0) return 3;
    return first < 0xF5 ? 4 : 0;
}

// How much of an ill-formed start is one replacement.
Character illFormed(const char* text, std::size_t size) {
    const std::size_t length = lengthFrom(byteAt(text, 0));
    if (length == 0 || size < 2 || !isSecond(byteAt(text, 0), byteAt(text, 1))) {
        return {kReplacement, 1};
    }
    const bool hasThird = length == 4 && size > 2 && isTrail(byteAt(text, 2));
    return {kReplacement, hasThird ? 3U : 2U};
}

Character firstOf(const char* text, std::size_t size) {
    const unsigned first = byteAt(text, 0);
    if (first < 0x80) return {first, 1};
    if (first < 0xE0 && size >= 2) {
        const unsigned second = byteAt(text, 1);
        const char32_t code = (first & 0x1F) << 6 | (second & 0x3F);
        if (code >= 0x80 && first >= 0xC0 && isTrail(second)) return {code, 2};
    } else if (first < 0xF0 && size >= 3) {
        const unsigned second = byteAt(text, 1);
        const unsigned third = byteAt(text, 2);
        const char32_t code = (first & 0x0F) << 12 | (second & 0x3F) << 6 | (third & 0x3F);
        if (code >= 0x800 && !isSurrogate(code) && isTrail(second) && isTrail(third)) {
            return {code, 3};
        }
    } else if (first < 0xF8 && size >= 4) {
        const unsigned second = byteAt(text, 1);
        const unsigned third = byteAt(text, 2);
        const unsigned fourth = byteAt(text, 3);
        const char32_t code =
            (first & 0x07) << 18 | (second & 0x3F) << 12 | (third & 0x3F) << 6 | (fourth & 0x3F);
        const bool areTrails = isTrail(second) && isTrail(third) && isTrail(fourth);
        if (code >= kFirstOfPairs && code < 0x110000 && areTrails) return {code, 4};
    }
    return illFormed(text, size);
}

std::size_t unitsOf(char32_t code) {
    return code < kFirstOfPairs ? 1 : 2;
}

/// @return the units written
std::size_t put(char32_t code, VexaWChar* out) {
    if (unitsOf(code) == 1) {
        out[0] = static_cast<VexaWChar>(code);
        return 1;
    }
    out[0] = static_cast<VexaWChar>(0xD800 + ((code - kFirstOfPairs) >> 10));
    out[1] = static_cast<VexaWChar>(0xDC00 + (code & 0x3FF));
    return 2;
}

// ---- Both ways ---------------------------------------------------------------------------------

std::size_t sizeOf(char32_t code, const char* /*out*/) {
    return bytesOf(code);
}

std::size_t sizeOf(char32_t code, const VexaWChar* /*out*/) {
    return unitsOf(code);
}

Progress<VexaWChar, char> convertByVectors(const VexaWChar* from, const VexaWChar* end, char* to,
                                           const char* limit) {
    return wideToUtf8ByVectors(from, end, to, limit);
}

Progress<char, VexaWChar> convertByVectors(const char* from, const char* end, VexaWChar* to,
                                           const VexaWChar* limit) {
    return utf8ToWideByVectors(from, end, to, limit);
}

// Vectors take what is less than a block of ASCII along with all else.
template <typename From>
bool startsWithBlock(const From* from, const From* end) {
    return end - from >= static_cast<std::ptrdiff_t>(kAtOnce) && areAscii(from);
}

// What is not ASCII seldom stands alone, so blocks are tried again only where two ASCII characters
// follow each other.
template <typename From>
bool startsWithTwo(const From* from, const From* end) {
    return end - from > 1 && isAscii(from[0]) && isAscii(from[1]);
}

// Runs of ASCII go block by block, everything else by vectors, or character by character where there
// are none, where the room comes to its end, and where there is no character.
template <typename From, typename To>
std::size_t convert(std::span<const From> text, std::span<To> room) {
    const bool hasVectors = hasUtf8Vectors();
    const From* from = text.data();
    const From* const end = from + text.size();
    To* to = room.data();
    To* const limit = to + room.size();
    while (from != end) {
        if (hasVectors ? startsWithBlock(from, end) : startsWithTwo(from, end)) {
            const auto most = std::min(end - from, limit - to);
            const std::size_t ascii = copyAscii(from, static_cast<std::size_t>(most), to);
            if (ascii == 0) return 0;
            from += ascii;
            to += ascii;
            continue;
        }
        if (hasVectors) {
            const auto reached = convertByVectors(from, end, to, limit);
            from = reached.from;
            to = reached.to;
            if (from == end) break;
        }
        const auto [code, length] = firstOf(from, static_cast<std::size_t>(end - from));
        if (static_cast<std::size_t>(limit - to) < sizeOf(code, to)) return 0;
        to += put(code, to);
        from += length;
    }
    return static_cast<std::size_t>(to - room.data());
}

}  // namespace

std::size_t utf8Size(std::span<const VexaWChar> text) noexcept {
    return sumOfBytes(text.data(), text.size(), [=](std::size_t i) -> std::size_t {
        // The high half was counted as if it were alone, three bytes; the pair has four.
        if (i > 0 && isLowSurrogate(text[i]) && isHighSurrogate(text[i - 1])) return 1;
        return bytesOf(text[i]);
    });
}

std::size_t wideSize(std::span<const char> text) noexcept {
    std::size_t units = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t ascii = asciiRun(&text[at], text.size() - at);
        units += ascii;
        at += ascii;
        while (at < text.size() && !isAscii(text[at])) {
            const auto [code, length] = firstOf(&text[at], text.size() - at);
            units += unitsOf(code);
            at += length;
        }
    }
    return units;
}

std::size_t wideToUtf8(std::span<const VexaWChar> text, std::span<char> room) noexcept {
    return convert(text, room);
}

std::size_t utf8ToWide(std::span<const char> text, std::span<VexaWChar> room) noexcept {
    return convert(text, room);
}

}  // namespace vexa::platform
