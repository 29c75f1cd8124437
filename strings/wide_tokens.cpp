#include "strings/bounded_copy.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <string_view>

using namespace vexa;

namespace {

using View = std::basic_string_view<VexaWChar>;

bool isEmpty(const VexaWChar* text) {
    return !text || *text == 0;
}

struct Token {
    const VexaWChar* start;
    size_t size;
    /// Behind the delimiter; null where the list ended the token.
    const VexaWChar* next;

    [[nodiscard]] bool fits(size_t room) const { return size < room; }
};

/// @param list  not empty
Token firstToken(const VexaWChar* list, View delimiters) {
    const auto isDelimiter = [=](VexaWChar unit) {
        return unit != 0 && delimiters.find(unit) != View::npos;
    };
    while (isDelimiter(*list)) ++list;

    const VexaWChar* end = list;
    while (*end != 0 && !isDelimiter(*end)) ++end;
    return {list, static_cast<size_t>(end - list), *end == 0 ? nullptr : end + 1};
}

}  // namespace

uint32_t string_getTokenW(const VexaWChar* source, const VexaWChar* delimiters, size_t size,
                          VexaWChar* token, VexaWChar** next) {
    if (isEmpty(source) || isEmpty(delimiters) || !token) return VEXA_FAILURE;

    const Token first = firstToken(source, delimiters);
    if (!first.fits(size)) return VEXA_FAILURE;

    copyAndFill(first.start, first.size, token, first.size + 1);
    if (next) *next = const_cast<VexaWChar*>(first.next);
    return VEXA_SUCCESS;
}

uint32_t string_getTokenCountW(const VexaWChar* source, const VexaWChar* delimiters,
                               uint32_t* count) {
    if (!source || !delimiters || !count) return VEXA_FAILURE;

    constexpr size_t kLongestTokenRoom = 256;
    uint32_t tokens = 0;
    const VexaWChar* rest = isEmpty(delimiters) ? nullptr : source;
    while (!isEmpty(rest)) {
        const Token token = firstToken(rest, delimiters);
        if (!token.fits(kLongestTokenRoom)) break;
        ++tokens;
        rest = token.next;
    }
    *count = tokens;
    return VEXA_SUCCESS;
}

uint32_t string_getTokenByIndexW(const VexaWChar* source, const VexaWChar* delimiters,
                                 int32_t index, VexaWChar* token, size_t size) {
    if (!source || isEmpty(delimiters) || index < 0 || !token) return VEXA_FAILURE;

    Token found = {nullptr, 0, source};
    for (int32_t i = 0; i <= index; ++i) {
        if (isEmpty(found.next)) return VEXA_FAILURE;
        found = firstToken(found.next, delimiters);
        // Those before the one that is asked for have to fit, too.
        if (!found.fits(size)) return VEXA_FAILURE;
    }
    copyAndFill(found.start, found.size, token, size);
    return VEXA_SUCCESS;
}
