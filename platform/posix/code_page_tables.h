#pragma once

#include <cstdint>
#include <span>

namespace vexa::platform::tables {

/// The tables of 65,536 entries are asked in two steps: which block holds the entry, then what the
/// block says of it. Equal blocks are kept once, whichever pages they belong to.
constexpr unsigned kBlockBits = 6;
constexpr unsigned kBlockSize = 1U << kBlockBits;
constexpr unsigned kBlockCount = 0x10000U / kBlockSize;

/// A page of one byte a character.
struct SingleBytePage {
    unsigned number;
    /// Block of each unit in `kSingleByteBlocks`, which has its byte.
    std::uint8_t blocks[kBlockCount];
    /// Unit of each byte.
    std::uint16_t units[0x100];
};

/// The other case of the letters `first` to `last` is `other` and the codes behind it.
struct CaseRange {
    std::uint16_t first;
    std::uint16_t last;
    std::uint16_t other;
};

/// A page of one or two bytes a character. A code above 0xFF is a lead byte and its trail.
struct DoubleBytePage {
    unsigned number;
    /// Block of each unit in `kDoubleByteBlocks`, which has its code.
    std::uint16_t blocks[kBlockCount];
    /// Block of each code in `kDoubleByteUnits`, which has its unit: the page's replacement for a
    /// code that is no character, such as a lead byte by itself.
    std::uint16_t unitBlocks[kBlockCount];
    bool isLead[0x100];
    /// Double-byte letters that have another case, in rising order.
    std::span<const CaseRange> upperCases;
    std::span<const CaseRange> lowerCases;
};

extern const SingleBytePage kSingleBytePages[10];
extern const DoubleBytePage kDoubleBytePages[4];

extern const std::uint8_t kSingleByteBlocks[][kBlockSize];
extern const std::uint16_t kDoubleByteBlocks[][kBlockSize];
extern const std::uint16_t kDoubleByteUnits[][kBlockSize];

}  // namespace vexa::platform::tables
