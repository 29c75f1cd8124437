// Wide text to UTF-8 and to a single-byte page and back, beside copying as many wide characters, and
// beside ICU where the system has it.
#include "vexakit/conversion.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

#ifdef VEXAKIT_BENCH_ICU
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#endif

namespace vexa::bench {

namespace {

using WideText = std::basic_string<VexaWChar>;

constexpr std::size_t kBytesOfUnit = 3;

WideText repeated(std::u16string_view sample, std::size_t units) {
    WideText text;
    while (text.size() < units) text.append(sample.begin(), sample.end());
    text.resize(units);
    // A pair must not be cut.
    if ((text.back() & 0xFC00) == 0xD800) text.back() = '.';
    return text;
}

struct Script {
    const char* name;
    std::u16string_view sample;
};

constexpr Script kAscii = {
    "ascii", u"LINESTRING Z (12.5 7 0.25, 13 8.125 0.25), part of the outline of block 17; "};
constexpr Script kWestern = {
    "western", u"Am Hügel läuft die Straße südwärts; là-bas, près de l'église, il y a un café. "};
constexpr Script kMixed = {
    "mixed",
    u"Улица 12, 東京都千代田区, Größe 7 µm, οδός 3, 서울 종로, \U0001F600 fine, שלום, ครับ. "};

// A conversion into room that fits every text.
template <typename From, typename To>
using Convert = bool (*)(const From* source, To* out, std::size_t room);

template <typename From, typename To>
void convert(benchmark::State& state, const std::basic_string<From>& source, std::size_t units,
             Convert<From, To> run) {
    std::vector<To> room(units * kBytesOfUnit + 1);
    for (auto _ : state) {
        if (!run(source.c_str(), room.data(), room.size())) state.SkipWithError("not converted");
        benchmark::DoNotOptimize(room.data());
        benchmark::ClobberMemory();
    }
    const auto bytes = static_cast<std::int64_t>(units * sizeof(VexaWChar));
    state.SetBytesProcessed(state.iterations() * bytes);
}

bool wideToUtf8(const VexaWChar* source, char* out, std::size_t room) {
    return stringCnv_wcsToUTF8(source, out, room) == VEXA_SUCCESS;
}

bool utf8ToWide(const char* source, VexaWChar* out, std::size_t room) {
    return stringCnv_utf8ToWcs(source, out, room) == VEXA_SUCCESS;
}

bool wideToPage(const VexaWChar* source, char* out, std::size_t room) {
    return stringCnv_wcsToMbs(source, out, room) == VEXA_SUCCESS;
}

bool pageToWide(const char* source, VexaWChar* out, std::size_t room) {
    return stringCnv_mbsToTcs(source, out, room) == VEXA_SUCCESS;
}

template <typename From, typename To>
std::basic_string<To> converted(const std::basic_string<From>& source, Convert<From, To> run) {
    std::vector<To> room(source.size() * kBytesOfUnit + 1);
    return run(source.c_str(), room.data(), room.size()) ? room.data() : std::basic_string<To>{};
}

void copyLoop(benchmark::State& state, const WideText& source) {
    WideText room(source.size(), 0);
    for (auto _ : state) {
        std::memcpy(room.data(), source.data(), source.size() * sizeof(VexaWChar));
        benchmark::DoNotOptimize(room.data());
        benchmark::ClobberMemory();
    }
    const auto bytes = static_cast<std::int64_t>(source.size() * sizeof(VexaWChar));
    state.SetBytesProcessed(state.iterations() * bytes);
}

#ifdef VEXAKIT_BENCH_ICU

bool icuToUtf8(const VexaWChar* source, char* out, std::size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8(out, static_cast<std::int32_t>(room), nullptr, source, -1, &error);
    return U_SUCCESS(error);
}

bool icuFromUtf8(const char* source, VexaWChar* out, std::size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(out, static_cast<std::int32_t>(room), nullptr, source, -1, &error);
    return U_SUCCESS(error);
}

UConverter* western() {
    static UConverter* const converter = [] {
        UErrorCode error = U_ZERO_ERROR;
        return ucnv_open("windows-1252", &error);
    }();
    return converter;
}

bool icuToPage(const VexaWChar* source, char* out, std::size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    ucnv_fromUChars(western(), out, static_cast<std::int32_t>(room), source, -1, &error);
    return U_SUCCESS(error);
}

bool icuFromPage(const char* source, VexaWChar* out, std::size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    ucnv_toUChars(western(), out, static_cast<std::int32_t>(room), source, -1, &error);
    return U_SUCCESS(error);
}

#endif

template <typename From, typename To>
void enter(const std::string& work, const std::basic_string<From>& source, std::size_t units,
           Convert<From, To> ours, Convert<From, To> theirs) {
    const auto add = [&](const char* contender, Convert<From, To> run) {
        benchmark::RegisterBenchmark(
            (contender + (":" + work)).c_str(),
            [=](benchmark::State& state) { convert(state, source, units, run); });
    };
    add("vexakit", ours);
    if (!theirs) return;

    // Who gives another answer is not to be timed.
    if (converted(source, ours) == converted(source, theirs)) add("ICU", theirs);
}

void enterScript(const Script& script, std::size_t units) {
    const WideText wide = repeated(script.sample, units);
    const std::string tail = std::string("_") + script.name + "_" + std::to_string(units);
    const auto enterLoop = [&](const std::string& work) {
        benchmark::RegisterBenchmark(("copy loop:" + work + tail).c_str(),
                                     [=](benchmark::State& state) { copyLoop(state, wide); });
    };
#ifdef VEXAKIT_BENCH_ICU
    const auto icuUp = &icuFromUtf8;
    const auto icuDown = &icuToUtf8;
    const auto icuPageUp = &icuFromPage;
    const auto icuPageDown = &icuToPage;
#else
    const Convert<char, VexaWChar> icuUp = nullptr;
    const Convert<VexaWChar, char> icuDown = nullptr;
    const Convert<char, VexaWChar> icuPageUp = nullptr;
    const Convert<VexaWChar, char> icuPageDown = nullptr;
#endif
    enterLoop("wide_to_utf8");
    enter<VexaWChar, char>("wide_to_utf8" + tail, wide, units, &wideToUtf8, icuDown);
    enterLoop("utf8_to_wide");
    enter<char, VexaWChar>("utf8_to_wide" + tail, converted(wide, &wideToUtf8), units, &utf8ToWide,
                           icuUp);
    if (script.name == kMixed.name) return;
    enterLoop("wide_to_page");
    enter<VexaWChar, char>("wide_to_page" + tail, wide, units, &wideToPage, icuPageDown);
    enterLoop("page_to_wide");
    enter<char, VexaWChar>("page_to_wide" + tail, converted(wide, &wideToPage), units, &pageToWide,
                           icuPageUp);
}

const bool kEntered = [] {
    for (const Script& script : {kAscii, kWestern, kMixed}) {
        for (const std::size_t units : {16U, 1000U, 1000000U}) enterScript(script, units);
    }
    return true;
}();

}  // namespace

}  // namespace vexa::bench
