#pragma once

#include "platform/posix/code_pages.h"
#include "tests/support/wide_text.h"

#include <algorithm>
#include <random>
#include <string>

namespace vexa::test {

/// Every page that the library has tables or rules for.
constexpr unsigned kAllCodePages[] = {874,  932,  936,  949,  950,  1250, 1251, 1252,
                                      1253, 1254, 1255, 1256, 1257, 1258, 65001};

/// A byte that nobody wrote: no page has it as a trail byte.
constexpr char kUntouchedByte = '\x7F';

/// A conversion into guarded room: what it returned, and the whole array afterwards.
struct Converted {
    int returned = 0;
    std::string room;
    bool guardsUntouched = false;
};

/// Runs `convert(source, length, out, room)` with guard bytes around its room.
template <typename Conversion>
Converted convertedInto(int room, const WideString& source, int length, Conversion convert) {
    constexpr std::size_t kGuard = 32;
    const auto size = static_cast<std::size_t>(room);
    std::string bytes(kGuard + size + kGuard, kUntouchedByte);

    Converted result;
    result.returned = convert(source.c_str(), length, bytes.data() + kGuard, room);
    result.room = bytes.substr(kGuard, size);
    bytes.erase(kGuard, size);
    result.guardsUntouched =
        std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == kUntouchedByte; });
    return result;
}

/// The library's own conversion to a page.
inline auto toPage(unsigned number) {
    return [page = platform::findCodePage(number).value()](const VexaWChar* source, int length,
                                                           char* out, int room) {
        return platform::wideToCodePage(page, source, length, out, room);
    };
}

/// The whole text without a terminator, in the library's conversion to a page.
inline std::string inPage(unsigned number, const WideString& text) {
    const int length = static_cast<int>(text.size());
    const int size = toPage(number)(text.data(), length, nullptr, 0);
    std::string bytes(static_cast<std::size_t>(size), kUntouchedByte);
    const int written = toPage(number)(text.data(), length, bytes.data(), size);
    return written == size ? bytes : "conversion failed";
}

/// Text with runs of ASCII, of any unit, and of surrogates in and out of order.
inline WideString randomText(std::mt19937& random, std::size_t longest) {
    const auto below = [&](unsigned bound) { return static_cast<unsigned>(random() % bound); };
    WideString text;
    const std::size_t size = below(static_cast<unsigned>(longest) + 1);
    while (text.size() < size) {
        const unsigned kind = below(4);
        for (unsigned run = 1 + below(12); run > 0 && text.size() < size; --run) {
            const unsigned unit = kind == 0   ? 1 + below(0x7F)
                                  : kind == 1 ? 0xD800 + below(0x800)
                                  : kind == 2 ? 0x80 + below(0x800)
                                              : 1 + below(0xFFFF);
            text += static_cast<VexaWChar>(unit);
        }
    }
    return text;
}

}  // namespace vexa::test
