#pragma once

#include "wkt/geometry_builder.h"
#include "wkt/scanner.h"

#include <array>
#include <string_view>

namespace vexa {

/// A message with its terminator.
using ErrorText = std::array<char, 128>;

/// What one parse works with.
struct ParseRun {
    ParseRun(const ScanBuffer& buffer, ErrorText& error) : scanner(buffer), errorText(error) {}

    /// Notes whether a step of the builder found memory.
    bool build(bool built) {
        outOfMemory = !built;
        return built;
    }

    /// Words the error: the message, and the token at which it was noticed.
    void report(const char* message);

    Scanner scanner;
    GeometryBuilder geometry;
    Point3d triple{};
    bool outOfMemory = false;
    ErrorText& errorText;
};

}  // namespace vexa
