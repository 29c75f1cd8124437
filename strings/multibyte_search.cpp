#include "strings/multibyte_text.h"
#include "vexakit/strings.h"

#include <cstring>

using namespace vexa;

namespace {

bool isEmpty(const char* text) {
    return *text == '\0';
}

// Text is handed in as constant and out as it may be: whether it is constant the caller knows.
char* mutableText(const char* text) {
    return const_cast<char*>(text);
}

const char* nextCharacter(const char* at) {
    return at + firstCharacter(at).bytes;
}

}  // namespace

size_t string_numCharsA(const char* text) {
    return text ? characterCount(text) : 0;
}

size_t string_safeLengthA(const char* text) {
    return text ? std::strlen(text) : 0;
}

size_t string_getCharCountA(const char* text, unsigned int character) {
    if (!text || isEmpty(text)) return 0;

    size_t count = 0;
    for (const char* at = findCharacter(text, character); at && !isEmpty(at);
         at = findCharacter(nextCharacter(at), character)) {
        ++count;
    }
    return count;
}

char* string_incrementA(const char* position) {
    return position ? mutableText(nextCharacter(position)) : nullptr;
}

char* string_decrementA(const char* start, const char* position) {
    if (!start || !position || position <= start) return nullptr;
    return mutableText(previousCharacter(start, position));
}

char* string_getLastCharA(const char* text) {
    const size_t characters = string_numCharsA(text);
    // Characters are counted off in bytes: in text with double-byte characters the result lies before
    // the last one.
    return characters > 0 ? mutableText(text) + (characters - 1) : nullptr;
}

char* string_strchrA(const char* text, unsigned int character) {
    return text ? mutableText(findCharacter(text, character)) : nullptr;
}

char* string_strrchrA(const char* text, unsigned int character) {
    return text ? mutableText(findLastCharacter(text, character)) : nullptr;
}

char* string_strstrA(const char* text, const char* part) {
    if (!text || !part || isEmpty(text) || isEmpty(part)) return nullptr;
    return mutableText(findText(text, part));
}
