#pragma once

#include <clocale>
#include <string>
#include <string_view>

#ifndef _WIN32
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdlib.h>
#endif

namespace vexa::test {

#ifdef _WIN32

/// A decimal comma for the C runtime while this object lives.
class NumericLocale {
public:
    NumericLocale() : isSet_(std::setlocale(LC_NUMERIC, "German") != nullptr) {}
    NumericLocale(const NumericLocale&) = delete;
    NumericLocale& operator=(const NumericLocale&) = delete;
    ~NumericLocale() { std::setlocale(LC_NUMERIC, "C"); }

    [[nodiscard]] bool isSet() const { return isSet_; }

private:
    bool isSet_;
};

#else

/// A decimal point of our own for the C runtime while this object lives. A system need not have any
/// locale but "C", so the one with this point is made here, in a folder for temporary files.
class NumericLocale {
public:
    explicit NumericLocale(std::string_view narrow = ",", char32_t wide = U',') {
        std::string folder = (std::filesystem::temp_directory_path() / "locale-XXXXXX").string();
        if (!mkdtemp(folder.data())) return;

        folder_ = folder;
        writeFile(narrow, wide);
        setenv("LOCPATH", folder_.c_str(), 1);
        isSet_ = std::setlocale(LC_NUMERIC, kName) != nullptr;
        unsetenv("LOCPATH");
    }
    NumericLocale(const NumericLocale&) = delete;
    NumericLocale& operator=(const NumericLocale&) = delete;
    ~NumericLocale() {
        std::setlocale(LC_NUMERIC, "C");
        std::error_code ignored;
        if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
    }

    [[nodiscard]] bool isSet() const { return isSet_; }

private:
    static constexpr const char* kName = "point";

    // A locale category of glibc: a magic number, the number of fields, their offsets, the fields.
    void writeFile(std::string_view narrow, char32_t wide) const {
        constexpr std::uint32_t kMagic = 0x20031115 ^ LC_NUMERIC;
        constexpr std::uint32_t kFields = 6;
        constexpr std::uint32_t kFieldRoom = 8;
        constexpr std::uint32_t kHeader = 8 + 4 * kFields;
        const std::string_view codeset = "UTF-8";
        const char32_t noSeparator = 0;
        const std::string_view fields[kFields] = {
            narrow,
            "",      // no separator of thousands
            "\x7F",  // no groups
            {reinterpret_cast<const char*>(&wide), sizeof wide},
            {reinterpret_cast<const char*>(&noSeparator), sizeof noSeparator},
            codeset,
        };

        const std::filesystem::path folder = std::filesystem::path(folder_) / kName;
        std::filesystem::create_directory(folder);
        std::ofstream file(folder / "LC_NUMERIC", std::ios::binary);
        const auto putWord = [&](std::uint32_t word) {
            file.write(reinterpret_cast<const char*>(&word), sizeof word);
        };
        putWord(kMagic);
        putWord(kFields);
        for (std::uint32_t index = 0; index < kFields; ++index) {
            putWord(kHeader + index * kFieldRoom);
        }
        for (const std::string_view field : fields) {
            std::string cell(field);
            cell.resize(kFieldRoom);
            file.write(cell.data(), kFieldRoom);
        }
    }

    std::string folder_;
    bool isSet_ = false;
};

#endif

}  // namespace vexa::test
