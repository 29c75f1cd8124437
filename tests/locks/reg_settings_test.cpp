#include "tests/locks/lock_fields.h"
#include "vexakit/locks.h"

#include <cstdint>
#include <type_traits>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

static_assert(sizeof(CRegSettings) == 8);
static_assert(alignof(CRegSettings) == 8);
static_assert(!std::is_polymorphic_v<CRegSettings>);
static_assert(
    std::is_same_v<decltype(std::declval<CRegSettings&>() = std::declval<const CRegSettings&>()),
                   CRegSettings&>);

std::uint64_t valueOf(const CRegSettings& settings) {
    return fieldAt<std::uint64_t>(settings, 0);
}

CRegSettings settingsOf(std::uint64_t value) {
    CRegSettings settings;
    setFieldAt(settings, 0, value);
    return settings;
}

TEST(CRegSettings, AreZeroAtFirst) {
    EXPECT_EQ(valueOf(CRegSettings{}), 0U);
}

TEST(CRegSettingsAssignment, CopiesAll64BitsAndLeavesTheSource) {
    for (const std::uint64_t value : {0ULL, 1ULL, 0x8000000000000001ULL, 0xFEDCBA9876543210ULL}) {
        const CRegSettings source = settingsOf(value);
        CRegSettings target = settingsOf(~value);
        target = source;

        EXPECT_EQ(valueOf(target), value);
        EXPECT_EQ(valueOf(source), value);
    }
}

TEST(CRegSettingsAssignment, GivesTheTarget) {
    const CRegSettings source = settingsOf(5);
    CRegSettings target;

    EXPECT_EQ(&(target = source), &target);
}

TEST(CRegSettingsAssignment, Chains) {
    const CRegSettings source = settingsOf(5);
    CRegSettings first;
    CRegSettings second;
    first = second = source;

    EXPECT_EQ(valueOf(first), 5U);
    EXPECT_EQ(valueOf(second), 5U);
}

TEST(CRegSettingsAssignment, ToItselfChangesNothing) {
    CRegSettings settings = settingsOf(0x123456789ABCDEF0);
    const CRegSettings& itself = settings;
    settings = itself;

    EXPECT_EQ(valueOf(settings), 0x123456789ABCDEF0U);
}

TEST(CRegSettingsAssignment, WritesNoByteBeside) {
    struct {
        std::uint64_t before = 1;
        CRegSettings settings;
        std::uint64_t after = 2;
    } block;
    block.settings = settingsOf(~std::uint64_t{0});

    EXPECT_EQ(block.before, 1U);
    EXPECT_EQ(valueOf(block.settings), ~std::uint64_t{0});
    EXPECT_EQ(block.after, 2U);
}

}  // namespace

}  // namespace vexa::test
