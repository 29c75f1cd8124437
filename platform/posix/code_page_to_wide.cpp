#include "platform/posix/ascii_runs.h"
#include "platform/posix/code_page_tables.h"
#include "platform/posix/code_pages.h"
#include "platform/posix/utf8.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <span>

namespace vexa::platform {

namespace {

using Text = std::span<const char>;
using Room = std::span<VexaWChar>;

unsigned byteAt(Text text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

// A character of a page of one or two bytes.
struct Character {
    unsigned code;
    std::size_t bytes;
};

Character firstOf(const tables::DoubleBytePage& page, Text text) {
    const unsigned first = byteAt(text, 0);
    if (!page.isLead[first] || text.size() == 1 || text[1] == '\0') return {first, 1};
    return {first << 8 | byteAt(text, 1), 2};
}

std::size_t sizeIn(const tables::DoubleBytePage& page, Text text) {
    std::size_t units = 0;
    while (!text.empty()) {
        const std::size_t ascii = asciiRun(text.data(), text.size());
        units += ascii;
        text = text.subspan(ascii);
        if (text.empty()) break;
        text = text.subspan(firstOf(page, text).bytes);
        ++units;
    }
    return units;
}

std::size_t sizeIn(const CodePage& page, Text text) {
    if (page.singleByte) return text.size();
    if (page.doubleByte) return sizeIn(*page.doubleByte, text);
    return wideSize(text);
}

std::size_t convert(const tables::SingleBytePage& page, Text text, Room room) {
    const std::size_t count = std::min(text.size(), room.size());
    const char* const bytes = text.data();
    VexaWChar* const units = room.data();
    const auto convertAt = [=, &page](std::size_t i) {
        units[i] = page.units[static_cast<unsigned char>(bytes[i])];
    };
    std::size_t i = 0;
    while (count - i >= kAtOnce) {
        i += copyAscii(bytes + i, count - i, units + i);
        if (count - i < kAtOnce) break;
        // Letters of an alphabet stand together, with blanks between them.
        for (std::size_t k = 0; k < kAtOnce; ++k) convertAt(i + k);
        i += kAtOnce;
    }
    for (; i < count; ++i) convertAt(i);
    return count == text.size() ? count : 0;
}

std::size_t convert(const CodePage& doubleByte, Text text, Room room) {
    const tables::DoubleBytePage& page = *doubleByte.doubleByte;
    std::size_t used = 0;
    while (!text.empty()) {
        const std::size_t left = room.size() - used;
        if (left == 0) return 0;
        if (isAscii(text[0])) {
            const std::size_t ascii =
                copyAscii(text.data(), std::min(text.size(), left), &room[used]);
            used += ascii;
            text = text.subspan(ascii);
            continue;
        }
        const Character character = firstOf(page, text);
        room[used++] = unitOfCode(doubleByte, character.code);
        text = text.subspan(character.bytes);
    }
    return used;
}

std::size_t convertTo(const CodePage& page, Text text, Room room) {
    if (page.singleByte) return convert(*page.singleByte, text, room);
    if (page.doubleByte) return convert(page, text, room);
    return utf8ToWide(text, room);
}

}  // namespace

int codePageToWide(const CodePage& page, const char* source, int length, VexaWChar* out,
                   int room) noexcept {
    if (length < -1 || room < 0) return 0;

    const std::size_t bytes =
        length == -1 ? std::strlen(source) + 1 : static_cast<std::size_t>(length);
    const Text text{source, bytes};
    const std::size_t units = room == 0
                                  ? sizeIn(page, text)
                                  : convertTo(page, text, {out, static_cast<std::size_t>(room)});
    return units <= std::numeric_limits<int>::max() ? static_cast<int>(units) : 0;
}

}  // namespace vexa::platform
