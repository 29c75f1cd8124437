#include "wkt/plain_reader.h"

#include "numbers/decimal_reading.h"
#include "platform/decimal_point.h"
#include "platform/vector_width.h"
#include "wkt/geometry_builder.h"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace vexa {

namespace {

bool isBlank(char character) {
    return character == ' ' || character == '\t' || character == '\n';
}

const char* skipBlanks(const char* at) {
    while (isBlank(*at)) ++at;
    return at;
}

// ---- Vertices ----------------------------------------------------------------------------------

/// Vertices that follow each other, divided by commas. Where they end the text and their list go on.
struct VertexList {
    const char* at;
    const char* end;
    Point3d* out;
    bool areInParentheses;
};

/// Reads a list up to what is no comma; false for what is out of the ordinary.
template <class ReadNumber>
[[gnu::always_inline]] inline bool readVertices(VertexList& list, const ReadNumber& readNumber) {
    const char* at = list.at;
    Point3d* out = list.out;
    for (;; ++at) {
        at = skipBlanks(at);
        if (list.areInParentheses) {
            if (*at != '(') return false;
            at = skipBlanks(at + 1);
        }
        double coordinates[3];
        for (std::size_t i = 0; i < 3; ++i) {
            at = readNumber(at, coordinates[i]);
            if (!at || (i < 2 && !isBlank(*at))) return false;
            at = skipBlanks(at);
        }
        if (list.areInParentheses) {
            if (*at != ')') return false;
            at = skipBlanks(at + 1);
        }
        *out++ = {coordinates[0], coordinates[1], coordinates[2]};
        if (*at != ',') break;
    }
    list.at = at;
    list.out = out;
    return true;
}

bool readVerticesByCharacters(VertexList& list) {
    return readVertices(list, [end = list.end](const char* at, double& value) {
        return readAnyDecimal(at, end, value);
    });
}

#if VEXAKIT_HAS_WIDE_VECTORS

struct ReadByAvx2 {
    const char* end;

    VEXAKIT_AVX2 const char* operator()(const char* at, double& value) const {
        if (end - at > static_cast<std::ptrdiff_t>(kDecimalLookahead)) {
            if (const char* const last = readDecimalByVectors(at, value)) return last;
        }
        return readAnyDecimal(at, end, value);
    }
};

VEXAKIT_AVX2 bool readVerticesByAvx2(VertexList& list) {
    return readVertices(list, ReadByAvx2{list.end});
}

/// Numbers near the end, which all are in a short text, are read from a copy with zeros behind it.
struct ReadByAvx512 {
    const char* end;

    VEXAKIT_AVX512 const char* operator()(const char* at, double& value) const {
        const auto left = static_cast<std::size_t>(end - at);
        if (left > kDecimalLookahead) {
            if (const char* const last = readDecimalByVectors(at, value)) return last;
        } else {
            alignas(sizeof(__m512i)) char copy[kDecimalLookahead];
            static_assert(sizeof copy == sizeof(__m512i));
            const __mmask64 here = _bzhi_u64(~std::uint64_t{0}, static_cast<unsigned>(left));
            _mm512_storeu_si512(copy, _mm512_maskz_loadu_epi8(here, at));
            if (const char* const last = readDecimalByVectors(copy, value)) {
                return at + (last - copy);
            }
        }
        return readAnyDecimal(at, end, value);
    }
};

VEXAKIT_AVX512 bool readVerticesByAvx512(VertexList& list) {
    return readVertices(list, ReadByAvx512{list.end});
}

#endif

bool readVertices(VertexList& list) {
#if VEXAKIT_HAS_WIDE_VECTORS
    switch (platform::vectorWidth()) {
        case platform::VectorWidth::Avx512: return readVerticesByAvx512(list);
        case platform::VectorWidth::Avx2: return readVerticesByAvx2(list);
        default: break;
    }
#endif
    return readVerticesByCharacters(list);
}

// ---- The grammar -------------------------------------------------------------------------------

struct Keyword {
    std::string_view upper;
    std::string_view lower;
    VexaGeometryType type;
};

constexpr Keyword kKeywords[] = {
    {"POINT", "point", VEXA_POINT},
    {"LINESTRING", "linestring", VEXA_LINESTRING},
    {"POLYGON", "polygon", VEXA_POLYGON},
    {"MULTIPOINT", "multipoint", VEXA_MULTIPOINT},
    {"MULTILINESTRING", "multilinestring", VEXA_MULTILINESTRING},
    {"MULTIPOLYGON", "multipolygon", VEXA_MULTIPOLYGON},
    {"GEOMETRYCOLLECTION", "geometrycollection", VEXA_GEOMETRYCOLLECTION},
};

class PlainReader {
public:
    explicit PlainReader(std::string_view text)
        : at_(text.data()), end_(text.data() + text.size()) {}

    Block read() {
        // The shortest ring, "(0 0 0),", has most bytes to a character.
        constexpr std::size_t kBytesOfCharacter = 6;
        constexpr std::size_t kHeaders = 64;
        const auto size = static_cast<std::size_t>(end_ - at_);
        if (!geometry_.reserve(kBytesOfCharacter * size + kHeaders)) return nullptr;

        if (!readGeometryOrCollection()) return nullptr;
        at_ = skipBlanks(at_);
        return at_ == end_ ? geometry_.take() : nullptr;
    }

private:
    bool accept(char character) {
        at_ = skipBlanks(at_);
        if (*at_ != character) return false;
        ++at_;
        return true;
    }

    const Keyword* acceptKeyword() {
        at_ = skipBlanks(at_);
        const std::string_view text{at_, static_cast<std::size_t>(end_ - at_)};
        for (const Keyword& keyword : kKeywords) {
            if (!text.starts_with(keyword.upper) && !text.starts_with(keyword.lower)) continue;
            at_ += keyword.upper.size();
            return &keyword;
        }
        return nullptr;
    }

    /// Items divided by commas, in parentheses.
    template <class ReadItem>
    bool readList(const ReadItem& readItem) {
        if (!accept('(')) return false;
        do {
            if (!readItem()) return false;
        } while (accept(','));
        return accept(')');
    }

    bool readVertexList(bool areInParentheses) {
        VertexList list = {at_, end_, geometry_.vertexRoom(), areInParentheses};
        if (!readVertices(list)) return false;
        at_ = list.at;
        geometry_.addVerticesUpTo(list.out);
        return true;
    }

    bool readPath() {
        const bool isRead = geometry_.beginPart() && accept('(') && readVertexList(false);
        if (!isRead || !accept(')')) return false;
        geometry_.endPart();
        return true;
    }

    bool readPaths() {
        return readList([this] { return readPath(); });
    }

    bool readBody(VexaGeometryType type) {
        switch (type) {
            case VEXA_LINESTRING: return readPath();
            case VEXA_POLYGON:
            case VEXA_MULTILINESTRING: return readPaths();
            case VEXA_MULTIPOLYGON: return readList([this] { return readPaths(); });
            case VEXA_MULTIPOINT: return readList([this] { return readVertexList(true); });
            default: return readPoint();
        }
    }

    bool readPoint() {
        if (!accept('(')) return false;
        const Point3d* const room = geometry_.vertexRoom();
        return readVertexList(false) && geometry_.vertexRoom() == room + 1 && accept(')');
    }

    bool readGeometry(VexaGeometryType type) {
        if (!geometry_.beginGeometry(type) || !readBody(type)) return false;
        geometry_.endGeometry();
        return true;
    }

    bool readMember() {
        const Keyword* const keyword = acceptKeyword();
        return keyword && keyword->type != VEXA_GEOMETRYCOLLECTION && readGeometry(keyword->type);
    }

    bool readGeometryOrCollection() {
        const Keyword* const keyword = acceptKeyword();
        if (!keyword) return false;
        if (keyword->type != VEXA_GEOMETRYCOLLECTION) return readGeometry(keyword->type);

        if (!geometry_.beginCollection() || !readList([this] { return readMember(); }))
            return false;
        geometry_.endCollection();
        return true;
    }

    const char* at_;
    const char* end_;
    GeometryBuilder geometry_;
};

}  // namespace

Block readPlainText(std::string_view text) {
    if (platform::decimalPoint() != ".") return nullptr;
    return PlainReader{text}.read();
}

}  // namespace vexa
