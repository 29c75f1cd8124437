#pragma once

#include "geometry/walkers.h"

#include <cstdint>
#include <span>

namespace vexa {

/// The runs of a whole geometry one after the other, however deep they are nested.
class RunWalk {
public:
    explicit RunWalk(std::span<const Point3d> points) : loose_(points), isLoose_(true) {}
    explicit RunWalk(const CountedList<Path>& paths)
        : run_(reinterpret_cast<const PointRun*>(paths.first())), pathsLeft_(paths.size()) {}
    explicit RunWalk(const Path& path) : run_(after<PointRun>(path)), runsLeft_(path.runCount) {}
    explicit RunWalk(const PathList& paths)
        : run_(after<PointRun>(paths)), pathsLeft_(paths.pathCount) {}
    explicit RunWalk(const CountedList<PathList>& polygons)
        : run_(reinterpret_cast<const PointRun*>(polygons.first())),
          polygonsLeft_(polygons.size()) {}
    explicit RunWalk(const PolygonList& polygons)
        : run_(after<PointRun>(polygons)), polygonsLeft_(polygons.polygonCount) {}

    /// Sets the vertices to those of the next run; false where there is none.
    bool next(std::span<const Point3d>& vertices) {
        if (isLoose_) {
            isLoose_ = false;
            vertices = loose_;
            return true;
        }
        while (runsLeft_ == 0) {
            if (!nextPath()) return false;
        }
        --runsLeft_;
        vertices = verticesOf(*run_);
        run_ = skipRun(*run_);
        return true;
    }

private:
    // Where a count stands, the walk takes it and steps over its two words.
    template <class List>
    const List& list() {
        const auto* const list = reinterpret_cast<const List*>(run_);
        run_ = after<PointRun>(*list);
        return *list;
    }

    bool nextPath() {
        while (pathsLeft_ == 0) {
            if (polygonsLeft_ == 0) return false;
            --polygonsLeft_;
            pathsLeft_ = list<PathList>().pathCount;
        }
        --pathsLeft_;
        runsLeft_ = list<Path>().runCount;
        return true;
    }

    const PointRun* run_ = nullptr;
    std::uint32_t runsLeft_ = 0;
    std::uint32_t pathsLeft_ = 0;
    std::uint32_t polygonsLeft_ = 0;
    std::span<const Point3d> loose_;
    bool isLoose_ = false;
};

}  // namespace vexa
