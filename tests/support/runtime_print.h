#pragma once

#include "tests/support/wide_text.h"
#include "vexakit/types.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <cwchar>
#include <string>

namespace vexa::test {

/// A negative precision is none, which is 6. Not every runtime takes one smaller than -1 for that.
constexpr int effectivePrecision(int precision) {
    return precision < 0 ? 6 : precision;
}

/// What the C runtime of the platform prints for "%.*g": the measure of every number written.
inline std::string runtimeNumber(double value, int precision) {
    const int digits = effectivePrecision(precision);
    std::array<char, 2048> text{};
#ifdef _WIN32
    const int length = _snprintf(text.data(), text.size(), "%.*g", digits, value);
#else
    const int length = std::snprintf(text.data(), text.size(), "%.*g", digits, value);
#endif
    return {text.data(), static_cast<std::size_t>(length)};
}

/// What the runtime's wide print gives for a point in its whole format.
inline WideString runtimePoint(const Point3d& point, int precision, bool inParentheses = false) {
    const int digits = effectivePrecision(precision);
    std::array<wchar_t, 4096> text{};
    const auto print = [&](const wchar_t* format) {
#ifdef _WIN32
        return _snwprintf(text.data(), text.size(), format, digits, point.x, digits, point.y,
                          digits, point.z);
#else
        return std::swprintf(text.data(), text.size(), format, digits, point.x, digits, point.y,
                             digits, point.z);
#endif
    };
    const int length = print(inParentheses ? L"(%.*g %.*g %.*g)" : L"%.*g %.*g %.*g");
    WideString result;
    for (int index = 0; index < length; ++index) {
        result += static_cast<VexaWChar>(text[static_cast<std::size_t>(index)]);
    }
    return result;
}

/// How many digits the runtime gives an exponent at least.
inline int exponentDigits() {
    return static_cast<int>(runtimeNumber(1e10, 1).size() - std::string("1e+").size());
}

}  // namespace vexa::test
