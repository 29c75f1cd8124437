// Writes one of the sources of platform/posix/tables to the standard output, from the answers of the
// system's own conversion to every unit and every code by itself, and of the runtime to every letter
// and every unit.

#include "platform/posix/code_page_tables.h"

#include <windows.h>

#include <array>
#include <cstdio>
#include <cwctype>
#include <fcntl.h>
#include <io.h>
#include <map>
#include <mbctype.h>
#include <mbstring.h>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

using vexa::platform::tables::kBlockSize;

constexpr unsigned kSingleBytePages[] = {874, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258};
constexpr unsigned kDoubleBytePages[] = {932, 936, 949, 950};
constexpr unsigned kNoCode = 0x10000;

using Block = std::array<unsigned, kBlockSize>;

// Blocks that several tables share.
class Blocks {
public:
    unsigned numberOf(const Block& block) {
        const auto [place, isNew] = seen_.emplace(block, static_cast<unsigned>(all_.size()));
        if (isNew) all_.push_back(block);
        return place->second;
    }

    [[nodiscard]] const std::vector<Block>& all() const { return all_; }

private:
    std::map<Block, unsigned> seen_;
    std::vector<Block> all_;
};

// The blocks of a table of 65,536 entries.
template <typename EntryAt>
std::vector<unsigned> blocksOf(EntryAt entryAt, Blocks& blocks) {
    std::vector<unsigned> numbers;
    for (unsigned first = 0; first < 0x10000; first += kBlockSize) {
        Block block{};
        for (unsigned i = 0; i < kBlockSize; ++i) block[i] = entryAt(first + i);
        numbers.push_back(blocks.numberOf(block));
    }
    return numbers;
}

// The unit's one or two bytes as one number.
unsigned codeOf(unsigned page, unsigned unit) {
    const auto wide = static_cast<wchar_t>(unit);
    std::array<char, 4> bytes{};
    const int size = WideCharToMultiByte(page, 0, &wide, 1, bytes.data(), 4, nullptr, nullptr);
    const unsigned first = static_cast<unsigned char>(bytes[0]);
    const unsigned second = static_cast<unsigned char>(bytes[1]);
    if (size == 1) return first;
    // A lead byte of zero could not be told from a single byte.
    return size == 2 && first != 0 ? first << 8 | second : kNoCode;
}

bool isLead(unsigned page, unsigned byte) {
    return IsDBCSLeadByteEx(page, static_cast<BYTE>(byte)) != 0;
}

// The unit of the first character of the code's bytes. What is no code has that of its lead byte.
unsigned unitOf(unsigned page, unsigned code) {
    const unsigned first = code >> 8;
    const unsigned second = code & 0xFF;
    const bool isDouble = code > 0xFF && isLead(page, first) && second != 0;
    const std::array<char, 2> bytes = {static_cast<char>(isDouble ? first : second),
                                       static_cast<char>(second)};
    std::array<wchar_t, 2> wide{};
    MultiByteToWideChar(page, 0, bytes.data(), isDouble ? 2 : 1, wide.data(), 2);
    return code > 0xFF && !isDouble ? 0 : wide[0];
}

struct CaseRange {
    unsigned first;
    unsigned last;
    unsigned other;
};

// A letter whose other case the page lacks has none.
template <typename OtherCase>
std::vector<CaseRange> caseRanges(unsigned page, OtherCase otherCase) {
    std::vector<CaseRange> ranges;
    for (unsigned code = 0x100; code < 0x10000; ++code) {
        if (!isLead(page, code >> 8) || (code & 0xFF) == 0) continue;
        const unsigned other = otherCase(code);
        if (other == code || other <= 0xFF) continue;
        if (!ranges.empty() && ranges.back().last + 1 == code &&
            other - ranges.back().other == code - ranges.back().first) {
            ranges.back().last = code;
        } else {
            ranges.push_back({code, code, other});
        }
    }
    return ranges;
}

template <typename Numbers>
void writeNumbers(const Numbers& numbers) {
    constexpr std::size_t kLongestLine = 100;
    std::string line = "{";
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const std::string next = std::to_string(numbers[i]) + (i + 1 < numbers.size() ? "," : "}");
        if (line.size() + next.size() > kLongestLine) {
            std::puts(line.c_str());
            line.clear();
        }
        line += next;
    }
    std::fputs(line.c_str(), stdout);
}

void writeHead(const char* header) {
    std::printf(
        "// Made by tools/code_pages/generate.\n"
        "// clang-format off\n\n"
        "#include \"platform/posix/%s\"\n\n"
        "namespace vexa::platform::tables {\n\n",
        header);
}

void writeTail() {
    std::puts("}  // namespace vexa::platform::tables");
}

void writeBlocks(const char* name, const char* type, const Blocks& blocks) {
    std::printf("const %s %s[][kBlockSize] = {\n", type, name);
    for (const Block& block : blocks.all()) {
        writeNumbers(block);
        std::puts(",");
    }
    std::puts("};\n");
}

bool writeSingleBytePages() {
    Blocks blocks;
    std::printf("const SingleBytePage kSingleBytePages[%zu] = {\n", std::size(kSingleBytePages));
    for (const unsigned page : kSingleBytePages) {
        std::printf("{%u,\n", page);
        writeNumbers(blocksOf([&](unsigned unit) { return codeOf(page, unit); }, blocks));
        std::puts(",");
        std::array<unsigned, 0x100> units{};
        for (unsigned byte = 0; byte < units.size(); ++byte) units[byte] = unitOf(page, byte);
        writeNumbers(units);
        std::puts("},");
    }
    std::puts("};\n");
    writeBlocks("kSingleByteBlocks", "std::uint8_t", blocks);

    // The index of a block is a byte, and so is what it holds.
    if (blocks.all().size() > 0x100) return false;
    for (const Block& block : blocks.all()) {
        for (const unsigned code : block) {
            if (code > 0xFF) return false;
        }
    }
    return true;
}

void writeCases(unsigned page, const char* name, const std::vector<CaseRange>& ranges) {
    std::printf("constexpr CaseRange k%s%u[] = {\n", name, page);
    for (const auto& [first, last, other] : ranges) {
        std::printf("{%#x, %#x, %#x},\n", first, last, other);
    }
    std::puts("};\n");
}

bool writeDoubleBytePages() {
    std::puts("namespace {\n");
    for (const unsigned page : kDoubleBytePages) {
        if (_setmbcp(static_cast<int>(page)) != 0) return false;
        writeCases(page, "UpperCases", caseRanges(page, _mbctoupper));
        writeCases(page, "LowerCases", caseRanges(page, _mbctolower));
    }
    std::puts("}  // namespace\n");

    Blocks blocks;
    Blocks units;
    std::printf("const DoubleBytePage kDoubleBytePages[%zu] = {\n", std::size(kDoubleBytePages));
    for (const unsigned page : kDoubleBytePages) {
        std::printf("{%u,\n", page);
        writeNumbers(blocksOf([&](unsigned unit) { return codeOf(page, unit); }, blocks));
        std::puts(",");
        writeNumbers(blocksOf([&](unsigned code) { return unitOf(page, code); }, units));
        std::puts(",");
        std::array<unsigned, 0x100> leads{};
        for (unsigned byte = 0; byte < leads.size(); ++byte) leads[byte] = isLead(page, byte);
        writeNumbers(leads);
        std::printf(",\nkUpperCases%u, kLowerCases%u},\n", page, page);
    }
    std::puts("};\n");
    writeBlocks("kDoubleByteBlocks", "std::uint16_t", blocks);
    writeBlocks("kDoubleByteUnits", "std::uint16_t", units);

    for (const Block& block : blocks.all()) {
        for (const unsigned code : block) {
            if (code == kNoCode) return false;
        }
    }
    return true;
}

template <typename IsOfClass>
void writeClass(const char* name, IsOfClass isOfClass) {
    std::printf("namespace {\nconstexpr UnitRange k%sRanges[] = {\n", name);
    for (unsigned unit = 0x80; unit < 0x10000; ++unit) {
        if (!isOfClass(static_cast<wint_t>(unit))) continue;
        const unsigned first = unit;
        while (unit + 1 < 0x10000 && isOfClass(static_cast<wint_t>(unit + 1))) ++unit;
        std::printf("{%#x, %#x},\n", first, unit);
    }
    std::printf("};\n}  // namespace\n\nconst std::span<const UnitRange> k%ss = k%sRanges;\n\n",
                name, name);
}

void writeWideClasses() {
    writeClass("WideSpace", [](wint_t unit) { return std::iswspace(unit) != 0; });
    writeClass("WideControl", [](wint_t unit) { return std::iswcntrl(unit) != 0; });
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view kind = argc == 2 ? argv[1] : "";
    if (kind != "single_byte" && kind != "double_byte" && kind != "wide_classes") {
        std::fputs("Usage: write_tables single_byte|double_byte|wide_classes\n", stderr);
        return 2;
    }
    _setmode(_fileno(stdout), _O_BINARY);  // lines end the same on every system

    bool isComplete = true;
    if (kind == "wide_classes") {
        writeHead("wide_classes.h");
        writeWideClasses();
    } else {
        writeHead("code_page_tables.h");
        isComplete = kind == "single_byte" ? writeSingleBytePages() : writeDoubleBytePages();
    }
    writeTail();
    if (!isComplete) std::fputs("The code pages do not fit the tables.\n", stderr);
    return isComplete ? 0 : 1;
}
