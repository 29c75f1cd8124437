#include "bench/icu_peer.h"

#ifdef VEXAKIT_BENCH_ICU
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#endif

namespace vexa::bench {

#ifdef VEXAKIT_BENCH_ICU

namespace {

std::int32_t asLength(std::size_t room) {
    return static_cast<std::int32_t>(room);
}

UConverter* western() {
    static UConverter* const converter = [] {
        UErrorCode error = U_ZERO_ERROR;
        return ucnv_open("windows-1252", &error);
    }();
    return converter;
}

bool toUtf8(const VexaWChar* source, char* out, std::size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8(out, asLength(room), nullptr, source, -1, &error);
    return U_SUCCESS(error) != 0;
}

bool fromUtf8(const char* source, VexaWChar* out, std::size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(out, asLength(room), nullptr, source, -1, &error);
    return U_SUCCESS(error) != 0;
}

bool toPage(const VexaWChar* source, char* out, std::size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    ucnv_fromUChars(western(), out, asLength(room), source, -1, &error);
    return U_SUCCESS(error) != 0;
}

bool fromPage(const char* source, VexaWChar* out, std::size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    ucnv_toUChars(western(), out, asLength(room), source, -1, &error);
    return U_SUCCESS(error) != 0;
}

}  // namespace

Convert<VexaWChar, char> icuWideToUtf8() {
    return toUtf8;
}

Convert<char, VexaWChar> icuUtf8ToWide() {
    return fromUtf8;
}

Convert<VexaWChar, char> icuWideToPage() {
    return toPage;
}

Convert<char, VexaWChar> icuPageToWide() {
    return fromPage;
}

#else

Convert<VexaWChar, char> icuWideToUtf8() {
    return nullptr;
}

Convert<char, VexaWChar> icuUtf8ToWide() {
    return nullptr;
}

Convert<VexaWChar, char> icuWideToPage() {
    return nullptr;
}

Convert<char, VexaWChar> icuPageToWide() {
    return nullptr;
}

#endif

}  // namespace vexa::bench
