#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace vexa {

/// The text under scan: a block whose last two bytes are zero, so that no rule of the scanner has to
/// look for an end.
struct ScanBuffer {
    char* block;
    std::size_t size;
    /// Whether the block goes with the record.
    bool owned;
};

struct ReleaseScanBuffer {
    void operator()(ScanBuffer* buffer) const noexcept;
};
using ScanBufferHandle = std::unique_ptr<ScanBuffer, ReleaseScanBuffer>;

/// Takes a block as it stands, which stays the caller's. Null for a block of less than two bytes or
/// without the two zero bytes at its end. Ends the process where there is no memory.
ScanBufferHandle scanBuffer(char* block, std::size_t size);

/// Takes a private copy of the text. Ends the process where there is no memory.
ScanBufferHandle scanBytes(std::string_view text);

}  // namespace vexa
