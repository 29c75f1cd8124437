#include "tests/support/allocations.h"
#include "tests/support/bounded_print.h"
#include "tests/support/conversion_check.h"
#include "tests/support/wide_text.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <climits>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

template <class Family>
class StringSafeSprintfRoom : public testing::Test {
protected:
    using Character = typename Family::Character;
    using Text = TextOf<Character>;

    template <class... Values>
    static std::uint32_t print(GuardedRoom<Character>& room, std::string_view format,
                               Values... values) {
        return Family::print(room.data(), room.size(), ExactText(Family::text(format)).get(),
                             values...);
    }

    /// The same in every size around the output's: nothing but a part of it in one that is too
    /// small, and the last cell is left alone there.
    template <class... Values>
    static void fitsWhereItFits(std::string_view output, std::string_view format,
                                Values... values) {
        const Text text = Family::text(output);
        for (std::size_t size = 1; size <= text.size() + 4; ++size) {
            SCOPED_TRACE(testing::Message() << '"' << format << "\" in a size of " << size);
            GuardedRoom<Character> room(size);
            const std::uint32_t status = print(room, format, values...);
            EXPECT_TRUE(room.areGuardsUntouched());

            const bool fits = text.size() < size;
            Text expected = fits ? roomWith(text, size) : text.substr(0, size - 1);
            if (fits) expected.back() = 0;
            expected.resize(size, kUnwritten<Character>);
            EXPECT_EQ(status, fits ? kSuccess : kFailure);
            EXPECT_EQ(room.cells(), expected);
        }
    }
};

struct FamilyNames {
    template <class>
    static std::string GetName(int index) {
        return index == 0 ? "A" : "W";
    }
};

using Families = testing::Types<NarrowPrint, WidePrint>;
TYPED_TEST_SUITE(StringSafeSprintfRoom, Families, FamilyNames);

TYPED_TEST(StringSafeSprintfRoom, RefusesNullPointersAndASizeOfZero) {
    const auto format = TypeParam::text("%d");
    typename TestFixture::Character* const nowhere = nullptr;
    const typename TestFixture::Character* const noFormat = nullptr;
    GuardedRoom<typename TestFixture::Character> room(4);

    EXPECT_EQ(TypeParam::print(nowhere, 4, format.c_str(), 1), kFailure);
    EXPECT_EQ(TypeParam::print(room.data(), 4, noFormat, 1), kFailure);
    EXPECT_EQ(TypeParam::print(nowhere, 4, noFormat), kFailure);
    EXPECT_EQ(TypeParam::print(nowhere, 0, format.c_str(), 1), kFailure);
    EXPECT_EQ(TypeParam::print(room.data(), 0, format.c_str(), 1), kFailure);
    EXPECT_TRUE(room.isUntouched());
}

TYPED_TEST(StringSafeSprintfRoom, AnEmptyOutputFitsASizeOfOne) {
    this->fitsWhereItFits("", "");
    this->fitsWhereItFits("", "%s", TypeParam::text("").c_str());
    this->fitsWhereItFits("", "%.0d", 0);
}

TYPED_TEST(StringSafeSprintfRoom, EveryKindOfOutputFitsWhereItFits) {
    const auto own = TypeParam::text("own text");
    const auto other = TypeParam::other("other");

    this->fitsWhereItFits("plain", "plain");
    this->fitsWhereItFits("100%", "100%%");
    this->fitsWhereItFits("-2147483648", "%d", INT_MIN);
    this->fitsWhereItFits("-9223372036854775808", "%I64d", INT64_MIN);
    this->fitsWhereItFits("18446744073709551615", "%llu", -1LL);
    this->fitsWhereItFits("0x00beef", "%#.6x", 0xBEEF);
    this->fitsWhereItFits("    42", "%6d", 42);
    this->fitsWhereItFits("42    ", "%-6d", 42);
    this->fitsWhereItFits("own text", "%s", own.c_str());
    this->fitsWhereItFits("[    own]", "[%7.3s]", own.c_str());
    this->fitsWhereItFits("[other  ]", "[%-7S]", other.c_str());
    this->fitsWhereItFits("[   x]", "[%4c]", 'x');
    this->fitsWhereItFits("0000000000000000", "%p", static_cast<const void*>(nullptr));
    this->fitsWhereItFits("3.141593", "%f", 3.14159265358979);
    this->fitsWhereItFits("  3.14|", "%6.2f|", 3.14159265358979);
    this->fitsWhereItFits("(null)", "%s",
                          static_cast<const typename TestFixture::Character*>(nullptr));
    this->fitsWhereItFits("1, own text and 2.5", "%d, %s and %.1f", 1, own.c_str(), 2.5);
}

TYPED_TEST(StringSafeSprintfRoom, LongOutputsFitWhereTheyFit) {
    const std::string longText(3000, 'x');
    for (const std::size_t size : {std::size_t{2999}, std::size_t{3000}, std::size_t{3001}}) {
        GuardedRoom<typename TestFixture::Character> room(size);
        const auto text = TypeParam::text(longText);

        EXPECT_EQ(this->print(room, "%s", text.c_str()), size > 3000 ? kSuccess : kFailure);
        EXPECT_EQ(room.cells().substr(0, size - 1), text.substr(0, size - 1));
        EXPECT_TRUE(room.areGuardsUntouched());
    }
}

TYPED_TEST(StringSafeSprintfRoom, AWidthOrPrecisionBeyondTheRoomStaysInIt) {
    const auto own = TypeParam::text("own");
    const auto fillsWith = [&](typename TestFixture::Character filling, std::string_view format,
                               auto... values) {
        SCOPED_TRACE(format);
        constexpr std::size_t kRoom = 16;
        GuardedRoom<typename TestFixture::Character> room(kRoom);

        EXPECT_EQ(this->print(room, format, values...), kFailure);
        EXPECT_EQ(room.cells(), typename TestFixture::Text(kRoom - 1, filling) +
                                    kUnwritten<typename TestFixture::Character>);
        EXPECT_TRUE(room.areGuardsUntouched());
    };

    fillsWith(' ', "%16d", 1);
    fillsWith(' ', "%1000d", 1);
    fillsWith(' ', "%100000d", 1);
    fillsWith('0', "%0100000d", 1);
    fillsWith(' ', "%*d", 100000, 1);
    fillsWith(' ', "%100000s", own.c_str());
    fillsWith(' ', "%100000.2f", 1.5);
#ifndef _WIN32
    // Wine's runtime ruins its heap with so many digits of a wide integer, and takes a cut
    // character for one that fits.
    fillsWith(' ', "%100000c", 'x');
    fillsWith('0', "%.100000d", 1);
#endif
}

TYPED_TEST(StringSafeSprintfRoom, AZeroCharacterIsPartOfTheOutput) {
    GuardedRoom<typename TestFixture::Character> room(4);

    EXPECT_EQ(this->print(room, "a%cb", 0), kSuccess);
    EXPECT_EQ(room.cells(), TypeParam::text({"a\0b\0", 4}));

    GuardedRoom<typename TestFixture::Character> shorter(3);
    EXPECT_EQ(this->print(shorter, "a%cb", 0), kFailure);
    EXPECT_TRUE(shorter.areGuardsUntouched());
}

TYPED_TEST(StringSafeSprintfRoom, AFormatThatEndsInsideADirectiveIsNotReadBeyondItsEnd) {
    for (const std::string_view format : {"ab%", "ab%-", "ab%0", "ab%5", "ab%.", "ab%.3", "ab%l",
                                          "ab%ll", "ab%I", "ab%I6", "ab%I64", "ab%h", "ab%z"}) {
        SCOPED_TRACE(format);
        GuardedRoom<typename TestFixture::Character> room(16);

        const std::uint32_t status = this->print(room, format, 1, 2, 3);

        EXPECT_TRUE(status == kSuccess || status == kFailure);
        EXPECT_TRUE(room.areGuardsUntouched());
        EXPECT_EQ(room.cells().substr(0, 2), TypeParam::text("ab"));
    }
}

#ifndef _WIN32
TYPED_TEST(StringSafeSprintfRoom, CountingTheOutputFailsAndWritesNothing) {
    long long counted = 77;
    for (const std::string_view format : {"ab%n", "ab%hn", "ab%ln", "ab%lln", "ab%I64n"}) {
        GuardedRoom<typename TestFixture::Character> room(8);

        EXPECT_EQ(this->print(room, format, &counted), kFailure) << format;
        EXPECT_EQ(counted, 77) << format;
        EXPECT_TRUE(room.areGuardsUntouched()) << format;
    }
}

TYPED_TEST(StringSafeSprintfRoom, NeedsNoMemoryForIntegersAndTexts) {
    GuardedRoom<typename TestFixture::Character> room(64);
    const auto format = TypeParam::text("%d %8s %I64x");
    const auto own = TypeParam::text("own");
    const AllocationFailure failure(1);

    const std::uint32_t status =
        TypeParam::print(room.data(), room.size(), format.c_str(), 1, own.c_str(), 255LL);

    EXPECT_EQ(status, kSuccess);
    EXPECT_EQ(failure.requests(), 0);
}
#endif

// ---- Characters that one family lacks -----------------------------------------------------------

TEST(StringSafeSprintfA, TextBeyondABytesValuesFails) {
    const WideString text = {'a', 0x20AC, 'z'};
    GuardedRoom<char> room(16);

    EXPECT_EQ(string_safeSprintfA(room.data(), 16, "%S", text.c_str()), kFailure);
    EXPECT_EQ(string_safeSprintfA(room.data(), 16, "%ls", text.c_str()), kFailure);
    EXPECT_TRUE(room.areGuardsUntouched());
}

TEST(StringSafeSprintfA, TextBehindThePrecisionMayBeAnything) {
    const WideString text = {'a', 0x20AC};

    EXPECT_EQ(printed<NarrowPrint>("[%.1S]", text.c_str()), "[a]");
}

TEST(StringSafeSprintfA, ACharacterBeyondABytesValuesIsNotPrinted) {
    EXPECT_EQ(printed<NarrowPrint>("x%Cy", 0x20AC), "xy");
    EXPECT_EQ(printed<NarrowPrint>("x%lcy", 0x20AC), "xy");
}

TEST(StringSafeSprintfA, BytesAndWideCharactersStandForEachOtherByTheirValue) {
    const WideString text = {0xE9, 0xFF, 0x80};

    EXPECT_EQ(printed<NarrowPrint>("%S", text.c_str()), "\xE9\xFF\x80");
    EXPECT_EQ(printed<WidePrint>("%S", "\xE9\xFF\x80"), "\xE9\xFF\x80");
    EXPECT_EQ(printed<NarrowPrint>("%s", "\xE9\xFF\x80"), "\xE9\xFF\x80");
}

TEST(StringSafeSprintfW, KeepsEveryUnit) {
    const WideString text = {0x20AC, 0xD83D, 0xDE00, 0xD800, 0xFFFF};
    const WideString format = WideString{0x3042} + wide("%s%c%.1s");
    GuardedRoom<VexaWChar> room(10);

    EXPECT_EQ(string_safeSprintfW(room.data(), room.size(), format.c_str(), text.c_str(), 0x20AC,
                                  text.c_str()),
              kSuccess);
    EXPECT_EQ(WideString(room.data()),
              WideString{0x3042} + text + WideString{0x20AC} + WideString{0x20AC});
}

// ---- By a value list ----------------------------------------------------------------------------

std::uint32_t printList(char* destination, std::size_t size, const char* format, ...) {
    va_list values;
    va_start(values, format);
    const std::uint32_t status = string_safeVsprintfA(destination, size, format, values);
    va_end(values);
    return status;
}

std::uint32_t printList(VexaWChar* destination, std::size_t size, const VexaWChar* format, ...) {
    va_list values;
    va_start(values, format);
    const std::uint32_t status = string_safeVsprintfW(destination, size, format, values);
    va_end(values);
    return status;
}

TYPED_TEST(StringSafeSprintfRoom, AValueListGivesTheSame) {
    const auto format = TypeParam::text("%d %.1f %s");
    const auto own = TypeParam::text("own");
    for (std::size_t size = 1; size < 16; ++size) {
        GuardedRoom<typename TestFixture::Character> room(size);
        GuardedRoom<typename TestFixture::Character> fromList(size);

        const std::uint32_t status =
            printList(fromList.data(), size, format.c_str(), 12, 0.5, own.c_str());

        EXPECT_EQ(status, this->print(room, "%d %.1f %s", 12, 0.5, own.c_str())) << size;
        EXPECT_EQ(status, size > 10 ? kSuccess : kFailure) << size;
        EXPECT_EQ(fromList.cells(), room.cells()) << size;
        EXPECT_TRUE(fromList.areGuardsUntouched()) << size;
    }
}

TYPED_TEST(StringSafeSprintfRoom, AValueListRefusesNullPointersAndASizeOfZero) {
    const auto format = TypeParam::text("%d");
    typename TestFixture::Character* const nowhere = nullptr;
    const typename TestFixture::Character* const noFormat = nullptr;
    GuardedRoom<typename TestFixture::Character> room(4);

    EXPECT_EQ(printList(nowhere, 4, format.c_str(), 1), kFailure);
    EXPECT_EQ(printList(room.data(), 4, noFormat, 1), kFailure);
    EXPECT_EQ(printList(room.data(), 0, format.c_str(), 1), kFailure);
    EXPECT_TRUE(room.isUntouched());
}

}  // namespace

}  // namespace vexa::test
