#include "tests/support/geometry_samples.h"
#include "vexakit/geometry.h"

#include <string>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

std::uint32_t computedSizeOf(const Words& geometry) {
    const Block block = blockOf(geometry);
    std::uint32_t size = kUntouchedNumber;
    EXPECT_EQ(vexaWKB_calculateSize(block.get(), &size), kSuccess);
    EXPECT_EQ(wordsOf(block, bytesOf(geometry)), geometry) << "the buffer was written";
    return size;
}

Words collection(std::initializer_list<Words> members, std::uint32_t size = 0) {
    return joined({headerWords(VEXA_GEOMETRYCOLLECTION, size), listWords(members, 0xDD)});
}

Words point(std::uint32_t size) {
    return joined({headerWords(VEXA_POINT, size), wordsOf(trail(1))});
}

Words lineOfTwo(std::uint32_t size) {
    return joined({headerWords(VEXA_LINESTRING, size), listWords({runWords(trail(2))})});
}

/// A member of which only the header is looked at, in as many bytes as its rounded size.
Words opaque(std::uint32_t type, std::uint32_t size, std::uint32_t bytes) {
    Words words = headerWords(type, size);
    words.resize(bytes / sizeof(std::uint32_t), 0xEEEE'EEEE);
    return words;
}

struct CollectionCase {
    const char* name;
    Words geometry;
    std::uint32_t size;
};

const CollectionCase kCollectionCases[] = {
    {"NoMembers", collection({}), 24},
    {"ItsOwnSizeWordIsNotLookedAt", collection({point(40)}, 7), 24 + 40},
    {"MembersOfKnownSize", collection({point(40), lineOfTwo(80)}), 144},
    {"MembersOfUnknownSize", collection({point(0), lineOfTwo(0)}), 144},
    {"MembersOfEveryType",
     collection(
         {point(0), lineOfTwo(0),
          joined({headerWords(3), listWords({listWords({runWords(trail(1))})})}),
          joined({headerWords(4), {2, 0}, wordsOf(trail(2))}),
          joined({headerWords(5), listWords({listWords({runWords(trail(1))})})}),
          joined({headerWords(6), listWords({listWords({listWords({runWords(trail(1))})})})}),
          collection({}), point(40)}),
     24 + 40 + 80 + 64 + 72 + 64 + 72 + 24 + 40},
    // A line that grew is copied in its old size: its word tells where the next member begins.
    {"StaleSizeOfAMember",
     collection({joined({headerWords(2, 56), {2, 0}, runWords(trail(1))}), point(0)}),
     24 + 56 + 40},
    {"SizeBeyondTheContents", collection({opaque(1, 64, 64), point(0)}), 24 + 64 + 40},

    {"OddSizesAreRoundedUp",
     collection({opaque(1, 33, 40), opaque(2, 39, 40), opaque(3, 41, 48), point(0)}),
     24 + 40 + 40 + 48 + 40},
    {"UnknownTypeOfKnownSize",
     collection({opaque(9, 24, 24), opaque(0xFFFF'FFFF, 17, 24), opaque(0, 16, 16), point(0)}),
     24 + 24 + 24 + 16 + 40},

    {"UnknownTypeIsReadAgainInItsPlace", collection({point(40), headerWords(9), point(40)}),
     24 + 40},
    {"UnknownTypeFirst", collection({headerWords(0), point(40)}), 24},
    {"NegativeType", collection({point(0), headerWords(0x8000'0001), point(40)}), 24 + 40},

    {"ReservedTypeTakesTheSizeBeforeIt", collection({point(40), opaque(8, 0, 40), lineOfTwo(80)}),
     24 + 40 + 40 + 80},
    {"ReservedTypeTakesAComputedSize", collection({lineOfTwo(0), opaque(8, 0, 80), point(0)}),
     24 + 80 + 80 + 40},
    {"ReservedTypeTakesTheRoundedSize", collection({opaque(1, 17, 24), opaque(8, 0, 24), point(0)}),
     24 + 24 + 24 + 40},
    {"ReservedTypeTakesTheLastSizeAgain",
     collection({point(40), opaque(8, 0, 40), opaque(8, 0, 40), point(0)}), 24 + 3 * 40 + 40},
    {"ReservedTypeOfKnownSize",
     collection({point(40), opaque(8, 24, 24), opaque(8, 0, 24), point(0)}),
     24 + 40 + 24 + 24 + 40},
    {"ReservedTypeFirstAddsNothing", collection({headerWords(8), point(40)}), 24},

    {"Nested", collection({point(0), collection({lineOfTwo(0), point(0)}), point(0)}),
     24 + 40 + (24 + 80 + 40) + 40},
    {"NestedOfKnownSize",
     collection({joined({headerWords(7, 24), {0xFFFF'FFFF, 0xFFFF'FFFF}}), point(0)}),
     24 + 24 + 40},
    {"NestedHasItsOwnScratchSize", collection({point(40), collection({headerWords(8)}), point(40)}),
     // The nested member of type 8 adds nothing, so that 16 bytes in front of the last point are
     // taken for the next member: type 8 again, which takes the 24 bytes of the collection.
     24 + 40 + 24 + 24},
    {"NestedLeavesItsRoundedSize",
     collection({collection({lineOfTwo(0)}), opaque(8, 0, 104), point(0)}), 24 + 104 + 104 + 40},

    // 2^32 - 8 is a multiple of 8; what is above rounds up to a whole turn, and so to nothing.
    {"LargestRoundSize", collection({point(40), headerWords(2, 0xFFFF'FFF8)}), 24 + 40 - 8},
    {"SizeThatRoundsToNothing", collection({point(40), headerWords(2, 0xFFFF'FFF9)}), 24 + 40},
    {"LargestSize", collection({point(40), headerWords(2, 0xFFFF'FFFF)}), 24 + 40},
    {"SizeThatRoundsToNothingIsReadAgain",
     collection({headerWords(2, 0xFFFF'FFFC), point(40), point(40)}), 24},
    {"SumThatWraps", collection({lineOfTwo(80), headerWords(2, 0xFFFF'FFC0)}), 24 + 80 - 64},
    {"MemberWhoseComputedSizeWraps",
     collection({point(40), joined({headerWords(4), {178'956'971, 0}})}), 24 + 40 + 32},
};

class CollectionSize : public testing::TestWithParam<CollectionCase> {};

TEST_P(CollectionSize, IsThatOfTheRoundedMembers) {
    EXPECT_EQ(computedSizeOf(GetParam().geometry), GetParam().size);
}

INSTANTIATE_TEST_SUITE_P(Table, CollectionSize, testing::ValuesIn(kCollectionCases),
                         [](const auto& row) { return std::string{row.param.name}; });

struct StandingMember {
    const char* name;
    Words member;
};

const StandingMember kStandingMembers[] = {
    {"UnknownType", headerWords(9)},
    {"NegativeType", headerWords(0xFFFF'FFFF)},
    {"ReservedType", headerWords(8)},
    {"SizeThatRoundsToNothing", headerWords(2, 0xFFFF'FFF9)},
    {"WrappedComputedSize", joined({headerWords(4), {0x1FFF'FFFF, 0}})},
};

class CollectionOfBillions : public testing::TestWithParam<StandingMember> {};

TEST_P(CollectionOfBillions, EndsAtOnceWhereAMemberAddsNothing) {
    const Words geometry = joined({headerWords(7), {0xFFFF'FFFF, 0}, GetParam().member});

    // Counted through, this many rounds over billions of members would outlast any patience.
    for (int round = 0; round < 1000; ++round) ASSERT_EQ(computedSizeOf(geometry), 24U);
}

INSTANTIATE_TEST_SUITE_P(Table, CollectionOfBillions, testing::ValuesIn(kStandingMembers),
                         [](const auto& row) { return std::string{row.param.name}; });

TEST(CalculateSize, FollowsFiveThousandNestedCollections) {
    constexpr std::uint32_t kLevels = 5000;
    Words geometry;
    for (std::uint32_t level = 0; level != kLevels; ++level) {
        for (const std::uint32_t word : {1U, 1U, 7U, 0U, 1U, 0U}) geometry.push_back(word);
    }
    geometry = joined({geometry, lineOfTwo(0)});

    EXPECT_EQ(computedSizeOf(geometry), 24 * kLevels + 80);
}

}  // namespace
