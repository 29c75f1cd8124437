#pragma once

#include "geometry/block.h"
#include "wkt/parse_run.h"

#include <cstdint>

namespace vexa {

/// Statuses that are negative to callers with signed results.
constexpr std::uint32_t kNoText = static_cast<std::uint32_t>(VEXA_NO_TEXT);
constexpr std::uint32_t kArrayTooSmall = static_cast<std::uint32_t>(VEXA_ARRAY_TOO_SMALL);

/// The parser of the process: one parse at a time.
class Parser {
public:
    /// Makes a geometry of a text, or tells why not; the error text goes with it. No buffer is no
    /// text.
    std::uint32_t parse(const ScanBuffer* buffer, Block& result);

    /// Forgets the error text, as each parse does.
    void clearError() { errorText_.front() = '\0'; }

    const char* errorText() const { return errorText_.data(); }

private:
    ErrorText errorText_{};
};

}  // namespace vexa
