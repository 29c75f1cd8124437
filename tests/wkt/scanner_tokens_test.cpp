#include "tests/support/parse_support.h"

#include <cctype>
#include <limits>

namespace vexa::test {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

Token end() {
    return {0, ""};
}
Token open() {
    return {TOK_LPAREN, "("};
}
Token close() {
    return {TOK_RPAREN, ")"};
}
Token comma() {
    return {TOK_COMMA, ","};
}
Token real(std::string text, double value) {
    return {TOK_REAL, std::move(text), value};
}

TEST(Scanner, HasTheTokenCodesOfTheInterface) {
    EXPECT_EQ(TOK_LPAREN, 258);
    EXPECT_EQ(TOK_RPAREN, 259);
    EXPECT_EQ(TOK_COMMA, 260);
    EXPECT_EQ(TOK_REAL, 261);
    EXPECT_EQ(TOK_POINT, 262);
    EXPECT_EQ(TOK_LINESTRING, 263);
    EXPECT_EQ(TOK_POLYGON, 264);
    EXPECT_EQ(TOK_MULTIPOINT, 265);
    EXPECT_EQ(TOK_MULTILINESTRING, 266);
    EXPECT_EQ(TOK_MULTIPOLYGON, 267);
    EXPECT_EQ(TOK_GEOMETRYCOLLECTION, 268);
}

// ---- Keywords ----------------------------------------------------------------------------------

struct Keyword {
    const char* name;
    int code;
};

constexpr Keyword kKeywords[] = {
    {"POINT", TOK_POINT},
    {"LINESTRING", TOK_LINESTRING},
    {"POLYGON", TOK_POLYGON},
    {"MULTIPOINT", TOK_MULTIPOINT},
    {"MULTILINESTRING", TOK_MULTILINESTRING},
    {"MULTIPOLYGON", TOK_MULTIPOLYGON},
    {"GEOMETRYCOLLECTION", TOK_GEOMETRYCOLLECTION},
};

std::string lowered(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

class ScannerKeywords : public testing::TestWithParam<Keyword> {};

TEST_P(ScannerKeywords, AreReadInUpperAndInLowerCase) {
    const auto& [name, code] = GetParam();

    const std::string upper = name;
    const std::string lower = lowered(name);
    EXPECT_EQ(tokensOf(upper), (std::vector{Token{code, upper}, end()}));
    EXPECT_EQ(tokensOf(lower), (std::vector{Token{code, lower}, end()}));
}

TEST_P(ScannerKeywords, NeedNoDelimiter) {
    const auto& [name, code] = GetParam();

    const std::string upper = name;
    const std::string lower = lowered(name);
    EXPECT_EQ(tokensOf(upper + lower + "1" + upper),
              (std::vector{Token{code, upper}, Token{code, lower}, real("1", 1), Token{code, upper},
                           end()}));
}

TEST_P(ScannerKeywords, AreNoneWithOneLetterInTheOtherCase) {
    const std::string upper = GetParam().name;
    // Behind "MULTI" a whole keyword would be left.
    const std::size_t first = upper.starts_with("MULTI") ? 5 : 0;
    for (std::size_t i = first; i < upper.size(); ++i) {
        for (std::string mixed : {upper, lowered(upper)}) {
            mixed[i] = static_cast<char>(mixed[i] ^ 0x20);
            SCOPED_TRACE(mixed);

            std::vector<Token> tokens;
            EXPECT_EQ(outputOf([&] { tokens = tokensOf(mixed); }), mixed);
            EXPECT_EQ(tokens, std::vector{end()});
        }
    }
}

TEST_P(ScannerKeywords, AreNoneWhenCutShort) {
    const std::string upper = GetParam().name;
    for (std::size_t length = 1; length < upper.size(); ++length) {
        const std::string part = upper.substr(0, length);
        SCOPED_TRACE(part);

        std::vector<Token> tokens;
        EXPECT_EQ(outputOf([&] { tokens = tokensOf(part); }), part);
        EXPECT_EQ(tokens, std::vector{end()});
    }
}

INSTANTIATE_TEST_SUITE_P(Table, ScannerKeywords, testing::ValuesIn(kKeywords), kRowName);

// ---- Sequences ---------------------------------------------------------------------------------

struct Sequence {
    const char* name;
    const char* text;
    std::vector<Token> tokens;  // but the end
    const char* echo;
};

const Sequence kSequences[] = {
    {"Empty", "", {}, ""},
    {"WhiteSpaceAlone", " \t\n  \n\t", {}, ""},
    {"WhiteSpaceBetweenAll",
     "\tPOINT\n( 1\t2\n 3 )\n",
     {{TOK_POINT, "POINT"}, open(), real("1", 1), real("2", 2), real("3", 3), close()},
     ""},
    {"NoWhiteSpace",
     "point(1 2 3)",
     {{TOK_POINT, "point"}, open(), real("1", 1), real("2", 2), real("3", 3), close()},
     ""},
    {"Punctuation", "(),)(", {open(), close(), comma(), close(), open()}, ""},
    {"CapitalisedKeyword", "Point", {}, "Point"},
    {"CamelCaseKeyword", "GeometryCollection", {}, "GeometryCollection"},
    {"MixedCaseBehindMulti", "MULTIpoint", {{TOK_POINT, "point"}}, "MULTI"},
    {"DimensionLetter", "POINTZ POINT Z", {{TOK_POINT, "POINT"}, {TOK_POINT, "POINT"}}, "ZZ"},
    {"DimensionLetterInLowerCase", "pointz", {{TOK_POINT, "point"}}, "z"},
    {"KeywordCutByTheEnd", "POLYGO", {}, "POLYGO"},
    {"KeywordCutByAnother", "POLYGOPOINT", {{TOK_POINT, "POINT"}}, "POLYGO"},
    {"KeywordBeginningTwice", "POPOINT", {{TOK_POINT, "POINT"}}, "PO"},
    {"MultiWithoutAKeyword", "MULTIPOLY(", {open()}, "MULTIPOLY"},
    {"MultiTwice", "MULTIMULTIPOINT", {{TOK_MULTIPOINT, "MULTIPOINT"}}, "MULTI"},
    {"MultiBeforeCollection",
     "MULTIGEOMETRYCOLLECTION",
     {{TOK_GEOMETRYCOLLECTION, "GEOMETRYCOLLECTION"}},
     "MULTI"},
    {"LineInsideAMultiLineCutShort",
     "MULTILINESTRINLINESTRING",
     {{TOK_LINESTRING, "LINESTRING"}},
     "MULTILINESTRIN"},
    {"LongestKeyword",
     "multilinestringmultipolygon",
     {{TOK_MULTILINESTRING, "multilinestring"}, {TOK_MULTIPOLYGON, "multipolygon"}},
     ""},
    {"EmptyKeyword", "POINT EMPTY", {{TOK_POINT, "POINT"}}, "EMPTY"},

    {"Whole", "0 7 42", {real("0", 0), real("7", 7), real("42", 42)}, ""},
    {"LeadingZeros", "007", {real("007", 7)}, ""},
    {"Fraction", "1.5", {real("1.5", 1.5)}, ""},
    {"TrailingPoint", "1.", {real("1.", 1)}, ""},
    {"TrailingPointAndExponent", "1.e+2", {real("1.e+2", 100)}, ""},
    {"LeadingPoint", ".5", {real("5", 5)}, "."},
    {"LeadingPlus", "+1", {real("1", 1)}, "+"},
    {"TwoPoints", "1.2.3", {real("1.2", 1.2), real("3", 3)}, "."},
    {"PointsAlone", "1..2", {real("1.", 1), real("2", 2)}, "."},
    {"Negative", "-1.25", {real("-1.25", -1.25)}, ""},
    {"NegativeZero", "-0", {real("-0", -0.0)}, ""},
    {"NegativeLeadingPoint", "-.5", {real("5", 5)}, "-."},
    {"TwoMinusSigns", "--1", {real("--1", 0)}, ""},
    {"TwoMinusSignsBeforeAFraction", "--3.5e+1", {real("--3.5e+1", 0)}, ""},
    {"ManyMinusSigns", "------8", {real("------8", 0)}, ""},
    {"MinusSignsWithoutADigit", "-- --", {}, "----"},
    {"MinusSignsBeforeAPoint", "--.5", {real("5", 5)}, "--."},
    {"MinusSignAndSpace", "- 1", {real("1", 1)}, "-"},
    {"MinusSignBetweenNumbers", "1-2", {real("1", 1), real("-2", -2)}, ""},
    {"MinusSignBehindANumber", "1- 2", {real("1", 1), real("2", 2)}, "-"},
    {"PlusAndMinus", "+-1-+1", {real("-1", -1), real("1", 1)}, "+-+"},
    {"Exponent", "1e+5", {real("1e+5", 1e5)}, ""},
    {"NegativeExponent", "1.5E-3", {real("1.5E-3", 1.5e-3)}, ""},
    {"ExponentWithLeadingZeros", "1e+005", {real("1e+005", 1e5)}, ""},
    {"ExponentWithoutASign", "1e5", {real("1", 1), real("5", 5)}, "e"},
    {"ExponentInUpperCaseWithoutASign", "2E5", {real("2", 2), real("5", 5)}, "E"},
    {"ExponentWithoutDigits", "1e+", {real("1", 1)}, "e+"},
    {"NegativeExponentWithoutDigits", "1e-", {real("1", 1)}, "e-"},
    {"ExponentWithTwoSigns", "1e--5", {real("1", 1), real("--5", 0)}, "e"},
    {"ExponentWithBothSigns", "1e+-5", {real("1", 1), real("-5", -5)}, "e+"},
    {"ExponentWithASpace", "1e +5", {real("1", 1), real("5", 5)}, "e+"},
    {"ExponentWithAFraction", "1e+2.5", {real("1e+2", 100), real("5", 5)}, "."},
    {"TwoExponents", "1e+2e+3", {real("1e+2", 100), real("3", 3)}, "e+"},
    {"ExponentAlone", "e+5", {real("5", 5)}, "e+"},
    {"TooLarge", "1e+999 -1e+999", {real("1e+999", kInfinity), real("-1e+999", -kInfinity)}, ""},
    {"TooSmall", "1e-999 -1e-999", {real("1e-999", 0), real("-1e-999", -0.0)}, ""},
    {"Hexadecimal", "0x1F", {real("0", 0), real("1", 1)}, "xF"},
    {"NamedNumbers", "inf nan", {}, "infnan"},

    {"LineEndsOfTwoCharacters",
     "POINT\r\n(1\r2)",
     {{TOK_POINT, "POINT"}, open(), real("1", 1), real("2", 2), close()},
     "\r\r"},
    {"FormFeedAndVerticalTab", "1\f2\v3", {real("1", 1), real("2", 2), real("3", 3)}, "\f\v"},
    {"OtherBrackets", "[1]{2};", {real("1", 1), real("2", 2)}, "[]{};"},
    {"BytesAboveAscii",
     "\x80"
     "1\xFF\xC3\xA9",
     {real("1", 1)},
     "\x80\xFF\xC3\xA9"},
    {"StraysAmongSpaces", " a b\tc\n", {}, "abc"},
};

class ScannerSequences : public testing::TestWithParam<Sequence> {};

TEST_P(ScannerSequences, GiveTheirTokensAndEchoTheRest) {
    const Sequence& row = GetParam();

    std::vector<Token> tokens;
    const std::string echo = outputOf([&] { tokens = tokensOf(row.text); });

    std::vector<Token> expected = row.tokens;
    expected.push_back(end());
    EXPECT_EQ(tokens, expected);
    EXPECT_EQ(echo, row.echo);
}

INSTANTIATE_TEST_SUITE_P(Table, ScannerSequences, testing::ValuesIn(kSequences), kRowName);

// ---- The end, and single bytes -----------------------------------------------------------------

TEST(Scanner, StaysAtTheEnd) {
    const ScanBufferHandle buffer = scanBytes("(1");
    Scanner scanner{*buffer};
    nextOf(scanner);
    nextOf(scanner);

    for (int i = 0; i < 3; ++i) EXPECT_EQ(nextOf(scanner), end());
}

TEST(Scanner, HasNoTokenTextBeforeTheFirstToken) {
    const ScanBufferHandle buffer = scanBytes("POINT");

    EXPECT_EQ(Scanner{*buffer}.tokenText(), "");
}

TEST(Scanner, EndsAtAZeroByte) {
    std::vector<Token> tokens;
    EXPECT_EQ(outputOf([&] { tokens = tokensOf(std::string_view{"1 a\0b 2", 7}); }), "a");

    EXPECT_EQ(tokens, (std::vector{real("1", 1), end()}));
}

TEST(Scanner, LeavesTheTextAsItWas) {
    const std::string text = "POINT(1e+999 --5 1e-999x)";
    const ScanBufferHandle buffer = scanBytes(text);
    Scanner scanner{*buffer};
    outputOf([&] {
        while (nextOf(scanner).code != 0) continue;
    });

    EXPECT_EQ((std::string_view{buffer->block, buffer->size}), text + std::string(2, '\0'));
}

TEST(Scanner, EchoesEveryByteThatBeginsNoToken) {
    const std::string_view kNoStrays = "0123456789(), \t\n";
    for (int byte = 1; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        // The runtime of Windows takes this byte for the end of the captured file.
        if (byte == 0x1A || kNoStrays.find(text) != std::string_view::npos) continue;
        SCOPED_TRACE(byte);

        std::vector<Token> tokens;
        const std::string aroundAToken = std::string{text}.append("(").append(text);
        EXPECT_EQ(outputOf([&] { tokens = tokensOf(aroundAToken); }), text + text);
        EXPECT_EQ(tokens, (std::vector{open(), end()}));
    }
}

TEST(Scanner, ReadsANumberUpToEveryOtherByte) {
    const std::string_view kOfNumbers = "0123456789.";
    for (int byte = 1; byte < 256; ++byte) {
        const std::string text = "12" + std::string(1, static_cast<char>(byte));
        if (byte == 0x1A || kOfNumbers.find(text.back()) != std::string_view::npos) continue;
        SCOPED_TRACE(byte);

        std::vector<Token> tokens;
        outputOf([&] { tokens = tokensOf(text); });
        EXPECT_EQ(tokens[0], real("12", 12));
    }
}

}  // namespace

}  // namespace vexa::test
