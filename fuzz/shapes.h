#pragma once

#include "fuzz/input.h"
#include "tests/support/intersection_model.h"

#include <limits>

namespace vexa::fuzz {

using test::Paths;
using test::Points;
using test::Polygons;
using test::Runs;
using test::Shape;

/// As a rule a place on a small grid, where edges meet, touch and lie on each other; sometimes anything
/// that a double can be.
inline double takeCoordinate(Input& input) {
    static constexpr double kOdd[] = {0.5,
                                      1e-7,
                                      -0.0,
                                      1e300,
                                      -1e300,
                                      5e-324,
                                      std::numeric_limits<double>::infinity(),
                                      std::numeric_limits<double>::quiet_NaN(),
                                      std::numeric_limits<double>::max()};
    const auto byte = input.ConsumeIntegral<unsigned char>();
    if (byte < 200) return byte % 9 - 4;
    if (byte < 248) return byte % 9 + 1.0 / (1 + byte % 7);
    return kOdd[input.ConsumeIntegral<unsigned char>() % std::size(kOdd)];
}

inline Point3d takePoint(Input& input, bool isFlat) {
    const double x = takeCoordinate(input);
    const double y = takeCoordinate(input);
    return {x, y, isFlat ? 1.0 : takeCoordinate(input)};
}

inline Points takePoints(Input& input, int least, int most, bool isFlat) {
    Points points;
    for (int left = take(input, least, most); left > 0; --left) {
        points.push_back(takePoint(input, isFlat));
    }
    return points;
}

inline Runs takeRuns(Input& input, bool isFlat) {
    Runs runs;
    for (int left = take(input, 0, 3); left >= 0; --left) {
        runs.push_back(takePoints(input, 0, 12, isFlat));
        if (input.ConsumeBool() && !runs.back().empty()) runs.back().push_back(runs.back().front());
    }
    return runs;
}

inline Paths takePaths(Input& input, bool isFlat) {
    Paths paths;
    for (int left = take(input, 0, 2); left >= 0; --left) paths.push_back(takeRuns(input, isFlat));
    return paths;
}

inline Shape takeShape(Input& input) {
    const bool isFlat = input.ConsumeBool();
    switch (take(input, 1, 6)) {
        case VEXA_POINT: return test::pointShape(takePoint(input, isFlat));
        case VEXA_LINESTRING: return test::lineShape(takeRuns(input, isFlat));
        case VEXA_POLYGON: return test::polygonShape(takePaths(input, isFlat));
        case VEXA_MULTIPOINT: return test::multipointShape(takePoints(input, 0, 8, isFlat));
        case VEXA_MULTILINESTRING: return test::multilineShape(takePaths(input, isFlat));
        default: {
            Polygons polygons;
            for (int left = take(input, 0, 2); left >= 0; --left) {
                polygons.push_back(takePaths(input, isFlat));
            }
            return test::multipolygonShape(polygons);
        }
    }
}

}  // namespace vexa::fuzz
