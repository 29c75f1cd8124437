#include "geometry/walkers.h"

#include "tests/support/geometry_samples.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

/// Bytes from a structure to what is just past it.
std::uint64_t distance(const void* structure, const void* past) {
    return reinterpret_cast<std::uintptr_t>(past) - reinterpret_cast<std::uintptr_t>(structure);
}

/// The words as a structure in a block that ends where they end.
template <class Structure>
class Placed {
public:
    explicit Placed(const Words& words) : block_(blockOf(words)) {}

    const Structure& operator*() const { return *reinterpret_cast<const Structure*>(block_.get()); }

private:
    Block block_;
};

TEST(SkipRun, StepsOverTheVertices) {
    const Placed<PointRun> empty{{0xDD, 0}};
    const Placed<PointRun> run{runWords(trail(3), 0xDD)};

    EXPECT_EQ(distance(&*empty, skipRun(*empty)), 8U);
    EXPECT_EQ(distance(&*run, skipRun(*run)), 8U + 24 * 3);
}

TEST(SkipRun, ReadsNoVertex) {
    const Placed<PointRun> run{{0, 100'000'000}};

    EXPECT_EQ(distance(&*run, skipRun(*run)), 2'400'000'008U);
}

TEST(SkipPath, StepsOverTheRuns) {
    const Placed<Path> empty{{0, 0xDD}};
    const Placed<Path> one{listWords({runWords(trail(2), 1)}, 0xDD)};
    const Placed<Path> three{
        listWords({runWords(trail(2), 1), runWords({}), runWords(trail(3))}, 0xDD)};

    EXPECT_EQ(distance(&*empty, skipPath(*empty)), 8U);
    EXPECT_EQ(distance(&*one, skipPath(*one)), 8U + 8 + 48);
    EXPECT_EQ(distance(&*three, skipPath(*three)), 8U + 3 * 8 + 24 * 5);
}

TEST(SkipPathList, StepsOverThePaths) {
    const Words path = listWords({runWords(trail(2)), runWords(trail(1))}, 0xDD);
    const Placed<PathList> empty{{0, 0xDD}};
    const Placed<PathList> one{listWords({path}, 0xDD)};
    const Placed<PathList> three{listWords({path, listWords({}), path}, 0xDD)};

    EXPECT_EQ(distance(&*empty, skipPathList(*empty)), 8U);
    EXPECT_EQ(distance(&*one, skipPathList(*one)), 8U + 96);
    EXPECT_EQ(distance(&*three, skipPathList(*three)), 8U + 96 + 8 + 96);
}

struct MemberCase {
    const char* name;
    Words member;
    std::uint64_t bytes;
};

const MemberCase kMemberCases[] = {
    {"KnownSize", headerWords(2, 80), 80},
    {"KnownSizeIsTrusted", joined({headerWords(1, 64), wordsOf(trail(1))}), 64},
    {"KnownSizeOfUnknownType", headerWords(9, 24), 24},
    {"KnownSizeOfReservedType", headerWords(8, 16), 16},
    {"RoundedUpFromOne", headerWords(1, 1), 8},
    {"RoundedUpFromOneMore", headerWords(1, 41), 48},
    {"RoundedUpFromOneLess", headerWords(1, 47), 48},
    {"ComputedSize", joined({headerWords(1), wordsOf(trail(1))}), 40},
    {"ComputedSizeOfALine",
     joined({headerWords(2), listWords({runWords(trail(2)), runWords(trail(1))})}), 24 + 56 + 32},
    {"ComputedSizeOfACollection", joined({headerWords(7), listWords({headerWords(2, 13)})}), 40},
    {"ReservedTypeHasNoBytes", headerWords(8), 0},
    {"LargestRoundSize", headerWords(2, 0xFFFF'FFF8), 0xFFFF'FFF8},
    // Rounding up wraps at 32 bits, as it does where the size of the collection is told.
    {"SizeThatRoundsToNothing", headerWords(2, 0xFFFF'FFF9), 0},
    {"LargestSize", headerWords(2, 0xFFFF'FFFF), 0},
};

class SkipCollectionMember : public testing::TestWithParam<MemberCase> {};

TEST_P(SkipCollectionMember, StepsOverTheRoundedSize) {
    const Block member = blockOf(GetParam().member);

    EXPECT_EQ(distance(member.get(), skipCollectionMember(member.get())), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Table, SkipCollectionMember, testing::ValuesIn(kMemberCases),
                         [](const auto& row) { return std::string{row.param.name}; });

TEST(SkipCollectionMember, IsNullForNull) {
    EXPECT_EQ(skipCollectionMember(nullptr), nullptr);
}

TEST(SkipCollectionMember, IsNullWhereNoSizeCanBeComputed) {
    for (const std::uint32_t type : {0U, 9U, 0x8000'0001U, 0xFFFF'FFFFU}) {
        const Block member = blockOf(headerWords(type));
        EXPECT_EQ(skipCollectionMember(member.get()), nullptr) << "type " << type;
    }
}

TEST(SkipCollectionMember, WalksACollectionToItsEnd) {
    const Words point = joined({headerWords(1, 37), wordsOf(trail(1))});
    const Words line = joined({headerWords(2), listWords({runWords(trail(2))})});
    const Words geometry = joined({headerWords(7), listWords({point, line, point})});
    const Block collection = blockOf(geometry);
    const auto* member = after<GeometryBuffer>(memberListOf(*collection));

    EXPECT_EQ(member->type, 1U);
    member = skipCollectionMember(member);
    EXPECT_EQ(member->type, 2U);
    member = skipCollectionMember(member);
    EXPECT_EQ(member->type, 1U);
    member = skipCollectionMember(member);
    EXPECT_EQ(distance(collection.get(), member), bytesOf(geometry));
}

TEST(PaddingTo8, BringsASizeToTheNextMultiple) {
    constexpr std::uint32_t kExpected[] = {0, 7, 6, 5, 4, 3, 2, 1};
    for (const std::uint32_t base : {0U, 8U, 40U, 0x7FFF'FFF8U, 0xFFFF'FFF8U}) {
        for (std::uint32_t past = 0; past != 8; ++past) {
            EXPECT_EQ(paddingTo8(base + past), kExpected[past]) << base + past;
        }
    }
}

}  // namespace
