#pragma once

#include "tests/support/geometry_samples.h"
#include "vexakit/types.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ios>
#include <iterator>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

/// The formulas of the transforms in their plainest form, entry by entry, and comparisons of what
/// they give bit for bit.
namespace vexa::test {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// ---- Comparison ---------------------------------------------------------------------------------

/// The same bits. Which of two NaNs an operation hands on is the compiler's choice, so one computed
/// NaN is as good as another.
inline bool isSame(double actual, double expected) {
    if (std::isnan(expected)) return std::isnan(actual);
    return std::bit_cast<std::uint64_t>(actual) == std::bit_cast<std::uint64_t>(expected);
}

template <std::size_t Count>
testing::AssertionResult areSame(const std::array<double, Count>& actual,
                                 const std::array<double, Count>& expected) {
    for (std::size_t i = 0; i != Count; ++i) {
        if (isSame(actual[i], expected[i])) continue;
        std::ostringstream text;
        text << std::hexfloat << "entry " << i << " is " << actual[i] << ", not " << expected[i];
        return testing::AssertionFailure() << text.str();
    }
    return testing::AssertionSuccess();
}

inline std::array<double, 3> coordinatesOf(const Point3d& point) {
    return {point.x, point.y, point.z};
}

inline testing::AssertionResult areSame(const Point3d& actual, const Point3d& expected) {
    return areSame(coordinatesOf(actual), coordinatesOf(expected));
}

inline testing::AssertionResult areSame(const Transform& actual, const Transform& expected) {
    return areSame(std::to_array(actual.m), std::to_array(expected.m));
}

// ---- Formulas -----------------------------------------------------------------------------------

/// What stands in a transform before a function writes it: no entry of any result.
constexpr Transform kUnwritten = {{-7.25, -7.5, -7.75, -8.25, -8.5, -8.75,  //
                                   -9.25, -9.5, -9.75, -10.25, -10.5, -10.75}};

/// Entries by row and column; column 3 is the translation.
struct MatrixModel {
    double entry[3][4];

    static MatrixModel identity() { return {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}}; }

    static MatrixModel of(const Transform& transform) {
        MatrixModel model{};
        std::memcpy(&model, &transform, sizeof model);
        return model;
    }

    // NOLINTNEXTLINE(google-explicit-constructor): it is one, but for its name
    operator Transform() const {
        Transform transform{};
        std::memcpy(&transform, this, sizeof transform);
        return transform;
    }

    double turned(int row, double x, double y, double z) const {
        double sum = entry[row][0] * x;
        sum = sum + entry[row][1] * y;
        sum = sum + entry[row][2] * z;
        return sum;
    }

    double turned(int row, const Point3d& p) const { return turned(row, p.x, p.y, p.z); }

    Point3d applied(const Point3d& p) const {
        return {turned(0, p) + entry[0][3], turned(1, p) + entry[1][3], turned(2, p) + entry[2][3]};
    }

    void fix(const Point3d& p) {
        entry[0][3] = p.x - turned(0, p);
        entry[1][3] = p.y - turned(1, p);
        entry[2][3] = p.z - turned(2, p);
    }
};

static_assert(sizeof(MatrixModel) == sizeof(Transform));

inline MatrixModel modelScale(const Point3d& scale, const Point3d& fixedPoint) {
    MatrixModel model = {{{scale.x, 0, 0, 0}, {0, scale.y, 0, 0}, {0, 0, scale.z, 0}}};
    model.fix(fixedPoint);
    return model;
}

inline double modelLength(const Point3d& a) {
    double sum = a.x * a.x;
    sum = sum + a.y * a.y;
    sum = sum + a.z * a.z;
    return std::sqrt(sum);
}

inline MatrixModel modelRotationAboutLine(const Point3d& from, const Point3d& to, double angle) {
    MatrixModel model = MatrixModel::identity();
    const Point3d axis = {to.x - from.x, to.y - from.y, to.z - from.z};
    const double length = modelLength(axis);
    if (length > 0) {
        const double reciprocal = 1 / length;
        const double x = axis.x * reciprocal;
        const double y = axis.y * reciprocal;
        const double z = axis.z * reciprocal;
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const double rest = 1 - c;
        model = {{{(x * x) * rest + c, (x * y) * rest - z * s, (x * z) * rest + y * s, 0},
                  {(x * y) * rest + z * s, (y * y) * rest + c, (y * z) * rest - x * s, 0},
                  {(x * z) * rest - y * s, (y * z) * rest + x * s, (z * z) * rest + c, 0}}};
    }
    model.fix(from);
    return model;
}

inline MatrixModel modelMirror(const Point3d& planePoint, const Point3d& normal) {
    MatrixModel model = MatrixModel::identity();
    const double length = modelLength(normal);
    if (!(length > 0)) return model;

    const double reciprocal = 1 / length;
    const double n[] = {normal.x * reciprocal, normal.y * reciprocal, normal.z * reciprocal};
    double dot = n[0] * planePoint.x;
    dot = dot + n[1] * planePoint.y;
    dot = dot + n[2] * planePoint.z;
    for (int i = 0; i != 3; ++i) {
        for (int j = 0; j != 3; ++j) {
            const double delta = i == j ? 1 : 0;
            model.entry[i][j] = delta - (2 * n[i]) * n[j];
        }
        model.entry[i][3] = n[i] * (2 * dot);
    }
    return model;
}

inline MatrixModel modelProduct(const MatrixModel& a, const MatrixModel& b) {
    MatrixModel model{};
    for (int row = 0; row != 3; ++row) {
        for (int column = 0; column != 4; ++column) {
            model.entry[row][column] =
                a.turned(row, b.entry[0][column], b.entry[1][column], b.entry[2][column]);
        }
        model.entry[row][3] = model.entry[row][3] + a.entry[row][3];
    }
    return model;
}

inline MatrixModel modelInverse(const MatrixModel& t) {
    MatrixModel model{};
    for (int row = 0; row != 3; ++row) {
        for (int column = 0; column != 3; ++column) {
            model.entry[row][column] = t.entry[column][row];
        }
        model.entry[row][3] = -model.turned(row, t.entry[0][3], t.entry[1][3], t.entry[2][3]);
    }
    return model;
}

inline Points modelApplied(const Transform& transform, Points points) {
    for (Point3d& point : points) point = MatrixModel::of(transform).applied(point);
    return points;
}

// ---- Multipolygons ------------------------------------------------------------------------------

/// The walk of a multipolygon's rings by byte offsets, on a copy of its words. A word past the end
/// of the polygon list is 0; a run that would pass that end ends its polygon.
class MultiPolygonModel {
public:
    MultiPolygonModel(Words before, const Transform& transform)
        : bytes_(bytesOf(before)), model_(MatrixModel::of(transform)) {
        std::memcpy(bytes_.data(), before.data(), bytes_.size());

        std::vector<std::uint64_t> starts;
        end_ = bytes_.size();
        std::uint64_t at = 24;
        for (std::uint32_t polygon = 0; polygon != word(16); ++polygon) {
            starts.push_back(at);
            at = pastPolygon(at);
        }
        end_ = at;
        for (const std::uint64_t start : starts) walk(start + 8);
    }

    Words words() const { return wordsAt(bytes_.data(), bytes_.size()); }

    int farRings() const { return farRings_; }    // rings that a following word asked for
    int farRuns() const { return farRuns_; }      // runs that would pass the end
    int strayRuns() const { return strayRuns_; }  // runs transformed that no path of the list holds

private:
    std::uint32_t word(std::uint64_t at) const {
        if (at + 4 > end_) return 0;
        std::uint32_t value = 0;
        std::memcpy(&value, &bytes_.at(at), sizeof value);
        return value;
    }

    std::uint64_t pastPolygon(std::uint64_t at) {
        std::uint64_t cursor = at + 8;
        for (std::uint32_t path = 0; path != word(at); ++path) {
            const std::uint32_t runs = word(cursor);
            cursor += 8;
            for (std::uint32_t run = 0; run != runs; ++run) {
                trueRuns_.push_back(cursor);
                cursor += 8 + std::uint64_t{24} * word(cursor + 4);
            }
        }
        return cursor;
    }

    void walk(std::uint64_t at) {
        if (word(at) == 0) return;

        std::uint32_t ring = 0;
        do {
            farRings_ += ring > 0;
            const std::uint32_t runs = word(at);
            at += 8;
            for (std::uint32_t run = 0; run != runs; ++run) {
                if (at + 8 > end_) return;
                const std::uint32_t count = word(at + 4);
                if (at + 8 + std::uint64_t{24} * count > end_) {
                    ++farRuns_;
                    return;
                }
                transform(at, count);
                at += 8 + std::uint64_t{24} * count;
            }
            ++ring;
        } while (ring < word(at));
    }

    void transform(std::uint64_t run, std::uint32_t count) {
        if (count > 0 && std::find(trueRuns_.begin(), trueRuns_.end(), run) == trueRuns_.end()) {
            ++strayRuns_;
        }
        for (std::uint32_t i = 0; i != count; ++i) {
            std::byte* const place = &bytes_.at(run + 8 + std::size_t{24} * i);
            Point3d point{};
            std::memcpy(&point, place, sizeof point);
            point = model_.applied(point);
            std::memcpy(place, &point, sizeof point);
        }
    }

    std::vector<std::byte> bytes_;
    MatrixModel model_;
    std::uint64_t end_ = 0;
    std::vector<std::uint64_t> trueRuns_;
    int farRings_ = 0;
    int farRuns_ = 0;
    int strayRuns_ = 0;
};

// ---- Random input -------------------------------------------------------------------------------

/// Numbers of a seed: most of them ordinary, some small and whole so that sums cancel and products
/// vanish, and, where asked for, the odd ones.
class RandomNumbers {
public:
    enum Kind { ORDINARY, WITH_ODD_ONES };

    explicit RandomNumbers(std::uint32_t seed, Kind kind = ORDINARY) : engine_(seed), kind_(kind) {}

    std::uint32_t below(std::uint32_t bound) {
        return static_cast<std::uint32_t>(engine_() % bound);
    }

    double number() {
        if (kind_ == WITH_ODD_ONES && below(8) == 0) return oddOne();
        if (below(4) == 0) return static_cast<double>(below(5)) - 2;
        const double magnitude = std::ldexp(1, static_cast<int>(below(40)) - 20);
        return (static_cast<double>(engine_() >> 11) / 0x1p52 - 1) * magnitude;
    }

    Point3d point() {
        const double x = number();
        const double y = number();
        const double z = number();
        return {x, y, z};
    }

    Points points(std::uint32_t count) {
        Points points(count);
        for (Point3d& each : points) each = point();
        return points;
    }

    Transform transform() {
        Transform transform{};
        for (double& entry : transform.m) entry = number();
        return transform;
    }

private:
    double oddOne() {
        constexpr double kOddOnes[] = {kInfinity, -kInfinity, kNaN,  0.0,    -0.0,  5e-324,
                                       -5e-324,   1e-200,     1e200, -1e200, 1e300, 2.3e-308};
        return kOddOnes[below(std::size(kOddOnes))];
    }

    std::mt19937_64 engine_;
    Kind kind_;
};

inline std::string seedText(std::uint32_t seed) {
    return "seed " + std::to_string(seed);
}

}  // namespace vexa::test
