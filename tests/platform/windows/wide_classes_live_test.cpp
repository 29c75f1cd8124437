#include "platform/posix/wide_classes.h"

#include <cwctype>
#include <iostream>
#include <ostream>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

struct ClassCase {
    const char* name;
    bool (*ours)(VexaWChar unit) noexcept;
    int (*theirs)(wint_t unit);
};

void PrintTo(const ClassCase& row, std::ostream* out) {
    *out << row.name;
}

class RuntimesWideClass : public testing::TestWithParam<ClassCase> {};
INSTANTIATE_TEST_SUITE_P(Table, RuntimesWideClass,
                         testing::Values(ClassCase{"Space", &platform::isSpaceUnit, &iswspace},
                                         ClassCase{"Control", &platform::isControlUnit, &iswcntrl}),
                         [](const auto& row) { return row.param.name; });

TEST_P(RuntimesWideClass, HasTheSameUnits) {
    unsigned differing = 0;
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const bool theirs = GetParam().theirs(static_cast<wint_t>(unit)) != 0;
        if (GetParam().ours(static_cast<VexaWChar>(unit)) == theirs) continue;
        if (differing++ < 10) ADD_FAILURE() << "unit " << unit;
    }
    std::cout << GetParam().name << ": " << differing << " of 65536 units differ\n";
    EXPECT_EQ(differing, 0U);
}

}  // namespace

}  // namespace vexa::test
