#include "tests/support/geometry_samples.h"
#include "vexakit/geometry.h"

#include <string>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

constexpr std::uint32_t kRoom = 4;

/// An accessor, called for the first element of the geometry with room enough.
struct Accessor {
    const char* name;
    std::uint32_t type;
    std::uint32_t (*call)(const GeometryBuffer* geometry, std::uint32_t* number, Point3d* points);
    bool hasNumber;
    bool hasPoints;
};

const Accessor kAccessors[] = {
    {"PointGetPoint", 1,
     [](const GeometryBuffer* geometry, std::uint32_t*, Point3d* points) {
         return vexaWKB_pointGetPoint(geometry, points);
     },
     false, true},
    {"LineGetPointCount", 2,
     [](const GeometryBuffer* geometry, std::uint32_t* number, Point3d*) {
         return vexaWKB_lineGetPointCount(geometry, number);
     },
     true, false},
    {"LineGetPoints", 2,
     [](const GeometryBuffer* geometry, std::uint32_t* number, Point3d* points) {
         return vexaWKB_lineGetPoints(geometry, kRoom, points, number);
     },
     true, true},
    {"PolygonGetPointCount", 3,
     [](const GeometryBuffer* geometry, std::uint32_t* number, Point3d*) {
         return vexaWKB_polygonGetPointCount(geometry, number);
     },
     true, false},
    {"PolygonGetPoints", 3,
     [](const GeometryBuffer* geometry, std::uint32_t* number, Point3d* points) {
         return vexaWKB_polygonGetPoints(geometry, kRoom, points, number);
     },
     true, true},
    {"MpointGetPointCount", 4,
     [](const GeometryBuffer* geometry, std::uint32_t* number, Point3d*) {
         return vexaWKB_mpointGetPointCount(geometry, number);
     },
     true, false},
    {"MpointGetPoint", 4,
     [](const GeometryBuffer* geometry, std::uint32_t*, Point3d* points) {
         return vexaWKB_mpointGetPoint(geometry, 0, points);
     },
     false, true},
    {"MpointGetPoints", 4,
     [](const GeometryBuffer* geometry, std::uint32_t* number, Point3d* points) {
         return vexaWKB_mpointGetPoints(geometry, kRoom, points, number);
     },
     true, true},
    {"MlineGetLineCount", 5,
     [](const GeometryBuffer* geometry, std::uint32_t* number, Point3d*) {
         return vexaWKB_mlineGetLineCount(geometry, number);
     },
     true, false},
    {"MlineGetPointCount", 5,
     [](const GeometryBuffer* geometry, std::uint32_t* number, Point3d*) {
         return vexaWKB_mlineGetPointCount(geometry, 0, number);
     },
     true, false},
    {"MlineGetPoints", 5,
     [](const GeometryBuffer* geometry, std::uint32_t* number, Point3d* points) {
         return vexaWKB_mlineGetPoints(geometry, 0, kRoom, points, number);
     },
     true, true},
    {"MpolygonGetPolyCount", 6,
     [](const GeometryBuffer* geometry, std::uint32_t* number, Point3d*) {
         return vexaWKB_mpolygonGetPolyCount(geometry, number);
     },
     true, false},
    {"MpolygonGetPointCount", 6,
     [](const GeometryBuffer* geometry, std::uint32_t* number, Point3d*) {
         return vexaWKB_mpolygonGetPointCount(geometry, 0, number);
     },
     true, false},
    {"MpolygonGetPoints", 6,
     [](const GeometryBuffer* geometry, std::uint32_t* number, Point3d* points) {
         return vexaWKB_mpolygonGetPoints(geometry, 0, kRoom, points, number);
     },
     true, true},
};

/// A geometry of a type with one vertex, in one part.
Block sampleOf(std::uint32_t type) {
    const Words run = runWords(trail(1));
    switch (type) {
        case 1: return blockOf(joined({headerWords(1), wordsOf(trail(1))}));
        case 2: return blockOf(joined({headerWords(2), listWords({run})}));
        case 3:
        case 5: return blockOf(joined({headerWords(type), listWords({listWords({run})})}));
        case 4: return blockOf(joined({headerWords(4), {1, 0}, wordsOf(trail(1))}));
        default:
            return blockOf(joined({headerWords(6), listWords({listWords({listWords({run})})})}));
    }
}

class GeometryAccessor : public testing::TestWithParam<Accessor> {
protected:
    void expectRefusal(const GeometryBuffer* geometry, bool withNumber = true,
                       bool withPoints = true) {
        const std::uint32_t status = GetParam().call(geometry, withNumber ? &number_ : nullptr,
                                                     withPoints ? room_.data() : nullptr);
        EXPECT_EQ(status, kFailure);
        EXPECT_EQ(number_, kUntouchedNumber);
        EXPECT_TRUE(room_.areUntouched());
    }

    std::uint32_t number_ = kUntouchedNumber;
    GuardedPoints room_{kRoom};
};

TEST_P(GeometryAccessor, ReadsItsType) {
    const Block geometry = sampleOf(GetParam().type);

    EXPECT_EQ(GetParam().call(geometry.get(), &number_, room_.data()), kSuccess);
    EXPECT_EQ(number_, GetParam().hasNumber ? 1U : kUntouchedNumber);
    EXPECT_TRUE(room_.holdOnly(GetParam().hasPoints ? trail(1) : Points{}));
}

TEST_P(GeometryAccessor, ReadsNoWordOfTheHeaderButTheType) {
    const Block geometry = sampleOf(GetParam().type);
    geometry->headerWord0 = 0;
    geometry->headerWord1 = 0xFFFF'FFFF;
    geometry->size = 3;

    EXPECT_EQ(GetParam().call(geometry.get(), &number_, room_.data()), kSuccess);
    EXPECT_TRUE(room_.holdOnly(GetParam().hasPoints ? trail(1) : Points{}));
}

TEST_P(GeometryAccessor, RefusesEveryOtherType) {
    const Block geometry = sampleOf(GetParam().type);
    for (const std::uint32_t type : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U,
                                     GetParam().type | 0x100U, GetParam().type | 0x8000'0000U}) {
        if (type == GetParam().type) continue;
        SCOPED_TRACE(testing::Message() << "type " << type);
        geometry->type = type;
        expectRefusal(geometry.get());
    }
}

TEST_P(GeometryAccessor, RefusesANullBuffer) {
    expectRefusal(nullptr);
}

TEST_P(GeometryAccessor, RefusesNullOutputs) {
    const Block geometry = sampleOf(GetParam().type);

    if (GetParam().hasNumber) expectRefusal(geometry.get(), false, true);
    if (GetParam().hasPoints) expectRefusal(geometry.get(), true, false);
    expectRefusal(geometry.get(), false, false);
    expectRefusal(nullptr, false, false);
}

TEST_P(GeometryAccessor, LeavesTheBufferAlone) {
    const Block geometry = sampleOf(GetParam().type);
    constexpr std::size_t kBytes = 40;  // those of the smallest sample
    const Words before = wordsOf(geometry, kBytes);

    EXPECT_EQ(GetParam().call(geometry.get(), &number_, room_.data()), kSuccess);
    EXPECT_EQ(wordsOf(geometry, kBytes), before);
}

INSTANTIATE_TEST_SUITE_P(Table, GeometryAccessor, testing::ValuesIn(kAccessors),
                         [](const auto& row) { return std::string{row.param.name}; });

TEST(GetType, TellsTheWordAsItStands) {
    const Block geometry = blockOf(headerWords(0));
    for (const std::uint32_t stored :
         {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, 0x8000'0000U, 0xFFFF'FFFFU}) {
        geometry->type = stored;
        std::uint32_t type = kUntouchedNumber;

        EXPECT_EQ(vexaWKB_getType(geometry.get(), &type), kSuccess);
        EXPECT_EQ(type, stored);
    }
}

TEST(GetType, RefusesNullPointers) {
    const Block geometry = sampleOf(1);
    std::uint32_t type = kUntouchedNumber;

    EXPECT_EQ(vexaWKB_getType(nullptr, &type), kFailure);
    EXPECT_EQ(vexaWKB_getType(geometry.get(), nullptr), kFailure);
    EXPECT_EQ(vexaWKB_getType(nullptr, nullptr), kFailure);
    EXPECT_EQ(type, kUntouchedNumber);
}

TEST(PointGetPoint, CopiesBitForBit) {
    const Words vertex{1, 0x7FF4'0000, 0, 0x8000'0000, 0xFFFF'FFFF, 0xFFFF'FFFF};
    const Block geometry = blockOf(joined({headerWords(1), vertex}));
    Point3d point{};

    EXPECT_EQ(vexaWKB_pointGetPoint(geometry.get(), &point), kSuccess);
    EXPECT_EQ(wordsAt(&point, sizeof point), vertex);
}

}  // namespace
