#include "platform/encodings.h"

#include <windows.h>

#include <cstring>
#include <limits>

namespace vexa::platform {

namespace {

// The system calls take every negative length for -1.
constexpr int kToTerminator = -1;

int fromWide(unsigned page, const VexaWChar* source, int length, char* out, int room) {
    if (length < kToTerminator) return 0;
    return WideCharToMultiByte(page, 0, source, length, out, room, nullptr, nullptr);
}

// UTF-8 that is cut off right before the terminator may take it along, and a pair that does not fit may
// pass for one that does. So the text is converted without its terminator, and not before it is known
// to fit; text has a unit for each byte at most.
int toWideWithTerminator(unsigned page, const char* source, VexaWChar* out, int room) {
    constexpr std::size_t kMost = std::numeric_limits<int>::max();
    const std::size_t size = std::strlen(source);
    if (size >= kMost || room < 0) return 0;

    const int length = static_cast<int>(size);
    int units = 0;
    if (length > 0 && length >= room) {
        units = MultiByteToWideChar(page, 0, source, length, nullptr, 0);
        if (units == 0 || (room > 0 && units >= room)) return 0;
    }
    if (room == 0) return units + 1;
    if (length > 0) units = MultiByteToWideChar(page, 0, source, length, out, room - 1);
    if (length > 0 && units == 0) return 0;
    out[units] = 0;
    return units + 1;
}

int toWide(unsigned page, const char* source, int length, VexaWChar* out, int room) {
    if (length == kToTerminator) return toWideWithTerminator(page, source, out, room);
    if (length < kToTerminator) return 0;
    return MultiByteToWideChar(page, 0, source, length, out, room);
}

}  // namespace

unsigned ansiCodePage() noexcept {
    return GetACP();
}

int wideToAnsi(const VexaWChar* source, int length, char* out, int room) noexcept {
    return fromWide(CP_ACP, source, length, out, room);
}

int ansiToWide(const char* source, int length, VexaWChar* out, int room) noexcept {
    return toWide(CP_ACP, source, length, out, room);
}

int wideToUtf8(const VexaWChar* source, int length, char* out, int room) noexcept {
    return fromWide(CP_UTF8, source, length, out, room);
}

int utf8ToWide(const char* source, int length, VexaWChar* out, int room) noexcept {
    return toWide(CP_UTF8, source, length, out, room);
}

}  // namespace vexa::platform
