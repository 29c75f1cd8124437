#include "platform/posix/ascii_runs.h"
#include "platform/posix/code_page_tables.h"
#include "platform/posix/code_pages.h"
#include "platform/posix/utf8.h"
#include "platform/posix/wide_length.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>

namespace vexa::platform {

namespace {

using Text = std::span<const VexaWChar>;
using Room = std::span<char>;

char codeOf(const tables::SingleBytePage& page, VexaWChar unit) {
    const unsigned block = page.blocks[unit / tables::kBlockSize];
    return static_cast<char>(tables::kSingleByteBlocks[block][unit % tables::kBlockSize]);
}

unsigned codeOf(const tables::DoubleBytePage& page, VexaWChar unit) {
    const unsigned block = page.blocks[unit / tables::kBlockSize];
    return tables::kDoubleByteBlocks[block][unit % tables::kBlockSize];
}

std::size_t sizeOf(unsigned code) {
    return code > 0xFF ? 2 : 1;
}

std::size_t sizeIn(const tables::DoubleBytePage& page, Text text) {
    return sumOfBytes(text.data(), text.size(),
                      [&](std::size_t i) { return sizeOf(codeOf(page, text[i])); });
}

std::size_t sizeIn(const CodePage& page, Text text) {
    if (page.singleByte) return text.size();
    if (page.doubleByte) return sizeIn(*page.doubleByte, text);
    return utf8Size(text);
}

std::size_t convert(const tables::SingleBytePage& page, Text text, Room room) {
    const std::size_t count = std::min(text.size(), room.size());
    const VexaWChar* const units = text.data();
    char* const bytes = room.data();
    const auto convertAt = [=, &page](std::size_t i) { bytes[i] = codeOf(page, units[i]); };
    std::size_t i = 0;
    while (count - i >= kAtOnce) {
        i += copyAscii(units + i, count - i, bytes + i);
        if (count - i < kAtOnce) break;
        // Letters of an alphabet stand together, with blanks between them.
        for (std::size_t k = 0; k < kAtOnce; ++k) convertAt(i + k);
        i += kAtOnce;
    }
    for (; i < count; ++i) convertAt(i);
    return count == text.size() ? count : 0;
}

std::size_t convert(const tables::DoubleBytePage& page, Text text, Room room) {
    std::size_t used = 0;
    while (!text.empty()) {
        const std::size_t left = room.size() - used;
        if (isAscii(text[0]) && left > 0) {
            const std::size_t ascii =
                copyAscii(text.data(), std::min(text.size(), left), &room[used]);
            used += ascii;
            text = text.subspan(ascii);
            continue;
        }
        const unsigned code = codeOf(page, text[0]);
        if (left < sizeOf(code)) return 0;
        if (sizeOf(code) == 2) room[used++] = static_cast<char>(code >> 8);
        room[used++] = static_cast<char>(code);
        text = text.subspan(1);
    }
    return used;
}

std::size_t convert(const CodePage& page, Text text, Room room) {
    if (page.singleByte) return convert(*page.singleByte, text, room);
    if (page.doubleByte) return convert(*page.doubleByte, text, room);
    return wideToUtf8(text, room);
}

}  // namespace

int wideToCodePage(const CodePage& page, const VexaWChar* source, int length, char* out,
                   int room) noexcept {
    if (length < -1 || room < 0) return 0;

    const std::size_t units =
        length == -1 ? unitsBeforeTerminator(source) + 1 : static_cast<std::size_t>(length);
    const Text text{source, units};
    const std::size_t bytes =
        room == 0 ? sizeIn(page, text) : convert(page, text, {out, static_cast<std::size_t>(room)});
    return bytes <= std::numeric_limits<int>::max() ? static_cast<int>(bytes) : 0;
}

}  // namespace vexa::platform
