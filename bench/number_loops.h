#pragma once

#include "vexakit/types.h"

#include <charconv>
#include <string>
#include <string_view>
#include <vector>

namespace vexa::bench {

/// What no reader of such a text can do without: each number is converted, what lies between two is
/// passed over. The sum shows that all were read.
inline double sumOfNumbers(std::string_view text) {
    const auto startsNumber = [](char c) { return (c >= '0' && c <= '9') || c == '-'; };
    const char* const end = text.data() + text.size();
    double sum = 0;
    for (const char* at = text.data();;) {
        while (at != end && !startsNumber(*at)) ++at;
        if (at == end) return sum;
        double value = 0;
        at = std::from_chars(at, end, value).ptr;
        sum += value;
    }
}

inline double sumOfCoordinates(const std::vector<Point3d>& points) {
    double sum = 0;
    for (const Point3d& point : points) {
        sum += point.x;
        sum += point.y;
        sum += point.z;
    }
    return sum;
}

/// Nor any writer: each number, and a character behind it. `out` has room for all.
inline char* writeNumbers(const std::vector<Point3d>& points, int digits, std::vector<char>& out) {
    char* at = out.data();
    char* const end = at + out.size();
    for (const Point3d& point : points) {
        for (const double value : {point.x, point.y, point.z}) {
            at = std::to_chars(at, end, value, std::chars_format::general, digits).ptr;
            *at++ = ' ';
        }
    }
    return at;
}

}  // namespace vexa::bench
