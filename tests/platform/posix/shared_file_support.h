#pragma once

#include "platform/posix/object_path.h"
#include "platform/posix/shared_file.h"
#include "tests/platform/kernel_objects_support.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <sys/stat.h>

#include <gtest/gtest.h>

namespace vexa::test {

/// The path of an object that no other test uses. What is left there goes with this object.
class OwnPath {
public:
    OwnPath() : OwnPath(newObjectName()) {}
    explicit OwnPath(const WideString& name) : path_(*platform::ObjectPath::ofName(name)) {}
    OwnPath(const OwnPath&) = delete;
    OwnPath& operator=(const OwnPath&) = delete;
    ~OwnPath() {
        std::error_code ignored;
        std::filesystem::remove(data(), ignored);
    }

    [[nodiscard]] const platform::ObjectPath& object() const { return path_; }
    [[nodiscard]] const char* data() const { return path_.data(); }

    /// What lies there, links not followed.
    [[nodiscard]] std::optional<struct stat> status() const {
        struct stat status {};
        if (lstat(data(), &status) != 0) return std::nullopt;
        return status;
    }
    [[nodiscard]] bool exists() const { return status().has_value(); }

private:
    platform::ObjectPath path_;
};

constexpr std::size_t kBlockSize = 64;
using Block = std::array<unsigned char, kBlockSize>;
constexpr unsigned char kInitialised = 0x11;

/// How often memory was initialised, and whether it was all zeros each time.
struct Initialisations {
    int count = 0;
    bool wereZeros = true;
    bool fail = false;
};

inline bool initialiseBlock(void* memory, const void* how) noexcept {
    auto& made = **static_cast<Initialisations* const*>(how);
    auto& block = *static_cast<Block*>(memory);
    ++made.count;
    made.wereZeros = made.wereZeros && block == Block{};
    block.fill(kInitialised);
    return !made.fail;
}

using OwnFile = std::unique_ptr<platform::SharedFile>;

inline OwnFile openFile(const OwnPath& path, Initialisations& made, mode_t mode = 0600,
                        std::size_t size = kBlockSize) {
    Initialisations* const how = &made;
    return platform::SharedFile::open(path.object(), size, mode, &initialiseBlock, &how);
}

inline OwnFile openFile(const OwnPath& path) {
    Initialisations made;
    return openFile(path, made);
}

inline Block& blockOf(const OwnFile& file) {
    return *static_cast<Block*>(file->memory());
}

inline std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

}  // namespace vexa::test
