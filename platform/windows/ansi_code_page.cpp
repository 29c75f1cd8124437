#include "platform/ansi_code_page.h"

#include <windows.h>

namespace vexa::platform {

int wideToAnsi(const VexaWChar* source, int length, char* out, int room) noexcept {
    if (length < -1) return 0;  // the system call takes every negative length for -1
    return WideCharToMultiByte(CP_ACP, 0, source, length, out, room, nullptr, nullptr);
}

}  // namespace vexa::platform
