#include "tests/support/parse_support.h"

#include <algorithm>
#include <array>
#include <random>

namespace vexa::test {

namespace {

// The scanner once more, as its rules say it and no faster: every rule is tried at every place.

std::size_t lengthOfEither(std::string_view upper, std::string_view lower, std::string_view text) {
    return text.starts_with(upper) || text.starts_with(lower) ? upper.size() : 0;
}

std::size_t lengthOfAll(std::string_view characters, std::string_view text) {
    return std::min(text.find_first_not_of(characters), text.size());
}

constexpr std::string_view kDigits = "0123456789";

// Any number of "-", digits, perhaps "." and digits; 0 where the text does not begin so.
std::size_t lengthOfDecimal(std::string_view text) {
    std::size_t length = lengthOfAll("-", text);
    const std::size_t digits = lengthOfAll(kDigits, text.substr(length));
    if (digits == 0) return 0;

    length += digits;
    if (!text.substr(length).starts_with('.')) return length;
    ++length;
    return length + lengthOfAll(kDigits, text.substr(length));
}

std::size_t lengthWithExponent(char letter, std::string_view text) {
    const std::size_t decimal = lengthOfDecimal(text);
    if (decimal == 0) return 0;

    const std::string_view rest = text.substr(decimal);
    if (rest.size() < 3 || rest[0] != letter || (rest[1] != '+' && rest[1] != '-')) return 0;
    const std::size_t digits = lengthOfAll(kDigits, rest.substr(2));
    return digits == 0 ? 0 : decimal + 2 + digits;
}

struct Match {
    std::size_t length = 0;
    int code = 0;
};

constexpr int kSkip = -1;
constexpr int kStray = -2;

Match longestMatch(std::string_view text) {
    const std::array<Match, 15> rules = {{
        {lengthOfEither("POINT", "point", text), 262},
        {lengthOfEither("LINESTRING", "linestring", text), 263},
        {lengthOfEither("POLYGON", "polygon", text), 264},
        {lengthOfEither("MULTIPOINT", "multipoint", text), 265},
        {lengthOfEither("MULTILINESTRING", "multilinestring", text), 266},
        {lengthOfEither("MULTIPOLYGON", "multipolygon", text), 267},
        {lengthOfEither("GEOMETRYCOLLECTION", "geometrycollection", text), 268},
        {lengthOfDecimal(text), 261},
        {lengthWithExponent('e', text), 261},
        {lengthWithExponent('E', text), 261},
        {lengthOfEither("(", "(", text), 258},
        {lengthOfEither(")", ")", text), 259},
        {lengthOfEither(",", ",", text), 260},
        {lengthOfAll(" \t\n", text), kSkip},
        {1, kStray},
    }};
    // The first among the longest.
    return *std::max_element(rules.begin(), rules.end(), [](const Match& one, const Match& other) {
        return one.length < other.length;
    });
}

std::vector<Token> tokensByRule(std::string_view text, std::string& echo) {
    std::vector<Token> tokens;
    while (!text.empty()) {
        const auto [length, code] = longestMatch(text);
        const std::string token{text.substr(0, length)};
        if (code == kStray) echo += token;
        if (code == 261) tokens.push_back({code, token, runtimeNumber(token)});
        if (code > 0 && code != 261) tokens.push_back({code, token});
        text.remove_prefix(length);
    }
    tokens.push_back({0, ""});
    return tokens;
}

// ---- Texts -------------------------------------------------------------------------------------

constexpr std::string_view kFragments[] = {
    "POINT",
    "point",
    "Point",
    "LINESTRING",
    "linestring",
    "POLYGON",
    "polygon",
    "POLYGO",
    "MULTI",
    "multi",
    "MULTIPOINT",
    "multipoint",
    "POIN",
    "LINE",
    "STRING",
    "MULTIPOLY",
    "MULTILINESTRIN",
    "GEOMETRY",
    "COLLECTION",
    "GEOMETRYCOLLECTION",
    "geometrycollection",
    "multilinestring",
    "MULTILINESTRING",
    "multipolygon",
    "MULTIPOLYGON",
    "P",
    "L",
    "M",
    "G",
    "p",
    "l",
    "m",
    "g",
    "z",
    "-",
    "--",
    "-",
    "+",
    ".",
    ".",
    "e",
    "E",
    "e+",
    "E-",
    "e-",
    "0",
    "1",
    "9",
    "12",
    "345",
    "00",
    "1.5",
    "-7",
    "1e+5",
    "1E-300",
    "1e+400",
    "(",
    ")",
    ",",
    " ",
    " ",
    "\t",
    "\n",
    "\r",
    "\f",
    "\x80",
    "\xFF",
    "Z",
    "#",
    "77777777777777777777",
    "5e-324",
    "3e-3",
};

std::string randomText(std::mt19937& random) {
    std::uniform_int_distribution<std::size_t> fragment(0, std::size(kFragments) - 1);
    std::uniform_int_distribution<int> count(0, 24);
    std::string text;
    for (int left = count(random); left > 0; --left) text += kFragments[fragment(random)];
    return text;
}

std::string randomBytes(std::mt19937& random) {
    std::uniform_int_distribution<int> byte(1, 255);
    std::uniform_int_distribution<int> count(0, 60);
    std::string text;
    for (int left = count(random); left > 0; --left) text += static_cast<char>(byte(random));
    // What the capture of the output would not give back on Windows.
    std::erase_if(text, [](char c) { return c == '\x1A' || c == '\x02' || c == '\r'; });
    return text;
}

// The echoes of many scans, captured at once: a capture is a file.
std::vector<std::string> echoesOf(const std::vector<std::string>& texts,
                                  std::vector<std::vector<Token>>& tokens) {
    constexpr char kBetween = '\x02';
    const std::string all = outputOf([&] {
        for (const std::string& text : texts) {
            tokens.push_back(tokensOf(text));
            std::fputc(kBetween, stdout);
        }
    });
    std::vector<std::string> echoes;
    for (std::size_t from = 0; from < all.size();) {
        const std::size_t to = all.find(kBetween, from);
        echoes.push_back(all.substr(from, to - from));
        from = to + 1;
    }
    return echoes;
}

void expectTheSameByRule(const std::vector<std::string>& texts) {
    std::vector<std::vector<Token>> tokens;
    const std::vector<std::string> echoes = echoesOf(texts, tokens);
    ASSERT_EQ(echoes.size(), texts.size());

    for (std::size_t i = 0; i < texts.size(); ++i) {
        std::string echo;
        ASSERT_EQ(tokens[i], tokensByRule(texts[i], echo)) << testing::PrintToString(texts[i]);
        ASSERT_EQ(echoes[i], echo) << testing::PrintToString(texts[i]);
    }
}

TEST(ScannerByRule, ReadsTokenFragmentsInAnyOrder) {
    constexpr unsigned kSeed = 20250711;
    SCOPED_TRACE(kSeed);
    std::mt19937 random{kSeed};
    std::vector<std::string> texts(20'000);
    std::generate(texts.begin(), texts.end(), [&] { return randomText(random); });

    expectTheSameByRule(texts);
}

TEST(ScannerByRule, ReadsAnyBytes) {
    constexpr unsigned kSeed = 19770525;
    SCOPED_TRACE(kSeed);
    std::mt19937 random{kSeed};
    std::vector<std::string> texts(5'000);
    std::generate(texts.begin(), texts.end(), [&] { return randomBytes(random); });

    expectTheSameByRule(texts);
}

// Every text of up to five of the characters that numbers are made of.
TEST(ScannerByRule, ReadsEveryShortTextOfNumberCharacters) {
    constexpr std::string_view kAlphabet = "-+.eE1 ";
    std::vector<std::string> texts = {""};
    for (std::size_t from = 0; texts[from].size() < 5; ++from) {
        for (const char c : kAlphabet) texts.push_back(texts[from] + c);
    }

    expectTheSameByRule(texts);
}

}  // namespace

}  // namespace vexa::test
