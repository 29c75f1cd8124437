#pragma once

#include "geometry/layout.h"

#include <cstddef>
#include <cstdint>

/// The one place that steps through the nested lists of a body.
namespace vexa {

/// Just past a run: the next one of its path, or the path's end.
inline const PointRun* skipRun(const PointRun& run) {
    return reinterpret_cast<const PointRun*>(after<Point3d>(run) + run.pointCount);
}

/// Just past a path: the next one of its list, or the list's end.
const Path* skipPath(const Path& path);

/// Just past a path list: the next polygon of a multipolygon, or its end.
const PathList* skipPathList(const PathList& paths);

/// Just past a collection's member: its `size` word, or its computed size where the word is 0,
/// rounded up to 8. Null for a null member and for one whose size cannot be computed.
const GeometryBuffer* skipCollectionMember(const GeometryBuffer* member);

/// Bytes that bring a size up to a multiple of 8: 0 to 7.
constexpr std::uint32_t paddingTo8(std::uint32_t size) {
    return (8 - size % 8) % 8;
}

/// The multiple of 8 that a member of that size takes; wraps to 0 for the largest sizes.
constexpr std::uint32_t roundedTo8(std::uint32_t size) {
    return size + paddingTo8(size);
}

inline const PointRun* nextElement(const PointRun& run) {
    return skipRun(run);
}
inline const Path* nextElement(const Path& path) {
    return skipPath(path);
}
inline const PathList* nextElement(const PathList& polygon) {
    return skipPathList(polygon);
}

/// A counted list as a range. An element is skipped by its own counts, when the loop moves on from
/// it: nothing behind the last one is read, nor the last one's own parts.
template <class Element>
class CountedList {
public:
    class Iterator {
    public:
        Iterator(const Element* element, std::uint32_t remaining)
            : element_(element), remaining_(remaining) {}
        const Element& operator*() const { return *element_; }
        Iterator& operator++() {
            if (--remaining_ != 0) element_ = nextElement(*element_);
            return *this;
        }
        bool operator!=(const Iterator& other) const { return remaining_ != other.remaining_; }

    private:
        const Element* element_;
        std::uint32_t remaining_;
    };

    CountedList(const Element* first, std::uint32_t count) : first_(first), count_(count) {}
    std::uint32_t size() const { return count_; }
    const Element* first() const { return first_; }
    Iterator begin() const { return {first_, count_}; }
    Iterator end() const { return {nullptr, 0}; }

private:
    const Element* first_;
    std::uint32_t count_;
};

inline CountedList<PointRun> runsOf(const Path& path) {
    return {after<PointRun>(path), path.runCount};
}
inline CountedList<Path> pathsOf(const PathList& paths) {
    return {after<Path>(paths), paths.pathCount};
}
inline CountedList<PathList> polygonsOf(const PolygonList& polygons) {
    return {after<PathList>(polygons), polygons.polygonCount};
}

/// The index-th element of a list that has more than `index`; linear in the bytes before it.
template <class Element>
const Element& elementAt(const Element* first, std::uint32_t index) {
    while (index-- != 0) first = nextElement(*first);
    return *first;
}

/// Bytes between two addresses of one buffer.
inline std::size_t bytesBetween(const void* first, const void* last) {
    return static_cast<std::size_t>(static_cast<const std::byte*>(last) -
                                    static_cast<const std::byte*>(first));
}

}  // namespace vexa
