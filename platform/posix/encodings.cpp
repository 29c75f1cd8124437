#include "platform/encodings.h"

#include "platform/posix/ansi_page.h"
#include "platform/posix/locale_charset.h"

#include <cstdlib>

namespace vexa::platform {

namespace {

const char* variable(const char* name) noexcept {
    return std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nothing else runs yet
}

CodePage environmentsPage() noexcept {
    const unsigned number =
        codePageOfLocale(variable("LC_ALL"), variable("LC_CTYPE"), variable("LANG"));
    return findCodePage(number).value_or(CodePage{});
}

// Read once, at load: a later setlocale() or setenv() must not change stored text.
const CodePage kAnsiPage = environmentsPage();

}  // namespace

const CodePage& ansiPage() noexcept {
    return kAnsiPage;
}

unsigned ansiCodePage() noexcept {
    return numberOf(kAnsiPage);
}

int wideToAnsi(const VexaWChar* source, int length, char* out, int room) noexcept {
    return wideToCodePage(kAnsiPage, source, length, out, room);
}

int ansiToWide(const char* source, int length, VexaWChar* out, int room) noexcept {
    return codePageToWide(kAnsiPage, source, length, out, room);
}

int wideToUtf8(const VexaWChar* source, int length, char* out, int room) noexcept {
    return wideToCodePage(CodePage{}, source, length, out, room);
}

int utf8ToWide(const char* source, int length, VexaWChar* out, int room) noexcept {
    return codePageToWide(CodePage{}, source, length, out, room);
}

}  // namespace vexa::platform
