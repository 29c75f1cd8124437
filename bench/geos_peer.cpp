#include "bench/peers.h"

#include <memory>

#ifdef VEXAKIT_BENCH_GEOS
#include <geos_c.h>
#endif

namespace vexa::bench {

#ifdef VEXAKIT_BENCH_GEOS

namespace {

struct CloseSession {
    void operator()(GEOSContextHandle_t session) const { GEOS_finish_r(session); }
};

GEOSContextHandle_t session() {
    static const std::unique_ptr<GEOSContextHandle_HS, CloseSession> opened{GEOS_init_r()};
    return opened.get();
}

struct DestroyGeometry {
    void operator()(GEOSGeometry* geometry) const { GEOSGeom_destroy_r(session(), geometry); }
};
using Geometry = std::unique_ptr<GEOSGeometry, DestroyGeometry>;

struct DestroyPrepared {
    void operator()(const GEOSPreparedGeometry* prepared) const {
        GEOSPreparedGeom_destroy_r(session(), prepared);
    }
};
using Prepared = std::unique_ptr<const GEOSPreparedGeometry, DestroyPrepared>;

GEOSCoordSequence* coordinates(const std::vector<Point3d>& points) {
    const auto count = static_cast<unsigned>(points.size());
    GEOSCoordSequence* const sequence = GEOSCoordSeq_create_r(session(), count, 2);
    for (unsigned i = 0; i < count; ++i) {
        GEOSCoordSeq_setXY_r(session(), sequence, i, points[i].x, points[i].y);
    }
    return sequence;
}

GEOSGeometry* ring(const std::vector<Point3d>& points) {
    return GEOSGeom_createLinearRing_r(session(), coordinates(points));
}

GEOSGeometry* polygon(const std::vector<std::vector<Point3d>>& rings) {
    std::vector<GEOSGeometry*> holes;
    for (std::size_t i = 1; i < rings.size(); ++i) holes.push_back(ring(rings[i]));
    return GEOSGeom_createPolygon_r(session(), ring(rings.front()), holes.data(),
                                    static_cast<unsigned>(holes.size()));
}

GEOSGeometry* point(const Point3d& place) {
    return GEOSGeom_createPointFromXY_r(session(), place.x, place.y);
}

GEOSGeometry* line(const std::vector<Point3d>& points) {
    return GEOSGeom_createLineString_r(session(), coordinates(points));
}

template <class Parts, class Make>
GEOSGeometry* collection(int type, const Parts& parts, Make make) {
    std::vector<GEOSGeometry*> members;
    members.reserve(parts.size());
    for (const auto& part : parts) members.push_back(make(part));
    return GEOSGeom_createCollection_r(session(), type, members.data(),
                                       static_cast<unsigned>(members.size()));
}

Geometry built(const Shape& shape) {
    switch (shape.type) {
        case VEXA_POINT: return Geometry{point(shape.parts.front().front())};
        case VEXA_LINESTRING: return Geometry{line(shape.parts.front())};
        case VEXA_POLYGON: return Geometry{polygon(shape.parts)};
        case VEXA_MULTIPOINT:
            return Geometry{collection(GEOS_MULTIPOINT, shape.parts.front(), point)};
        case VEXA_MULTILINESTRING:
            return Geometry{collection(GEOS_MULTILINESTRING, shape.parts, line)};
        default:
            return Geometry{
                collection(GEOS_MULTIPOLYGON, shape.parts,
                           [](const std::vector<Point3d>& points) { return polygon({points}); })};
    }
}

struct Asked {
    std::vector<Geometry> geometries;
    std::vector<std::pair<std::size_t, std::size_t>> pairs;
};

std::size_t countPlain(const Asked& asked) {
    std::size_t hits = 0;
    for (const auto& [first, second] : asked.pairs) {
        if (GEOSIntersects_r(session(), asked.geometries[first].get(),
                             asked.geometries[second].get()) == 1) {
            ++hits;
        }
    }
    return hits;
}

std::size_t countPrepared(const Asked& asked) {
    std::size_t hits = 0;
    std::size_t preparedFirst = asked.geometries.size();
    Prepared prepared;
    for (const auto& [first, second] : asked.pairs) {
        if (first != preparedFirst) {
            prepared.reset(GEOSPrepare_r(session(), asked.geometries[first].get()));
            preparedFirst = first;
        }
        if (GEOSPreparedIntersects_r(session(), prepared.get(), asked.geometries[second].get()) ==
            1) {
            ++hits;
        }
    }
    return hits;
}

}  // namespace

std::vector<Peer> geosPeers(const Questions& questions) {
    const auto asked = std::make_shared<Asked>();
    asked->pairs = questions.pairs;
    for (const Shape& shape : questions.shapes) asked->geometries.push_back(built(shape));
    return {{"GEOS", [=] { return countPlain(*asked); }},
            {"GEOS prepared", [=] { return countPrepared(*asked); }}};
}

#else

std::vector<Peer> geosPeers(const Questions& /*questions*/) {
    return {};
}

#endif

}  // namespace vexa::bench
