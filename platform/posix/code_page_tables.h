#pragma once

#include <cstdint>

namespace vexa::platform::tables {

/// The tables are asked in two steps: which block holds the unit, then what the block says of it.
/// Equal blocks are kept once, whichever pages they belong to.
constexpr unsigned kBlockBits = 6;
constexpr unsigned kBlockUnits = 1U << kBlockBits;
constexpr unsigned kBlocksOfPage = 0x10000U / kBlockUnits;

/// A page of one byte a character.
struct SingleBytePage {
    unsigned number;
    std::uint8_t blocks[kBlocksOfPage];
};

/// A page of one or two bytes a character. A code above 0xFF is a lead byte and its trail.
struct DoubleBytePage {
    unsigned number;
    std::uint16_t blocks[kBlocksOfPage];
};

extern const SingleBytePage kSingleBytePages[10];
extern const DoubleBytePage kDoubleBytePages[4];

extern const std::uint8_t kSingleByteBlocks[][kBlockUnits];
extern const std::uint16_t kDoubleByteBlocks[][kBlockUnits];

}  // namespace vexa::platform::tables
