#include "tests/support/geometry_samples.h"
#include "vexakit/geometry.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

using CopyRuns = std::uint32_t (*)(const Words& path, std::uint32_t capacity, Point3d* points,
                                   std::uint32_t* copied);

std::uint32_t copyOfLine(const Words& path, std::uint32_t capacity, Point3d* points,
                         std::uint32_t* copied) {
    const Block line = blockOf(joined({headerWords(VEXA_LINESTRING), path}));
    return vexaWKB_lineGetPoints(line.get(), capacity, points, copied);
}

/// As the second of three lines, so that it has to be found and its neighbours may not show.
std::uint32_t copyOfMember(const Words& path, std::uint32_t capacity, Point3d* points,
                           std::uint32_t* copied) {
    const Words before = listWords({runWords(trail(3, 700)), runWords({}), runWords(trail(1))});
    const Words behind = listWords({runWords(trail(2, 800))});
    const Block lines =
        blockOf(joined({headerWords(VEXA_MULTILINESTRING), listWords({before, path, behind})}));
    return vexaWKB_mlineGetPoints(lines.get(), 1, capacity, points, copied);
}

class CopyRunsOf : public testing::TestWithParam<CopyRuns> {
protected:
    /// What one call gives: a status, a count, and the points written, which nothing follows.
    void expect(const Words& path, std::uint32_t capacity, std::uint32_t status,
                const Points& written) {
        SCOPED_TRACE(testing::Message() << "capacity " << capacity);
        std::uint32_t copied = kUntouchedNumber;
        // Slots past a small capacity are there to show that they are not written.
        GuardedPoints room{std::min(capacity, 16U)};

        EXPECT_EQ(GetParam()(path, capacity, room.data(), &copied), status);
        EXPECT_EQ(copied, countOf(written));
        EXPECT_TRUE(room.holdOnly(written));
    }
};

const Points kFirst = trail(2, 10);
const Points kSecond = trail(3, 20);
const Points kThird = trail(1, 30);

TEST_P(CopyRunsOf, CopiesWholeRunsUntilOneDoesNotFit) {
    const Words path =
        listWords({runWords(kFirst, 5), runWords(kSecond, 6), runWords(kThird)}, 0xDDDD);

    expect(path, 0, kFailure, {});
    expect(path, 1, kFailure, {});
    expect(path, 2, kFailure, kFirst);
    expect(path, 3, kFailure, kFirst);  // the third run would fit, but comes after
    expect(path, 4, kFailure, kFirst);
    expect(path, 5, kFailure, kFirst + kSecond);
    expect(path, 6, kSuccess, kFirst + kSecond + kThird);
    expect(path, 7, kSuccess, kFirst + kSecond + kThird);
    expect(path, 0xFFFF'FFFF, kSuccess, kFirst + kSecond + kThird);
}

TEST_P(CopyRunsOf, CopiesNothingOfAPathWithoutRuns) {
    expect(listWords({}), 0, kSuccess, {});
    expect(listWords({}), 5, kSuccess, {});
}

TEST_P(CopyRunsOf, PassesOverRunsWithoutVertices) {
    expect(listWords({runWords({})}), 0, kSuccess, {});
    expect(listWords({runWords({}), runWords(kFirst), runWords({})}), 2, kSuccess, kFirst);
    expect(listWords({runWords({}), runWords(kFirst), runWords({})}), 1, kFailure, {});
}

INSTANTIATE_TEST_SUITE_P(Paths, CopyRunsOf, testing::Values(copyOfLine, copyOfMember),
                         [](const auto& row) {
                             return std::string{row.index == 0 ? "Line" : "LineOfMultiLine"};
                         });

TEST(LineGetPoints, CopiesNothingOfARunThatTellsMoreThanAnyRoom) {
    const Block line =
        blockOf(joined({headerWords(2), {2, 0}, runWords(kFirst), {0, 0xFFFF'FFFF}}));
    std::uint32_t copied = kUntouchedNumber;
    GuardedPoints room{4};

    EXPECT_EQ(vexaWKB_lineGetPoints(line.get(), 4, room.data(), &copied), kFailure);
    EXPECT_EQ(copied, 2U);
    EXPECT_TRUE(room.holdOnly(kFirst));
}

TEST(LineGetPoints, GivesTheRunsOfAppendsInTheirOrder) {
    Block line = made(vexaWKB_createLine, kFirst);
    ASSERT_EQ(grow(vexaWKB_addLineToLine, line, kSecond), kSuccess);
    ASSERT_EQ(grow(vexaWKB_addLineToLine, line, kThird), kSuccess);
    std::uint32_t copied = kUntouchedNumber;
    GuardedPoints room{6};

    EXPECT_EQ(vexaWKB_lineGetPoints(line.get(), 6, room.data(), &copied), kSuccess);
    EXPECT_EQ(copied, 6U);
    EXPECT_TRUE(room.holdOnly(kFirst + kSecond + kThird));
}

TEST(MlineGetPoints, FindsEveryLine) {
    Block lines = made(vexaWKB_createMultiLine, kFirst);
    ASSERT_EQ(grow(vexaWKB_addLineToMultiLine, lines, kSecond), kSuccess);
    ASSERT_EQ(grow(vexaWKB_addLineToMultiLine, lines, kThird), kSuccess);
    const Points expected[] = {kFirst, kSecond, kThird};

    for (std::uint32_t index = 0; index != 3; ++index) {
        std::uint32_t copied = kUntouchedNumber;
        GuardedPoints room{3};

        EXPECT_EQ(vexaWKB_mlineGetPoints(lines.get(), index, 3, room.data(), &copied), kSuccess);
        EXPECT_EQ(copied, countOf(expected[index]));
        EXPECT_TRUE(room.holdOnly(expected[index]));
    }
}

TEST(MlineGetPoints, RefusesAnIndexPastTheEnd) {
    const Block lines = blockOf(
        joined({headerWords(5),
                listWords({listWords({runWords(kFirst)}), listWords({runWords(kThird)})})}));
    const Block none = blockOf(joined({headerWords(5), {0, 0}}));
    std::uint32_t copied = kUntouchedNumber;
    GuardedPoints room{8};

    for (const std::uint32_t index : {2U, 3U, 0x8000'0000U, 0xFFFF'FFFFU}) {
        EXPECT_EQ(vexaWKB_mlineGetPoints(lines.get(), index, 8, room.data(), &copied), kFailure);
    }
    EXPECT_EQ(vexaWKB_mlineGetPoints(none.get(), 0, 8, room.data(), &copied), kFailure);
    EXPECT_EQ(copied, kUntouchedNumber);
    EXPECT_TRUE(room.areUntouched());
}

TEST(MlineGetPoints, ReadsNothingBehindTheLineItGives) {
    const Block lines =
        blockOf(joined({headerWords(5), {0xFFFF'FFFF, 0}, listWords({runWords(kFirst)})}));
    std::uint32_t copied = kUntouchedNumber;
    GuardedPoints room{2};

    EXPECT_EQ(vexaWKB_mlineGetPoints(lines.get(), 0, 2, room.data(), &copied), kSuccess);
    EXPECT_EQ(copied, 2U);
    EXPECT_TRUE(room.holdOnly(kFirst));
}

}  // namespace
