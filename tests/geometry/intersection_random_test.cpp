#include "tests/support/intersection_random.h"

#include "vexakit/intersection.h"

#include <array>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

/// A family of random pairs: each of the 36 ordered pairs of types so many times.
struct Family {
    const char* name;
    Placing placing;
    std::size_t largest;  ///< vertices of a run, about
    std::size_t specials;
    int rounds;
    double scale = 1;
    double shift = 0;
};

constexpr Family kFamilies[] = {
    {"SmallOnAGrid", Placing::Grid, 8, 0, 60},
    {"SmallInAPlane", Placing::Plane, 8, 0, 60},
    {"SmallOnAShearedGrid", Placing::ShearedGrid, 8, 0, 60},
    {"SmallInATiltedPlane", Placing::TiltedPlane, 8, 0, 60},
    {"SmallInCells", Placing::Cells, 6, 0, 60},
    {"SmallInSpace", Placing::Space, 8, 0, 60},
    {"SmallNearlyFlat", Placing::NearlyFlat, 8, 0, 60},
    {"WithSpecialsOnAGrid", Placing::Grid, 8, 12, 80},
    {"WithSpecialsInSpace", Placing::Space, 8, 12, 60},
    {"MiddlingOnAGrid", Placing::Grid, 50, 0, 10},
    {"MiddlingInAPlane", Placing::Plane, 50, 0, 10},
    {"MiddlingInATiltedPlane", Placing::TiltedPlane, 50, 0, 10},
    {"MiddlingInSpace", Placing::Space, 50, 0, 10},
    {"MiddlingWithSpecials", Placing::Plane, 60, 200, 10},
    {"FarFromTheOrigin", Placing::Grid, 8, 0, 30, 1, 1e6},
    {"InATiltedPlaneFarFromTheOrigin", Placing::TiltedPlane, 30, 0, 10, 1, -1e7},
    {"SquaresUnderflow", Placing::Grid, 8, 0, 30, 0x1p-540},
    {"SquaresUnderflowInSpace", Placing::Space, 30, 0, 10, 0x1p-540},
    {"SubnormalOnAGrid", Placing::Grid, 8, 0, 30, 0x1p-1070},
    {"SquaresOverflow", Placing::Grid, 8, 0, 30, 0x1p+530},
    {"SquaresOverflowInATiltedPlane", Placing::TiltedPlane, 30, 0, 10, 0x1p+510},
    {"DifferencesOverflow", Placing::Plane, 30, 0, 10, 0x1p+1021},
    {"LargeInAPlane", Placing::Plane, 300, 0, 2},
    {"LargeOnAGrid", Placing::Grid, 300, 0, 2},
    {"LargeInATiltedPlane", Placing::TiltedPlane, 300, 0, 2},
    {"LargeWithSpecials", Placing::Plane, 300, 1000, 2},
};

class IntersectGeometryAtRandom : public testing::TestWithParam<Family> {};

TEST_P(IntersectGeometryAtRandom, LeavesTheFlagOfThePlainWalk) {
    const Family& family = GetParam();
    std::array<int, 2> seen{};
    for (int round = 0; round < family.rounds; ++round) {
        for (std::uint32_t pair = 0; pair < 36; ++pair) {
            const std::uint64_t seed = 1000003ULL * static_cast<unsigned>(round) + pair;
            RandomShapes random(seed, family.placing, family.largest);
            random.sprinkleSpecials(family.specials);
            random.resize(family.scale, family.shift);
            const Shape first = random.ofType(pair / 6 + 1);
            const Shape second = random.ofType(pair % 6 + 1);
            const double tolerance = random.tolerance();
            const Bytes firstBuffer = bufferOf(first);
            const Bytes secondBuffer = bufferOf(second);

            for (const std::uint32_t before : {0U, 1U, 7U}) {
                const std::uint32_t expected = model::intersect(first, second, tolerance, before);
                std::uint32_t result = before;
                const std::uint32_t status = vexaWKB_intersectGeometry(
                    firstBuffer.geometry(), secondBuffer.geometry(), tolerance, &result);
                EXPECT_EQ(status, 0U);
                EXPECT_EQ(result, expected)
                    << "seed " << seed << ", tolerance " << tolerance << ", result before "
                    << before << "\n"
                    << (family.largest < 20
                            ? testing::PrintToString(first) + "\n" + testing::PrintToString(second)
                            : std::string());
                if (before == 0 && expected < 2) ++seen[expected];
            }
        }
    }
    // Neither answer is rare, so a test that always gives the same one is found out.
    EXPECT_GT(seen[0], 36 * family.rounds / 10);
    EXPECT_GT(seen[1], 36 * family.rounds / 10);
}

INSTANTIATE_TEST_SUITE_P(Families, IntersectGeometryAtRandom, testing::ValuesIn(kFamilies),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace vexa::test
