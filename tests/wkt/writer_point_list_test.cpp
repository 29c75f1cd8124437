#include "tests/support/geometry_bytes.h"
#include "tests/support/wide_text.h"
#include "tests/support/writer_check.h"
#include "tests/support/writer_model.h"
#include "vexakit/wkt.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr std::array<Point3d, 3> kPoints = {{{1, 2, 3}, {-4.5, 0, 1e20}, {7, 8, 9}}};
const std::string kHuge = exponentDigits() == 2 ? "1e+20" : "1e+020";

struct ListWriter {
    const char* name;
    std::int64_t (*write)(std::uint64_t, const Point3d*, VexaWChar*, std::int64_t);
    std::int64_t (WriterModel::*model)(std::uint64_t, const std::byte*, std::int64_t, std::int64_t);
    std::string first;
    std::string all;
};

class PointLists : public testing::TestWithParam<ListWriter> {
protected:
    std::int64_t write(std::uint64_t count, GuardedText& text, std::int64_t capacity) const {
        return GetParam().write(count, kPoints.data(), text.data(), capacity);
    }
};

TEST_P(PointLists, JoinsThePointsByCommas) {
    GuardedText text(100);

    const std::int64_t length = write(3, text, 100);

    EXPECT_EQ(text.text(), wide(GetParam().all));
    EXPECT_EQ(length, static_cast<std::int64_t>(GetParam().all.size()));
    EXPECT_TRUE(text.isUntouchedFrom(GetParam().all.size() + 1)) << "one terminator";
}

TEST_P(PointLists, WritesAsManyPointsAsCounted) {
    GuardedText text(100);

    EXPECT_EQ(write(1, text, 100), static_cast<std::int64_t>(GetParam().first.size()));
    EXPECT_EQ(text.text(), wide(GetParam().first));
}

TEST_P(PointLists, GiveNothingForNoPoints) {
    GuardedText text(10);

    EXPECT_EQ(write(0, text, 10), 0);
    EXPECT_EQ(write(0, text, 0), 0);
    EXPECT_EQ(write(0, text, -1), 0);
    EXPECT_TRUE(text.isUntouchedFrom(0));
}

TEST_P(PointLists, GiveNothingWhereThereIsNoRoom) {
    GuardedText text(10);

    EXPECT_EQ(write(3, text, 0), 0);
    EXPECT_EQ(write(3, text, -1), 0);
    EXPECT_EQ(write(3, text, std::numeric_limits<std::int64_t>::min()), 0);
    EXPECT_TRUE(text.isUntouchedFrom(0));
}

TEST_P(PointLists, FillTheCapacityWithoutTerminator) {
    const std::size_t length = GetParam().all.size();
    GuardedText text(length + 1);

    EXPECT_EQ(write(3, text, static_cast<std::int64_t>(length)), static_cast<std::int64_t>(length));
    EXPECT_TRUE(text.isUntouchedFrom(length));
    EXPECT_EQ(text[length - 1], wide(GetParam().all).back());
}

TEST_P(PointLists, TerminateWhereOneCellIsLeft) {
    const std::size_t length = GetParam().all.size();
    GuardedText text(length + 1);

    EXPECT_EQ(write(3, text, static_cast<std::int64_t>(length) + 1),
              static_cast<std::int64_t>(length));
    EXPECT_EQ(text.text(), wide(GetParam().all));
    EXPECT_EQ(text[length], 0);
}

TEST_P(PointLists, FailWhereACommaWouldTakeTheLastCell) {
    const std::size_t length = GetParam().first.size();
    GuardedText text(length + 2);

    EXPECT_EQ(write(2, text, static_cast<std::int64_t>(length) + 1), -1);
    EXPECT_EQ(text.text(), wide(GetParam().first)) << "the text so far, and no comma";
    EXPECT_TRUE(text.isUntouchedFrom(length + 1));
}

TEST_P(PointLists, FailWhereAPointDoesNotFit) {
    GuardedText text(1);

    EXPECT_EQ(write(1, text, 1), -1);
    EXPECT_TRUE(text.areGuardsUntouched());
}

TEST_P(PointLists, CountPointsWith64Bits) {
    const auto roomForOne = static_cast<std::int64_t>(GetParam().first.size()) + 1;
    GuardedText text(64);

    EXPECT_EQ(write(std::uint64_t{1} << 32, text, roomForOne), -1) << "not a count of 0";
    EXPECT_EQ(write((std::uint64_t{1} << 32) + 1, text, roomForOne), -1) << "not a count of 1";
    EXPECT_EQ(write(std::uint64_t{1} << 63, text, roomForOne), -1) << "not a negative count";
    EXPECT_EQ(write(~std::uint64_t{0}, text, roomForOne), -1) << "not a count of -1";
}

TEST_P(PointLists, TakeTheLargestCapacity) {
    GuardedText text(100);

    EXPECT_EQ(write(3, text, std::numeric_limits<std::int64_t>::max()),
              static_cast<std::int64_t>(GetParam().all.size()));
    EXPECT_EQ(text.text(), wide(GetParam().all));
}

TEST_P(PointLists, FailForANullPointer) {
    GuardedText text(10);

    EXPECT_EQ(GetParam().write(1, nullptr, text.data(), 10), -1);
    EXPECT_EQ(GetParam().write(1, kPoints.data(), nullptr, 10), -1);
    EXPECT_TRUE(text.isUntouchedFrom(0));
}

TEST_P(PointLists, GiveNothingForNoPointsAtANullPointer) {
    GuardedText text(10);

    EXPECT_EQ(GetParam().write(0, nullptr, text.data(), 10), 0);
}

TEST_P(PointLists, WriteAtEveryCapacityWhatTheStepsSay) {
    const auto length = static_cast<std::int64_t>(GetParam().all.size());
    const auto* const points = reinterpret_cast<const std::byte*>(kPoints.data());
    for (std::uint64_t count = 0; count <= kPoints.size(); ++count) {
        for (std::int64_t capacity = -3; capacity <= length + 3; ++capacity) {
            WriterModel model;
            const std::int64_t wanted = (model.*GetParam().model)(count, points, 0, capacity);
            GuardedText text(static_cast<std::size_t>(length) + 4);

            EXPECT_EQ(write(count, text, capacity), wanted)
                << count << " points, capacity " << capacity;
            EXPECT_TRUE(model.holdsIn(text)) << count << " points, capacity " << capacity;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Both, PointLists,
                         testing::Values(ListWriter{"PointList", vexaWKT_pointList,
                                                    &WriterModel::pointList, "1 2 3",
                                                    "1 2 3,-4.5 0 " + kHuge + ",7 8 9"},
                                         ListWriter{"MultipointList", vexaWKT_multipointList,
                                                    &WriterModel::multipointList, "(1 2 3)",
                                                    "(1 2 3),(-4.5 0 " + kHuge + "),(7 8 9)"}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace vexa::test
