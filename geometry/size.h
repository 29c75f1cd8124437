#pragma once

#include "geometry/layout.h"

#include <cstddef>
#include <cstdint>

namespace vexa {

constexpr std::size_t kPointSize = sizeof(GeometryBuffer) + sizeof(Point3d);

/// Bytes of a whole buffer walked as the layout the name tells; the caller cuts them to 32 bits.
std::size_t lineSize(const GeometryBuffer& line);
std::size_t pathListSize(const GeometryBuffer& polygonOrMultiLine);
std::size_t multiPointSize(const GeometryBuffer& multiPoint);
std::size_t multiPolygonSize(const GeometryBuffer& multiPolygon);

/// By type, from the contents. Type 8 succeeds and leaves `size` as it is.
std::uint32_t computedSize(const GeometryBuffer& geometry, std::uint32_t& size);

/// The `size` word where it is not 0, else `computedSize`.
std::uint32_t knownOrComputedSize(const GeometryBuffer& geometry, std::uint32_t& size);

}  // namespace vexa
