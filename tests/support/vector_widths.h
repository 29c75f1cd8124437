#pragma once

#include "platform/vector_width.h"

#include <vector>

#include <gtest/gtest.h>

/// The forms that a loop has for machines with and without wide vectors: all of them have to run, on
/// whatever machine the tests do.
namespace vexa::test {

using platform::VectorWidth;

/// Limits the width while this object lives.
class WidthLimit {
public:
    explicit WidthLimit(VectorWidth widest) : before_(platform::vectorWidth()) {
        platform::limitVectorWidth(widest);
    }
    WidthLimit(const WidthLimit&) = delete;
    WidthLimit& operator=(const WidthLimit&) = delete;
    ~WidthLimit() { platform::limitVectorWidth(before_); }

private:
    VectorWidth before_;
};

inline const char* nameOf(VectorWidth width) {
    switch (width) {
        case VectorWidth::Avx512: return "AVX-512";
        case VectorWidth::Avx2: return "AVX2";
        default: return "plain";
    }
}

/// Those of the widths that the machine has; the plain one comes first.
inline std::vector<VectorWidth> widthsOfMachine() {
    std::vector<VectorWidth> widths;
    for (const VectorWidth width : {VectorWidth::Plain, VectorWidth::Avx2, VectorWidth::Avx512}) {
        const WidthLimit limit{width};
        if (platform::vectorWidth() == width) widths.push_back(width);
    }
    return widths;
}

template <class Act>
void atEachWidth(Act act) {
    static const std::vector<VectorWidth> widths = widthsOfMachine();
    for (const VectorWidth width : widths) {
        const testing::ScopedTrace trace(__FILE__, __LINE__, nameOf(width));
        const WidthLimit limit{width};
        act();
    }
}

/// What the plain form gives.
template <class Make>
auto plainly(Make make) {
    const WidthLimit limit{VectorWidth::Plain};
    return make();
}

}  // namespace vexa::test
