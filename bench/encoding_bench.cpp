// Wide text to UTF-8 and to a single-byte page and back, beside copying as many wide characters, and
// beside ICU. Sizes count UTF-16 units. The page is the western one where the environment's locale
// is "C".
#include "bench/icu_peer.h"
#include "bench/works.h"
#include "vexakit/conversion.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vexa::bench {

namespace {

constexpr std::size_t kBytesOfUnit = 3;

/// What is to be reached; 0 where nothing is.
struct Reach {
    double besideCopy;
    double besideIcu;
};

struct Script {
    const char* name;
    std::u16string_view sample;
    Reach inUtf8;
    Reach inPage;
};

constexpr Script kScripts[] = {
    {"ASCII",
     u"LINESTRING Z (12.5 7 0.25, 13 8.125 0.25), part of the outline of block 17; ",
     {2, 0},
     {0, 0.1}},
    {"western",
     u"Am Hügel läuft die Straße südwärts; là-bas, près de l'église, il y a un café. ",
     {0, 0.4},
     {0, 0.5}},
    {"mixed scripts",
     u"Улица 12, 東京都千代田区, Größe 7 µm, οδός 3, 서울 종로, \U0001F600 fine, שלום, ครับ. ",
     {0, 0.4},
     {0, 0}},
};

WideText repeated(std::u16string_view sample, std::size_t units) {
    WideText text;
    while (text.size() < units) text.append(sample.begin(), sample.end());
    text.resize(units);
    // A pair must not be cut.
    if ((text.back() & 0xFC00) == 0xD800) text.back() = '.';
    return text;
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

/// Room that fits every text of so many units.
template <class To>
std::shared_ptr<std::vector<To>> roomFor(std::size_t units) {
    return std::make_shared<std::vector<To>>(units * kBytesOfUnit + 1);
}

/// @param source    in one encoding
/// @param expected  the same text in the other
template <class From, class To>
void enter(Contest& contest, const std::basic_string<From>& source,
           const std::basic_string<To>& expected, Convert<From, To> ours, Convert<From, To> icu,
           const Reach& reach) {
    const auto text = std::make_shared<const std::basic_string<From>>(source);
    const auto room = roomFor<To>(contest.size());
    const auto isRight = [=] { return room->data() == expected; };
    const auto conversion = [=](Convert<From, To> run) {
        return [=] {
            if (!run(text->c_str(), room->data(), room->size())) room->front() = 0;
            benchmark::DoNotOptimize(room->data());
            benchmark::ClobberMemory();
        };
    };
    contest.ours(conversion(ours), isRight);
    if (icu) contest.peer("ICU", reach.besideIcu, conversion(icu), isRight);

    const auto wide = std::make_shared<const WideText>(contest.size(), VexaWChar{'x'});
    const auto copy = std::make_shared<WideText>(contest.size(), VexaWChar{0});
    const auto copyLoop = [=] {
        std::memcpy(copy->data(), wide->data(), wide->size() * sizeof(VexaWChar));
        benchmark::DoNotOptimize(copy->data());
        benchmark::ClobberMemory();
    };
    contest.peer("memcpy", reach.besideCopy, copyLoop, [=] { return *copy == *wide; });
}

template <class Enter>
void add(Works& works, const char* direction, const Script& script, Enter enterWork) {
    for (const std::size_t units : {16U, 1000U, 1000000U}) {
        works.add({"encodings", std::string{direction} + ", " + script.name, units},
                  [=](Contest& contest) { enterWork(contest, repeated(script.sample, units)); });
    }
}

void addUtf8(Works& works, const Script& script) {
    const Reach reach = script.inUtf8;
    add(works, "wide to UTF-8", script, [=](Contest& contest, const WideText& wide) {
        enter<VexaWChar, char>(contest, wide, utf8Of(wide), wideToUtf8, icuWideToUtf8(), reach);
    });
    add(works, "UTF-8 to wide", script, [=](Contest& contest, const WideText& wide) {
        enter<char, VexaWChar>(contest, utf8Of(wide), wide, utf8ToWide, icuUtf8ToWide(), reach);
    });
}

void addPage(Works& works, const Script& script) {
    const Reach reach = script.inPage;
    add(works, "wide to page", script, [=](Contest& contest, const WideText& wide) {
        enter<VexaWChar, char>(contest, wide, latin1Of(wide), wideToPage, icuWideToPage(), reach);
    });
    add(works, "page to wide", script, [=](Contest& contest, const WideText& wide) {
        enter<char, VexaWChar>(contest, latin1Of(wide), wide, pageToWide, icuPageToWide(), reach);
    });
}

}  // namespace

void addEncodings(Works& works) {
    for (const Script& script : kScripts) addUtf8(works, script);
    for (const Script& script : kScripts) {
        if (script.inPage.besideIcu > 0) addPage(works, script);
    }
}

}  // namespace vexa::bench
