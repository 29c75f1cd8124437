#include "platform/posix/utf8_by_vectors.h"

#include "platform/posix/utf8.h"
#include "tests/support/conversion_check.h"
#include "tests/support/fenced_block.h"
#include "tests/support/slow_build.h"
#include "tests/support/vector_widths.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ios>
#include <iterator>
#include <memory>
#include <ostream>
#include <random>
#include <span>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr char32_t kFirstSurrogate = 0xD800;
constexpr char32_t kPastSurrogates = 0xE000;
constexpr char32_t kPastAll = 0x110000;

/// The same characters in both encodings.
struct TextPair {
    WideString wide;
    std::string utf8;

    void add(char32_t code) {
        wide += utf16Of(code);
        utf8 += utf8Of(code);
    }
};

// ---- Both ways ---------------------------------------------------------------------------------

std::size_t convert(std::span<const VexaWChar> text, std::span<char> room) {
    return platform::wideToUtf8(text, room);
}
std::size_t convert(std::span<const char> text, std::span<VexaWChar> room) {
    return platform::utf8ToWide(text, room);
}

std::size_t sizeOf(std::span<const VexaWChar> text) {
    return platform::utf8Size(text);
}
std::size_t sizeOf(std::span<const char> text) {
    return platform::wideSize(text);
}

/// The characters of the other encoding.
template <class From>
using To = std::conditional_t<std::is_same_v<From, char>, VexaWChar, char>;

/// What a conversion returns and leaves in its room and behind it.
template <class Character>
struct Converted {
    std::size_t size;
    std::basic_string<Character> cells;

    friend bool operator==(const Converted&, const Converted&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Converted& converted) {
        out << converted.size << " cells:" << std::hex;
        for (const Character cell : converted.cells) out << ' ' << (cell & 0xFFFF);
        return out << std::dec;
    }
};

/// Converts a block that ends with the text, into room in front of cells that nobody may touch.
template <class From>
Converted<To<From>> converted(std::span<const From> text, std::size_t room) {
    constexpr std::size_t kGuard = 80;
    constexpr To<From> kUntouched = 0x7F;
    Converted<To<From>> result{0, std::basic_string<To<From>>(room + kGuard, kUntouched)};
    result.size = convert(text, std::span<To<From>>{result.cells.data(), room});
    EXPECT_EQ(result.cells.find_first_not_of(kUntouched, room), std::string::npos);
    if (result.size > 0) {
        EXPECT_EQ(result.cells.find_first_not_of(kUntouched, result.size), std::string::npos);
    }
    return result;
}

/// A copy in a block of the heap that ends with it.
template <class From>
class ExactCopy {
public:
    explicit ExactCopy(const std::basic_string<From>& text)
        : block_(new From[text.size()]), size_(text.size()) {
        std::copy(text.begin(), text.end(), block_.get());
    }

    std::span<const From> text() const { return {block_.get(), size_}; }

private:
    std::unique_ptr<From[]> block_;
    std::size_t size_;
};

template <class From>
void agreeInRoom(std::span<const From> text, std::size_t room) {
    const auto expected = plainly([&] { return converted(text, room); });
    atEachWidth([&] { ASSERT_EQ(converted(text, room), expected) << "room for " << room; });
}

/// In rooms of every size around the need, and in some others.
template <class From>
void agreeOn(const std::basic_string<From>& source, std::size_t otherRoom = 0) {
    const ExactCopy<From> copy{source};
    const std::size_t need = plainly([&] { return sizeOf(copy.text()); });
    atEachWidth([&] { ASSERT_EQ(sizeOf(copy.text()), need); });
    for (std::size_t room = need - std::min<std::size_t>(need, 6); room <= need + 3; ++room) {
        agreeInRoom(copy.text(), room);
    }
    agreeInRoom(copy.text(), otherRoom);
    agreeInRoom(copy.text(), need + 64);
    EXPECT_EQ(converted(copy.text(), need).size, need);
}

// ---- Random text -------------------------------------------------------------------------------

class RandomText {
public:
    explicit RandomText(std::uint64_t seed) : random_(seed) {}

    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(random_() % bound); }

    /// Characters of one to four bytes; of each text there is a kind that prevails.
    TextPair characters() {
        TextPair text;
        const std::size_t kind = below(6);
        for (std::size_t left = below(200); left > 0; --left) {
            text.add(character(below(8) == 0 ? below(6) : kind));
        }
        return text;
    }

    /// Bytes that are often no characters: lost, added and changed ones among characters.
    std::string bytes() {
        std::string text = characters().utf8;
        for (std::size_t edits = below(6); edits > 0 && !text.empty(); --edits) {
            const std::size_t place = below(text.size());
            switch (below(4)) {
                case 0: text.erase(place, 1 + below(2)); break;
                case 1: text.insert(place, 1, oddByte()); break;
                case 2: text.resize(place); break;
                default: text[place] = oddByte(); break;
            }
        }
        return text;
    }

    /// Units of which surrogates may be alone or the wrong way round.
    WideString units() {
        WideString text = characters().wide;
        for (VexaWChar& unit : text) {
            if (below(12) == 0) unit = static_cast<VexaWChar>(0xD800 + below(0x800));
        }
        if (below(3) == 0) text.resize(text.size() / 2);
        return text;
    }

private:
    char32_t between(char32_t first, char32_t past) {
        return first + static_cast<char32_t>(below(past - first));
    }

    char32_t character(std::size_t kind) {
        switch (kind) {
            case 0: return between(0x80, 0x800);
            case 1: return between(0x800, kFirstSurrogate);
            case 2: return between(kPastSurrogates, 0x10000);
            case 3: return between(0x10000, kPastAll);
            case 4: return between(0x400, 0x460);
            default: return between(0, 0x80);
        }
    }

    char oddByte() {
        static constexpr unsigned char kOften[] = {0x00, 'a',  0x7F, 0x80, 0x8F, 0x90, 0x9F,
                                                   0xA0, 0xBF, 0xC0, 0xC1, 0xC2, 0xDF, 0xE0,
                                                   0xED, 0xEF, 0xF0, 0xF4, 0xF5, 0xFF};
        if (below(3) == 0) return static_cast<char>(below(256));
        return static_cast<char>(kOften[below(std::size(kOften))]);
    }

    std::mt19937_64 random_;
};

class EncodingAtEachWidth : public testing::Test {
protected:
    template <class Check>
    static void checkMany(Check check) {
        const std::uint64_t seed = std::random_device{}();
        RandomText random{seed};
        for (int i = 0; i < (kIsSlowBuild ? 3'000 : 20'000); ++i) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", round " << i);
            check(random);
            if (HasFailure()) return;
        }
    }
};

TEST_F(EncodingAtEachWidth, IsTheSameForCharacters) {
    checkMany([](RandomText& random) {
        const TextPair text = random.characters();
        agreeOn(text.wide, random.below(text.utf8.size() + 1));
        agreeOn(text.utf8, random.below(text.wide.size() + 1));
    });
}

TEST_F(EncodingAtEachWidth, IsTheSameForIllFormedBytes) {
    checkMany([](RandomText& random) {
        const std::string text = random.bytes();
        agreeOn(text, random.below(text.size() + 1));
    });
}

TEST_F(EncodingAtEachWidth, IsTheSameForLoneSurrogates) {
    checkMany([](RandomText& random) {
        const WideString text = random.units();
        agreeOn(text, random.below(3 * text.size() + 1));
    });
}

TEST_F(EncodingAtEachWidth, IsTheSameInRoomOfEverySize) {
    RandomText random{99};
    for (int i = 0; i < 30; ++i) {
        const ExactCopy<char> bytes{random.bytes()};
        const ExactCopy<VexaWChar> units{random.units()};
        for (std::size_t room = 0; room < 230; ++room) agreeInRoom(bytes.text(), room);
        for (std::size_t room = 0; room < 620; ++room) agreeInRoom(units.text(), room);
        if (HasFailure()) return;
    }
}

// ---- Every character, everywhere ---------------------------------------------------------------

TEST_F(EncodingAtEachWidth, ConvertsEveryCharacter) {
    TextPair all;
    for (char32_t code = 0; code < kPastAll; ++code) {
        if (code == kFirstSurrogate) code = kPastSurrogates;
        all.add(code);
    }
    atEachWidth([&] {
        std::string bytes(all.utf8.size(), '#');
        WideString units(all.wide.size(), u'#');
        EXPECT_EQ(convert(std::span<const VexaWChar>{all.wide}, std::span{bytes}), bytes.size());
        EXPECT_EQ(convert(std::span<const char>{all.utf8}, std::span{units}), units.size());
        EXPECT_TRUE(bytes == all.utf8);
        EXPECT_TRUE(units == all.wide);
    });
}

/// Blocks as the vectors take them, each with one character at the same place of it.
template <class From>
class Blocks {
public:
    Blocks(std::size_t size, std::size_t place) : size_(size), place_(place) {}

    void add(const std::basic_string<From>& from, const std::basic_string<To<From>>& to) {
        fillTo(start_ + place_);
        source += from;
        result += to;
        // A character that the block cuts off is the first of the next one.
        if (isCutOff()) start_ += place_;
        start_ += size_;
        fillTo(start_);
    }
    void clear() {
        source.clear();
        result.clear();
        start_ = 0;
    }

    std::basic_string<From> source;
    std::basic_string<To<From>> result;

private:
    bool isCutOff() const {
        // Of a pair that two blocks share the first half stays where it is.
        return sizeof(From) == 1 && source.size() > start_ + size_;
    }
    void fillTo(std::size_t end) {
        const std::size_t missing = end - std::min(end, source.size());
        source.append(missing, From{'a'});
        result.append(missing, To<From>{'a'});
    }

    std::size_t size_;
    std::size_t place_;
    std::size_t start_ = 0;
};

auto convertByVectors(const WideString& text, std::string& out) {
    return platform::wideToUtf8ByVectors(text.data(), text.data() + text.size(), out.data(),
                                         out.data() + out.size());
}
auto convertByVectors(const std::string& text, WideString& out) {
    return platform::utf8ToWideByVectors(text.data(), text.data() + text.size(), out.data(),
                                         out.data() + out.size());
}

template <class From>
void convertBlocks(const Blocks<From>& blocks) {
    std::basic_string<To<From>> out(blocks.result.size(), To<From>{'#'});
    const auto reached = convertByVectors(blocks.source, out);
    ASSERT_EQ(reached.from - blocks.source.data(), std::ssize(blocks.source));
    ASSERT_EQ(reached.to - out.data(), std::ssize(out));
    ASSERT_TRUE(out == blocks.result);
}

/// All characters, some thousands at a time.
template <class From, class Add>
void convertAllInBlocks(Blocks<From> blocks, Add add) {
    constexpr char32_t kAtOnce = 0x1000;
    constexpr char32_t kStep = kIsSlowBuild ? 37 : 1;
    for (char32_t first = 0; first < kPastAll; first += kAtOnce) {
        if (first >= kFirstSurrogate && first < kPastSurrogates) continue;
        blocks.clear();
        const char32_t past = std::min<char32_t>(first + kAtOnce, kPastAll);
        for (char32_t code = first; code < past; code += kStep) {
            if (code >= kFirstSurrogate && code < kPastSurrogates) continue;
            add(blocks, code);
        }
        ASSERT_NO_FATAL_FAILURE(convertBlocks(blocks))
            << "from U+" << std::hex << std::uint32_t{first};
    }
}

TEST(CharactersByVectors, AreDecodedAtEachPlaceOfABlock) {
    if (!platform::hasUtf8Vectors()) GTEST_SKIP() << "the machine has no AVX-512";

    constexpr std::size_t kBytes = 64;
    for (std::size_t place = 0; place < kBytes; ++place) {
        SCOPED_TRACE(place);
        convertAllInBlocks(Blocks<char>{kBytes, place}, [](auto& blocks, char32_t code) {
            blocks.add(utf8Of(code), utf16Of(code));
        });
        if (HasFatalFailure()) return;
    }
}

TEST(CharactersByVectors, AreEncodedAtEachPlaceOfABlock) {
    if (!platform::hasUtf8Vectors()) GTEST_SKIP() << "the machine has no AVX-512";

    constexpr std::size_t kUnits = 16;
    for (std::size_t place = 0; place < kUnits; ++place) {
        SCOPED_TRACE(place);
        convertAllInBlocks(Blocks<VexaWChar>{kUnits, place}, [](auto& blocks, char32_t code) {
            blocks.add(utf16Of(code), utf8Of(code));
        });
        if (HasFatalFailure()) return;
    }
}

// ---- Around the text ---------------------------------------------------------------------------

template <class From>
void convertFenced(const std::basic_string<From>& text, Fence fence) {
    const FencedBlock source{text.data(), text.size() * sizeof(From), fence};
    const std::span<const From> fenced{source.as<const From>(), text.size()};
    for (const std::size_t room : {sizeOf(fenced), text.size() / 2}) {
        const auto expected = plainly([&] { return converted(fenced, room); });
        atEachWidth([&] {
            const FencedBlock cells{room * sizeof(To<From>), fence};
            const std::span<To<From>> to{cells.as<To<From>>(), room};
            EXPECT_EQ(convert(fenced, to), expected.size);
        });
    }
}

TEST_F(EncodingAtEachWidth, TouchesNothingAroundTextAndRoom) {
    RandomText random{17};
    for (int i = 0; i < 300; ++i) {
        for (const Fence fence : {Fence::Before, Fence::Behind}) {
            convertFenced(random.characters().utf8, fence);
            convertFenced(random.bytes(), fence);
            convertFenced(random.units(), fence);
        }
    }
}

}  // namespace

}  // namespace vexa::test
