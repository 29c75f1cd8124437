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

// ---- What the tables say, entry by entry --------------------------------------------------------

unsigned codeOf(const CodePage& page, VexaWChar unit) {
    using namespace platform::tables;
    const unsigned block = unit / kBlockSize;
    const unsigned place = unit % kBlockSize;
    return page.singleByte ? kSingleByteBlocks[page.singleByte->blocks[block]][place]
                           : kDoubleByteBlocks[page.doubleByte->blocks[block]][place];
}

VexaWChar unitOf(const CodePage& page, unsigned code) {
    using namespace platform::tables;
    if (page.singleByte) return page.singleByte->units[code];
    return kDoubleByteUnits[page.doubleByte->unitBlocks[code / kBlockSize]][code % kBlockSize];
}

std::string bytesByTable(const CodePage& page, const WideString& text) {
    std::string bytes;
    for (const VexaWChar unit : text) {
        const unsigned code = codeOf(page, unit);
        if (code > 0xFF) bytes += static_cast<char>(code >> 8);
        bytes += static_cast<char>(code & 0xFF);
    }
    return bytes;
}

WideString unitsByTable(const CodePage& page, const std::string& text) {
    WideString units;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned code = static_cast<unsigned char>(text[i]);
        const bool isPair = page.doubleByte && page.doubleByte->isLead[code] && i + 1 < text.size();
        if (isPair) code = code << 8 | static_cast<unsigned char>(text[++i]);
        units += unitOf(page, code);
    }
    return units;
}

// ---- UTF-8, character by character --------------------------------------------------------------

bool isSurrogate(char32_t character) {
    return character >= 0xD800 && character < 0xE000;
}

std::string utf8ByCharacter(const WideString& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t character = text[i];
        if (isSurrogate(character)) {
            const char32_t next = i + 1 < text.size() ? text[i + 1] : 0;
            const bool isPair = character < 0xDC00 && next >= 0xDC00 && next < 0xE000;
            character = isPair ? 0x10000 + ((character - 0xD800) << 10) + (next - 0xDC00) : 0xFFFD;
            if (isPair) ++i;
        }
        const int trails = character < 0x80      ? 0
                           : character < 0x800   ? 1
                           : character < 0x10000 ? 2
                                                 : 3;
        static constexpr unsigned char kLeads[] = {0, 0xC0, 0xE0, 0xF0};
        bytes += static_cast<char>(kLeads[trails] | character >> 6 * trails);
        for (int left = trails; left > 0; --left) {
            bytes += static_cast<char>(0x80 | (character >> 6 * (left - 1) & 0x3F));
        }
    }
    return bytes;
}

// ---- Checks -------------------------------------------------------------------------------------

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
    const bool hasTable = page.singleByte || page.doubleByte;
    const std::string expected = hasTable ? bytesByTable(page, text) : utf8ByCharacter(text);
    require(bytes == expected, "each character is converted by itself");
}

void checkBytes(const CodePage& page, const std::string& text, Input& input) {
    const WideString units = converted<char, VexaWChar>(page, text, &platform::codePageToWide);
    checkRooms<char, VexaWChar>(page, text, units, &platform::codePageToWide, input);
    if (page.singleByte || page.doubleByte) {
        require(units == unitsByTable(page, text), "each character is read by itself");
    }
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
