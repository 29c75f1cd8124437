#include "tests/support/allocations.h"
#include "tests/support/geometry_bytes.h"
#include "tests/support/wide_text.h"
#include "tests/support/writer_check.h"
#include "vexakit/wkt.h"

#include <cstdint>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

TEST(Writers, NeverAllocate) {
    const Points points = {{1.0 / 3, -2e300, 0.1}, {4.9e-324, 1e-5, 123456789}};
    const Bytes geometries[] = {
        pointOf(points[0]),
        lineOf({points, points}),
        polygonOf({{points}}),
        multipointOf(points),
        multilineOf({{points}}),
        multipolygonOf({{{points}}}),
        collectionOf({pointOf(points[0]), sized(lineOf({points}), 0), header(9)}),
    };
    GuardedText text(600);
    for (std::int32_t precision = -1; precision <= 17; ++precision) {
        const PrecisionScope scope(precision);
        for (const Bytes& geometry : geometries) {
            for (const std::int32_t bytes : {0, 20, 60, 200, 1200}) {
                const AllocationWatch watch;
                vexaWKB_convertBinaryToText(geometry.geometry(), text.data(), bytes);
                EXPECT_EQ(watch.requests(), 0)
                    << "type " << geometry.geometry()->type << ", precision " << precision;
            }
        }
    }
}

TEST(Writers, WriteWhereNothingCanBeAllocated) {
    const Bytes line = lineOf({{{1, 2, 3}, {4, 5, 6}}});
    GuardedText text(50);
    const AllocationFailure failure(1);

    EXPECT_EQ(vexaWKT_linestring(line.geometry(), text.data(), 50), 23);
    EXPECT_FALSE(failure.happened());
}

}  // namespace
}  // namespace vexa::test
