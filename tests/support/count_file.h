#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

namespace vexa::test {

/// Numbers in a file that several processes count up. Counting is no single step: two at it at once
/// lose counts.
class CountFile {
public:
    static constexpr std::size_t kCells = 16;

    explicit CountFile(const std::filesystem::path& path)
        : file_(std::fopen(path.string().c_str(), "r+b")) {
        if (file_) std::setvbuf(file_.get(), nullptr, _IONBF, 0);
    }

    [[nodiscard]] bool isOpen() const { return file_ != nullptr; }

    std::uint64_t at(std::size_t cell) {
        std::uint64_t value = 0;
        seek(cell);
        return std::fread(&value, sizeof value, 1, file_.get()) == 1 ? value : 0;
    }

    void countUp(std::size_t cell) {
        const std::uint64_t value = at(cell) + 1;
        std::this_thread::yield();  // where another would slip in
        seek(cell);
        std::fwrite(&value, sizeof value, 1, file_.get());
    }

    /// With nobody else at the file.
    void clear() {
        constexpr std::uint64_t kZeros[kCells] = {};
        seek(0);
        std::fwrite(&kZeros[0], sizeof kZeros, 1, file_.get());
    }

private:
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void seek(std::size_t cell) {
        std::fseek(file_.get(), static_cast<long>(cell * sizeof(std::uint64_t)), SEEK_SET);
    }

    std::unique_ptr<std::FILE, CloseFile> file_;
};

/// A new file of zeros, which goes at the end.
class NewCountFile {
public:
    explicit NewCountFile(const std::string& name)
        : path_(std::filesystem::temp_directory_path() / name) {
        constexpr std::uint64_t kZeros[CountFile::kCells] = {};
        if (std::FILE* const file = std::fopen(path_.string().c_str(), "wb")) {
            std::fwrite(&kZeros[0], sizeof kZeros, 1, file);
            std::fclose(file);
        }
    }
    NewCountFile(const NewCountFile&) = delete;
    NewCountFile& operator=(const NewCountFile&) = delete;
    ~NewCountFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }

    [[nodiscard]] std::string path() const { return path_.string(); }

private:
    std::filesystem::path path_;
};

}  // namespace vexa::test
