#include "geometry/walkers.h"

#include "geometry/size.h"

namespace vexa {

const Path* skipPath(const Path& path) {
    const auto* run = after<PointRun>(path);
    for (std::uint32_t left = path.runCount; left != 0; --left) run = skipRun(*run);
    return reinterpret_cast<const Path*>(run);
}

const PathList* skipPathList(const PathList& paths) {
    const auto* path = after<Path>(paths);
    for (std::uint32_t left = paths.pathCount; left != 0; --left) path = skipPath(*path);
    return reinterpret_cast<const PathList*>(path);
}

const GeometryBuffer* skipCollectionMember(const GeometryBuffer* member) {
    if (!member) return nullptr;

    std::uint32_t size = 0;
    if (knownOrComputedSize(*member, size) != kSuccess) return nullptr;

    const auto* const bytes = reinterpret_cast<const std::byte*>(member);
    return reinterpret_cast<const GeometryBuffer*>(bytes + roundedTo8(size));
}

}  // namespace vexa
