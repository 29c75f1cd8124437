#include "tests/support/geometry_bytes.h"
#include "tests/support/wide_text.h"
#include "tests/support/writer_check.h"
#include "tests/support/writer_model.h"
#include "vexakit/wkt.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

const Runs kTwoRuns = {{{0, 0, 0}, {1, 1, 1}}, {{2, 2, 2}, {3, 3, 3}}};

Written sublines(const Runs& runs, std::int64_t capacity) {
    const Bytes path = Bytes().path(runs);
    return writtenBy(vexaWKT_sublineSeq, path.at<Path>(0), capacity);
}

Written rings(const Paths& paths, std::int64_t capacity) {
    const Bytes list = Bytes().pathList(paths);
    return writtenBy(vexaWKT_ringSeq, list.at<PathList>(0), capacity);
}

TEST(SublineSeq, WritesOneRunInParentheses) {
    const Written written = sublines({{{0, 0, 0}, {1, 1, 1}}}, 50);

    EXPECT_EQ(written.result, 13);
    EXPECT_EQ(written.text.text(), wide("(0 0 0,1 1 1)"));
}

TEST(SublineSeq, ClosesOnceMoreBetweenTwoRuns) {
    EXPECT_EQ(sublines(kTwoRuns, 50).text.text(), wide("(0 0 0,1 1 1))(2 2 2,3 3 3)"));
    EXPECT_EQ(sublines({{{1, 1, 1}}, {{2, 2, 2}}, {{3, 3, 3}}}, 50).text.text(),
              wide("(1 1 1))(2 2 2))(3 3 3)"));
}

TEST(SublineSeq, GivesNothingForNoRuns) {
    const Written written = sublines({}, 50);

    EXPECT_EQ(written.result, 0);
    EXPECT_TRUE(written.text.isUntouchedFrom(0));
}

TEST(SublineSeq, GivesNothingWhereThereIsNoRoom) {
    for (const std::int64_t capacity : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-100},
                                        std::numeric_limits<std::int64_t>::min()}) {
        const Written written = sublines(kTwoRuns, capacity);
        EXPECT_EQ(written.result, 0) << "capacity " << capacity;
        EXPECT_TRUE(written.text.isUntouchedFrom(0)) << "capacity " << capacity;
    }
}

TEST(SublineSeq, FailsForAnEmptyRun) {
    EXPECT_EQ(sublines({{}}, 50).result, -1);
    EXPECT_EQ(sublines({{{1, 1, 1}}, {}}, 50).result, -1);
}

TEST(SublineSeq, TerminatesItsOpeningBehindTheCapacity) {
    const Written written = sublines(kTwoRuns, 1);

    EXPECT_EQ(written.result, -1);
    EXPECT_EQ(written.text.text(), wide("("));
    EXPECT_EQ(written.text[1], 0);
    EXPECT_TRUE(written.text.areGuardsUntouched());
}

TEST(SublineSeq, TerminatesItsClosingBehindTheCapacity) {
    const Written written = sublines({{{1, 2, 3}}}, 7);

    EXPECT_EQ(written.result, 7);
    EXPECT_EQ(written.text.text(), wide("(1 2 3)"));
    EXPECT_EQ(written.text[7], 0);
    EXPECT_TRUE(written.text.areGuardsUntouched());
}

TEST(SublineSeq, FailsWhereThePointsLeaveNoRoomForTheClosing) {
    const Written written = sublines({{{1, 2, 3}}}, 6);

    EXPECT_EQ(written.result, -1);
    EXPECT_EQ(written.text[5], wide("3").front());
    EXPECT_TRUE(written.text.isUntouchedFrom(6));
}

TEST(SublineSeq, FailsWhereTheFurtherClosingDoesNotFit) {
    const Written written = sublines(kTwoRuns, 13);

    EXPECT_EQ(written.result, -1);
    EXPECT_EQ(written.text.text(), wide("(0 0 0,1 1 1)"));
}

TEST(SublineSeq, GivesTheTextSoFarWhereTheRoomEndsBetweenTwoRuns) {
    const Written written = sublines(kTwoRuns, 14);

    EXPECT_EQ(written.result, 14);
    EXPECT_EQ(written.text.text(), wide("(0 0 0,1 1 1))"));
    EXPECT_EQ(written.text[14], 0);
    EXPECT_TRUE(written.text.areGuardsUntouched());
}

TEST(SublineSeq, TakesTheLargestCapacity) {
    const Bytes path = Bytes().path(kTwoRuns);
    GuardedText text(100);

    EXPECT_EQ(
        vexaWKT_sublineSeq(path.at<Path>(0), text.data(), std::numeric_limits<std::int64_t>::max()),
        27);
}

TEST(SublineSeq, FailsForANullPointer) {
    const Bytes path = Bytes().path(kTwoRuns);
    GuardedText text(50);

    EXPECT_EQ(vexaWKT_sublineSeq(nullptr, text.data(), 50), -1);
    EXPECT_EQ(vexaWKT_sublineSeq(path.at<Path>(0), nullptr, 50), -1);
}

TEST(RingSeq, JoinsPathsByCommas) {
    const Written written = rings({{{{0, 0, 0}, {1, 1, 1}}}, {{{2, 2, 2}}}, kTwoRuns}, 60);

    EXPECT_EQ(written.text.text(), wide("(0 0 0,1 1 1),(2 2 2),(0 0 0,1 1 1))(2 2 2,3 3 3)"));
    EXPECT_EQ(written.result, static_cast<std::int64_t>(written.text.text().size()));
}

TEST(RingSeq, GivesNothingForNoPaths) {
    const Written written = rings({}, 50);

    EXPECT_EQ(written.result, 0);
    EXPECT_TRUE(written.text.isUntouchedFrom(0));
}

TEST(RingSeq, GivesNothingWhereThereIsNoRoom) {
    for (const std::int64_t capacity :
         {std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
        const Written written = rings({kTwoRuns}, capacity);
        EXPECT_EQ(written.result, 0) << "capacity " << capacity;
        EXPECT_TRUE(written.text.isUntouchedFrom(0)) << "capacity " << capacity;
    }
}

TEST(RingSeq, FailsForAPathWithoutRuns) {
    EXPECT_EQ(rings({{}}, 50).result, -1);
    EXPECT_EQ(rings({{{{1, 1, 1}}}, {}}, 50).result, -1);
}

TEST(RingSeq, FailsWhereTheCommaDoesNotFit) {
    const Written written = rings({{{{1, 2, 3}}}, {{{4, 5, 6}}}}, 7);

    EXPECT_EQ(written.result, -1);
    EXPECT_EQ(written.text.text(), wide("(1 2 3)"));
}

TEST(RingSeq, GivesTheTextSoFarWhereTheCommaTakesTheLastCell) {
    const Written written = rings({{{{1, 2, 3}}}, {{{4, 5, 6}}}}, 8);

    EXPECT_EQ(written.result, 8);
    EXPECT_EQ(written.text.text(), wide("(1 2 3),"));
    EXPECT_EQ(written.text[8], 0) << "the comma's terminator, behind the capacity";
    EXPECT_TRUE(written.text.areGuardsUntouched());
}

TEST(RingSeq, FailsForANullPointer) {
    const Bytes list = Bytes().pathList({kTwoRuns});
    GuardedText text(50);

    EXPECT_EQ(vexaWKT_ringSeq(nullptr, text.data(), 50), -1);
    EXPECT_EQ(vexaWKT_ringSeq(list.at<PathList>(0), nullptr, 50), -1);
}

TEST(Sequences, WriteAtEveryCapacityWhatTheStepsSay) {
    const Paths lists[] = {
        {},
        {kTwoRuns},
        {{{{1, 2, 3}}, {{4, 5, 6}}, {{7, 8, 9}}}, {{{-0.5, 1e-9, 2}}}},
        {{{{1, 2, 3}}}, {}, {{{4, 5, 6}}}},
        {{{}, {{1, 2, 3}}}},
    };
    const WriterPair ringPair{vexaWKT_ringSeq, &WriterModel::ringSeq};
    const WriterPair sublinePair{vexaWKT_sublineSeq, &WriterModel::sublineSeq};
    for (const Paths& paths : lists) {
        const Bytes list = Bytes().pathList(paths);
        for (std::int64_t capacity = -3; capacity < 70; ++capacity) {
            EXPECT_TRUE(agree(ringPair, list.data(), capacity));
            for (const Runs& runs : paths) {
                EXPECT_TRUE(agree(sublinePair, Bytes().path(runs).data(), capacity));
            }
        }
    }
}

}  // namespace
}  // namespace vexa::test
