#pragma once

#include "wkt/scan_buffer.h"

#include <string_view>

namespace vexa {

/// Splits a text into the tokens of the grammar. Longest match; characters that belong to no token
/// go to standard output as they are met, and are skipped.
class Scanner {
public:
    /// The buffer outlives the scan.
    explicit Scanner(const ScanBuffer& buffer);

    /// The next token's code, 0 at the end. Writes the value of a number.
    int next(double& value);

    /// The token last given, as it was written; empty at the end.
    std::string_view tokenText() const { return token_; }

private:
    unsigned char* plainNumber(unsigned char* first, double& value) const;
    int found(int code, unsigned char* first, unsigned char* last);

    unsigned char* cursor_;
    const char* end_;
    std::string_view token_;
    bool pointIsDecimal_;
};

}  // namespace vexa
