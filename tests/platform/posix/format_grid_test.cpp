#include "tests/support/bounded_print.h"

#include <array>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

/// What the C library prints.
template <class Value>
std::string libraryPrinted(const std::string& format, Value value) {
    std::array<char, 2048> text{};
    const int length = std::snprintf(text.data(), text.size(), format.c_str(), value);
    return {text.data(), static_cast<std::size_t>(length)};
}

/// A size prefix of the library's formats and its name in the C library.
struct Prefix {
    const char* own;
    const char* library;
};

template <class Value>
void agreeOn(const std::string& beforePrefix, const Prefix& prefix, char conversion, Value value) {
    const std::string format = beforePrefix + prefix.own + conversion + "]";
    const std::string expected =
        libraryPrinted(beforePrefix + prefix.library + conversion + "]", value);

    ASSERT_EQ(printed<NarrowPrint>(format, value), expected) << format << " of " << value;
    ASSERT_EQ(printed<WidePrint>(format, value), expected) << format << " of " << value;
}

/// "[%" with every set of flags, every width and every precision of these.
std::vector<std::string> allShapes() {
    constexpr char kFlags[] = {'-', '+', ' ', '#', '0'};
    std::vector<std::string> shapes;
    for (unsigned set = 0; set < 1U << std::size(kFlags); ++set) {
        std::string flags = "[%";
        for (std::size_t bit = 0; bit < std::size(kFlags); ++bit) {
            if (set >> bit & 1U) flags += kFlags[bit];
        }
        for (const char* width : {"", "1", "5", "12", "40"}) {
            for (const char* precision : {"", ".", ".0", ".1", ".4", ".9", ".25"}) {
                shapes.push_back(flags + width + precision);
            }
        }
    }
    return shapes;
}

TEST(SafeSprintfGrid, IntegersPrintAsTheCLibraryPrintsThem) {
    constexpr Prefix kPrefixes[] = {{"", ""}, {"l", ""}, {"I32", ""}};
    for (const std::string& shape : allShapes()) {
        for (const char conversion : {'d', 'i', 'u', 'o', 'x', 'X'}) {
            for (const int value : {0, 1, -1, 8, 12345, -98765, INT_MAX, INT_MIN}) {
                agreeOn(shape, kPrefixes[static_cast<unsigned>(value) % 3], conversion, value);
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST(SafeSprintfGrid, ShortIntegersPrintAsTheCLibraryPrintsThem) {
    for (const std::string& shape : allShapes()) {
        for (const char conversion : {'d', 'i', 'u', 'o', 'x', 'X'}) {
            for (const int value : {0, 32767, 32768, 65535, 65536, -1, -70000}) {
                agreeOn(shape, {"h", "h"}, conversion, value);
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST(SafeSprintfGrid, LongIntegersPrintAsTheCLibraryPrintsThem) {
    constexpr const char* kOwn[] = {"ll", "I64", "I", "z", "t"};
    for (const std::string& shape : allShapes()) {
        for (const char conversion : {'d', 'i', 'u', 'o', 'x', 'X'}) {
            std::size_t turn = 0;
            for (const long long value :
                 {0LL, 1LL, -1LL, 5000000000LL, -5000000000LL, static_cast<long long>(INT64_MAX),
                  static_cast<long long>(INT64_MIN)}) {
                agreeOn(shape, {kOwn[turn++ % std::size(kOwn)], "ll"}, conversion, value);
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST(SafeSprintfGrid, FloatsPrintAsTheCLibraryPrintsThem) {
    constexpr char kConversions[] = {'e', 'E', 'f', 'F', 'g', 'G', 'a', 'A'};
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    constexpr double kValues[] = {
        0.0,  -0.0,    1.0,   -1.0,    0.5,     2.5,    9.9999995, 1e-5,       123456.0, 1234567.0,
        1e21, -1e-300, 1e300, DBL_MAX, DBL_MIN, 5e-324, kInfinity, -kInfinity, kNaN};
    for (const std::string& shape : allShapes()) {
        for (const char conversion : kConversions) {
            for (const double value : kValues) {
                agreeOn(shape, {"", ""}, conversion, value);
                if (HasFatalFailure()) return;
            }
        }
    }
}

}  // namespace

}  // namespace vexa::test
