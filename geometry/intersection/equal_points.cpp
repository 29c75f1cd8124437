#include "geometry/intersection/equal_points.h"

#include "geometry/intersection/segment_distance.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <tuple>
#include <vector>

namespace vexa {

namespace {

bool areEqual(const Point3d& a, const Point3d& b) {
    return RangesOverlap({a, a}, {b, b});
}

bool isNumber(const Point3d& point) {
    return areEqual(point, point);
}

bool isBefore(const Point3d& a, const Point3d& b) {
    return std::tie(a.x, a.y, a.z) < std::tie(b.x, b.y, b.z);
}

bool anyEqualPair(const Points& first, const Points& second) {
    return std::any_of(first.begin(), first.end(), [&](const Point3d& a) {
        return std::any_of(second.begin(), second.end(),
                           [&](const Point3d& b) { return areEqual(a, b); });
    });
}

bool anyEqualBySorting(const Points& first, const Points& second) {
    std::vector<Point3d> sorted;
    sorted.reserve(second.size());
    std::copy_if(second.begin(), second.end(), std::back_inserter(sorted), isNumber);
    std::sort(sorted.begin(), sorted.end(), isBefore);
    return std::any_of(first.begin(), first.end(), [&](const Point3d& point) {
        return isNumber(point) && std::binary_search(sorted.begin(), sorted.end(), point, isBefore);
    });
}

/// Places of points by their bits, in a table that is half empty at least. Somebody may choose points
/// that all want one place, so the steps are counted.
class PointTable {
public:
    explicit PointTable(Points points)
        : points_(points),
          places_(std::bit_ceil(2 * points.size()), kNobody),
          stepsLeft_(kStepsOfPoint * points.size()) {}

    /// False where it takes too many steps.
    bool fill() {
        for (std::uint32_t i = 0; i < points_.size(); ++i) {
            if (!isNumber(points_[i])) continue;
            std::size_t place = placeOf(points_[i]);
            while (places_[place] != kNobody) {
                if (!step(place)) return false;
            }
            places_[place] = i;
        }
        return true;
    }

    /// Whether the point is there; nothing where it takes too many steps.
    std::optional<bool> has(const Point3d& point) {
        for (std::size_t place = placeOf(point); places_[place] != kNobody;) {
            if (areEqual(points_[places_[place]], point)) return true;
            if (!step(place)) return std::nullopt;
        }
        return false;
    }

    void allowStepsFor(std::size_t questions) { stepsLeft_ += kStepsOfPoint * questions; }

private:
    static constexpr std::uint32_t kNobody = UINT32_MAX;
    static constexpr std::size_t kStepsOfPoint = 8;

    bool step(std::size_t& place) {
        place = (place + 1) & (places_.size() - 1);
        return stepsLeft_-- != 0;
    }

    // Adding zero makes zeros of both signs one.
    std::size_t placeOf(const Point3d& point) const {
        const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value + 0.0); };
        std::uint64_t hash = bits(point.x) * 0x9E3779B97F4A7C15U;
        hash = (std::rotl(hash, 29) ^ bits(point.y)) * 0xBF58476D1CE4E5B9U;
        hash = (std::rotl(hash, 29) ^ bits(point.z)) * 0x94D049BB133111EBU;
        return (hash ^ hash >> 32) & (places_.size() - 1);
    }

    Points points_;
    std::vector<std::uint32_t> places_;
    std::size_t stepsLeft_;
};

/// Nothing where the points gather in a few places of the table.
std::optional<bool> anyEqualByTable(const Points& first, const Points& second) {
    PointTable table{second};
    if (!table.fill()) return std::nullopt;

    table.allowStepsFor(first.size());
    for (const Point3d& point : first) {
        const std::optional<bool> isThere = table.has(point);
        if (!isThere || *isThere) return isThere;
    }
    return false;
}

}  // namespace

bool anyEqual(const Points& first, const Points& second) {
    constexpr std::size_t kFewPairs = 512;
    if (first.size() * second.size() <= kFewPairs) return anyEqualPair(first, second);

    const Points& fewer = first.size() < second.size() ? first : second;
    const Points& more = first.size() < second.size() ? second : first;
    try {
        const std::optional<bool> isFound = anyEqualByTable(more, fewer);
        return isFound ? *isFound : anyEqualBySorting(more, fewer);
    } catch (const std::bad_alloc&) {
        return anyEqualPair(first, second);  // slower, but it needs no memory
    }
}

}  // namespace vexa
