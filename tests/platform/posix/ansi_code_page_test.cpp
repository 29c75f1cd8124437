#include "platform/encodings.h"
#include "platform/posix/code_pages.h"
#include "tests/support/wide_text.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr int kToTerminator = -1;
constexpr VexaWChar kEAcute[] = {0xE9, 0};

std::string inHex(const char* bytes) {
    std::string hex;
    for (; *bytes != '\0'; ++bytes) {
        constexpr char kDigits[] = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(*bytes);
        hex += {kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return hex;
}

std::string convertedToAnsi() {
    char bytes[8] = {};
    platform::wideToAnsi(kEAcute, kToTerminator, bytes, sizeof(bytes));
    return inHex(bytes);
}

// Runs in a process of its own, which the tests below start with the environment to be tried.
TEST(AnsiCodePageChild, DISABLED_TellsItsConversion) {
    std::printf("[at load %s]\n", convertedToAnsi().c_str());

    // NOLINTBEGIN(concurrency-mt-unsafe): the process has one thread
    setenv("LC_ALL", "ja_JP.SJIS", 1);
    std::setlocale(LC_ALL, "");
    // NOLINTEND(concurrency-mt-unsafe)
    std::printf("[afterwards %s]\n", convertedToAnsi().c_str());
}

std::string readAll(const char* command) {
    struct Close {
        void operator()(std::FILE* pipe) const { pclose(pipe); }
    };
    const std::unique_ptr<std::FILE, Close> pipe{popen(command, "r")};
    std::string output;
    for (int c = 0; pipe && (c = std::fgetc(pipe.get())) != EOF;) output += static_cast<char>(c);
    return output;
}

std::string childsOutput(const std::string& environment) {
    char self[4096] = {};
    if (readlink("/proc/self/exe", self, sizeof(self) - 1) < 0) return "no program";
    const std::string command = "env -u LC_ALL -u LC_CTYPE -u LANG " + environment + " '" + self +
                                "' --gtest_also_run_disabled_tests"
                                " --gtest_filter=AnsiCodePageChild.*";
    return readAll(command.c_str());
}

struct EnvironmentCase {
    const char* name;
    const char* environment;
    const char* bytes;
};

void PrintTo(const EnvironmentCase& row, std::ostream* out) {
    *out << row.name;
}

class AnsiCodePage : public testing::TestWithParam<EnvironmentCase> {};

TEST_P(AnsiCodePage, IsThatOfTheEnvironmentAtLoadForGood) {
    const std::string output = childsOutput(GetParam().environment);

    const std::string bytes = GetParam().bytes;
    EXPECT_NE(output.find("[at load " + bytes + "]"), std::string::npos) << output;
    EXPECT_NE(output.find("[afterwards " + bytes + "]"), std::string::npos) << output;
}

constexpr EnvironmentCase kEnvironmentCases[] = {
    {"NoneIsWestern", "", "E9"},
    {"LangAlone", "LANG=C.UTF-8", "C3A9"},
    {"CtypeBeforeLang", "LANG=C.UTF-8 LC_CTYPE=ru_RU.KOI8-R", "65"},
    {"AllBeforeCtype", "LC_ALL=zh_CN.GBK LC_CTYPE=ru_RU.KOI8-R", "A8A6"},
};
INSTANTIATE_TEST_SUITE_P(Table, AnsiCodePage, testing::ValuesIn(kEnvironmentCases),
                         [](const auto& row) { return row.param.name; });

// Gigabytes of address space, which one short file fills over and over; then comes a zero.
class RepeatedUnits {
public:
    RepeatedUnits(VexaWChar unit, std::size_t count)
        : bytes_((count * sizeof(VexaWChar) + kStep - 1) / kStep * kStep) {
        const int file = memfd_create("units", MFD_CLOEXEC);
        if (file < 0) return;
        if (ftruncate(file, kStep) == 0 && reserve() && fill(file)) {
            units_ = reinterpret_cast<VexaWChar*>(start_);
            std::fill_n(units_, kStep / sizeof(VexaWChar), unit);
        }
        close(file);
    }
    RepeatedUnits(const RepeatedUnits&) = delete;
    RepeatedUnits& operator=(const RepeatedUnits&) = delete;
    ~RepeatedUnits() {
        if (start_) munmap(start_, bytes_ + kStep);
    }

    [[nodiscard]] const VexaWChar* data() const { return units_; }

private:
    static constexpr std::size_t kStep = std::size_t{1} << 21;

    bool reserve() {
        constexpr int kFlags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
        void* start = mmap(nullptr, bytes_ + kStep, PROT_READ, kFlags, -1, 0);
        if (start == MAP_FAILED) return false;
        start_ = static_cast<char*>(start);
        return true;
    }

    bool fill(int file) {
        constexpr int kProtection = PROT_READ | PROT_WRITE;
        for (std::size_t at = 0; at < bytes_; at += kStep) {
            void* place = mmap(start_ + at, kStep, kProtection, MAP_SHARED | MAP_FIXED, file, 0);
            if (place == MAP_FAILED) return false;
        }
        return true;
    }

    std::size_t bytes_;
    char* start_ = nullptr;
    VexaWChar* units_ = nullptr;
};

TEST(WideToCodePageHuge, BytesThatAnIntCannotTellAreNone) {
    constexpr int kMost = std::numeric_limits<int>::max();
    const RepeatedUnits text('a', kMost);
    ASSERT_NE(text.data(), nullptr);
    const platform::CodePage western = platform::findCodePage(1252).value();

    EXPECT_EQ(platform::wideToCodePage(western, text.data(), kMost, nullptr, 0), kMost);
    EXPECT_EQ(platform::wideToCodePage(western, text.data(), kToTerminator, nullptr, 0), 0);
}

}  // namespace

}  // namespace vexa::test
