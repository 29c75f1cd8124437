// Two processes count together in one file. Reading, adding and writing are three steps: without the lock
// that both take by its name, counts would be lost.
//
//     shared_counter                    starts two processes that count, and tells their sum
//     shared_counter FILE LOCK ROUNDS   is one of them

#include "vexakit/vexakit.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <thread>

namespace {

constexpr int kRounds = 2000;

struct FreeText {
    void operator()(VexaWChar* text) const { string_freeW(text); }
};
using WideText = std::unique_ptr<VexaWChar, FreeText>;

WideText wide(const std::string& text) {
    VexaWChar* result = nullptr;
    stringCnv_utf8ToWcsAlloc(text.c_str(), &result);
    return WideText{result};
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

long readNumber(const std::string& path) {
    const File file{std::fopen(path.c_str(), "r")};
    long number = 0;
    return file && std::fscanf(file.get(), "%ld", &number) == 1 ? number : -1;
}

// Over what was there: the number only grows.
void writeNumber(const std::string& path, long number, const char* mode = "r+") {
    const File file{std::fopen(path.c_str(), mode)};
    if (file) std::fprintf(file.get(), "%ld", number);
}

struct HoldLock {
    void operator()(InterProcessLock* lock) const { lock->ObtainLock(); }
};
struct GiveLockBack {
    void operator()(InterProcessLock* lock) const { lock->ReleaseLock(); }
};
using Guard = Oreval::ScopedResource<InterProcessLock*, GiveLockBack, HoldLock>;

void count(const std::string& path, const std::string& lockName, int rounds) {
    constexpr uint32_t kSpins = 100;
    InterProcessLock lock(wide(lockName).get(), nullptr, kSpins);
    for (int round = 0; round < rounds; ++round) {
        const Guard guard{&lock};
        writeNumber(path, readNumber(path) + 1);
    }
}

std::string uniqueName() {
    return "shared_counter_" + std::to_string(std::random_device{}());
}

int countTogether(const std::string& program) {
    const std::string name = uniqueName();
    const std::string path = name + ".txt";
    writeNumber(path, 0, "w");

    const std::string command =
        "\"" + program + "\" " + path + " " + name + " " + std::to_string(kRounds);
    int otherStatus = EXIT_FAILURE;
    const auto run = [&] { return std::system(command.c_str()); };  // NOLINT(concurrency-mt-unsafe)
    std::thread other([&] { otherStatus = run(); });
    const int status = run();
    other.join();

    const long sum = readNumber(path);
    std::remove(path.c_str());
    std::printf("2 processes, %d rounds each: %ld\n", kRounds, sum);
    const bool isRight = status == 0 && otherStatus == 0 && sum == 2L * kRounds;
    return isRight ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 1) return countTogether(argv[0]);
    if (argc != 4) return EXIT_FAILURE;

    count(argv[1], argv[2], std::atoi(argv[3]));
    return EXIT_SUCCESS;
}
