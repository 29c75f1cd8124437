#include "tests/support/allocations.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <cstdint>
#include <cstdlib>
#include <ostream>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

struct ReleaseCase {
    const char* name;
    std::uint32_t (*release)(void* block);
};

void PrintTo(const ReleaseCase& row, std::ostream* out) {
    *out << row.name;
}

class StringFree : public testing::TestWithParam<ReleaseCase> {};
INSTANTIATE_TEST_SUITE_P(Table, StringFree,
                         testing::Values(ReleaseCase{"Narrow", &string_freeA},
                                         ReleaseCase{"Wide", &string_freeW}),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringFree, RefusesNull) {
    EXPECT_EQ(GetParam().release(nullptr), static_cast<std::uint32_t>(VEXA_FAILURE));
}

TEST_P(StringFree, GivesTheBlockBack) {
    const AllocationWatch watch;
    void* block = std::malloc(24);
    ASSERT_NE(block, nullptr);
    ASSERT_EQ(watch.blocksInUse(), 1);

    EXPECT_EQ(GetParam().release(block), static_cast<std::uint32_t>(VEXA_SUCCESS));
    EXPECT_EQ(watch.blocksInUse(), 0);
}

}  // namespace

}  // namespace vexa::test
