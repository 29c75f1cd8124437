// Characters are stripped from the text's wide form, which is then put back.

#include "platform/encodings.h"
#include "platform/multibyte.h"
#include "platform/wide_characters.h"
#include "strings/wide_stripping.h"
#include "vexakit/strings.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

using namespace vexa;

namespace {

struct FreeUnits {
    void operator()(VexaWChar* units) const noexcept { std::free(units); }
};
using Units = std::unique_ptr<VexaWChar, FreeUnits>;

constexpr int kToTerminator = -1;

// Room for the wide text, which has a unit for each byte at most, and behind it for the bytes of the
// edited text.
Units workingRoom(size_t bytes) {
    const size_t size = bytes * sizeof(VexaWChar) + bytes;
    return Units{static_cast<VexaWChar*>(std::malloc(size))};
}

/// Edits the text's wide form. The text stays as it is where that fails.
template <typename Edit>
char* editWide(char* text, Edit edit) {
    if (!text) return nullptr;

    const size_t bytes = std::strlen(text) + 1;
    if (bytes > std::numeric_limits<int>::max()) return nullptr;
    const int room = static_cast<int>(bytes);
    const Units units = workingRoom(bytes);
    if (!units) return nullptr;
    if (platform::ansiToWide(text, kToTerminator, units.get(), room) == 0) return nullptr;

    edit(units.get());

    char* const edited = reinterpret_cast<char*>(units.get() + bytes);
    const int size = platform::wideToAnsi(units.get(), kToTerminator, edited, room);
    if (size == 0) return nullptr;
    std::memcpy(text, edited, static_cast<size_t>(size));
    return text;
}

// A byte asked as if it were a wide character: with its sign, so that none above 127 is one.
bool isControlByte(char byte) {
    return platform::isWideControl(static_cast<VexaWChar>(static_cast<signed char>(byte)));
}

}  // namespace

char* string_stripCharA(char* text, char character) {
    return editWide(text, [=](VexaWChar* wide) {
        stripEverySecond(wide, equals(platform::wideFromByte(character)));
    });
}

char* string_stripCtlCharA(char* text) {
    return editWide(text,
                    [](VexaWChar* wide) { stripEverySecond(wide, &platform::isWideControl); });
}

char* string_stripLeadingCharA(char* text, char character, uint32_t count) {
    return editWide(text, [=](VexaWChar* wide) {
        stripLeading(wide, count, equals(platform::wideFromByte(character)));
    });
}

char* string_stripTrailingCharA(char* text, char character, uint32_t count) {
    return editWide(text, [=](VexaWChar* wide) {
        stripTrailing(wide, count, equals(platform::wideFromByte(character)));
    });
}

char* string_stripLeadingCtlCharA(char* text, uint32_t count) {
    return editWide(text,
                    [=](VexaWChar* wide) { stripLeading(wide, count, &platform::isWideControl); });
}

char* string_stripTrailingCtlCharA(char* text, uint32_t count) {
    // The index is that of the wide character, so in text with longer characters the byte that
    // decides lies nearer to the front.
    return editWide(text, [=](VexaWChar* wide) {
        for (size_t end = platform::wideLength(wide), left = count; left > 0 && end > 0; --left) {
            if (!isControlByte(text[end - 1])) break;
            wide[--end] = 0;
        }
    });
}
