#include "strings/multibyte_text.h"
#include "vexakit/strings.h"

#include <cstring>

using namespace vexa;

namespace {

constexpr char kSeparator = '\\';
constexpr char kExtensionMark = '.';

// The last one, null where there is none. A trail byte of the same value is no such character.
char* findLast(char* path, char character) {
    const char* const last = findLastCharacter(path, static_cast<unsigned char>(character));
    return last ? path + (last - path) : nullptr;
}

}  // namespace

char* string_stripFilePathA(char* path) {
    if (!path) return nullptr;

    if (const char* const separator = findLast(path, kSeparator)) {
        const char* const name = separator + 1;
        std::memmove(path, name, std::strlen(name) + 1);
    }
    return path;
}

char* string_stripFileNameA(char* path) {
    if (!path) return nullptr;

    if (char* const separator = findLast(path, kSeparator)) separator[1] = '\0';
    return path;
}

char* string_stripFileExtA(char* path) {
    if (!path) return nullptr;

    char* const mark = findLast(path, kExtensionMark);
    if (mark && findLast(path, kSeparator) < mark) *mark = '\0';
    return path;
}
