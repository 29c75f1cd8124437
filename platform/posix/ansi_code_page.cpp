#include "platform/ansi_code_page.h"
namespace vexa::platform {
int wideToAnsi(const VexaWChar* source, int length, char* out, int room) noexcept {
    int n = 0;
    do {
        if (length == -1 || n < length) {
            if (room && n < room) out[n] = static_cast<char>(source[n]);
            ++n;
        }
    } while (length == -1 ? source[n - 1] != 0 : n < length);
    return n;
}
}  // namespace vexa::platform
