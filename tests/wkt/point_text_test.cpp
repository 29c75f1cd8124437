#include "wkt/point_text.h"

#include "tests/support/runtime_print.h"
#include "tests/support/wide_text.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr PointFormat kPlain = {.precision = 6, .decimalPoint = '.', .inParentheses = false};
constexpr PointFormat kInParentheses = {.precision = 6, .decimalPoint = '.', .inParentheses = true};
constexpr Point3d kPoint = {1.5, -2, 0.25};

TEST(PrintPoint, SeparatesTheCoordinatesByBlanks) {
    GuardedText text(40);

    EXPECT_EQ(printPoint(kPoint, kPlain, text.data(), 40), 11);
    EXPECT_EQ(text.text(), wide("1.5 -2 0.25"));
    EXPECT_TRUE(text.isUntouchedFrom(12));
}

TEST(PrintPoint, PutsParenthesesAround) {
    GuardedText text(40);

    EXPECT_EQ(printPoint(kPoint, kInParentheses, text.data(), 40), 13);
    EXPECT_EQ(text.text(), wide("(1.5 -2 0.25)"));
    EXPECT_TRUE(text.isUntouchedFrom(14));
}

TEST(PrintPoint, FillsTheRoomWithoutTerminator) {
    for (const PointFormat& format : {kPlain, kInParentheses}) {
        const WideString whole = runtimePoint(kPoint, 6, format.inParentheses);
        const auto length = static_cast<std::int64_t>(whole.size());
        GuardedText text(whole.size());

        EXPECT_EQ(printPoint(kPoint, format, text.data(), length), length);
        EXPECT_EQ(text.text(), whole);
        EXPECT_TRUE(text.areGuardsUntouched());
    }
}

TEST(PrintPoint, WritesNothingWhereTheRoomIsTooSmall) {
    for (const PointFormat& format : {kPlain, kInParentheses}) {
        const auto length =
            static_cast<std::int64_t>(runtimePoint(kPoint, 6, format.inParentheses).size());
        for (std::int64_t room = 1; room < length; ++room) {
            GuardedText text(20);
            EXPECT_EQ(printPoint(kPoint, format, text.data(), room), -1) << "room " << room;
            EXPECT_TRUE(text.isUntouchedFrom(0)) << "room " << room;
        }
    }
}

TEST(PrintPoint, TakesTheLargestRoom) {
    GuardedText text(40);

    EXPECT_EQ(printPoint(kPoint, kPlain, text.data(), std::numeric_limits<std::int64_t>::max()),
              11);
    EXPECT_EQ(text.text(), wide("1.5 -2 0.25"));
}

TEST(PrintPoint, PutsTheGivenDecimalPointIntoEveryNumber) {
    PointFormat format = kInParentheses;
    format.decimalPoint = ',';
    GuardedText text(40);

    EXPECT_EQ(printPoint({1.5, -2.5, 1e-300 / 3}, format, text.data(), 40), 23);
    EXPECT_EQ(text.text(), wide("(1,5 -2,5 3,33333e-301)"));
}

TEST(PrintPoint, TakesAWideDecimalPoint) {
    PointFormat format = kPlain;
    format.decimalPoint = 0x66B;
    GuardedText text(40);

    printPoint({0.5, 1, 2}, format, text.data(), 40);

    EXPECT_EQ(text.text(), wide("0") + VexaWChar{0x66B} + wide("5 1 2"));
}

TEST(PrintPoint, PrintsThreeOfTheLongestNumbers) {
    const double longest = -std::numeric_limits<double>::min() * 0.9999999999999998;
    PointFormat format = kInParentheses;
    format.precision = 1200;
    const Point3d point = {longest, longest, longest};
    const WideString whole = runtimePoint(point, 1200, true);
    const auto length = static_cast<std::int64_t>(whole.size());
    GuardedText text(whole.size() + 1);

    EXPECT_EQ(printPoint(point, format, text.data(), length + 1), length);
    EXPECT_EQ(readable(text.text()), readable(whole));
}

}  // namespace
}  // namespace vexa::test
