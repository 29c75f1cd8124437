#include "tests/support/active_page.h"
#include "tests/support/allocations.h"
#include "tests/support/conversion_check.h"
#include "tests/support/wide_text.h"
#include "vexakit/conversion.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

/// What one function promises of its block and of its result.
template <class SourceCharacter, class ResultCharacter, AllocForm<SourceCharacter, ResultCharacter>,
          std::size_t spareCharacters, bool resultBecomesNull>
struct Form {};

template <class>
class AllocForms;

template <class SourceCharacter, class ResultCharacter,
          AllocForm<SourceCharacter, ResultCharacter> function, std::size_t spareCharacters,
          bool resultBecomesNull>
class AllocForms<
    Form<SourceCharacter, ResultCharacter, function, spareCharacters, resultBecomesNull>>
    : public testing::Test {
protected:
    using Source = SourceCharacter;
    using Result = ResultCharacter;

    /// Characters of the block beyond text and terminator.
    static constexpr std::size_t kSpare = spareCharacters;
    /// Whether a failed allocation makes the result null, or leaves it as it was.
    static constexpr bool kNullOnFailure = resultBecomesNull;

    static std::uint32_t convert(const Source* source, Result** result) {
        return function(source, result);
    }
    static TextOf<Source> source(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }
    static TextOf<Result> result(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }
};

using Forms = testing::Types<Form<char, VexaWChar, stringCnv_mbsToWcsAlloc, 1, false>,
                             Form<char, VexaWChar, stringCnv_mbsToTcsAlloc, 1, false>,
                             Form<VexaWChar, char, stringCnv_wcsToMbsAlloc, 1, false>,
                             Form<VexaWChar, char, stringCnv_tcsToMbsAlloc, 1, false>,
                             Form<VexaWChar, char, stringCnv_wcsToUTF8Alloc, 1, true>,
                             Form<char, VexaWChar, stringCnv_utf8ToWcsAlloc, 0, true>,
                             Form<VexaWChar, VexaWChar, stringCnv_tcsToWcsAlloc, 0, false>,
                             Form<VexaWChar, VexaWChar, stringCnv_wcsToTcsAlloc, 0, false>>;

struct FormNames {
    template <class>
    static std::string GetName(int index) {
        constexpr const char* kNames[] = {"mbsToWcs",  "mbsToTcs",  "wcsToMbs", "tcsToMbs",
                                          "wcsToUTF8", "utf8ToWcs", "tcsToWcs", "wcsToTcs"};
        return kNames[index];
    }
};

TYPED_TEST_SUITE(AllocForms, Forms, FormNames);

TYPED_TEST(AllocForms, RefuseNullPointers) {
    typename TestFixture::Result untouched{};
    auto* result = &untouched;

    EXPECT_EQ(this->convert(nullptr, &result), kFailure);
    EXPECT_EQ(this->convert(this->source("a").c_str(), nullptr), kFailure);
    EXPECT_EQ(this->convert(nullptr, nullptr), kFailure);
    EXPECT_EQ(result, &untouched);
}

TYPED_TEST(AllocForms, ConvertAnEmptyTextToAnEmptyString) {
    const auto text = converted<typename TestFixture::Source, typename TestFixture::Result>(
        &TestFixture::convert, this->source(""));

    ASSERT_TRUE(text);
    EXPECT_EQ(text.get()[0], 0);
}

TYPED_TEST(AllocForms, KeepAsciiOfAnyLength) {
    std::string ascii;
    for (std::size_t size = 1; size <= 5000; size += 1 + size / 7) {
        while (ascii.size() < size) ascii += static_cast<char>(1 + ascii.size() % 0x7F);
        const auto text = converted<typename TestFixture::Source, typename TestFixture::Result>(
            &TestFixture::convert, this->source(ascii));

        ASSERT_TRUE(text) << size;
        EXPECT_TRUE(text.get() == this->result(ascii)) << size;
    }
}

TYPED_TEST(AllocForms, GiveOneBlockOfTheSizeThatTheTextNeeds) {
    for (const std::string& ascii : {std::string(), std::string("a"), std::string(1000, 'b')}) {
        const auto source = this->source(ascii);
        const AllocationWatch watch;

        typename TestFixture::Result* result = nullptr;
        ASSERT_EQ(this->convert(source.c_str(), &result), kSuccess);

        EXPECT_EQ(watch.requests(), 1);
        EXPECT_EQ(watch.bytes(), (ascii.size() + 1 + this->kSpare) * sizeof *result);
        EXPECT_EQ(watch.blocksInUse(), 1);
        release(result);
        EXPECT_EQ(watch.blocksInUse(), 0);
    }
}

TYPED_TEST(AllocForms, FailWithoutMemory) {
    const auto source = this->source("POINT Z (1 2 3)");
    typename TestFixture::Result untouched{};
    auto* result = &untouched;
    std::uint32_t status = kSuccess;
    bool refused = false;
    int requests = 0;
    int blocksInUse = -1;
    {
        const AllocationFailure failure(1);
        status = this->convert(source.c_str(), &result);
        refused = failure.happened();
        requests = failure.requests();
        blocksInUse = failure.blocksInUse();
    }

    EXPECT_TRUE(refused);
    EXPECT_EQ(requests, 1);
    EXPECT_EQ(blocksInUse, 0);
    EXPECT_EQ(status, kFailure);
    EXPECT_EQ(result, this->kNullOnFailure ? nullptr : &untouched);
}

// ---- What differs from form to form -------------------------------------------------------------

const WideString kMixedText = {'a', 0xE9, 0x20AC, 0xD83D, 0xDE00, 'z'};
const std::string kMixedUtf8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z";

/// The bytes that one conversion asks the heap for.
template <class Source, class Result>
std::size_t blockSize(AllocForm<Source, Result> convert, const TextOf<Source>& source) {
    const AllocationWatch watch;
    const NewText<Result> text = converted(convert, source);
    return text ? watch.bytes() : 0;
}

TEST(WcsToUtf8Alloc, EncodesAndEndsInTwoZeroBytes) {
    const NewText<char> text = converted(stringCnv_wcsToUTF8Alloc, kMixedText);

    ASSERT_TRUE(text);
    EXPECT_EQ(std::string(text.get(), kMixedUtf8.size() + 2), kMixedUtf8 + std::string(2, '\0'));
    EXPECT_EQ(blockSize(stringCnv_wcsToUTF8Alloc, kMixedText), kMixedUtf8.size() + 2);
}

TEST(WcsToUtf8Alloc, AnEmptyTextEndsInTwoZeroBytesToo) {
    const NewText<char> text = converted(stringCnv_wcsToUTF8Alloc, WideString{});

    ASSERT_TRUE(text);
    EXPECT_EQ(std::string(text.get(), 2), std::string(2, '\0'));
}

TEST(Utf8ToWcsAlloc, DecodesIntoABlockWithoutAnElementToSpare) {
    EXPECT_EQ(fromUtf8(kMixedUtf8), kMixedText);
    EXPECT_EQ(blockSize(stringCnv_utf8ToWcsAlloc, kMixedUtf8),
              (kMixedText.size() + 1) * sizeof(VexaWChar));
}

TEST(TcsToWcsAlloc, CopiesEveryUnitAsItIs) {
    const WideString units = {0xDE00, 0xD83D, 0xFFFF, 0xFFFE, 1, 0xE9};

    EXPECT_EQ(conversionOf(stringCnv_tcsToWcsAlloc, units), units);
    EXPECT_EQ(conversionOf(stringCnv_wcsToTcsAlloc, units), units);
}

TEST(MbsToWideAlloc, BothNamesOfADirectionGiveTheSame) {
    const std::string bytes = toMbs(kMixedText);

    EXPECT_EQ(conversionOf(stringCnv_tcsToMbsAlloc, kMixedText), bytes);
    EXPECT_EQ(conversionOf(stringCnv_mbsToTcsAlloc, bytes), fromMbs(bytes));
}

TEST(MbsToWideAlloc, TheBlockFollowsTheBytesOneWayAndTheCharactersTheOther) {
    const std::string bytes = toMbs(kMixedText);
    const WideString text = fromMbs(bytes);

    EXPECT_EQ(blockSize(stringCnv_wcsToMbsAlloc, kMixedText), bytes.size() + 2);
    EXPECT_EQ(blockSize(stringCnv_mbsToWcsAlloc, bytes), (text.size() + 2) * sizeof(VexaWChar));
}

TEST(MbsAllocInPage1252, TakesTheBestFitElseAQuestionMark) {
    VEXA_NEEDS_PAGE(1252);

    EXPECT_EQ(toMbs({'a', 0xE9, 0xFF11, 0x3042, 0x2019, 'z'}),
              "a\xE9"
              "1?\x92z");
    EXPECT_EQ(fromMbs("a\xE9\x80\x92"), (WideString{'a', 0xE9, 0x20AC, 0x2019}));
}

TEST(MbsAllocInPage932, TakesTheBestFitElseAQuestionMark) {
    VEXA_NEEDS_PAGE(932);

    EXPECT_EQ(toMbs({'a', 0xE9, 0x3042, 0xFF71, 0x0E01, 'z'}), "ae\x82\xA0\xB1?z");
    EXPECT_EQ(fromMbs("a\x82\xA0\xB1\x83\x5C"), (WideString{'a', 0x3042, 0xFF71, 0x30BD}));
}

TEST(MbsAllocInPage932, BytesThatAreNoCharacterBecomeTheMiddleDot) {
    VEXA_NEEDS_PAGE(932);

    EXPECT_EQ(fromMbs("a\x81"), (WideString{'a', 0x30FB}));
    EXPECT_EQ(fromMbs("\x81\xAD"
                      "b"),
              (WideString{0x30FB, 'b'}));
}

TEST(MbsAllocInPage65001, IsUtf8) {
    VEXA_NEEDS_PAGE(65001);

    EXPECT_EQ(toMbs(kMixedText), kMixedUtf8);
    EXPECT_EQ(fromMbs(kMixedUtf8), kMixedText);
    EXPECT_EQ(toMbs({0xD83D, 'a', 0xDE00}),
              "\xEF\xBF\xBD"
              "a\xEF\xBF\xBD");
    EXPECT_EQ(fromMbs("a\xFF"
                      "bcd"),
              (WideString{'a', 0xFFFD, 'b', 'c', 'd'}));
}

}  // namespace

}  // namespace vexa::test
