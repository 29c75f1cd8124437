#include "tests/support/geometry_bytes.h"
#include "tests/support/wide_text.h"
#include "tests/support/writer_check.h"
#include "vexakit/wkt.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

const Bytes kPoint = pointOf({1, 2, 3});
const Bytes kEmptyCollection = collectionOf({});
constexpr std::int64_t kNotSimple = 32768;
constexpr std::int32_t kMostNegative = std::numeric_limits<std::int32_t>::min();

std::int64_t convert(const Bytes& geometry, GuardedText& text, std::int32_t bytes) {
    return vexaWKB_convertBinaryToText(geometry.geometry(), text.data(), bytes);
}

TEST(ConvertBinaryToText, CountsItsCapacityInBytes) {
    GuardedText text(14);

    EXPECT_EQ(convert(kPoint, text, 26), 12);
    EXPECT_EQ(text.text(), wide("point(1 2 3)"));
    EXPECT_TRUE(text.isUntouchedFrom(13));
    EXPECT_EQ(convert(kPoint, text, 24), -1);
}

TEST(ConvertBinaryToText, LosesTheLastByteOfAnOddCapacity) {
    GuardedText text(14);

    EXPECT_EQ(convert(kPoint, text, 27), 12);
    EXPECT_EQ(convert(kPoint, text, 25), -1);
    EXPECT_EQ(convert(kEmptyCollection, text, 2 * 19 + 1), 0);
}

TEST(ConvertBinaryToText, TakesANegativeCapacityAsUnlimited) {
    for (const std::int32_t bytes : {-1, -2, -3, -1000, kMostNegative + 1, kMostNegative}) {
        GuardedText text(40);
        EXPECT_EQ(convert(kPoint, text, bytes), 12) << bytes << " bytes";
        EXPECT_EQ(text.text(), wide("point(1 2 3)")) << bytes << " bytes";
        EXPECT_EQ(convert(kEmptyCollection, text, bytes), 20) << bytes << " bytes";
    }
}

TEST(ConvertBinaryToText, HasNoRoomInLessThanTwoBytes) {
    GuardedText text(2);

    EXPECT_EQ(convert(kPoint, text, 0), kNotSimple) << "the dispatcher's answer to no room";
    EXPECT_EQ(convert(kPoint, text, 1), kNotSimple);
    EXPECT_EQ(convert(kPoint, text, 2), -1);
    EXPECT_EQ(convert(kEmptyCollection, text, 0), 0);
    EXPECT_EQ(convert(kEmptyCollection, text, 1), 0);
    EXPECT_TRUE(text.isUntouchedFrom(0));
}

TEST(ConvertBinaryToText, WritesEveryType) {
    const Points line = {{0, 0, 0}, {1, 1, 1}};
    const struct {
        Bytes geometry;
        const char* text;
    } cases[] = {
        {kPoint, "point(1 2 3)"},
        {lineOf({line}), "linestring(0 0 0,1 1 1)"},
        {polygonOf({{line}}), "polygon((0 0 0,1 1 1))"},
        {multipointOf(line), "multipoint((0 0 0),(1 1 1))"},
        {multilineOf({{line}}), "multilinestring((0 0 0,1 1 1))"},
        {multipolygonOf({{{line}}}), "multipolygon(((0 0 0,1 1 1)))"},
        {collectionOf({kPoint}), "geometrycollection(point(1 2 3))"},
    };
    for (const auto& [geometry, expected] : cases) {
        GuardedText text(50);
        EXPECT_EQ(convert(geometry, text, 100),
                  static_cast<std::int64_t>(std::string(expected).size()));
        EXPECT_EQ(text.text(), wide(expected));
    }
}

TEST(ConvertBinaryToText, Gives32768ForAnUnknownType) {
    for (const std::uint32_t type : {0U, 8U, 9U, 0xFFFFFFFFU}) {
        Bytes geometry = kPoint;
        geometry.setWord(8, type);
        GuardedText text(50);
        EXPECT_EQ(convert(geometry, text, 100), kNotSimple) << "type " << type;
        EXPECT_TRUE(text.isUntouchedFrom(0)) << "type " << type;
    }
}

TEST(ConvertBinaryToText, Gives32768ForANullGeometry) {
    GuardedText text(50);

    EXPECT_EQ(vexaWKB_convertBinaryToText(nullptr, text.data(), 100), kNotSimple);
    EXPECT_EQ(vexaWKB_convertBinaryToText(nullptr, nullptr, 0), kNotSimple);
    EXPECT_TRUE(text.isUntouchedFrom(0));
}

TEST(ConvertBinaryToText, GivesItsWritersFailureForANullText) {
    EXPECT_EQ(vexaWKB_convertBinaryToText(kPoint.geometry(), nullptr, 100), kNotSimple);
    EXPECT_EQ(vexaWKB_convertBinaryToText(kEmptyCollection.geometry(), nullptr, 100), -1);
}

TEST(ConvertBinaryToText, GivesWhatTheWritersGiveAtEveryCapacity) {
    const Bytes geometries[] = {
        kPoint,
        multilineOf({{{{1, 2, 3}}, {{4, 5, 6}}}}),
        collectionOf({kPoint, multilineOf({{{{4, 5, 6}}}})}),
    };
    for (const Bytes& geometry : geometries) {
        const WriterPair pair = WriterPair::of(geometry);
        for (std::int32_t bytes = 2; bytes < 150; ++bytes) {
            GuardedText converted(76);
            GuardedText direct(76);
            EXPECT_EQ(convert(geometry, converted, bytes),
                      pair.write(geometry.data(), direct.data(), bytes / 2))
                << bytes << " bytes";
            for (std::size_t index = 0; index < direct.size(); ++index) {
                EXPECT_EQ(converted[index], direct[index]) << bytes << " bytes, cell " << index;
            }
        }
    }
}

}  // namespace
}  // namespace vexa::test
