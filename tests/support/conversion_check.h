#pragma once

#include "tests/support/wide_text.h"
#include "vexakit/conversion.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>

namespace vexa::test {

constexpr auto kSuccess = static_cast<std::uint32_t>(VEXA_SUCCESS);
constexpr auto kFailure = static_cast<std::uint32_t>(VEXA_FAILURE);

template <class Character>
using TextOf = std::basic_string<Character>;

/// What stands in the cells of a room until somebody writes them.
template <class Character>
inline constexpr auto kUnwritten = static_cast<Character>(0xA5A5);

/// Room for an output, between guard cells that nobody may touch.
template <class Character>
class GuardedRoom {
public:
    explicit GuardedRoom(std::size_t size)
        : cells_(kGuard + size + kGuard, kUnwritten<Character>) {}

    Character* data() { return cells_.data() + kGuard; }
    std::size_t size() const { return cells_.size() - 2 * kGuard; }
    /// All cells between the guards.
    TextOf<Character> cells() const { return cells_.substr(kGuard, size()); }
    bool areGuardsUntouched() const {
        const std::size_t end = kGuard + size();
        return std::all_of(cells_.begin(), cells_.begin() + kGuard, isUnwritten) &&
               std::all_of(cells_.begin() + static_cast<std::ptrdiff_t>(end), cells_.end(),
                           isUnwritten);
    }
    bool isUntouched() const { return std::all_of(cells_.begin(), cells_.end(), isUnwritten); }

private:
    static constexpr std::ptrdiff_t kGuard = 32;

    static bool isUnwritten(Character cell) { return cell == kUnwritten<Character>; }

    TextOf<Character> cells_;
};

/// Room of a size as a text and its terminator leave it.
template <class Character>
TextOf<Character> roomWith(const TextOf<Character>& text, std::size_t size) {
    TextOf<Character> cells = text + Character{};
    cells.resize(size, kUnwritten<Character>);
    return cells;
}

/// Whether each cell holds its character of the text or nothing new.
template <class Character>
bool holdsPartOf(const TextOf<Character>& text, const TextOf<Character>& cells) {
    for (std::size_t index = 0; index < cells.size(); ++index) {
        if (cells[index] != kUnwritten<Character> && cells[index] != text[index]) return false;
    }
    return true;
}

/// A text with its terminator in a heap block of just that size: a sanitizer sees each read beyond.
template <class Character>
class ExactText {
public:
    explicit ExactText(const TextOf<Character>& text) : block_(new Character[text.size() + 1]) {
        std::copy_n(text.c_str(), text.size() + 1, block_.get());
    }
    const Character* get() const { return block_.get(); }

private:
    // An array and no string, whose block would have room to spare.
    std::unique_ptr<Character[]> block_;  // NOLINT(modernize-avoid-c-arrays)
};

inline void release(char* text) {
    string_freeA(text);
}
inline void release(VexaWChar* text) {
    string_freeW(text);
}

template <class Character>
struct ReleaseText {
    void operator()(Character* text) const { release(text); }
};
template <class Character>
using NewText = std::unique_ptr<Character, ReleaseText<Character>>;

template <class Source, class Result>
using AllocForm = std::uint32_t (*)(const Source* source, Result** result);

/// The new string that a conversion makes of a text; null where it fails.
template <class Source, class Result>
NewText<Result> converted(AllocForm<Source, Result> convert, const TextOf<Source>& source) {
    const ExactText<Source> exact(source);
    Result* result = nullptr;
    const std::uint32_t status = convert(exact.get(), &result);
    NewText<Result> text(result);
    return status == kSuccess ? std::move(text) : nullptr;
}

/// The same as text. No test expects a lone U+FFFF or 0xFF, which stand for a failure.
template <class Source, class Result>
TextOf<Result> conversionOf(AllocForm<Source, Result> convert, const TextOf<Source>& source) {
    const NewText<Result> text = converted(convert, source);
    return text ? TextOf<Result>(text.get()) : TextOf<Result>(1, static_cast<Result>(0xFFFF));
}

inline std::string toMbs(const WideString& text) {
    return conversionOf(stringCnv_wcsToMbsAlloc, text);
}
inline WideString fromMbs(const std::string& text) {
    return conversionOf(stringCnv_mbsToWcsAlloc, text);
}
inline std::string toUtf8(const WideString& text) {
    return conversionOf(stringCnv_wcsToUTF8Alloc, text);
}
inline WideString fromUtf8(const std::string& text) {
    return conversionOf(stringCnv_utf8ToWcsAlloc, text);
}

/// A character as UTF-16.
inline WideString utf16Of(char32_t character) {
    if (character < 0x10000) return {static_cast<VexaWChar>(character)};
    const char32_t offset = character - 0x10000;
    return {static_cast<VexaWChar>(0xD800 + (offset >> 10)),
            static_cast<VexaWChar>(0xDC00 + (offset & 0x3FF))};
}

/// A character as UTF-8.
inline std::string utf8Of(char32_t character) {
    const auto byte = [](char32_t value) { return static_cast<char>(value); };
    const auto trail = [&](int shift) { return byte(0x80 | ((character >> shift) & 0x3F)); };
    if (character < 0x80) return {byte(character)};
    if (character < 0x800) return {byte(0xC0 | (character >> 6)), trail(0)};
    if (character < 0x10000) return {byte(0xE0 | (character >> 12)), trail(6), trail(0)};
    return {byte(0xF0 | (character >> 18)), trail(12), trail(6), trail(0)};
}

/// A character of any length in UTF-8, but no zero and no surrogate.
inline char32_t randomCharacter(std::mt19937& random) {
    const auto between = [&](unsigned low, unsigned high) {
        return static_cast<char32_t>(low + random() % (high - low + 1));
    };
    switch (random() % 5) {
        case 0: return between(0x80, 0x7FF);
        case 1: return between(0x800, 0xD7FF);
        case 2: return between(0xE000, 0xFFFF);
        case 3: return between(0x10000, 0x10FFFF);
        default: return between(1, 0x7F);
    }
}

/// Bytes without a zero among them.
inline std::string randomBytes(std::mt19937& random, std::size_t size) {
    std::string bytes;
    while (bytes.size() < size) bytes += static_cast<char>(1 + random() % 0xFF);
    return bytes;
}

}  // namespace vexa::test
