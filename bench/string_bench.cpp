// Fractions beside the runtime's print of the same text, tokens beside a search and a copy.
#include "bench/works.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace vexa::bench {

namespace {

constexpr std::size_t kNumbers = 1000;
constexpr double kFractionReach = 0.2;
constexpr double kTokenReach = 0.9;

using Text = std::array<char, 32>;

/// A number and its parts, so that the peer has nothing to do but to print them.
struct Mixed {
    double value;
    int whole;
    int numerator;
    int denominator;
    double rest;
};

Mixed mixed(int whole, int thirtySeconds) {
    int numerator = thirtySeconds;
    int denominator = 32;
    while (numerator % 2 == 0) {
        numerator /= 2;
        denominator /= 2;
    }
    const double rest = thirtySeconds / 32.0;
    return {whole + rest, whole, numerator, denominator, rest};
}

/// 3 1/2 and the like.
std::vector<Mixed> steps() {
    std::vector<Mixed> numbers;
    for (std::size_t i = 0; i < kNumbers; ++i) {
        const int k = static_cast<int>(i);
        numbers.push_back(mixed(1 + k, 1 + k * 7 % 31));
    }
    return numbers;
}

/// 3.123450 and the like: no such step.
std::vector<Mixed> decimals() {
    std::vector<Mixed> numbers;
    for (std::size_t i = 0; i < kNumbers; ++i) {
        const int whole = static_cast<int>(i) + 1;
        const double rest = 0.123451 + 0.0007 * std::sqrt(static_cast<double>(i));
        numbers.push_back({whole + rest, whole, 0, 0, rest});
    }
    return numbers;
}

void printStep(const Mixed& number, Text& text) {
    std::snprintf(text.data(), text.size(), "%d %d/%d", number.whole, number.numerator,
                  number.denominator);
}

void printDecimals(const Mixed& number, Text& text) {
    std::snprintf(text.data(), text.size(), "%f", number.value);
}

void enterFractions(Contest& contest, const std::vector<Mixed>& list,
                    void (*print)(const Mixed&, Text&)) {
    const auto numbers = std::make_shared<const std::vector<Mixed>>(list);
    const auto texts = std::make_shared<std::vector<Text>>(list.size());
    std::vector<Text> expected(list.size());
    for (std::size_t i = 0; i < list.size(); ++i) print(list[i], expected[i]);
    const auto isRight = [=] {
        for (std::size_t i = 0; i < expected.size(); ++i) {
            if (std::strcmp((*texts)[i].data(), expected[i].data()) != 0) return false;
        }
        return true;
    };
    const auto ours = [=] {
        for (std::size_t i = 0; i < numbers->size(); ++i) {
            string_convertDoubleToFracA((*numbers)[i].value, (*texts)[i].data());
        }
        benchmark::DoNotOptimize(texts->data());
        benchmark::ClobberMemory();
    };
    contest.ours(ours, isRight);
    texts->assign(list.size(), {});
    const auto theirs = [=] {
        for (std::size_t i = 0; i < numbers->size(); ++i) print((*numbers)[i], (*texts)[i]);
        benchmark::DoNotOptimize(texts->data());
        benchmark::ClobberMemory();
    };
    contest.peer("snprintf", kFractionReach, theirs, isRight);
}

// Of a short list a processor that guesses branches soon knows all lengths by heart, of a long one none.
constexpr std::size_t kFewTokens = 100;
constexpr std::size_t kManyTokens = 100000;
constexpr const char* kDelimiters = ",;";

using Tokens = std::vector<Text>;

/// Words of 3 to 13 letters.
std::vector<std::string> words(std::size_t count) {
    std::mt19937 random(1);
    std::vector<std::string> list(count);
    for (std::size_t i = 0; i < count; ++i) {
        list[i].assign(3 + random() % 11, static_cast<char>('a' + i % 26));
    }
    return list;
}

std::string joined(const std::vector<std::string>& words) {
    std::string list;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0) list += i % 3 == 0 ? ';' : ',';
        list += words[i];
    }
    return list;
}

void takeTokens(const char* source, Tokens& tokens) {
    std::size_t count = 0;
    for (char* next = nullptr; source && count < tokens.size(); source = next) {
        string_getTokenA(source, kDelimiters, tokens[count++].data(), &next);
    }
}

void searchAndCopy(const char* source, Tokens& tokens) {
    for (Text& token : tokens) {
        const std::size_t length = std::strcspn(source, kDelimiters);
        std::memcpy(token.data(), source, length);
        token[length] = 0;
        if (source[length] == 0) return;
        source += length + 1;
    }
}

void enterTokens(Contest& contest) {
    const auto expected = std::make_shared<const std::vector<std::string>>(words(contest.size()));
    const auto list = std::make_shared<const std::string>(joined(*expected));
    const auto tokens = std::make_shared<Tokens>(contest.size());
    const auto isRight = [=] {
        return std::equal(
            expected->begin(), expected->end(), tokens->begin(), tokens->end(),
            [](const std::string& word, const Text& token) { return word == token.data(); });
    };
    const auto round = [=](auto take) {
        return [=] {
            take(list->c_str(), *tokens);
            benchmark::DoNotOptimize(tokens->data());
            benchmark::ClobberMemory();
        };
    };
    contest.ours(round([](const char* text, Tokens& out) { takeTokens(text, out); }), isRight);
    tokens->assign(contest.size(), {});
    contest.peer("strcspn + memcpy", kTokenReach,
                 round([](const char* text, Tokens& out) { searchAndCopy(text, out); }), isRight);
}

}  // namespace

void addStrings(Works& works) {
    works.add({"strings", "fractions, steps", kNumbers},
              [](Contest& contest) { enterFractions(contest, steps(), printStep); });
    works.add({"strings", "fractions, decimals", kNumbers},
              [](Contest& contest) { enterFractions(contest, decimals(), printDecimals); });
    for (const std::size_t tokens : {kFewTokens, kManyTokens}) {
        works.add({"strings", "tokens", tokens}, enterTokens);
    }
}

}  // namespace vexa::bench
