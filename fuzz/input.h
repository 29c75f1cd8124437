#pragma once

#include "vexakit/types.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <vector>

namespace vexa::fuzz {

using Input = FuzzedDataProvider;
using WideString = std::basic_string<VexaWChar>;

/// Ends the process where a promise does not hold, so that the fuzzer keeps the input.
inline void require(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

inline int take(Input& input, int low, int high) {
    return input.ConsumeIntegralInRange<int>(low, high);
}

/// A text without a zero in it, of characters that the helpers care about as often as any other.
inline std::string takeBytes(Input& input, std::size_t longest) {
    static constexpr char kOfInterest[] = " \t\n\\/.,;nNaZ\x81\x83\x5C\xA0\xE9\x01\x7F";
    std::string text;
    for (std::size_t size = input.ConsumeIntegralInRange<std::size_t>(0, longest); size > 0;
         --size) {
        const auto byte = input.ConsumeIntegral<unsigned char>();
        const bool isPlain = byte % 2 == 0;
        const char character =
            isPlain ? static_cast<char>(byte) : kOfInterest[byte / 2 % (sizeof(kOfInterest) - 1)];
        if (character != '\0') text += character;
    }
    return text;
}

inline WideString takeUnits(Input& input, std::size_t longest) {
    static constexpr VexaWChar kOfInterest[] = {
        ' ',  '\t', '\\', '/',    '.',    ',',    'n',    'N',    '0',    '9',   0x01,
        0x85, 0xA0, 0xE9, 0x3000, 0x3042, 0xD83D, 0xDE00, 0xFEFF, 0xFF11, 0xFFFF};
    WideString text;
    for (std::size_t size = input.ConsumeIntegralInRange<std::size_t>(0, longest); size > 0;
         --size) {
        const auto byte = input.ConsumeIntegral<unsigned char>();
        VexaWChar unit = kOfInterest[byte % std::size(kOfInterest)];
        if (byte % 3 == 1) unit = byte;
        if (byte % 3 == 2) unit = input.ConsumeIntegral<std::uint16_t>();
        if (unit != 0) text += unit;
    }
    return text;
}

/// Characters in a heap block of just their size: whoever leaves it meets the address sanitizer.
template <typename Character>
class ExactRoom {
public:
    explicit ExactRoom(std::size_t size) : cells_(new Character[size]()), size_(size) {}
    explicit ExactRoom(const std::basic_string<Character>& text, std::size_t spare = 0)
        : ExactRoom(text.size() + 1 + spare) {
        text.copy(cells_, text.size());
    }
    ExactRoom(const ExactRoom&) = delete;
    ExactRoom& operator=(const ExactRoom&) = delete;
    ~ExactRoom() { delete[] cells_; }

    Character* data() { return cells_; }
    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] std::basic_string<Character> text() const { return cells_; }

private:
    Character* cells_;
    std::size_t size_;
};

}  // namespace vexa::fuzz
