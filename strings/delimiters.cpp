#include "strings/delimiters.h"

#include "strings/multibyte_text.h"

#include <array>

namespace vexa {

namespace {

/// Bytes and the terminator.
class ByteSet {
public:
    explicit ByteSet(const char* bytes) noexcept {
        for (; *bytes != '\0'; ++bytes) words_[wordOf(*bytes)] |= bitOf(*bytes);
    }

    [[nodiscard]] bool contains(char byte) const noexcept {
        return (words_[wordOf(byte)] & bitOf(byte)) != 0;
    }

private:
    static constexpr unsigned kBits = 64;

    static std::size_t wordOf(char byte) { return static_cast<unsigned char>(byte) / kBits; }
    static std::uint64_t bitOf(char byte) {
        return std::uint64_t{1} << static_cast<unsigned char>(byte) % kBits;
    }

    std::array<std::uint64_t, 4> words_ = {1};
};

bool isAscii(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

}  // namespace

const char* Delimiters::endByCharacters(const char* text, const char* delimiters) noexcept {
    const ByteSet ends(delimiters);
    while (!ends.contains(*text)) text += isAscii(*text) ? 1 : firstCharacter(text).bytes;
    return text;
}

}  // namespace vexa
