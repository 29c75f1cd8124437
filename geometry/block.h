#pragma once

#include "vexakit/types.h"

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace vexa {

struct FreeBlock {
    void operator()(void* block) const noexcept { std::free(block); }
};

/// A geometry buffer on its way to the caller.
using Block = std::unique_ptr<GeometryBuffer, FreeBlock>;

/// A new block, or null. More bytes than a `size` word can tell are a failed allocation.
inline Block makeBlock(std::uint64_t bytes) {
    if (bytes > UINT32_MAX) return nullptr;
    return Block{static_cast<GeometryBuffer*>(std::malloc(bytes))};
}

/// Grows the caller's block, which may move; false leaves block and handle as they were.
inline bool growBlock(GeometryBuffer*& block, std::uint64_t bytes) {
    if (bytes > UINT32_MAX) return false;

    void* const grown = std::realloc(block, bytes);
    if (!grown) return false;

    block = static_cast<GeometryBuffer*>(grown);
    return true;
}

}  // namespace vexa
