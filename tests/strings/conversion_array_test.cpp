#include "tests/support/allocations.h"
#include "tests/support/conversion_check.h"
#include "tests/support/wide_text.h"
#include "vexakit/conversion.h"
#include "vexakit/types.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

template <class Source, class Result>
using ArrayForm = std::uint32_t (*)(const Source* const* source, std::int32_t count,
                                    Result*** result);

template <class Result>
void releaseArray(Result** array, std::int32_t count) {
    for (std::int32_t index = 0; index < count; ++index) release(array[index]);
    std::free(array);
}

template <class SourceCharacter, class ResultCharacter, ArrayForm<SourceCharacter, ResultCharacter>,
          std::size_t spareCharacters>
struct Form {};

template <class>
class ArrayForms;

template <class SourceCharacter, class ResultCharacter,
          ArrayForm<SourceCharacter, ResultCharacter> function, std::size_t spareCharacters>
class ArrayForms<Form<SourceCharacter, ResultCharacter, function, spareCharacters>>
    : public testing::Test {
protected:
    using Source = SourceCharacter;
    using Result = ResultCharacter;

    /// Characters of an element's block beyond text and terminator.
    static constexpr std::size_t kSpare = spareCharacters;

    static std::uint32_t convert(const Source* const* source, std::int32_t count,
                                 Result*** result) {
        return function(source, count, result);
    }

    static std::string ascii(const Result* text) {
        if (!text) return "a null pointer";
        const TextOf<Result> characters(text);
        return {characters.begin(), characters.end()};
    }

    /// Strings of the source's kind; nothing is a null pointer.
    class Sources {
    public:
        Sources(std::initializer_list<std::optional<std::string>> strings) {
            for (const auto& string : strings) {
                texts_.emplace_back(string ? TextOf<Source>(string->begin(), string->end())
                                           : TextOf<Source>{});
            }
            std::size_t index = 0;
            for (const auto& string : strings) {
                const TextOf<Source>& text = texts_[index++];
                pointers_.push_back(string ? text.c_str() : nullptr);
            }
        }
        const Source* const* data() const { return pointers_.data(); }
        std::int32_t count() const { return static_cast<std::int32_t>(pointers_.size()); }

    private:
        std::vector<TextOf<Source>> texts_;
        std::vector<const Source*> pointers_;
    };

    Result* sentinel_ = nullptr;
    /// What a result holds before the call; nobody reads through it.
    Result** const untouched_ = &sentinel_;
};

using Forms = testing::Types<Form<char, VexaWChar, stringCnv_mbspToWcsp, 1>,
                             Form<VexaWChar, char, stringCnv_wcspToMbsp, 1>,
                             Form<VexaWChar, char, stringCnv_wcspToUTF8p, 1>,
                             Form<char, VexaWChar, stringCnv_utf8pToWcsp, 0>>;

struct FormNames {
    template <class>
    static std::string GetName(int index) {
        constexpr const char* kNames[] = {"mbspToWcsp", "wcspToMbsp", "wcspToUTF8p", "utf8pToWcsp"};
        return kNames[index];
    }
};

TYPED_TEST_SUITE(ArrayForms, Forms, FormNames);

TYPED_TEST(ArrayForms, RefuseNullPointers) {
    const typename TestFixture::Sources sources{"a"};
    auto result = this->untouched_;

    EXPECT_EQ(this->convert(nullptr, 1, &result), kFailure);
    EXPECT_EQ(this->convert(nullptr, 0, &result), kFailure);
    EXPECT_EQ(this->convert(sources.data(), 1, nullptr), kFailure);
    EXPECT_EQ(this->convert(nullptr, 1, nullptr), kFailure);
    EXPECT_EQ(result, this->untouched_);
}

TYPED_TEST(ArrayForms, ConvertEveryStringInOrder) {
    const typename TestFixture::Sources sources{"first", "", "third", "a longer fourth"};
    typename TestFixture::Result** result = nullptr;

    ASSERT_EQ(this->convert(sources.data(), sources.count(), &result), kSuccess);

    EXPECT_EQ(this->ascii(result[0]), "first");
    EXPECT_EQ(this->ascii(result[1]), "");
    EXPECT_EQ(this->ascii(result[2]), "third");
    EXPECT_EQ(this->ascii(result[3]), "a longer fourth");
    releaseArray(result, sources.count());
}

TYPED_TEST(ArrayForms, ANullStringGivesNullInItsPlace) {
    const typename TestFixture::Sources sources{std::nullopt, "b", std::nullopt, "d", std::nullopt};
    typename TestFixture::Result** result = nullptr;

    ASSERT_EQ(this->convert(sources.data(), sources.count(), &result), kSuccess);

    EXPECT_EQ(result[0], nullptr);
    EXPECT_EQ(this->ascii(result[1]), "b");
    EXPECT_EQ(result[2], nullptr);
    EXPECT_EQ(this->ascii(result[3]), "d");
    EXPECT_EQ(result[4], nullptr);
    releaseArray(result, sources.count());
}

TYPED_TEST(ArrayForms, ReadNoMoreThanTheCount) {
    const typename TestFixture::Sources sources{"a", "b", "c"};
    typename TestFixture::Result** result = nullptr;
    const AllocationWatch watch;

    ASSERT_EQ(this->convert(sources.data(), 2, &result), kSuccess);

    EXPECT_EQ(watch.requests(), 3);
    EXPECT_EQ(this->ascii(result[0]), "a");
    EXPECT_EQ(this->ascii(result[1]), "b");
    releaseArray(result, 2);
}

TYPED_TEST(ArrayForms, GiveOneBlockForTheArrayAndOneForEachString) {
    const typename TestFixture::Sources sources{"a", std::nullopt, "", "bcd"};
    constexpr std::size_t kTextsAndTerminators = 2 + 1 + 4;
    const AllocationWatch watch;

    typename TestFixture::Result** result = nullptr;
    ASSERT_EQ(this->convert(sources.data(), sources.count(), &result), kSuccess);

    EXPECT_EQ(watch.requests(), 4);
    EXPECT_EQ(watch.bytes(),
              4 * sizeof(void*) + (kTextsAndTerminators + 3 * this->kSpare) * sizeof **result);
    EXPECT_EQ(watch.blocksInUse(), 4);
    releaseArray(result, sources.count());
    EXPECT_EQ(watch.blocksInUse(), 0);
}

TYPED_TEST(ArrayForms, ACountOfZeroGivesABlockAndReadsNothing) {
    const typename TestFixture::Source* const nothingToRead = nullptr;
    const AllocationWatch watch;

    auto result = this->untouched_;
    ASSERT_EQ(this->convert(&nothingToRead, 0, &result), kSuccess);

    EXPECT_NE(result, this->untouched_);
    EXPECT_NE(result, nullptr);
    EXPECT_EQ(watch.requests(), 1);
    EXPECT_EQ(watch.blocksInUse(), 1);
    releaseArray(result, 0);
    EXPECT_EQ(watch.blocksInUse(), 0);
}

TYPED_TEST(ArrayForms, RefuseANegativeCount) {
    const typename TestFixture::Sources sources{"a"};
    for (const std::int32_t count : {-1, -2, INT_MIN, INT_MIN + 1}) {
        auto result = this->untouched_;

        EXPECT_EQ(this->convert(sources.data(), count, &result), kFailure) << count;
        EXPECT_EQ(result, this->untouched_) << count;
    }
}

TYPED_TEST(ArrayForms, FailWithoutMemoryForTheArray) {
    const typename TestFixture::Sources sources{"a", "b"};
    auto result = this->untouched_;
    const AllocationFailure failure(1);

    const std::uint32_t status = this->convert(sources.data(), sources.count(), &result);

    EXPECT_TRUE(failure.happened());
    EXPECT_EQ(status, kFailure);
    EXPECT_EQ(result, this->untouched_);
    EXPECT_EQ(failure.requests(), 1);
    EXPECT_EQ(failure.blocksInUse(), 0);
}

TYPED_TEST(ArrayForms, AStringWithoutMemoryIsNullAndTheOthersAreConverted) {
    const typename TestFixture::Sources sources{"a", "b", "c"};
    for (int failing = 0; failing < 3; ++failing) {
        typename TestFixture::Result** result = nullptr;
        const AllocationFailure failure(2 + failing);

        ASSERT_EQ(this->convert(sources.data(), sources.count(), &result), kSuccess) << failing;

        EXPECT_TRUE(failure.happened()) << failing;
        EXPECT_EQ(failure.blocksInUse(), 3) << failing;
        for (int index = 0; index < 3; ++index) {
            if (index == failing) {
                EXPECT_EQ(result[index], nullptr) << failing;
            } else {
                EXPECT_EQ(this->ascii(result[index]), std::string(1, "abc"[index]));
            }
        }
        releaseArray(result, sources.count());
        EXPECT_EQ(failure.blocksInUse(), 0) << failing;
    }
}

TEST(ArrayFormsOfUtf8, ConvertEachStringWhole) {
    const WideString first = {0xD83D, 0xDE00};
    const WideString second = {0xE9, 'x'};
    const VexaWChar* const sources[] = {first.c_str(), second.c_str()};
    char** bytes = nullptr;
    VexaWChar** texts = nullptr;

    ASSERT_EQ(stringCnv_wcspToUTF8p(sources, 2, &bytes), kSuccess);
    EXPECT_STREQ(bytes[0], "\xF0\x9F\x98\x80");
    EXPECT_STREQ(bytes[1], "\xC3\xA9x");

    ASSERT_EQ(stringCnv_utf8pToWcsp(bytes, 2, &texts), kSuccess);
    EXPECT_EQ(texts[0], first);
    EXPECT_EQ(texts[1], second);

    releaseArray(bytes, 2);
    releaseArray(texts, 2);
}

}  // namespace

}  // namespace vexa::test
