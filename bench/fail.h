#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace vexa::bench {

/// What is wrong with a measurement ends it at once.
[[noreturn]] inline void fail(const std::string& message) {
    std::fprintf(stderr, "\n%s\n", message.c_str());
    std::_Exit(EXIT_FAILURE);
}

}  // namespace vexa::bench
