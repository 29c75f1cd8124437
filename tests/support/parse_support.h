#pragma once

#include "geometry/block.h"
#include "tests/support/slow_build.h"
#include "vexakit/geometry.h"
#include "vexakit/wkt.h"
#include "wkt/generated/grammar.h"
#include "wkt/parser.h"
#include "wkt/scanner.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

// ---- Tokens ------------------------------------------------------------------------------------

/// What the value slot holds where a token leaves it alone.
constexpr double kNoValue = -77.25;

struct Token {
    int code;
    std::string text;
    double value = kNoValue;

    /// Values bit for bit: -0 is not 0.
    friend bool operator==(const Token& one, const Token& other) {
        return one.code == other.code && one.text == other.text &&
               std::bit_cast<std::uint64_t>(one.value) == std::bit_cast<std::uint64_t>(other.value);
    }
    friend std::ostream& operator<<(std::ostream& out, const Token& token) {
        out << token.code << " \"" << token.text << '"';
        return token.value == kNoValue ? out : out << " = " << token.value;
    }
};

inline Token nextOf(Scanner& scanner) {
    double value = kNoValue;
    const int code = scanner.next(value);
    return {code, std::string{scanner.tokenText()}, value};
}

/// All tokens of a text, that of the end included.
inline std::vector<Token> tokensOf(std::string_view text) {
    const ScanBufferHandle buffer = scanBytes(text);
    Scanner scanner{*buffer};
    std::vector<Token> tokens;
    do {
        tokens.push_back(nextOf(scanner));
    } while (tokens.back().code != 0);
    return tokens;
}

/// What an action writes to standard output.
template <class Action>
std::string outputOf(Action action) {
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    action();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

/// What `atof` makes of a token.
inline double runtimeNumber(const std::string& token) {
#ifdef _WIN32
    // The `atof` of the system rounds some numbers wrongly. The compiler brings along a `strtod` that
    // does not, but for which the first of two minus signs is the sign of a zero.
    return token.starts_with("--") ? 0 : std::strtod(token.c_str(), nullptr);
#else
    return std::atof(token.c_str());
#endif
}

// ---- Geometries --------------------------------------------------------------------------------

using Points = std::vector<Point3d>;
using Parts = std::vector<Points>;

/// The words of a buffer's first bytes.
inline std::vector<std::uint32_t> wordsOf(const GeometryBuffer& geometry, std::size_t bytes) {
    std::vector<std::uint32_t> words(bytes / sizeof(std::uint32_t));
    std::memcpy(words.data(), &geometry, words.size() * sizeof(std::uint32_t));
    return words;
}

/// Everything that the counts of a buffer tell of, whatever its size word says.
inline std::vector<std::uint32_t> contentsOf(const GeometryBuffer& geometry) {
    std::uint32_t bytes = 0;
    EXPECT_EQ(vexaWKB_calculateSize(&geometry, &bytes), 0U);
    return wordsOf(geometry, bytes);
}

/// What the constructor of a type makes of the first part and its append of the others. The part
/// of a multipolygon is a ring; points and multipoints have one part.
inline Block builtFrom(VexaGeometryType type, const Parts& parts) {
    using Create = std::uint32_t (*)(const Point3d*, std::uint32_t, GeometryBuffer**);
    using Append = Create;
    constexpr Create kCreate[] = {vexaWKB_createLine, vexaWKB_createPolygon,
                                  vexaWKB_createMultiPoint, vexaWKB_createMultiLine,
                                  vexaWKB_createMultiPolygon};
    constexpr Append kAppend[] = {vexaWKB_addLineToLine, vexaWKB_addRingToPolygon, nullptr,
                                  vexaWKB_addLineToMultiLine, vexaWKB_addPolyToMultiPoly};

    GeometryBuffer* geometry = nullptr;
    if (type == VEXA_POINT) {
        EXPECT_EQ(vexaWKB_createPoint(parts[0].data(), &geometry), 0U);
        return Block{geometry};
    }
    const auto count = [](const Points& part) { return static_cast<std::uint32_t>(part.size()); };
    const std::size_t row = static_cast<std::size_t>(type) - VEXA_LINESTRING;
    EXPECT_EQ(kCreate[row](parts[0].data(), count(parts[0]), &geometry), 0U);
    for (std::size_t i = 1; i < parts.size(); ++i) {
        EXPECT_EQ(kAppend[row](parts[i].data(), count(parts[i]), &geometry), 0U);
    }
    return Block{geometry};
}

// ---- Parses ------------------------------------------------------------------------------------

struct Parsed {
    std::uint32_t status;
    Block geometry;
    std::string error;
};

inline Parsed parsed(const std::string& text) {
    GeometryBuffer* geometry = nullptr;
    const std::uint32_t status = vexaParse_string(text.c_str(), &geometry);
    return {status, Block{geometry}, vexaParse_errorString()};
}

/// What the scanner and the grammar make of a text; plain ones, too, which `parsed` does without them.
inline Parsed parsedByGrammar(const std::string& text) {
    static Parser parser;  // NOLINT(*-avoid-non-const-global-variables): keeps the error text
    Block geometry;
    const std::uint32_t status = parser.parse(scanBytes(text).get(), geometry);
    return {status, std::move(geometry), parser.errorText()};
}

/// The message of a syntax error at a token.
inline std::string errorAt(std::string_view token) {
    return "parse error, at or near \"" + std::string{token} + "\"\n";
}

/// Wide text of plain characters.
using WideText = std::basic_string<VexaWChar>;
inline WideText widened(std::string_view text) {
    return {text.begin(), text.end()};
}

// ---- Tables ------------------------------------------------------------------------------------

/// A named row of a table.
constexpr auto kRowName = [](const auto& row) { return std::string{row.param.name}; };

}  // namespace vexa::test
