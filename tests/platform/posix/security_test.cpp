#include "platform/security.h"

#include "tests/support/allocations.h"

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using platform::freeSecurity;
using platform::makeOpenSecurity;

TEST(OpenSecurity, IsForEverybody) {
    SECURITY_ATTRIBUTES* const sa = makeOpenSecurity();
    ASSERT_NE(sa, nullptr);

    EXPECT_EQ(sa->nLength, 24U);
    ASSERT_NE(sa->lpSecurityDescriptor, nullptr);
    EXPECT_EQ(static_cast<const SECURITY_DESCRIPTOR*>(sa->lpSecurityDescriptor)->mode, 0666U);
    EXPECT_EQ(sa->bInheritHandle, 0);
    freeSecurity(sa);
}

TEST(OpenSecurity, IsFreedWhole) {
    const AllocationWatch watch;
    freeSecurity(makeOpenSecurity());
    freeSecurity(nullptr);

    EXPECT_GT(watch.requests(), 0);
    EXPECT_EQ(watch.blocksInUse(), 0);
}

TEST(OpenSecurity, LeavesNothingBehindWhereMemoryIsShort) {
    for (int nth = 1;; ++nth) {
        const AllocationFailure failure(nth);
        SECURITY_ATTRIBUTES* const sa = makeOpenSecurity();
        freeSecurity(sa);
        EXPECT_EQ(failure.blocksInUse(), 0);
        if (!failure.happened()) {
            EXPECT_NE(sa, nullptr);
            EXPECT_GT(nth, 1);
            break;
        }
        EXPECT_EQ(sa, nullptr);
    }
}

}  // namespace

}  // namespace vexa::test
