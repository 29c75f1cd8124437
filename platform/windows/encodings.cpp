#include "platform/encodings.h"

#include <windows.h>

namespace vexa::platform {

namespace {

// The system calls take every negative length for -1.
constexpr int kToTerminator = -1;

int fromWide(unsigned page, const VexaWChar* source, int length, char* out, int room) {
    if (length < kToTerminator) return 0;
    return WideCharToMultiByte(page, 0, source, length, out, room, nullptr, nullptr);
}

int toWide(unsigned page, const char* source, int length, VexaWChar* out, int room) {
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
