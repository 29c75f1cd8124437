#pragma once

#include "platform/posix/object_path.h"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>

namespace vexa::test {

/// What this process has for shared memory: none of it may be left when its users have gone.
struct Possessions {
    std::ptrdiff_t descriptors = 0;
    int mappings = 0;

    bool operator==(const Possessions&) const = default;
};

inline void PrintTo(const Possessions& possessions, std::ostream* out) {
    *out << possessions.descriptors << " descriptors, " << possessions.mappings << " mappings";
}

inline Possessions possessions() {
    Possessions current;
    current.descriptors = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find(platform::kSharedMemoryFolder) != std::string::npos) ++current.mappings;
    }
    return current;
}

}  // namespace vexa::test
