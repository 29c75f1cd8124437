#include "questions.h"

#include <algorithm>

namespace world {
namespace {

/// The places are on the plane of the countries, and none lies on a border.
constexpr double kTolerance = 0;

Range3d rangeOf(const Geometry& geometry) {
    Range3d range{};
    check(vexaWKB_getRange(geometry.get(), &range.low, &range.high) == VEXA_SUCCESS,
          "the buffer has no range");
    return range;
}

std::vector<Range3d> rangesOf(const std::vector<Geometry>& geometries) {
    std::vector<Range3d> ranges(geometries.size());
    std::transform(geometries.begin(), geometries.end(), ranges.begin(), rangeOf);
    return ranges;
}

bool overlap(const Range3d& left, const Range3d& right) {
    return left.low.x <= right.high.x && right.low.x <= left.high.x &&  //
           left.low.y <= right.high.y && right.low.y <= left.high.y &&  //
           left.low.z <= right.high.z && right.low.z <= left.high.z;
}

bool intersect(const Geometry& left, const Geometry& right) {
    std::uint32_t result = 0;  // where nothing decides, the library leaves it as it is
    const std::uint32_t status =
        vexaWKB_intersectGeometry(left.get(), right.get(), kTolerance, &result);
    check(status == VEXA_SUCCESS, "the intersection test failed");
    return result != 0;
}

/// The whole buffer: a copy takes the size word's bytes, so the word has to tell of all rings.
Geometry copyOf(const Geometry& source) {
    source->size = fullSize(*source);
    GeometryBuffer* copy = nullptr;
    check(vexaWKB_copy(source.get(), &copy) == VEXA_SUCCESS, "the buffer cannot be copied");
    return Geometry{copy};
}

std::vector<Geometry> movedCopies(const std::vector<Geometry>& sources,
                                  const Transform& transform) {
    std::vector<Geometry> copies;
    copies.reserve(sources.size());
    for (const Geometry& source : sources) {
        copies.push_back(copyOf(source));
        check(vexaWKB_transformGeometry(&transform, copies.back().get()) == VEXA_SUCCESS,
              "the buffer cannot be moved");
    }
    return copies;
}

}  // namespace

// ---- Who is asked about -------------------------------------------------------------------------

Geometry pointGeometry(double longitude, double latitude) {
    const Point3d point{longitude, latitude, 0};
    GeometryBuffer* geometry = nullptr;
    check(vexaWKB_createPoint(&point, &geometry) == VEXA_SUCCESS, "the point cannot be made");
    return Geometry{geometry};
}

Scene moved(const Scene& scene, const Transform& transform) {
    return {movedCopies(scene.countries, transform), movedCopies(scene.cities, transform),
            movedCopies(scene.flights, transform)};
}

// ---- The answers --------------------------------------------------------------------------------

std::size_t Answers::yesCount() const {
    return static_cast<std::size_t>(std::count(yes_.begin(), yes_.end(), true));
}

std::vector<std::size_t> Answers::columnsOfRow(std::size_t row) const {
    std::vector<std::size_t> columns;
    for (std::size_t column = 0; column < columns_; ++column) {
        if ((*this)(row, column)) columns.push_back(column);
    }
    return columns;
}

bool Answers::anyInColumn(std::size_t column) const {
    for (std::size_t index = column; index < yes_.size(); index += columns_) {
        if (yes_[index]) return true;
    }
    return false;
}

std::size_t Answers::differencesFrom(const Answers& other) const {
    check(size() == other.size(), "the tables have different sizes");
    std::size_t count = 0;
    for (std::size_t index = 0; index < yes_.size(); ++index) {
        if (yes_[index] != other.yes_[index]) ++count;
    }
    return count;
}

std::size_t Answers::asymmetries() const {
    std::size_t count = 0;
    for (std::size_t first = 0; first < columns_; ++first) {
        for (std::size_t second = 0; second < first; ++second) {
            if ((*this)(first, second) != (*this)(second, first)) ++count;
        }
    }
    return count;
}

std::size_t AllAnswers::size() const {
    return cityInCountry.size() + flightOverCountry.size() + rangesOverlap.size() +
           outlinesMeet.size();
}

std::size_t AllAnswers::differencesFrom(const AllAnswers& other) const {
    return cityInCountry.differencesFrom(other.cityInCountry) +
           flightOverCountry.differencesFrom(other.flightOverCountry) +
           rangesOverlap.differencesFrom(other.rangesOverlap) +
           outlinesMeet.differencesFrom(other.outlinesMeet);
}

AllAnswers askAll(const Scene& scene) {
    const std::vector<Geometry>& countries = scene.countries;
    const std::size_t count = countries.size();

    const auto holdsCity = [&](std::size_t city, std::size_t country) {
        return intersect(countries[country], scene.cities[city]);
    };
    const auto isFlownOver = [&](std::size_t flight, std::size_t country) {
        return intersect(countries[country], scene.flights[flight]);
    };
    const std::vector<Range3d> ranges = rangesOf(countries);
    const auto rangesOverlap = [&](std::size_t left, std::size_t right) {
        return left != right && overlap(ranges[left], ranges[right]);
    };
    const auto outlinesMeet = [&](std::size_t left, std::size_t right) {
        return left != right && intersect(countries[left], countries[right]);
    };
    return {Answers{scene.cities.size(), count, holdsCity},
            Answers{scene.flights.size(), count, isFlownOver}, Answers{count, count, rangesOverlap},
            Answers{count, count, outlinesMeet}};
}

}  // namespace world
