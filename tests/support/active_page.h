#pragma once

#include "platform/encodings.h"

#include <gtest/gtest.h>

/// Skips a test that needs a certain ANSI code page where another is active. The suites that use it
/// have "InPage" and the number in their names; `ctest` runs them once under each page.
#define VEXA_NEEDS_PAGE(number)                                      \
    if (::vexa::platform::ansiCodePage() != (number))                \
    GTEST_SKIP() << "needs code page " << (number) << ", active is " \
                 << ::vexa::platform::ansiCodePage()
