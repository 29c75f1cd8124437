#pragma once

#include "vexakit/types.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

/// Geometry buffers put together byte by byte, well-formed or not, without the library's help.
namespace vexa::test {

using Points = std::vector<Point3d>;
using Runs = std::vector<Points>;     // a path
using Paths = std::vector<Runs>;      // a polygon's rings or a multilinestring's lines
using Polygons = std::vector<Paths>;  // a multipolygon

/// What stands in words that nobody may read.
constexpr std::uint32_t kGarbage = 0xDEADBEEF;

/// A growing block of bytes; its address is aligned like one from `malloc`.
class Bytes {
public:
    Bytes& word(std::uint32_t value) { return append(&value, sizeof value); }
    Bytes& count(std::size_t value) { return word(static_cast<std::uint32_t>(value)); }
    Bytes& points(const Points& points) {
        return append(points.data(), points.size() * sizeof(Point3d));
    }
    Bytes& path(const Runs& runs) {
        count(runs.size()).word(kGarbage);
        for (const Points& run : runs) word(kGarbage).count(run.size()).points(run);
        return *this;
    }
    Bytes& pathList(const Paths& paths) {
        count(paths.size()).word(kGarbage);
        for (const Runs& runs : paths) path(runs);
        return *this;
    }
    Bytes& bytes(const Bytes& other) { return append(other.data(), other.size()); }

    void setWord(std::size_t offset, std::uint32_t value) {
        std::memcpy(bytes_.data() + offset, &value, sizeof value);
    }

    const std::byte* data() const { return bytes_.data(); }
    std::size_t size() const { return bytes_.size(); }

    /// The block as what the library takes: a whole buffer, or the list at an offset into one.
    const GeometryBuffer* geometry() const { return at<GeometryBuffer>(0); }
    template <class Structure>
    const Structure* at(std::size_t offset) const {
        return reinterpret_cast<const Structure*>(bytes_.data() + offset);
    }

private:
    Bytes& append(const void* source, std::size_t size) {
        const std::size_t used = bytes_.size();
        bytes_.resize(used + size);
        if (size > 0) std::memcpy(bytes_.data() + used, source, size);
        return *this;
    }

    std::vector<std::byte> bytes_;
};

constexpr std::size_t kSizeOffset = 12;
constexpr std::size_t kBodyOffset = 16;

/// A header with the given type and size word.
inline Bytes header(std::uint32_t type, std::uint32_t size = 0) {
    return Bytes().word(kGarbage).word(kGarbage).word(type).word(size);
}

/// The buffer with its size word set: its true size, or any other.
inline Bytes sized(Bytes buffer, std::uint32_t size) {
    buffer.setWord(kSizeOffset, size);
    return buffer;
}
inline Bytes sized(const Bytes& buffer) {
    return sized(buffer, static_cast<std::uint32_t>(buffer.size()));
}

inline Bytes pointOf(const Point3d& point) {
    return sized(header(VEXA_POINT).points({point}));
}
inline Bytes lineOf(const Runs& runs) {
    return sized(header(VEXA_LINESTRING).path(runs));
}
inline Bytes polygonOf(const Paths& rings) {
    return sized(header(VEXA_POLYGON).pathList(rings));
}
inline Bytes multipointOf(const Points& points) {
    return sized(header(VEXA_MULTIPOINT).count(points.size()).word(kGarbage).points(points));
}
inline Bytes multilineOf(const Paths& lines) {
    return sized(header(VEXA_MULTILINESTRING).pathList(lines));
}
inline Bytes multipolygonOf(const Polygons& polygons) {
    Bytes buffer = header(VEXA_MULTIPOLYGON).count(polygons.size()).word(kGarbage);
    for (const Paths& rings : polygons) buffer.pathList(rings);
    return sized(buffer);
}
inline Bytes collectionOf(const std::vector<Bytes>& members) {
    Bytes buffer = header(VEXA_GEOMETRYCOLLECTION).count(members.size()).word(kGarbage);
    for (const Bytes& member : members) buffer.bytes(member);
    return buffer;
}

}  // namespace vexa::test
