#include "bench/peers.h"

#include <memory>
#include <variant>

#ifdef VEXAKIT_BENCH_BOOST
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/geometries.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#endif

namespace vexa::bench {

#ifdef VEXAKIT_BENCH_BOOST

namespace {

namespace bg = boost::geometry;

using Point = bg::model::d2::point_xy<double>;
using Line = bg::model::linestring<Point>;
using Polygon = bg::model::polygon<Point>;
using MultiPoint = bg::model::multi_point<Point>;
using MultiLine = bg::model::multi_linestring<Line>;
using MultiPolygon = bg::model::multi_polygon<Polygon>;
using Geometry = std::variant<Point, Line, Polygon, MultiPoint, MultiLine, MultiPolygon>;

template <class Points>
Points pointsOf(const std::vector<Point3d>& points) {
    Points result;
    for (const Point3d& point : points) result.emplace_back(point.x, point.y);
    return result;
}

Polygon polygon(const std::vector<std::vector<Point3d>>& rings) {
    Polygon result;
    result.outer() = pointsOf<Polygon::ring_type>(rings.front());
    for (std::size_t i = 1; i < rings.size(); ++i) {
        result.inners().push_back(pointsOf<Polygon::ring_type>(rings[i]));
    }
    bg::correct(result);
    return result;
}

Geometry built(const Shape& shape) {
    const std::vector<Point3d>& first = shape.parts.front();
    switch (shape.type) {
        case VEXA_POINT: return Point{first.front().x, first.front().y};
        case VEXA_LINESTRING: return pointsOf<Line>(first);
        case VEXA_POLYGON: return polygon(shape.parts);
        case VEXA_MULTIPOINT: return pointsOf<MultiPoint>(first);
        default: break;
    }
    if (shape.type == VEXA_MULTILINESTRING) {
        MultiLine lines;
        for (const auto& part : shape.parts) lines.push_back(pointsOf<Line>(part));
        return lines;
    }
    MultiPolygon polygons;
    for (const auto& part : shape.parts) polygons.push_back(polygon({part}));
    return polygons;
}

/// Only pairs that are asked for are compiled: each takes long.
struct Intersect {
    bool operator()(const Line& a, const Line& b) const { return bg::intersects(a, b); }
    bool operator()(const Polygon& a, const Line& b) const { return bg::intersects(a, b); }
    bool operator()(const Polygon& a, const Polygon& b) const { return bg::intersects(a, b); }
    bool operator()(const Polygon& a, const MultiPolygon& b) const { return bg::intersects(a, b); }
    bool operator()(const MultiPolygon& a, const Polygon& b) const { return bg::intersects(a, b); }
    bool operator()(const Polygon& a, const Point& b) const { return bg::intersects(a, b); }
    bool operator()(const Polygon& a, const MultiPoint& b) const { return bg::intersects(a, b); }
    bool operator()(const MultiPoint& a, const MultiPoint& b) const { return bg::intersects(a, b); }
    bool operator()(const MultiLine& a, const MultiLine& b) const { return bg::intersects(a, b); }
    bool operator()(const MultiPolygon& a, const MultiLine& b) const {
        return bg::intersects(a, b);
    }
    bool operator()(const MultiPolygon& a, const MultiPolygon& b) const {
        return bg::intersects(a, b);
    }

    template <class First, class Second>
    bool operator()(const First& /*a*/, const Second& /*b*/) const {
        throw std::logic_error("a pair of types that Boost is not asked about");
    }
};

}  // namespace

std::vector<Peer> boostPeers(const Questions& questions) {
    const auto geometries = std::make_shared<std::vector<Geometry>>();
    for (const Shape& shape : questions.shapes) geometries->push_back(built(shape));
    const auto countHits = [geometries, pairs = questions.pairs] {
        std::size_t hits = 0;
        for (const auto& [first, second] : pairs) {
            hits += std::visit(Intersect{}, (*geometries)[first], (*geometries)[second]) ? 1 : 0;
        }
        return hits;
    };
    return {{"Boost", countHits}};
}

#else

std::vector<Peer> boostPeers(const Questions& /*questions*/) {
    return {};
}

#endif

}  // namespace vexa::bench
