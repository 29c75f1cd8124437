#include "transform/matrix.h"

#include "geometry/layout.h"
#include "transform/run_transform.h"
#include "transform/vector.h"
#include "vexakit/transform.h"

#include <cmath>
#include <cstddef>

namespace vexa {

namespace {

constexpr double kDegreesPerRadian = 57.29577951308232;
constexpr double kRadiansPerDegree = 0.017453292519943295;

Point3d linearPartOf(const Transform& transform, const Point3d& point) {
    const double* const m = transform.m;
    return {m[0] * point.x + m[1] * point.y + m[2] * point.z,
            m[4] * point.x + m[5] * point.y + m[6] * point.z,
            m[8] * point.x + m[9] * point.y + m[10] * point.z};
}

Point3d applied(const Transform& transform, const Point3d& point) {
    const Point3d turned = linearPartOf(transform, point);
    return {turned.x + transform.m[3], turned.y + transform.m[7], turned.z + transform.m[11]};
}

void setTranslation(Transform& transform, const Point3d& translation) {
    transform.m[3] = translation.x;
    transform.m[7] = translation.y;
    transform.m[11] = translation.z;
}

void fixPoint(Transform& transform, const Point3d& point) {
    setTranslation(transform, point - linearPartOf(transform, point));
}

/// Scales a vector to length 1, by the reciprocal. False for one of length 0 or not a number.
bool normalise(Point3d& vector) {
    const double size = length(vector);
    if (!(size > 0)) return false;

    vector = vector * (1 / size);
    return true;
}

Transform rotationAbout(Point3d axis, double angle) {
    if (!normalise(axis)) return kIdentity;

    const auto [x, y, z] = axis;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double versine = 1 - c;
    return {{x * x * versine + c, x * y * versine - z * s, x * z * versine + y * s, 0,  //
             x * y * versine + z * s, y * y * versine + c, y * z * versine - x * s, 0,  //
             x * z * versine - y * s, y * z * versine + x * s, z * z * versine + c, 0}};
}

Transform reflectionIn(const Point3d& planePoint, Point3d n) {
    if (!normalise(n)) return kIdentity;

    const Point3d shift = n * (2 * dot(n, planePoint));
    return {{1 - 2 * n.x * n.x, 0 - 2 * n.x * n.y, 0 - 2 * n.x * n.z, shift.x,  //
             0 - 2 * n.y * n.x, 1 - 2 * n.y * n.y, 0 - 2 * n.y * n.z, shift.y,  //
             0 - 2 * n.z * n.x, 0 - 2 * n.z * n.y, 1 - 2 * n.z * n.z, shift.z}};
}

Transform product(const Transform& a, const Transform& b) {
    Transform result{};
    const auto column = [&b](int k) { return Point3d{b.m[k], b.m[4 + k], b.m[8 + k]}; };
    for (int k = 0; k < 3; ++k) {
        const Point3d turned = linearPartOf(a, column(k));
        result.m[k] = turned.x;
        result.m[4 + k] = turned.y;
        result.m[8 + k] = turned.z;
    }
    setTranslation(result, applied(a, column(3)));
    return result;
}

}  // namespace

void applyTransformToPoint(const Transform& transform, Point3d* out, const Point3d* in) {
    *out = applied(transform, *in);
}

namespace {

// Coefficients have to be spread before the first step, which few points do not make up for.
platform::VectorWidth widthWorthwhile(std::int32_t points) {
    if (points < 4) return platform::VectorWidth::Plain;
    return points < 8 ? platform::VectorWidth::Avx2 : platform::VectorWidth::Avx512;
}

}  // namespace

void applyTransformToPoints(const Transform& transform, Point3d* out, const Point3d* in,
                            std::int32_t count) {
    transformRuns(transform, OneMove({out, in, count}), widthWorthwhile(count));
}

Transform invertRigidTransform(const Transform& transform) {
    const double* const m = transform.m;
    Transform inverse = {{m[0], m[4], m[8], 0, m[1], m[5], m[9], 0, m[2], m[6], m[10], 0}};
    const Point3d turned = linearPartOf(inverse, {m[3], m[7], m[11]});
    setTranslation(inverse, {-turned.x, -turned.y, -turned.z});
    return inverse;
}

Transform frameFromAxes(const Point3d& origin, const Point3d& xAxis, const Point3d& yAxis,
                        const Point3d& zAxis) {
    return {{xAxis.x, yAxis.x, zAxis.x, origin.x,  //
             xAxis.y, yAxis.y, zAxis.y, origin.y,  //
             xAxis.z, yAxis.z, zAxis.z, origin.z}};
}

}  // namespace vexa

using namespace vexa;

uint32_t transform_radians2degrees(double angle, double* result) {
    if (!result) return kFailure;

    *result = angle * kDegreesPerRadian;
    return kSuccess;
}

uint32_t transform_degrees2radians(double angle, double* result) {
    if (!result) return kFailure;

    *result = angle * kRadiansPerDegree;
    return kSuccess;
}

uint32_t transform_initIdentity(Transform* transform) {
    if (!transform) return kFailure;

    *transform = kIdentity;
    return kSuccess;
}

uint32_t transform_initTranslation(Transform* transform, const Point3d* delta) {
    if (!transform || !delta) return kFailure;

    *transform = {{1, 0, 0, delta->x, 0, 1, 0, delta->y, 0, 0, 1, delta->z}};
    return kSuccess;
}

uint32_t transform_initScale(Transform* transform, const Point3d* scale,
                             const Point3d* fixedPoint) {
    if (!transform || !scale || !fixedPoint) return kFailure;

    Transform result = {{scale->x, 0, 0, 0, 0, scale->y, 0, 0, 0, 0, scale->z, 0}};
    fixPoint(result, *fixedPoint);
    *transform = result;
    return kSuccess;
}

uint32_t transform_initRotation(Transform* transform, double r00, double r01, double r02,
                                double r10, double r11, double r12, double r20, double r21,
                                double r22) {
    if (!transform) return kFailure;

    *transform = {{r00, r01, r02, 0, r10, r11, r12, 0, r20, r21, r22, 0}};
    return kSuccess;
}

uint32_t transform_initRotationAboutLine(Transform* transform, const Point3d* linePoint0,
                                         const Point3d* linePoint1, double angle) {
    if (!transform || !linePoint0 || !linePoint1) return kFailure;

    Transform result = rotationAbout(*linePoint1 - *linePoint0, angle);
    fixPoint(result, *linePoint0);
    *transform = result;
    return kSuccess;
}

uint32_t transform_initMirror(Transform* transform, const Point3d* planePoint,
                              const Point3d* planeNormal) {
    if (!transform || !planePoint || !planeNormal) return kFailure;

    *transform = reflectionIn(*planePoint, *planeNormal);
    return kSuccess;
}

uint32_t transform_setFixedPoint(Transform* transform, const Point3d* point) {
    if (!transform || !point) return kFailure;

    fixPoint(*transform, *point);
    return kSuccess;
}

uint32_t transform_multiply(const Transform* first, const Transform* second, Transform* result) {
    if (!first || !second || !result) return kFailure;

    *result = product(*first, *second);
    return kSuccess;
}

uint32_t transform_point(const Transform* transform, Point3d* point) {
    if (!transform || !point) return kFailure;

    applyTransformToPoint(*transform, point, point);
    return kSuccess;
}

uint32_t transform_pointArray(const Transform* transform, uint64_t count, Point3d* points) {
    if (!transform || !points) return kFailure;

    applyTransformToPoints(*transform, points, points, static_cast<std::int32_t>(count));
    return kSuccess;
}
