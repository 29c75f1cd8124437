#include "platform/posix/code_pages.h"
#include "tests/support/code_page_text.h"
#include "tests/support/wide_text.h"

#include <windows.h>

#include <iostream>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

auto toSystemPage(unsigned number) {
    return [number](const VexaWChar* source, int length, char* out, int room) {
        return WideCharToMultiByte(number, 0, source, length, out, room, nullptr, nullptr);
    };
}

class SystemsCodePage : public testing::TestWithParam<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Table, SystemsCodePage, testing::ValuesIn(kAllCodePages),
                         [](const auto& info) { return std::to_string(info.param); });

TEST_P(SystemsCodePage, ConvertsEveryUnitAlike) {
    unsigned differing = 0;
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const WideString text(1, static_cast<VexaWChar>(unit));
        const Converted theirs = convertedInto(8, text, 1, toSystemPage(GetParam()));
        const Converted ours = convertedInto(8, text, 1, toPage(GetParam()));
        ASSERT_GT(theirs.returned, 0) << "unit " << unit;
        if (ours.returned == theirs.returned && ours.room == theirs.room) continue;

        if (differing++ < 10) ADD_FAILURE() << "unit " << unit;
    }
    std::cout << "Code page " << GetParam() << ": " << differing << " of 65536 units differ\n";
    EXPECT_EQ(differing, 0U);
}

TEST_P(SystemsCodePage, ConvertsRandomTextAlikeIntoRoomsOfAnySize) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);

    for (int round = 0; round < 20000; ++round) {
        const WideString text = randomText(random, 60);
        const int length = round % 2 == 0 ? -1 : static_cast<int>(text.size());
        const int size = toSystemPage(GetParam())(text.c_str(), length, nullptr, 0);
        ASSERT_EQ(toPage(GetParam())(text.c_str(), length, nullptr, 0), size) << readable(text);

        // As often too small as not.
        const int room = static_cast<int>(random() % static_cast<unsigned>(2 * size + 2));
        const Converted theirs = convertedInto(room, text, length, toSystemPage(GetParam()));
        const Converted ours = convertedInto(room, text, length, toPage(GetParam()));
        ASSERT_EQ(ours.returned, theirs.returned) << readable(text) << " in " << room;
        ASSERT_EQ(ours.room, theirs.room) << readable(text) << " in " << room;
        ASSERT_TRUE(ours.guardsUntouched) << readable(text) << " in " << room;
    }
}

}  // namespace

}  // namespace vexa::test
