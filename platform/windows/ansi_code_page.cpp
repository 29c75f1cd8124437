#include "platform/ansi_code_page.h"

#include <windows.h>

namespace vexa::platform {

int wideToAnsi(const VexaWChar* source, int length, char* out, int room) noexcept {
    return WideCharToMultiByte(CP_ACP, 0, source, length, out, room, nullptr, nullptr);
}

}  // namespace vexa::platform
