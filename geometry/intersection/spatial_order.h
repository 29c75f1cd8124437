#pragma once

#include "geometry/intersection/box_tree.h"
#include "vexakit/types.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <vector>

namespace vexa {

/// Elements whose boxes tell them apart in space, put along a curve that fills space (Morton's), so
/// that elements that follow each other are near each other.
class SpatialOrder {
public:
    explicit SpatialOrder(const Range3d& whole) : low_(whole.low), extent_(largestExtent(whole)) {}

    /// Whether the order that elements stand in is good enough: the boxes around each few of them
    /// are small beside the whole, as they are along a line.
    template <class Element, class BoxOfElement>
    bool isKeptBy(const std::pmr::vector<Element>& elements,
                  const BoxOfElement& boxOfElement) const {
        double sum = 0;
        std::size_t groups = 0;
        for (std::size_t first = 0; first < elements.size(); first += kGroup, ++groups) {
            Range3d box = boxOfElement(elements[first]);
            const std::size_t last = std::min(first + kGroup, elements.size());
            for (std::size_t i = first + 1; i < last; ++i) {
                box = unionOf(box, boxOfElement(elements[i]));
            }
            sum += largestExtent(box);
        }
        const auto count = static_cast<double>(groups);
        return sum <= kSlack * extent_ * std::sqrt(count);
    }

    /// For elements whose order is not kept, which are not all in one place.
    template <class Element, class BoxOfElement>
    void sort(std::pmr::vector<Element>& elements, const BoxOfElement& boxOfElement) const {
        struct Keyed {
            std::uint64_t key;
            Element element;
        };
        std::pmr::vector<Keyed> keyed{elements.get_allocator().resource()};
        keyed.reserve(elements.size());
        for (const Element& element : elements) {
            keyed.push_back({keyOf(boxOfElement(element)), element});
        }
        std::sort(keyed.begin(), keyed.end(),
                  [](const Keyed& a, const Keyed& b) { return a.key < b.key; });
        std::transform(keyed.begin(), keyed.end(), elements.begin(),
                       [](const Keyed& it) { return it.element; });
    }

private:
    static constexpr std::size_t kGroup = 8;
    static constexpr double kSlack = 8;
    static constexpr double kCells = 1 << 21;

    static double largestExtent(const Range3d& box) {
        return std::max({box.high.x - box.low.x, box.high.y - box.low.y, box.high.z - box.low.z});
    }

    /// Every third bit of the result, from the lowest of 21.
    static std::uint64_t spread(std::uint64_t bits) {
        bits = (bits | bits << 32) & 0x001F00000000FFFF;
        bits = (bits | bits << 16) & 0x001F0000FF0000FF;
        bits = (bits | bits << 8) & 0x100F00F00F00F00F;
        bits = (bits | bits << 4) & 0x10C30C30C30C30C3;
        return (bits | bits << 2) & 0x1249249249249249;
    }

    std::uint64_t cellOf(double value, double low) const {
        const double cell = (value - low) / extent_ * (kCells - 1);
        return static_cast<std::uint64_t>(std::clamp(cell, 0.0, kCells - 1));
    }

    std::uint64_t keyOf(const Range3d& box) const {
        return spread(cellOf(box.low.x / 2 + box.high.x / 2, low_.x)) |
               spread(cellOf(box.low.y / 2 + box.high.y / 2, low_.y)) << 1 |
               spread(cellOf(box.low.z / 2 + box.high.z / 2, low_.z)) << 2;
    }

    Point3d low_;
    double extent_;
};

}  // namespace vexa
