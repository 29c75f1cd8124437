#include "vexakit/conversion.h"

#include "platform/ansi_code_page.h"

#include <cstdlib>
#include <memory>

namespace {

/// The whole text with its terminator.
int convertAll(const VexaWChar* source, char* out, int room) {
    constexpr int kToTerminator = -1;
    return vexa::platform::wideToAnsi(source, kToTerminator, out, room);
}

struct FreeText {
    void operator()(char* text) const noexcept { std::free(text); }
};
using Text = std::unique_ptr<char, FreeText>;

}  // namespace

uint32_t stringCnv_wcsToMbsAlloc(const VexaWChar* source, char** result) {
    if (!source || !result) return VEXA_FAILURE;

    const int length = convertAll(source, nullptr, 0);
    Text text{static_cast<char*>(std::malloc(static_cast<std::size_t>(length) + 1))};
    if (!text) return VEXA_FAILURE;

    // A length that cannot be told still gives a string, the empty one.
    *text = '\0';
    if (length > 0 && convertAll(source, text.get(), length) == 0) return VEXA_FAILURE;

    *result = text.release();
    return VEXA_SUCCESS;
}
