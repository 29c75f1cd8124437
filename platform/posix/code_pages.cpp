#include "platform/posix/code_pages.h"

#include "platform/posix/code_page_tables.h"

#include <algorithm>
#include <span>

namespace vexa::platform {

namespace {

template <typename Page>
const Page* find(std::span<const Page> pages, unsigned number) {
    const auto page = std::find_if(pages.begin(), pages.end(),
                                   [=](const Page& one) { return one.number == number; });
    return page == pages.end() ? nullptr : &*page;
}

constexpr unsigned kHighestByte = 0xFF;

unsigned otherCase(std::span<const tables::CaseRange> ranges, unsigned code) {
    const auto range =
        std::lower_bound(ranges.begin(), ranges.end(), code,
                         [](const tables::CaseRange& one, unsigned c) { return one.last < c; });
    if (range == ranges.end() || code < range->first) return code;
    return range->other + (code - range->first);
}

}  // namespace

std::optional<CodePage> findCodePage(unsigned number) noexcept {
    if (number == kUtf8Page) return CodePage{};

    const CodePage page = {find<tables::SingleBytePage>(tables::kSingleBytePages, number),
                           find<tables::DoubleBytePage>(tables::kDoubleBytePages, number)};
    if (!page.singleByte && !page.doubleByte) return std::nullopt;
    return page;
}

unsigned numberOf(const CodePage& page) noexcept {
    if (page.singleByte) return page.singleByte->number;
    return page.doubleByte ? page.doubleByte->number : kUtf8Page;
}

bool isLeadByte(const CodePage& page, char byte) noexcept {
    return page.doubleByte && page.doubleByte->isLead[static_cast<unsigned char>(byte)];
}

VexaWChar unitOfCode(const CodePage& page, unsigned code) noexcept {
    const unsigned block = page.doubleByte->unitBlocks[code / tables::kBlockSize];
    return tables::kDoubleByteUnits[block][code % tables::kBlockSize];
}

unsigned upperCase(const CodePage& page, unsigned code) noexcept {
    if (code <= kHighestByte) return code >= 'a' && code <= 'z' ? code - 'a' + 'A' : code;
    return page.doubleByte ? otherCase(page.doubleByte->upperCases, code) : code;
}

unsigned lowerCase(const CodePage& page, unsigned code) noexcept {
    if (code <= kHighestByte) return code >= 'A' && code <= 'Z' ? code - 'A' + 'a' : code;
    return page.doubleByte ? otherCase(page.doubleByte->lowerCases, code) : code;
}

}  // namespace vexa::platform
