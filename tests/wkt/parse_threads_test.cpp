#include "tests/support/parse_support.h"

#include <array>
#include <atomic>
#include <functional>
#include <latch>
#include <thread>

namespace vexa::test {

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = kIsSlowBuild ? 1'000 : 5'000;

/// Runs an action in all threads at once; its argument is the thread's number.
void inAllThreads(const std::function<void(int)>& action) {
    std::latch start{kThreads};
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) {
        threads.emplace_back([&, number] {
            start.arrive_and_wait();
            action(number);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

struct Shared {
    std::string text;
    std::uint32_t status;
    std::vector<std::uint32_t> contents;
};

Shared shared(const std::string& text) {
    const Parsed result = parsed(text);
    return {text, result.status,
            result.geometry ? contentsOf(*result.geometry) : std::vector<std::uint32_t>{}};
}

std::vector<Shared> goodAndBadTexts() {
    std::string longLine = "LINESTRING(1 2 3";
    for (int i = 0; i < 50; ++i) longLine += ",0.5 -1e+3 " + std::to_string(i);
    return {shared("POINT(1 2 3)"),
            shared("POINT(1 2)"),
            shared(longLine + ")"),
            shared(longLine),
            shared("GEOMETRYCOLLECTION(POINT(1 2 3),POLYGON((1 2 3),(4 5 6)))"),
            shared("GEOMETRYCOLLECTION(GEOMETRYCOLLECTION(POINT(1 2 3)))"),
            shared("MULTIPOLYGON(((1 2 3,4 5 6),(7 8 9)))"),
            shared("99999999999999999999999999999999999999")};
}

TEST(ParseThreads, GetEachTheGeometryOfTheirOwnText) {
    const std::vector<Shared> texts = goodAndBadTexts();
    std::atomic<int> wrong = 0;

    inAllThreads([&](int number) {
        for (int round = 0; round < kRounds; ++round) {
            const Shared& row = texts[static_cast<std::size_t>(number + round) % texts.size()];
            GeometryBuffer* geometry = nullptr;
            const bool isRight =
                vexaParse_string(row.text.c_str(), &geometry) == row.status &&
                (geometry == nullptr) == row.contents.empty() &&
                (!geometry ||
                 wordsOf(*geometry, row.contents.size() * sizeof(std::uint32_t)) == row.contents);
            if (!isRight) ++wrong;
            vexaWKB_destroyGeom(&geometry);
        }
    });

    EXPECT_EQ(wrong, 0);
}

TEST(ParseThreads, LeaveTheErrorTextOfOneOfThem) {
    inAllThreads([](int number) {
        const std::string text = "POINT(1 2 3 " + std::to_string(number) + ")";
        for (int round = 0; round < kRounds; ++round) vexaParse_string(text.c_str(), nullptr);
    });

    const std::string error = vexaParse_errorString();
    bool isOfOne = false;
    for (int number = 0; number < kThreads; ++number) {
        isOfOne = isOfOne || error == errorAt(std::to_string(number));
    }
    EXPECT_TRUE(isOfOne) << error;
}

// Each stray goes out by itself, so two parses at once would mix theirs.
TEST(ParseThreads, EchoOneTextAfterTheOther) {
    constexpr std::size_t kStrays = 100;
    constexpr std::string_view kLetters = "abcdfhij";
    constexpr std::size_t kEchoes = 5'000;

    const std::string echo = outputOf([&] {
        inAllThreads([&](int number) {
            std::string text;
            for (std::size_t i = 0; i < kStrays; ++i) {
                text += kLetters[static_cast<std::size_t>(number)];
                text += ' ';
            }
            for (std::size_t round = 0; round < kEchoes; ++round) {
                vexaParse_string(text.c_str(), nullptr);
            }
        });
    });

    ASSERT_EQ(echo.size(), kThreads * kEchoes * kStrays);
    for (std::size_t from = 0; from < echo.size(); from += kStrays) {
        ASSERT_EQ(echo.substr(from, kStrays), std::string(kStrays, echo[from])) << from;
    }
}

TEST(ParseThreads, MayComeThroughEveryDoor) {
    const WideText text = widened("LINESTRING(0 0 0,1 1 1)");
    const Block expected = parsed("LINESTRING(0 0 0,1 1 1)").geometry;
    std::atomic<int> wrong = 0;

    inAllThreads([&](int number) {
        for (int round = 0; round < kRounds; ++round) {
            std::array<std::byte, 80> out{};
            std::uint32_t size = 0;
            bool isRight = true;
            switch ((number + round) % 3) {
                case 0:
                    isRight = vexaWKB_getSizeFromTextGeom(text.c_str(), &size) == 0 && size == 80;
                    break;
                case 1:
                    isRight = vexaWKB_convertTextToBinary(text.c_str(), out.data(), 80) == 0 &&
                              std::memcmp(out.data(), expected.get(), 80) == 0;
                    break;
                default: isRight = vexaParse_string("POINT(", nullptr) == 1; break;
            }
            if (!isRight) ++wrong;
        }
    });

    EXPECT_EQ(wrong, 0);
}

}  // namespace

}  // namespace vexa::test
