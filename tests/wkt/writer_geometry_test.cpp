#include "tests/support/geometry_bytes.h"
#include "tests/support/wide_text.h"
#include "tests/support/writer_check.h"
#include "vexakit/wkt.h"

#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr std::int64_t kNotSimple = 32768;
const Points kLine = {{0, 0, 0}, {1, 1, 1}};

struct TypeCase {
    const char* name;
    Bytes geometry;
    std::string text;
};

class GeometryOfType : public testing::TestWithParam<TypeCase> {};

TEST_P(GeometryOfType, GoesToItsWriter) {
    const Written written = writtenBy(vexaWKT_geometry, GetParam().geometry.geometry(), 100);

    EXPECT_EQ(written.text.text(), wide(GetParam().text));
    EXPECT_EQ(written.result, static_cast<std::int64_t>(GetParam().text.size()));
}

TEST_P(GeometryOfType, GivesWhatItsWriterGivesAtEveryCapacity) {
    const GeometryBuffer* const geometry = GetParam().geometry.geometry();
    const WriterPair own = WriterPair::of(GetParam().geometry);
    for (std::int64_t capacity = -3; capacity < 60; ++capacity) {
        if (capacity == 0) continue;
        GuardedText text(61);
        EXPECT_EQ(writtenBy(vexaWKT_geometry, geometry, capacity).result,
                  own.write(GetParam().geometry.data(), text.data(), capacity))
            << "capacity " << capacity;
    }
}

TEST_P(GeometryOfType, FailsInTheWriterForANegativeCapacity) {
    const std::int64_t failure =
        GetParam().text.starts_with("multil") || GetParam().text.starts_with("multipolygon") ? 0
                                                                                             : -1;
    for (const std::int64_t capacity :
         {std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
        const Written written =
            writtenBy(vexaWKT_geometry, GetParam().geometry.geometry(), capacity);
        EXPECT_EQ(written.result, failure) << "capacity " << capacity;
        EXPECT_TRUE(written.text.isUntouchedFrom(0));
    }
}

TEST_P(GeometryOfType, Gives32768ForNothingToWriteOrNowhereToWriteIt) {
    const GeometryBuffer* const geometry = GetParam().geometry.geometry();
    GuardedText text(50);

    EXPECT_EQ(vexaWKT_geometry(nullptr, text.data(), 50), kNotSimple);
    EXPECT_EQ(vexaWKT_geometry(geometry, nullptr, 50), kNotSimple);
    EXPECT_EQ(vexaWKT_geometry(geometry, text.data(), 0), kNotSimple);
    EXPECT_EQ(vexaWKT_geometry(nullptr, nullptr, -1), kNotSimple);
    EXPECT_TRUE(text.isUntouchedFrom(0));
}

INSTANTIATE_TEST_SUITE_P(
    Table, GeometryOfType,
    testing::Values(
        TypeCase{"Point", pointOf({1, 2, 3}), "point(1 2 3)"},
        TypeCase{"Linestring", lineOf({kLine}), "linestring(0 0 0,1 1 1)"},
        TypeCase{"Polygon", polygonOf({{kLine}}), "polygon((0 0 0,1 1 1))"},
        TypeCase{"Multipoint", multipointOf(kLine), "multipoint((0 0 0),(1 1 1))"},
        TypeCase{"Multilinestring", multilineOf({{kLine}}), "multilinestring((0 0 0,1 1 1))"},
        TypeCase{"Multipolygon", multipolygonOf({{{kLine}}}), "multipolygon(((0 0 0,1 1 1)))"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Geometry, Gives32768ForOtherTypes) {
    for (const std::uint32_t type :
         {0U, 7U, 8U, 9U, 256U + 1U, 0x10001U, 0x7FFFFFFFU, 0x80000001U, 0xFFFFFFFFU}) {
        Bytes buffer = pointOf({1, 2, 3});
        buffer.setWord(8, type);
        for (const std::int64_t capacity : {std::int64_t{-1}, std::int64_t{1}, std::int64_t{50}}) {
            const Written written = writtenBy(vexaWKT_geometry, buffer.geometry(), capacity);
            EXPECT_EQ(written.result, kNotSimple) << "type " << type << ", capacity " << capacity;
            EXPECT_TRUE(written.text.isUntouchedFrom(0)) << "type " << type;
        }
    }
}

}  // namespace
}  // namespace vexa::test
