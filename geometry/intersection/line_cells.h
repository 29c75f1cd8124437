#pragma once

#include "vexakit/types.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace vexa {

/// Lines of the plane in cells, so that lines that are nearly one stand in the same cell or in cells side by
/// side: at an angle of at most 2e-7, and where the points that they start from are within 5e-7 of the
/// largest coordinate of each other's line.
///
/// A line is known by its slope against the axis that it follows more, between -1 and 1, and by where it
/// meets the other axis, its offset, at most twice the largest coordinate. At that angle slopes differ by up
/// to 4e-7, and offsets by 1.2e-6 of the largest coordinate.
class LineCells {
public:
    using Key = std::uint64_t;

    /// @param largest  no coordinate is larger in magnitude
    explicit LineCells(double largest) : cellsPerUnit_(kOffsetCells / largest) {}

    /// What is known of the lines of some edges.
    struct Block {
        static constexpr std::size_t kMostEdges = 64;
        /// The cell that the line stands in.
        Key own[kMostEdges];
        /// Where all lines near it stand, if the two are the same.
        Key first[kMostEdges];
        Key last[kMostEdges];
    };
    /// The key of an edge that has no length, and so no line.
    static constexpr Key kNone = ~Key{0};

    /// @param starts  one point more than edges
    void fill(Block& block, const Point3d* starts, std::size_t edges) const;

    /// Whether the test holds for the key of some cell in which lines may stand that are near the edge's. A
    /// line along an axis has no others along it for neighbours.
    template <class Test>
    bool anyNear(const Point3d* start, const Test& test) const {
        const Line line = lineOf(start);
        return anyNear(line, test) || (isDiagonal(line.slope) && anyNear(turned(line), test));
    }

private:
    static constexpr double kReach = 2e-6;
    static constexpr double kSlopeCells = 1 << 15;
    static constexpr double kOffsetCells = 1 << 14;
    static constexpr int kSlopeShift = 20;
    static constexpr Key kCellMask = (Key{1} << kSlopeShift) - 1;
    static constexpr Key kSteep = Key{1} << 40;
    static constexpr Key kAlongAxis = Key{1} << 41;
    static constexpr Key kLookCloser = Key{1} << 42;

    struct Line {
        double slope;
        double offset;
        bool isSteep;
    };

    static Line lineOf(const Point3d* start) {
        const double x = start[0].x;
        const double y = start[0].y;
        const double dx = start[1].x - x;
        const double dy = start[1].y - y;
        const bool isSteep = std::fabs(dx) < std::fabs(dy);
        const double along = isSteep ? dy : dx;
        const double slope = (isSteep ? dx : dy) / along;
        const double advance = slope * (isSteep ? y : x);
        return {slope, (isSteep ? x : y) - advance, isSteep};
    }

    /// The same line against the other axis, where it follows both alike.
    static Line turned(const Line& line) {
        return {1 / line.slope, -line.offset / line.slope, !line.isSteep};
    }
    static bool isDiagonal(double slope) { return std::fabs(slope) >= 1 - kReach; }
    static bool isNearAxis(double slope) { return std::fabs(slope) <= kReach; }

    // Added to a number of a few thousands, it leaves the nearest integer in the low bits.
    static std::int64_t cellOf(double value) {
        return std::bit_cast<std::int64_t>(value + 0x1.8p52);
    }
    static Key keyOf(std::int64_t slopeCell, std::int64_t offsetCell) {
        return (static_cast<Key>(slopeCell) & kCellMask) << kSlopeShift |
               (static_cast<Key>(offsetCell) & kCellMask);
    }

    void fillEach(Block& block, const Point3d* starts, std::size_t edges) const;
    void fillByAvx512(Block& block, const Point3d* starts, std::size_t edges) const;

    template <class Test>
    bool anyNear(const Line& line, const Test& test) const {
        const Key direction = line.isSteep ? kSteep : 0;
        const bool isBesideAxis = line.slope != 0 && isNearAxis(line.slope);
        const double offset = line.offset * cellsPerUnit_;
        const std::int64_t lastSlope = cellOf((line.slope + kReach) * kSlopeCells);
        const std::int64_t lastOffset = cellOf(offset + kReach * kOffsetCells);
        for (auto i = cellOf((line.slope - kReach) * kSlopeCells); i <= lastSlope; ++i) {
            for (auto j = cellOf(offset - kReach * kOffsetCells); j <= lastOffset; ++j) {
                if (test(keyOf(i, j) | direction)) return true;
                if (isBesideAxis && test(keyOf(i, j) | direction | kAlongAxis)) return true;
            }
        }
        return false;
    }

    double cellsPerUnit_;
};

}  // namespace vexa
