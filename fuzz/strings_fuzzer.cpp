// The string helpers on text in heap blocks of just its size: whoever reads or writes outside it ends
// here, and so does who breaks what a helper promises.
#include "fuzz/input.h"
#include "vexakit/strings.h"

#include <algorithm>

namespace vexa::fuzz {

namespace {

template <typename Character>
using Text = std::basic_string<Character>;

template <typename Character>
struct Edit {
    const char* name;
    Character* (*run)(Character* text);
};

constexpr Edit<char> kNarrowEdits[] = {
    {"toUpper", string_toUpperA},
    {"toLower", string_toLowerA},
    {"replaceCR", string_replaceCRA},
    {"stripLeadWhiteSpace", string_stripLeadWhiteSpaceA},
    {"stripTrailWhiteSpace", string_stripTrailWhiteSpaceA},
    {"stripWhiteSpace", string_stripWhiteSpaceA},
    {"stripCtlChar", string_stripCtlCharA},
    {"stripFilePath", string_stripFilePathA},
    {"stripFileName", string_stripFileNameA},
    {"stripFileExt", string_stripFileExtA},
};

constexpr Edit<VexaWChar> kWideEdits[] = {
    {"toUpper", string_toUpperW},
    {"toLower", string_toLowerW},
    {"replaceCR", string_replaceCRW},
    {"stripLeadWhiteSpace", string_stripLeadWhiteSpaceW},
    {"stripTrailWhiteSpace", string_stripTrailWhiteSpaceW},
    {"stripWhiteSpace", string_stripWhiteSpaceW},
    {"stripCtlChar", string_stripCtlCharW},
    {"stripFilePath", string_stripFilePathW},
    {"stripFileName", string_stripFileNameW},
    {"stripFileExt", string_stripFileExtW},
};

template <typename Character, std::size_t kCount>
void editAll(const Text<Character>& text, const Edit<Character> (&edits)[kCount]) {
    for (const Edit<Character>& edit : edits) {
        ExactRoom<Character> room(text);
        Character* const result = edit.run(room.data());
        require(result == room.data() || result == nullptr, edit.name);
        require(room.text().size() <= text.size(), edit.name);
    }
}

void stripNarrow(const std::string& text, char character, std::uint32_t count) {
    const auto strip = [&](auto run) {
        ExactRoom<char> room(text);
        run(room.data());
        require(room.text().size() <= text.size(), "stripping shortens");
    };
    strip([&](char* t) { string_stripCharA(t, character); });
    strip([&](char* t) { string_stripLeadingCharA(t, character, count); });
    strip([&](char* t) { string_stripTrailingCharA(t, character, count); });
    strip([&](char* t) { string_stripLeadingCtlCharA(t, count); });
    strip([&](char* t) { string_stripTrailingCtlCharA(t, count); });
    strip([&](char* t) { string_replaceCharA(t, character, 'x'); });
}

void stripWide(const WideString& text, VexaWChar character, std::uint32_t count) {
    const auto strip = [&](auto run) {
        ExactRoom<VexaWChar> room(text);
        run(room.data());
        require(room.text().size() <= text.size(), "stripping shortens");
    };
    strip([&](VexaWChar* t) { string_stripCharW(t, character); });
    strip([&](VexaWChar* t) { string_stripLeadingCharW(t, character, count); });
    strip([&](VexaWChar* t) { string_stripTrailingCharW(t, character, count); });
    strip([&](VexaWChar* t) { string_stripLeadingCtlCharW(t, count); });
    strip([&](VexaWChar* t) { string_stripTrailingCtlCharW(t, count); });
    strip([&](VexaWChar* t) { string_replaceCharW(t, character, 'x'); });
    strip([&](VexaWChar* t) { string_removeTerminatingSlashW(t); });
}

void searchNarrow(const std::string& text, const std::string& part, unsigned character) {
    ExactRoom<char> room(text);
    ExactRoom<char> partRoom(part);
    const char* const first = room.data();
    const char* const end = first + text.size();
    const auto isInside = [&](const char* place) {
        return place == nullptr || (place >= first && place <= end);
    };
    require(string_safeLengthA(first) == text.size(), "bytes");
    require(string_numCharsA(first) <= text.size(), "characters");
    require(isInside(string_strchrA(first, character)), "strchr");
    require(isInside(string_strrchrA(first, character)), "strrchr");
    require(isInside(string_strstrA(first, partRoom.data())), "strstr");
    require(isInside(string_getLastCharA(first)), "getLastChar");
    require(string_getCharCountA(first, character) <= text.size(), "getCharCount");

    // Forward by steps, and back by the same steps.
    const char* at = first;
    while (at < end) {
        const char* const next = string_incrementA(at);
        require(next > at && next <= end, "a step leads on and not past the end");
        require(string_decrementA(first, next) == at, "a step back undoes a step");
        at = next;
    }
}

void searchWide(const WideString& text, const WideString& part, VexaWChar character) {
    ExactRoom<VexaWChar> room(text);
    ExactRoom<VexaWChar> partRoom(part);
    const VexaWChar* const first = room.data();
    const auto placeOf = [&](const VexaWChar* place) {
        return place ? static_cast<std::size_t>(place - first) : WideString::npos;
    };
    require(string_safeLengthW(first) == text.size(), "units");
    if (character != 0) {
        require(placeOf(string_strchrW(first, character)) == text.find(character), "strchr");
        require(placeOf(string_strrchrW(first, character)) == text.rfind(character), "strrchr");
    }
    if (!text.empty() && !part.empty()) {
        require(placeOf(string_strstrW(first, partRoom.data())) == text.find(part), "strstr");
    }
    std::int32_t value = -1;
    const VexaWChar* const behind = string_readLongW(first, &value);
    require(value >= 0 && (!behind || placeOf(behind) <= text.size()), "readLong");
}

void takeTokens(const std::string& text, const std::string& delimiters) {
    ExactRoom<char> room(text);
    ExactRoom<char> set(delimiters);
    std::uint32_t expected = 0;
    require(string_getTokenCountA(room.data(), set.data(), &expected) == VEXA_SUCCESS, "count");
    std::uint32_t tokens = 0;
    for (char* rest = room.data(); rest; ++tokens) {
        ExactRoom<char> token(text.size() + 1);
        char* next = nullptr;
        if (string_getTokenA(rest, set.data(), token.data(), &next) != VEXA_SUCCESS) break;
        rest = next;
    }
    require(tokens == expected, "the count is that of the tokens");
}

void takeTokens(const WideString& text, const WideString& delimiters, std::size_t size) {
    ExactRoom<VexaWChar> room(text);
    ExactRoom<VexaWChar> set(delimiters);
    std::uint32_t expected = 0;
    require(string_getTokenCountW(room.data(), set.data(), &expected) == VEXA_SUCCESS, "count");
    std::uint32_t tokens = 0;
    for (VexaWChar* rest = room.data(); rest; ++tokens) {
        ExactRoom<VexaWChar> token(text.size() + 1);
        VexaWChar* next = nullptr;
        if (string_getTokenW(rest, set.data(), token.size(), token.data(), &next) != VEXA_SUCCESS) {
            break;
        }
        rest = next;
    }
    require(tokens == expected, "the count is that of the tokens");

    ExactRoom<VexaWChar> token(size);
    const auto index = static_cast<std::int32_t>(expected) - 1;
    string_getTokenByIndexW(room.data(), set.data(), index, token.data(), size);
}

template <typename Character>
void copyInto(const Text<Character>& text, std::size_t size,
              std::uint32_t (*copy)(const Character*, Character*, std::size_t)) {
    ExactRoom<Character> source(text);
    ExactRoom<Character> room(size);
    const std::uint32_t status = copy(source.data(), room.data(), size);
    require((status == VEXA_SUCCESS) == (size > 0), "any room will do");
    if (size > 0) require(room.text() == text.substr(0, size - 1), "as much as fits");
}

void printFraction(double value) {
    constexpr std::size_t kRoom = 22;
    ExactRoom<char> narrow(kRoom);
    ExactRoom<VexaWChar> wide(kRoom);
    string_convertDoubleToFracA(value, narrow.data());
    string_convertDoubleToFracW(value, wide.data());
    const std::string text = narrow.text();
    require(wide.text() == WideString(text.begin(), text.end()), "both families print alike");
    string_convertFloatToFracA(static_cast<float>(value), narrow.data());
    string_convertFloatToFracW(static_cast<float>(value), wide.data());
}

}  // namespace

}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    constexpr std::size_t kLongest = 60;
    Input input(data, size);
    const auto count = input.ConsumeIntegralInRange<std::uint32_t>(0, 4);
    const auto room = input.ConsumeIntegralInRange<std::size_t>(0, kLongest);
    const auto character = input.ConsumeIntegral<std::uint16_t>();
    const double value = input.ConsumeFloatingPoint<double>();
    const std::string narrow = takeBytes(input, kLongest);
    const std::string narrowPart = takeBytes(input, 4);
    const WideString wide = takeUnits(input, kLongest);
    const WideString widePart = takeUnits(input, 4);

    editAll(narrow, kNarrowEdits);
    editAll(wide, kWideEdits);
    stripNarrow(narrow, static_cast<char>(character), count);
    stripWide(wide, static_cast<VexaWChar>(character), count);
    searchNarrow(narrow, narrowPart, character);
    searchWide(wide, widePart, static_cast<VexaWChar>(character));
    takeTokens(narrow, narrowPart);
    takeTokens(wide, widePart, room);
    copyInto<char>(narrow, room, string_safeCopyA);
    copyInto<VexaWChar>(wide, room, string_safeCopyW);
    printFraction(value);
    return 0;
}
