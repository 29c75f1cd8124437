#include "tests/support/wide_text.h"
#include "vexakit/strings.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <ostream>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

GuardedText holding(const WideString& text) {
    GuardedText array(text.size() + 1);
    std::copy_n(text.c_str(), text.size() + 1, array.data());
    return array;
}

struct PathCase {
    const char* name;
    WideString path;
    WideString withoutPath;
    WideString withoutName;
    WideString withoutExtension;
};

void PrintTo(const PathCase& row, std::ostream* out) {
    *out << readable(row.path);
}

const PathCase kPaths[] = {
    {"Whole", wide(R"(C:\dir\file.txt)"), wide("file.txt"), wide(R"(C:\dir\)"),
     wide(R"(C:\dir\file)")},
    {"NameAlone", wide("file.txt"), wide("file.txt"), wide("file.txt"), wide("file")},
    {"NoExtension", wide(R"(C:\dir\file)"), wide("file"), wide(R"(C:\dir\)"),
     wide(R"(C:\dir\file)")},
    {"TwoMarks", wide("file.tar.gz"), wide("file.tar.gz"), wide("file.tar.gz"), wide("file.tar")},
    {"MarkInTheFolder", wide(R"(C:\dir.x\file)"), wide("file"), wide(R"(C:\dir.x\)"),
     wide(R"(C:\dir.x\file)")},
    {"MarksInFolderAndName", wide(R"(dir.x\file.y)"), wide("file.y"), wide(R"(dir.x\)"),
     wide(R"(dir.x\file)")},
    {"EndsInABackslash", wide(R"(C:\dir\)"), wide(""), wide(R"(C:\dir\)"), wide(R"(C:\dir\)")},
    {"EndsInAMarkAndABackslash", wide(R"(dir.\)"), wide(""), wide(R"(dir.\)"), wide(R"(dir.\)")},
    {"BackslashAlone", wide(R"(\)"), wide(""), wide(R"(\)"), wide(R"(\)")},
    {"BackslashFirst", wide(R"(\file.txt)"), wide("file.txt"), wide(R"(\)"), wide(R"(\file)")},
    {"TwoBackslashes", wide(R"(\\host\\name)"), wide("name"), wide(R"(\\host\\)"),
     wide(R"(\\host\\name)")},
    {"MarkAlone", wide("."), wide("."), wide("."), wide("")},
    {"MarkFirst", wide(".profile"), wide(".profile"), wide(".profile"), wide("")},
    {"MarkFirstInAFolder", wide(R"(dir\.profile)"), wide(".profile"), wide(R"(dir\)"),
     wide(R"(dir\)")},
    {"MarkLast", wide("file."), wide("file."), wide("file."), wide("file")},
    {"MarksAlone", wide(".."), wide(".."), wide(".."), wide(".")},
    {"Empty", wide(""), wide(""), wide(""), wide("")},
    {"SlashesAreNoSeparators", wide("a.b/c"), wide("a.b/c"), wide("a.b/c"), wide("a")},
    {"ColonIsNoSeparator", wide("C:file"), wide("C:file"), wide("C:file"), wide("C:file")},
    {"LowByteOfABackslash",
     {'a', 0x5C5C, 'b', 0x015C},
     {'a', 0x5C5C, 'b', 0x015C},
     {'a', 0x5C5C, 'b', 0x015C},
     {'a', 0x5C5C, 'b', 0x015C}},
    {"LowByteOfAMark",
     {'a', 0x012E, 'b'},
     {'a', 0x012E, 'b'},
     {'a', 0x012E, 'b'},
     {'a', 0x012E, 'b'}},
    {"LoneSurrogates",
     {0xD800, '\\', 0xDC00, '.', 0xFFFF},
     {0xDC00, '.', 0xFFFF},
     {0xD800, '\\'},
     {0xD800, '\\', 0xDC00}},
};

class WidePath : public testing::TestWithParam<PathCase> {};
INSTANTIATE_TEST_SUITE_P(Table, WidePath, testing::ValuesIn(kPaths),
                         [](const auto& row) { return row.param.name; });

TEST_P(WidePath, LosesItsFolders) {
    GuardedText path = holding(GetParam().path);

    EXPECT_EQ(string_stripFilePathW(path.data()), path.data());
    EXPECT_EQ(path.text(), GetParam().withoutPath);
    EXPECT_TRUE(path.areGuardsUntouched());
}

TEST_P(WidePath, LosesItsName) {
    GuardedText path = holding(GetParam().path);

    EXPECT_EQ(string_stripFileNameW(path.data()), path.data());
    EXPECT_EQ(path.text(), GetParam().withoutName);
    EXPECT_TRUE(path.areGuardsUntouched());
}

TEST_P(WidePath, LosesItsExtension) {
    GuardedText path = holding(GetParam().path);

    EXPECT_EQ(string_stripFileExtW(path.data()), path.data());
    EXPECT_EQ(path.text(), GetParam().withoutExtension);
    EXPECT_TRUE(path.areGuardsUntouched());
}

TEST(WidePath, OfNullIsNull) {
    EXPECT_EQ(string_stripFilePathW(nullptr), nullptr);
    EXPECT_EQ(string_stripFileNameW(nullptr), nullptr);
    EXPECT_EQ(string_stripFileExtW(nullptr), nullptr);
}

// A copy on the stack would not do.
TEST(WidePath, MayBeVeryLong) {
    constexpr std::size_t kLength = 5'000'000;
    const WideString name(kLength, 'n');
    GuardedText path = holding(wide("d\\") + name);

    EXPECT_EQ(string_stripFilePathW(path.data()), path.data());
    EXPECT_TRUE(path.text() == name);
    EXPECT_TRUE(path.areGuardsUntouched());
}

/// What the result says of a path.
enum class Slash { WasNone, IsRemoved };

struct SlashCase {
    const char* name;
    WideString path;
    WideString result;
    Slash slash;
    std::size_t index;  // of the last character
};

void PrintTo(const SlashCase& row, std::ostream* out) {
    *out << readable(row.path);
}

const SlashCase kSlashes[] = {
    {"Backslash", wide(R"(C:\dir\)"), wide(R"(C:\dir)"), Slash::IsRemoved, 6},
    {"PlainSlash", wide(R"(C:\dir/)"), wide(R"(C:\dir)"), Slash::IsRemoved, 6},
    {"OneOfTwoBackslashes", wide(R"(a\\)"), wide(R"(a\)"), Slash::IsRemoved, 2},
    {"OneOfTwoSlashes", wide("a//"), wide("a/"), Slash::IsRemoved, 2},
    {"OneOfEach", wide(R"(a/\)"), wide("a/"), Slash::IsRemoved, 2},
    {"SlashAlone", wide("/"), wide(""), Slash::IsRemoved, 0},
    {"BackslashAlone", wide(R"(\)"), wide(""), Slash::IsRemoved, 0},
    {"None", wide(R"(C:\dir)"), wide(R"(C:\dir)"), Slash::WasNone, 5},
    {"OneCharacter", wide("a"), wide("a"), Slash::WasNone, 0},
    {"NotTheLast", wide(R"(\/a)"), wide(R"(\/a)"), Slash::WasNone, 2},
    {"LowByteOfASlash", {'a', 0x2F2F}, {'a', 0x2F2F}, Slash::WasNone, 1},
    {"LowByteOfABackslash", {'a', 0x015C}, {'a', 0x015C}, Slash::WasNone, 1},
    {"BehindALoneSurrogate", {0xD800, '/'}, {0xD800}, Slash::IsRemoved, 1},
};

class StringRemoveTerminatingSlashW : public testing::TestWithParam<SlashCase> {};
INSTANTIATE_TEST_SUITE_P(Table, StringRemoveTerminatingSlashW, testing::ValuesIn(kSlashes),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringRemoveTerminatingSlashW, GivesAnIndexWhereItRemovedAndAnAddressElse) {
    const SlashCase& row = GetParam();
    GuardedText path = holding(row.path);

    VexaWChar* const result = string_removeTerminatingSlashW(path.data());
    if (row.slash == Slash::IsRemoved) {
        EXPECT_EQ(std::bit_cast<std::uintptr_t>(result), row.index);
    } else {
        EXPECT_EQ(result, path.data() + row.index);
    }
    EXPECT_EQ(path.text(), row.result);
    EXPECT_TRUE(path.areGuardsUntouched());
}

TEST(StringRemoveTerminatingSlashW, IsNullForNullAndEmptyText) {
    GuardedText empty = holding(wide(""));

    EXPECT_EQ(string_removeTerminatingSlashW(nullptr), nullptr);
    EXPECT_EQ(string_removeTerminatingSlashW(empty.data()), nullptr);
    EXPECT_EQ(empty.text(), wide(""));
}

}  // namespace
}  // namespace vexa::test
