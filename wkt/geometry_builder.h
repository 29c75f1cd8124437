#pragma once

#include "geometry/block.h"
#include "geometry/layout.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace vexa {

/// Lays a geometry out as its text is read: every vertex is stored once, where it stays, and counts
/// are put into their words when a list closes. The bytes are those that the constructors and
/// appends leave, stale size words included, without their walk over all earlier parts.
///
/// Every step that may need memory tells whether there was any.
class GeometryBuilder {
public:
    /// Sees to room for so many bytes more.
    bool reserve(std::size_t bytes);

    bool beginCollection();
    void endCollection();

    bool beginGeometry(VexaGeometryType type);
    void endGeometry();

    /// A linestring, a ring, or a line. Points and multipoints have no parts.
    bool beginPart();
    void endPart();

    bool addVertex(const Point3d& vertex);

    /// Where the next vertices go, for those who have reserved room and write them there themselves.
    Point3d* vertexRoom() { return reinterpret_cast<Point3d*>(bytes_.get() + used_); }
    /// Takes what was written there. @param end  just past the last of them
    void addVerticesUpTo(const Point3d* end);

    /// The finished block, cut to its length.
    Block take();

private:
    bool appendWords(std::uint32_t first, std::uint32_t second);
    void setWord(std::size_t offset, std::uint32_t value);
    std::uint32_t sizeWord() const;

    std::unique_ptr<std::byte, FreeBlock> bytes_;
    std::size_t used_ = 0;
    std::size_t capacity_ = 0;

    std::size_t geometryStart_ = 0;
    VexaGeometryType type_ = VEXA_POINT;
    std::uint32_t partCount_ = 0;
    std::size_t firstPartEnd_ = 0;

    std::size_t runStart_ = 0;
    std::uint32_t vertexCount_ = 0;

    bool inCollection_ = false;
    std::uint32_t memberCount_ = 0;
};

}  // namespace vexa
