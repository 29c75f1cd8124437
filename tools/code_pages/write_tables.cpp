// Writes platform/posix/tables/single_byte.cpp or double_byte.cpp to the standard output, from the
// answers of the system's own conversion to every code unit by itself.

#include "platform/posix/code_page_tables.h"

#include <windows.h>

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

using vexa::platform::tables::kBlockUnits;

constexpr unsigned kSingleBytePages[] = {874, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258};
constexpr unsigned kDoubleBytePages[] = {932, 936, 949, 950};
constexpr unsigned kNoCode = 0x10000;

using Block = std::array<unsigned, kBlockUnits>;

struct Page {
    unsigned number;
    std::vector<unsigned> blocks;
};

struct Tables {
    std::vector<Page> pages;
    std::vector<Block> blocks;
};

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

bool addPage(unsigned number, unsigned highestCode, std::map<Block, unsigned>& seen,
             Tables& tables) {
    Page page{number, {}};
    for (unsigned first = 0; first < 0x10000; first += kBlockUnits) {
        Block block{};
        for (unsigned i = 0; i < kBlockUnits; ++i) {
            block[i] = codeOf(number, first + i);
            if (block[i] > highestCode) return false;
        }
        const auto [place, isNew] =
            seen.emplace(block, static_cast<unsigned>(tables.blocks.size()));
        if (isNew) tables.blocks.push_back(block);
        page.blocks.push_back(place->second);
    }
    tables.pages.push_back(page);
    return true;
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

void writeSource(const Tables& tables, const char* kind, const char* type) {
    std::printf(
        "// Made by tools/code_pages/generate.\n"
        "// clang-format off\n\n"
        "#include \"platform/posix/code_page_tables.h\"\n\n"
        "namespace vexa::platform::tables {\n\n"
        "const %sPage k%sPages[%zu] = {\n",
        kind, kind, tables.pages.size());
    for (const Page& page : tables.pages) {
        std::printf("{%u,\n", page.number);
        writeNumbers(page.blocks);
        std::puts("},");
    }
    std::printf("};\n\nconst %s k%sBlocks[][kBlockUnits] = {\n", type, kind);
    for (const Block& block : tables.blocks) {
        writeNumbers(block);
        std::puts(",");
    }
    std::puts("};\n\n}  // namespace vexa::platform::tables");
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view kind = argc == 2 ? argv[1] : "";
    if (kind != "single" && kind != "double") {
        std::fputs("Usage: write_tables single|double\n", stderr);
        return 2;
    }
    _setmode(_fileno(stdout), _O_BINARY);  // lines end the same on every system

    const bool single = kind == "single";
    const std::span<const unsigned> pages =
        single ? std::span<const unsigned>(kSingleBytePages) : kDoubleBytePages;
    Tables tables;
    std::map<Block, unsigned> seen;
    for (const unsigned page : pages) {
        if (!addPage(page, single ? 0xFF : 0xFFFF, seen, tables)) {
            std::fprintf(stderr, "Code page %u does not fit the tables.\n", page);
            return 1;
        }
    }
    if (single && tables.blocks.size() > 0x100) {
        std::fputs("The single-byte blocks are too many for their index.\n", stderr);
        return 1;
    }
    writeSource(tables, single ? "SingleByte" : "DoubleByte",
                single ? "std::uint8_t" : "std::uint16_t");
    return 0;
}
