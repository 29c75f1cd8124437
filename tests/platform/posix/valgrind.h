#pragma once

#include <cstdlib>
#include <cstring>

namespace vexa::test {

/// Whether Valgrind runs the program. It makes the calls to the kernel in the program's place, and what they
/// lack it lacks itself.
inline bool isUnderValgrind() {
    const char* const preloaded = std::getenv("LD_PRELOAD");
    return preloaded && std::strstr(preloaded, "vgpreload");
}

}  // namespace vexa::test
