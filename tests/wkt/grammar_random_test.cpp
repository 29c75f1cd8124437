#include "tests/support/parse_support.h"

#include <optional>
#include <random>

namespace vexa::test {

namespace {

/// The grammar once more, by plain descent: whether a sequence of token codes is a text, and if
/// not, at which token.
class Acceptor {
public:
    /// The last code is 0, the end.
    explicit Acceptor(const std::vector<int>& codes) : codes_(codes) {}

    /// The index of the token that does not fit.
    std::optional<std::size_t> offender() {
        const bool accepted = text() && take(0);
        return accepted ? std::nullopt : std::optional{at_};
    }

private:
    int code() const { return codes_[at_]; }

    bool take(int wanted) {
        if (code() != wanted) return false;
        if (wanted != 0) ++at_;
        return true;
    }

    template <class Item>
    bool listOf(Item item) {
        if (!take(258)) return false;
        do {
            if (!item()) return false;
        } while (take(260));
        return take(259);
    }

    bool triple() { return take(261) && take(261) && take(261); }
    bool loneTriple() { return take(258) && triple() && take(259); }
    bool path() {
        return listOf([this] { return triple(); });
    }
    bool pathList() {
        return listOf([this] { return path(); });
    }

    bool geometry() {
        switch (code()) {
            case 262: return take(262) && loneTriple();
            case 263: return take(263) && path();
            case 264: return take(264) && pathList();
            case 265: return take(265) && listOf([this] { return loneTriple(); });
            case 266: return take(266) && pathList();
            case 267: return take(267) && listOf([this] { return pathList(); });
            default: return false;
        }
    }

    bool text() {
        if (!take(268)) return geometry();
        return listOf([this] { return geometry(); });
    }

    const std::vector<int>& codes_;
    std::size_t at_ = 0;
};

// ---- Sequences: texts of the grammar with a few tokens lost, added or changed -------------------

class RandomSequence {
public:
    explicit RandomSequence(unsigned seed) : random_(seed) {}

    std::vector<int> next() {
        codes_.clear();
        if (upTo(5) == 0) {
            codes_.push_back(268);
            list([this] { geometry(); });
        } else {
            geometry();
        }
        for (int edits = upTo(3); edits > 0; --edits) edit();
        codes_.push_back(0);
        return codes_;
    }

    /// A text of the tokens, and each token as it is written in it.
    std::string written(const std::vector<int>& codes, std::vector<std::string>& tokens) {
        std::string text;
        tokens.clear();
        for (const int code : codes) {
            tokens.push_back(spelled(code));
            const bool mustPart = code == 261 && tokens.size() > 1;
            text += kSpaces[static_cast<std::size_t>(mustPart ? 1 + upTo(2) : upTo(3))];
            text += tokens.back();
        }
        return text;
    }

private:
    static constexpr const char* kSpaces[] = {"", " ", "\t", "\n "};

    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }

    template <class Item>
    void list(Item item) {
        codes_.push_back(258);
        for (int left = upTo(2); left >= 0; --left) {
            item();
            if (left > 0) codes_.push_back(260);
        }
        codes_.push_back(259);
    }

    void triple() { codes_.insert(codes_.end(), {261, 261, 261}); }
    void loneTriple() {
        codes_.push_back(258);
        triple();
        codes_.push_back(259);
    }
    void path() {
        list([this] { triple(); });
    }
    void pathList() {
        list([this] { path(); });
    }

    void geometry() {
        const int type = 262 + upTo(5);
        codes_.push_back(type);
        if (type == 262) loneTriple();
        if (type == 263) path();
        if (type == 264 || type == 266) pathList();
        if (type == 265) list([this] { loneTriple(); });
        if (type == 267) list([this] { pathList(); });
    }

    void edit() {
        if (codes_.empty()) return;
        const auto place = codes_.begin() + upTo(static_cast<int>(codes_.size()) - 1);
        switch (upTo(4)) {
            case 0: codes_.erase(place); break;
            case 1: codes_.insert(place, 258 + upTo(10)); break;
            case 2: *place = 258 + upTo(10); break;
            case 3: codes_.erase(place, codes_.end()); break;
            default: std::swap(*place, codes_.back()); break;
        }
    }

    std::string spelled(int code) {
        static constexpr const char* kUpper[] = {"(",
                                                 ")",
                                                 ",",
                                                 "",
                                                 "POINT",
                                                 "LINESTRING",
                                                 "POLYGON",
                                                 "MULTIPOINT",
                                                 "MULTILINESTRING",
                                                 "MULTIPOLYGON",
                                                 "GEOMETRYCOLLECTION"};
        static constexpr const char* kLower[] = {"(",
                                                 ")",
                                                 ",",
                                                 "",
                                                 "point",
                                                 "linestring",
                                                 "polygon",
                                                 "multipoint",
                                                 "multilinestring",
                                                 "multipolygon",
                                                 "geometrycollection"};
        if (code == 0) return "";
        if (code == 261) return std::to_string(upTo(999)) + (upTo(1) == 0 ? "" : ".25e-1");
        const auto row = static_cast<std::size_t>(code) - 258;
        return upTo(1) == 0 ? kUpper[row] : kLower[row];
    }

    std::mt19937 random_;
    std::vector<int> codes_;
};

TEST(GrammarByDescent, AcceptsTheSameTextsAndQuotesTheSameToken) {
    constexpr unsigned kSeed = 141421;
    SCOPED_TRACE(kSeed);
    RandomSequence random{kSeed};
    int accepted = 0;
    constexpr int kTexts = 30'000;
    for (int i = 0; i < kTexts; ++i) {
        const std::vector<int> codes = random.next();
        std::vector<std::string> tokens;
        const std::string text = random.written(codes, tokens);
        const std::optional<std::size_t> offender = Acceptor{codes}.offender();

        const Parsed result = parsedByGrammar(text);

        ASSERT_EQ(result.status, offender ? 1U : 0U) << text;
        ASSERT_EQ(result.error, offender ? errorAt(tokens[*offender]) : "") << text;
        ASSERT_EQ(result.geometry != nullptr, !offender) << text;
        accepted += offender ? 0 : 1;
    }
    // Both outcomes have to be there in number, or the comparison says little.
    EXPECT_GT(accepted, kTexts / 10);
    EXPECT_LT(accepted, kTexts * 9 / 10);
}

// Every sequence of up to five tokens.
TEST(GrammarByDescent, AgreesOnEveryShortSequence) {
    constexpr int kLongest = 5;
    constexpr int kLast = 268;
    RandomSequence spelling{1};
    std::vector<int> codes;
    std::vector<std::string> tokens;
    for (;;) {
        // Counts through the sequences like an odometer, shorter ones first.
        std::size_t wheel = 0;
        while (wheel < codes.size() && codes[wheel] == kLast) codes[wheel++] = 258;
        if (wheel == codes.size()) {
            codes.push_back(258);
        } else {
            ++codes[wheel];
        }
        if (codes.size() > kLongest) break;

        std::vector<int> ended = codes;
        ended.push_back(0);
        const std::optional<std::size_t> offender = Acceptor{ended}.offender();
        const std::string text = spelling.written(ended, tokens);
        const Parsed result = parsedByGrammar(text);
        ASSERT_TRUE(offender) << text;  // no geometry is so short
        ASSERT_EQ(result.error, errorAt(tokens[*offender])) << text;
    }
}

}  // namespace

}  // namespace vexa::test
