#include "platform/encodings.h"

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

// Without it the tests of a page would be skipped, and nobody would see it.
TEST(ActivePage, IsTheOneThatThisRunIsFor) {
    const char* const expected =
        std::getenv("VEXA_EXPECTED_PAGE");  // NOLINT(concurrency-mt-unsafe)
    if (!expected) GTEST_SKIP() << "this run is for no certain page";

    EXPECT_EQ(std::to_string(platform::ansiCodePage()), expected);
}

}  // namespace

}  // namespace vexa::test
