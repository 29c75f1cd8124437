#include "tests/support/runtime_print.h"
#include "tests/support/writer_check.h"
#include "vexakit/wkt.h"

#include <atomic>
#include <cstdint>
#include <limits>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr Point3d kPoint = {1.23456, 0, -7};

WideString pointText(const Point3d& point) {
    GuardedText text(4096);
    const std::int64_t length = vexaWKT_pointList(1, &point, text.data(), 4096);
    EXPECT_EQ(length, static_cast<std::int64_t>(text.text().size()));
    return text.text();
}

TEST(GetPrecision, IsSixAtFirst) {
    EXPECT_EQ(vexaWKT_getPrecision(), 6);
    EXPECT_EQ(pointText({1.23456789, 1, 1}), wide("1.23457 1 1"));
}

TEST(SetPrecision, ReturnsThePrecisionBefore) {
    EXPECT_EQ(vexaWKT_setPrecision(3), 6);
    EXPECT_EQ(vexaWKT_setPrecision(-4), 3);
    EXPECT_EQ(vexaWKT_setPrecision(17), -4);
    EXPECT_EQ(vexaWKT_setPrecision(6), 17);
}

TEST(SetPrecision, StoresEveryValueUnchecked) {
    for (const std::int32_t precision :
         {0, 1, 6, 17, 18, 500, -1, -500, std::numeric_limits<std::int32_t>::max(),
          std::numeric_limits<std::int32_t>::min()}) {
        const PrecisionScope scope(precision);
        EXPECT_EQ(vexaWKT_getPrecision(), std::int64_t{precision});
    }
}

TEST(SetPrecision, RoundsAllThreeCoordinates) {
    const PrecisionScope scope(3);

    EXPECT_EQ(pointText(kPoint), wide("1.23 0 -7"));
    EXPECT_EQ(pointText({0.98765, -0.98765, 98.765}), wide("0.988 -0.988 98.8"));
}

TEST(SetPrecision, CountsZeroAsOne) {
    const PrecisionScope scope(0);

    EXPECT_EQ(pointText({0.123, 7.8, -3}), wide("0.1 8 -3"));
}

TEST(SetPrecision, CountsNegativeValuesAsSix) {
    for (const std::int32_t precision : {-1, -6, -17, std::numeric_limits<std::int32_t>::min()}) {
        const PrecisionScope scope(precision);
        EXPECT_EQ(pointText({1.23456789, -0.000123456789, 123456.789}),
                  wide("1.23457 -0.000123457 123457"))
            << "precision " << precision;
    }
}

TEST(SetPrecision, SeventeenTellsEveryDoubleApart) {
    const PrecisionScope scope(17);

    EXPECT_EQ(pointText({0.1, 0.10000000000000002, 3}),
              wide("0.10000000000000001 0.10000000000000002 3"));
}

TEST(SetPrecision, SeveralHundredPrintFully) {
    const Point3d longest = {-std::numeric_limits<double>::min() * (1 - 1.0 / (1LL << 52)), 1e-300,
                             std::numeric_limits<double>::denorm_min()};
    for (const std::int32_t precision : {100, 309, 500, 766, 767, 768, 799, 800, 1000}) {
        const PrecisionScope scope(precision);
        EXPECT_EQ(pointText(longest), runtimePoint(longest, precision))
            << "precision " << precision;
    }
#ifndef _WIN32
    const PrecisionScope scope(400);
    EXPECT_EQ(pointText({0.1, 1e22, 0.5}),
              wide("0.1000000000000000055511151231257827021181583404541015625 "
                   "10000000000000000000000 0.5"));
#endif
}

TEST(SetPrecision, HoldsFromTheNextCallOn) {
    const PrecisionScope first(2);
    EXPECT_EQ(pointText(kPoint), wide("1.2 0 -7"));

    const PrecisionScope second(4);
    EXPECT_EQ(pointText(kPoint), wide("1.235 0 -7"));
}

TEST(SetPrecision, ReachesEveryWriter) {
    const PrecisionScope scope(2);
    const Points points = {kPoint};
    const Bytes geometries[] = {
        pointOf(kPoint),
        lineOf({points}),
        polygonOf({{points}}),
        multipointOf(points),
        multilineOf({{points}}),
        multipolygonOf({{{points}}}),
        collectionOf({pointOf(kPoint)}),
    };
    for (const Bytes& buffer : geometries) {
        GuardedText text(100);
        vexaWKB_convertBinaryToText(buffer.geometry(), text.data(), 200);
        EXPECT_NE(text.text().find(wide("(1.2 0 -7)")), WideString::npos) << readable(text.text());
    }
}

// The precision is read once a call: a change by another thread shows from the next call on.
TEST(SetPrecision, NeverChangesWithinAList) {
    const PrecisionScope scope(2);
    const std::vector<Point3d> points(40, {1.0 / 3, 1.0 / 3, 1.0 / 3});
    const auto expected = [&](std::int32_t precision) {
        WideString text;
        for (const Point3d& point : points) {
            if (!text.empty()) text += ',';
            text += runtimePoint(point, precision);
        }
        return text;
    };
    const WideString low = expected(2);
    const WideString high = expected(9);

    std::atomic<bool> isDone = false;
    std::thread changer([&] {
        while (!isDone) {
            vexaWKT_setPrecision(9);
            vexaWKT_setPrecision(2);
        }
    });
    int mixtures = 0;
    for (int round = 0; round < 2000; ++round) {
        GuardedText text(2048);
        vexaWKT_pointList(points.size(), points.data(), text.data(), 2048);
        const WideString written = text.text();
        if (written != low && written != high) ++mixtures;
    }
    isDone = true;
    changer.join();

    EXPECT_EQ(mixtures, 0);
}

}  // namespace
}  // namespace vexa::test
