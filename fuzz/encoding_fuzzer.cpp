// Any bytes and any units through every code page, in rooms of any size, beside the same characters one
// by one.
#include "fuzz/input.h"
#include "platform/posix/code_page_tables.h"
#include "platform/posix/code_pages.h"
#include "vexakit/conversion.h"
#include "vexakit/strings.h"

namespace vexa::fuzz {

namespace {

using platform::CodePage;

constexpr unsigned kPages[] = {874,  932,  936,  949,  950,  1250, 1251, 1252,
                               1253, 1254, 1255, 1256, 1257, 1258, 65001};

template <typename From, typename To>
using Convert = int (*)(const CodePage&, const From*, int, To*, int) noexcept;

// The whole conversion, in a block of just its size.
template <typename From, typename To>
std::basic_string<To> converted(const CodePage& page, const std::basic_string<From>& source,
                                Convert<From, To> convert) {
    const int length = static_cast<int>(source.size());
    const int size = convert(page, source.data(), length, nullptr, 0);
    require(size >= 0 && (size > 0) == (length > 0), "only nothing becomes nothing");
    ExactRoom<To> room(static_cast<std::size_t>(size));
    require(length == 0 || convert(page, source.data(), length, room.data(), size) == size,
            "what the query says is what it takes");
    return {room.data(), static_cast<std::size_t>(size)};
}

template <typename From, typename To>
void checkRooms(const CodePage& page, const std::basic_string<From>& source,
                const std::basic_string<To>& whole, Convert<From, To> convert, Input& input) {
    const auto size = input.ConsumeIntegralInRange<std::size_t>(0, whole.size() + 2);
    if (size == 0 || source.empty()) return;
    ExactRoom<To> room(size);
    const int result = convert(page, source.data(), static_cast<int>(source.size()), room.data(),
                               static_cast<int>(size));
    require(result == (size < whole.size() ? 0 : static_cast<int>(whole.size())),
            "a room that is too small fails, any other will do");
}

void checkUnits(const CodePage& page, const WideString& text, Input& input) {
    const std::string bytes = converted<VexaWChar, char>(page, text, &platform::wideToCodePage);
    checkRooms<VexaWChar, char>(page, text, bytes, &platform::wideToCodePage, input);
    if (!page.singleByte && !page.doubleByte) return;

    std::string oneByOne;
    for (const VexaWChar unit : text) {
        oneByOne += converted<VexaWChar, char>(page, {unit}, &platform::wideToCodePage);
    }
    require(bytes == oneByOne, "each unit is converted by itself");
}

void checkBytes(const CodePage& page, const std::string& text, Input& input) {
    const WideString units = converted<char, VexaWChar>(page, text, &platform::codePageToWide);
    checkRooms<char, VexaWChar>(page, text, units, &platform::codePageToWide, input);
    const std::string back = converted<VexaWChar, char>(page, units, &platform::wideToCodePage);
    const WideString again = converted<char, VexaWChar>(page, back, &platform::codePageToWide);
    require(again == units, "what was read is read again from what was written of it");
}

template <typename Character>
void checkStatus(std::uint32_t status, Character* result) {
    require((status == VEXA_SUCCESS) == (result != nullptr), "a string comes with success");
    string_freeA(result);
}

void checkStrings(const std::string& bytes, const WideString& units) {
    ExactRoom<char> narrow(bytes);
    ExactRoom<VexaWChar> wide(units);
    VexaWChar* newWide = nullptr;
    checkStatus(stringCnv_mbsToWcsAlloc(narrow.data(), &newWide), newWide);
    newWide = nullptr;
    checkStatus(stringCnv_utf8ToWcsAlloc(narrow.data(), &newWide), newWide);
    char* newNarrow = nullptr;
    checkStatus(stringCnv_wcsToMbsAlloc(wide.data(), &newNarrow), newNarrow);
    newNarrow = nullptr;
    checkStatus(stringCnv_wcsToUTF8Alloc(wide.data(), &newNarrow), newNarrow);
}

void checkBuffers(const std::string& bytes, const WideString& units, std::size_t size) {
    ExactRoom<char> narrow(bytes);
    ExactRoom<VexaWChar> wide(units);
    ExactRoom<char> narrowRoom(size);
    ExactRoom<VexaWChar> wideRoom(size);
    stringCnv_mbsToWcs(narrow.data(), wideRoom.data(), static_cast<int>(size));
    stringCnv_wcsToMbs(wide.data(), narrowRoom.data(), size);
    if (stringCnv_utf8ToWcs(narrow.data(), wideRoom.data(), size) == VEXA_SUCCESS) {
        require(wideRoom.text().size() < size, "the text is terminated");
    }
    if (stringCnv_wcsToUTF8(wide.data(), narrowRoom.data(), size) == VEXA_SUCCESS) {
        require(narrowRoom.text().size() < size, "the text is terminated");
    }
}

}  // namespace

}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    constexpr std::size_t kLongest = 120;
    Input input(data, size);
    const unsigned number = kPages[input.ConsumeIntegral<unsigned char>() % std::size(kPages)];
    const auto page = vexa::platform::findCodePage(number).value();
    const std::size_t room = input.ConsumeIntegralInRange<std::size_t>(0, 2 * kLongest);
    const WideString units = takeUnits(input, kLongest);
    const std::string bytes = takeBytes(input, kLongest);
    checkUnits(page, units, input);
    checkBytes(page, bytes, input);
    checkStrings(bytes, units);
    checkBuffers(bytes, units, room);
    return 0;
}
