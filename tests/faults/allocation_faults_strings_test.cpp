#include "tests/faults/allocation_faults.h"
#include "tests/support/conversion_check.h"
#include "tests/support/wide_text.h"
#include "vexakit/conversion.h"
#include "vexakit/strings.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vexa::test {

namespace {

constexpr std::uint32_t kNotCalled = 0xBAD;

template <class Character>
TextOf<Character> textOf(const std::string& ascii) {
    return {ascii.begin(), ascii.end()};
}

// ---- New strings --------------------------------------------------------------------------------

/// What the result is where memory is lacking.
enum class ResultWithout { AsItWas, Null };

template <class Source, class Result>
class Conversion : public FaultyCall {
public:
    Conversion(AllocForm<Source, Result> convert, ResultWithout without)
        : convert_(convert), without_(without) {}

    void make() override { status_ = convert_(source_.c_str(), &result_); }
    bool isDone() override { return status_ == kSuccess; }
    void expectDone() override {
        EXPECT_TRUE(result_ == textOf<Result>(kText));
        EXPECT_TRUE(source_ == textOf<Source>(kText));
    }
    void expectTold() override {
        EXPECT_EQ(status_, kFailure);
        EXPECT_EQ(result_, without_ == ResultWithout::Null ? nullptr : &untouched_);
        EXPECT_TRUE(source_ == textOf<Source>(kText));
    }
    void giveBack() override {
        if (result_ && result_ != &untouched_) release(result_);
        result_ = &untouched_;
    }

private:
    static constexpr const char* kText = "POINT Z (1 2 3)";

    AllocForm<Source, Result> convert_;
    ResultWithout without_;
    TextOf<Source> source_ = textOf<Source>(kText);
    std::uint32_t status_ = kNotCalled;
    Result untouched_{};
    Result* result_ = &untouched_;
};

template <class Source, class Result>
FaultCase conversionCase(const char* name, AllocForm<Source, Result> convert,
                         ResultWithout without) {
    return {name, [=] { return std::make_unique<Conversion<Source, Result>>(convert, without); }};
}

// ---- New arrays of strings ----------------------------------------------------------------------

template <class Source, class Result>
using ArrayForm = std::uint32_t (*)(const Source* const* source, std::int32_t count,
                                    Result*** result);

/// A string for which there is no memory is null in the array, and the others are there.
template <class Source, class Result>
class ArrayConversion : public FaultyCall {
public:
    explicit ArrayConversion(ArrayForm<Source, Result> convert) : convert_(convert) {
        for (std::size_t i = 0; i != kCount; ++i) {
            texts_[i] = textOf<Source>(kTexts[i]);
            source_[i] = texts_[i].c_str();
        }
    }

    void make() override { status_ = convert_(source_.data(), kCount, &result_); }
    bool isDone() override { return status_ == kSuccess && missing() == 0; }
    void expectDone() override { expectStrings(); }
    void expectTold() override {
        if (status_ == kSuccess) {
            EXPECT_EQ(missing(), 1);
            expectStrings();
        } else {
            EXPECT_EQ(status_, kFailure);
            EXPECT_EQ(result_, &untouched_);
        }
    }
    void giveBack() override {
        if (result_ == &untouched_) return;
        for (std::size_t i = 0; i != kCount; ++i) string_freeA(result_[i]);
        string_freeA(result_);
        result_ = &untouched_;
    }

private:
    static constexpr std::size_t kCount = 3;
    static constexpr const char* kTexts[kCount] = {"first", "", "third"};

    [[nodiscard]] int missing() const {
        int count = 0;
        for (std::size_t i = 0; i != kCount; ++i) count += result_[i] ? 0 : 1;
        return count;
    }
    void expectStrings() const {
        for (std::size_t i = 0; i != kCount; ++i) {
            EXPECT_EQ(source_[i], texts_[i].c_str());
            EXPECT_TRUE(texts_[i] == textOf<Source>(kTexts[i]));
            if (!result_[i]) continue;
            EXPECT_TRUE(result_[i] == textOf<Result>(kTexts[i]));
        }
    }

    ArrayForm<Source, Result> convert_;
    std::array<TextOf<Source>, kCount> texts_;
    std::array<const Source*, kCount> source_{};
    std::uint32_t status_ = kNotCalled;
    Result* untouched_ = nullptr;
    Result** result_ = &untouched_;
};

template <class Source, class Result>
FaultCase arrayCase(const char* name, ArrayForm<Source, Result> convert) {
    return {name, [=] { return std::make_unique<ArrayConversion<Source, Result>>(convert); }};
}

// ---- Text in place ------------------------------------------------------------------------------

using Strip = char* (*)(char* text);

class Stripping : public FaultyCall {
public:
    Stripping(Strip strip, std::string before, std::string after)
        : strip_(strip), before_(std::move(before)), after_(std::move(after)), text_(before_) {}

    void make() override { result_ = strip_(text_.data()); }
    bool isDone() override { return result_ != nullptr; }
    void expectDone() override {
        EXPECT_EQ(result_, text_.data());
        EXPECT_STREQ(text_.c_str(), after_.c_str());
    }
    void expectTold() override {
        EXPECT_EQ(result_, nullptr);
        EXPECT_EQ(text_, before_);
    }

private:
    Strip strip_;
    std::string before_;
    std::string after_;
    std::string text_;
    char* result_ = nullptr;
};

FaultCase stripCase(const char* name, Strip strip, const char* before, const char* after) {
    return {name, [=] { return std::make_unique<Stripping>(strip, before, after); }};
}

// ---- Formats ------------------------------------------------------------------------------------

constexpr const char* kFormat = "%.700f|%s";

/// One half to as many decimals as do not fit the printing's own room.
template <class Character>
TextOf<Character> longNumber() {
    return textOf<Character>("0.5" + std::string(699, '0') + "|end");
}

template <class Character>
using Print = std::uint32_t (*)(Character* destination, std::size_t size, const Character* format,
                                ...);
template <class Character>
using PrintList = std::uint32_t (*)(Character* destination, std::size_t size,
                                    const Character* format, va_list values);

template <class Character, PrintList<Character> print>
std::uint32_t printByList(Character* destination, std::size_t size, const Character* format, ...) {
    va_list values;
    va_start(values, format);
    const std::uint32_t status = print(destination, size, format, values);
    va_end(values);
    return status;
}

template <class Character>
class Printing : public FaultyCall {
public:
    explicit Printing(Print<Character> print) : print_(print) {}

    void make() override {
        status_ = print_(room_.data(), room_.size(), format_.c_str(), 0.5, end_.c_str());
    }
    bool isDone() override { return status_ == kSuccess; }
    void expectDone() override {
        EXPECT_TRUE(room_.data() == longNumber<Character>());
        EXPECT_EQ(room_.data()[room_.size() - 1], 0);
        EXPECT_TRUE(room_.areGuardsUntouched());
    }
    void expectTold() override {
        EXPECT_EQ(status_, kFailure);
        EXPECT_TRUE(room_.isUntouched());
    }

private:
    Print<Character> print_;
    TextOf<Character> format_ = textOf<Character>(kFormat);
    TextOf<Character> end_ = textOf<Character>("end");
    GuardedRoom<Character> room_{800};
    std::uint32_t status_ = kNotCalled;
};

template <class Character>
FaultCase printCase(const char* name, Print<Character> print) {
    return {name, [=] { return std::make_unique<Printing<Character>>(print); }};
}

void* allocate(std::size_t bytes) {
    return std::malloc(bytes);
}

class PrintingAllocated : public FaultyCall {
public:
    void make() override {
        result_ = string_sprintfAllocW(&allocate, format_.c_str(), 0.5, end_.c_str());
    }
    bool isDone() override { return result_ != nullptr; }
    void expectDone() override { EXPECT_TRUE(result_ == longNumber<VexaWChar>()); }
    // There is nothing but the result to tell it, and nothing of the caller's to be changed.
    void expectTold() override { EXPECT_EQ(result_, nullptr); }
    void giveBack() override {
        std::free(result_);
        result_ = nullptr;
    }

private:
    WideString format_ = wide(kFormat);
    WideString end_ = wide("end");
    VexaWChar* result_ = nullptr;
};

// ---- The table ----------------------------------------------------------------------------------

std::vector<FaultCase> stringCases() {
    constexpr auto kAsItWas = ResultWithout::AsItWas;
    constexpr auto kNull = ResultWithout::Null;
    return {
        conversionCase("stringCnv_mbsToWcsAlloc", stringCnv_mbsToWcsAlloc, kAsItWas),
        conversionCase("stringCnv_mbsToTcsAlloc", stringCnv_mbsToTcsAlloc, kAsItWas),
        conversionCase("stringCnv_wcsToMbsAlloc", stringCnv_wcsToMbsAlloc, kAsItWas),
        conversionCase("stringCnv_tcsToMbsAlloc", stringCnv_tcsToMbsAlloc, kAsItWas),
        conversionCase("stringCnv_wcsToUTF8Alloc", stringCnv_wcsToUTF8Alloc, kNull),
        conversionCase("stringCnv_utf8ToWcsAlloc", stringCnv_utf8ToWcsAlloc, kNull),
        conversionCase("stringCnv_tcsToWcsAlloc", stringCnv_tcsToWcsAlloc, kAsItWas),
        conversionCase("stringCnv_wcsToTcsAlloc", stringCnv_wcsToTcsAlloc, kAsItWas),
        arrayCase("stringCnv_mbspToWcsp", stringCnv_mbspToWcsp),
        arrayCase("stringCnv_wcspToMbsp", stringCnv_wcspToMbsp),
        arrayCase("stringCnv_wcspToUTF8p", stringCnv_wcspToUTF8p),
        arrayCase("stringCnv_utf8pToWcsp", stringCnv_utf8pToWcsp),
        stripCase(
            "string_stripCharA", [](char* text) { return string_stripCharA(text, 'x'); }, "xaxbx",
            "ab"),
        stripCase("string_stripCtlCharA", string_stripCtlCharA, "\1a\2b\3", "ab"),
        stripCase(
            "string_stripLeadingCharA",
            [](char* text) { return string_stripLeadingCharA(text, 'x', 2); }, "xxxax", "xax"),
        stripCase(
            "string_stripTrailingCharA",
            [](char* text) { return string_stripTrailingCharA(text, 'x', 2); }, "xaxxx", "xax"),
        stripCase(
            "string_stripLeadingCtlCharA",
            [](char* text) { return string_stripLeadingCtlCharA(text, 2); }, "\1\2\3a", "\3a"),
        stripCase(
            "string_stripTrailingCtlCharA",
            [](char* text) { return string_stripTrailingCtlCharA(text, 2); }, "a\1\2\3", "a\1"),
        {"string_sprintfAllocW", [] { return std::make_unique<PrintingAllocated>(); }},
#ifndef _WIN32
        // The system's own printing is out of reach.
        printCase<char>("string_safeSprintfA", string_safeSprintfA),
        printCase<VexaWChar>("string_safeSprintfW", string_safeSprintfW),
        printCase<char>("string_safeVsprintfA", printByList<char, string_safeVsprintfA>),
        printCase<VexaWChar>("string_safeVsprintfW", printByList<VexaWChar, string_safeVsprintfW>),
#endif
    };
}

class StringFaults : public AllocationFaults {};

TEST_P(StringFaults, AreToldAndLeaveAllAsItWas) {
    expectFaultsTaken(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, StringFaults, testing::ValuesIn(stringCases()), kFaultCaseName);

}  // namespace

}  // namespace vexa::test
