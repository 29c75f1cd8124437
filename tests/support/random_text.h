#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

namespace vexa::test {

/// Well-formed texts of all types, with blanks wherever there may be any.
class RandomText {
public:
    explicit RandomText(std::uint64_t seed) : random_(seed) {}

    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(random_() % bound); }

    const std::string& next() {
        text_.clear();
        areBlanksRare_ = below(2) == 0;
        if (below(5) == 0) {
            keyword("GEOMETRYCOLLECTION", "geometrycollection");
            list([this] { geometry(); });
        } else {
            geometry();
        }
        blanks();
        return text_;
    }

    /// The same, with some bytes changed, lost or added.
    std::string nextMutated() {
        static constexpr char kOften[] = "(),. \t\n-+eE019PLpl\r\v\f\xA0#";
        std::string text = next();
        for (std::size_t edits = 1 + below(3); edits > 0; --edits) {
            const std::size_t place = below(text.size() + 1);
            const auto byte = static_cast<char>(
                below(4) == 0 ? 1 + below(255)
                              : static_cast<std::size_t>(kOften[below(sizeof kOften - 1)]));
            switch (below(6)) {
                case 0: text.resize(place); break;
                case 1: text.erase(place, 1 + below(3)); break;
                case 2: text.insert(place, 1 + below(2), byte); break;
                case 3: text.insert(place, text.substr(below(text.size() + 1), below(12))); break;
                default:
                    if (place < text.size()) text[place] = byte;
            }
        }
        return text;
    }

    /// A number as well-known text may have it.
    std::string number() {
        std::string text = below(3) == 0 ? "-" : "";
        if (below(8) == 0) text.append(below(4), '0');
        text += digits(below(6) == 0 ? 20 : 4);
        if (below(2) == 0) {
            text += '.';
            if (below(8) != 0) text += digits(below(3) == 0 ? 20 : 6);
        }
        if (below(8) == 0) {
            text += below(2) == 0 ? 'e' : 'E';
            text += below(2) == 0 ? '+' : '-';
            if (below(4) == 0) text += '0';
            text += std::to_string(below(below(3) == 0 ? 280 : 10));
        }
        return text;
    }

private:
    std::string digits(std::size_t most) {
        std::string text;
        for (std::size_t left = 1 + below(most); left > 0; --left) {
            text += static_cast<char>('0' + below(10));
        }
        return text;
    }

    void blanks() {
        if (areBlanksRare_ && below(8) != 0) return;
        for (std::size_t left = below(3); left > 0; --left) blank();
    }
    void blank() { text_ += " \t\n"[below(3)]; }

    void put(char character) {
        blanks();
        text_ += character;
    }

    void keyword(const char* upper, const char* lower) {
        blanks();
        text_ += below(2) == 0 ? upper : lower;
    }

    template <class Item>
    void list(Item item) {
        put('(');
        for (std::size_t left = below(8) == 0 ? below(40) : below(3);; --left) {
            item();
            if (left == 0) break;
            put(',');
        }
        put(')');
    }

    void triple() {
        for (int i = 0; i < 3; ++i) {
            if (i > 0) blank();
            blanks();
            text_ += number();
        }
    }
    void loneTriple() {
        put('(');
        triple();
        put(')');
    }
    void path() {
        list([this] { triple(); });
    }
    void paths() {
        list([this] { path(); });
    }

    void geometry() {
        switch (below(6)) {
            case 0: keyword("POINT", "point"); return loneTriple();
            case 1: keyword("LINESTRING", "linestring"); return path();
            case 2: keyword("POLYGON", "polygon"); return paths();
            case 3: keyword("MULTIPOINT", "multipoint"); return list([this] { loneTriple(); });
            case 4: keyword("MULTILINESTRING", "multilinestring"); return paths();
            default: keyword("MULTIPOLYGON", "multipolygon"); return list([this] { paths(); });
        }
    }

    std::mt19937_64 random_;
    std::string text_;
    bool areBlanksRare_ = false;
};

}  // namespace vexa::test
