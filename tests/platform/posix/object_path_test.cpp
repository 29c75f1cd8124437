#include "platform/posix/object_path.h"

#include "tests/platform/posix/child_process.h"
#include "tests/support/wide_text.h"

#include <cstddef>
#include <iterator>
#include <optional>
#include <ostream>
#include <sched.h>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using platform::ObjectPath;

constexpr std::string_view kFolder = "/dev/shm/";
constexpr std::size_t kLongestFileName = 255;

std::string pathOf(const WideString& name) {
    const std::optional<ObjectPath> path = ObjectPath::ofName(name);
    return path ? path->data() : "";
}

std::string fileNameOf(const WideString& name) {
    return pathOf(name).substr(kFolder.size());
}

/// What the file's name has behind what all have in common.
std::string escapeOf(const WideString& name) {
    return pathOf(name).substr(pathOf({}).size());
}

struct EscapeCase {
    const char* name;
    WideString objectName;
    const char* escape;
};

void PrintTo(const EscapeCase& row, std::ostream* out) {
    *out << row.name;
}

class ObjectPathEscape : public testing::TestWithParam<EscapeCase> {};

TEST_P(ObjectPathEscape, IsThatOfEachUnit) {
    EXPECT_EQ(escapeOf(GetParam().objectName), GetParam().escape);
}

const EscapeCase kEscapeCases[] = {
    {"NothingAtAll", {}, ""},
    {"PlainUnits", wide("azAZ09_-"), "azAZ09_-"},
    {"NeighboursOfPlainUnits", wide("/:@[`{"), "%002f%003a%0040%005b%0060%007b"},
    {"Slashes", wide("../x"), "%002e%002e%002fx"},
    {"ThePercentSign", wide("%0041"), "%00250041"},
    {"TheMarkOfCutNames", wide("~"), "%007e"},
    {"Blank", wide(" "), "%0020"},
    {"LetterBeyondAscii", {0x00E9}, "%00e9"},
    {"UnitWhoseLowByteIsPlain", {0x0141}, "%0141"},
    {"LoneSurrogate", {0xD800}, "%d800"},
    {"LastUnit", {0xFFFF}, "%ffff"},
    {"ZeroInTheMiddle", {'a', 0, 'b'}, "a%0000b"},
};
INSTANTIATE_TEST_SUITE_P(Table, ObjectPathEscape, testing::ValuesIn(kEscapeCases),
                         [](const auto& row) { return row.param.name; });

TEST(ObjectPath, LiesInTheFolderOfSharedMemory) {
    const std::string path = pathOf(wide("name"));

    EXPECT_EQ(path.substr(0, kFolder.size()), kFolder);
    EXPECT_EQ(fileNameOf(wide("a/b")).find('/'), std::string::npos);
    EXPECT_EQ(fileNameOf(wide("/../../etc/x")).find('/'), std::string::npos);
    EXPECT_GT(fileNameOf({}).size(), 0U);
}

TEST(ObjectPath, IsTheSameEachTime) {
    EXPECT_EQ(pathOf(wide("name")), pathOf(wide("name")));
    EXPECT_EQ(pathOf(WideString(300, 'x')), pathOf(WideString(300, 'x')));
}

TEST(ObjectPath, IsNotMadeOfANameWithABackslash) {
    EXPECT_FALSE(ObjectPath::ofName(wide("\\")));
    EXPECT_FALSE(ObjectPath::ofName(wide("Global\\name")));
    EXPECT_FALSE(ObjectPath::ofName(WideString(400, 'x') + wide("\\")));
    EXPECT_TRUE(ObjectPath::ofName(wide("/")));
}

TEST(ObjectPath, IsAnotherForEachUnit) {
    std::set<std::string> paths;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        if (unit != '\\') paths.insert(pathOf({static_cast<VexaWChar>(unit)}));
    }
    EXPECT_EQ(paths.size(), 0xFFFFU);
}

TEST(ObjectPath, IsAnotherForTextThatLooksLikeAnEscape) {
    const WideString kAlike[] = {wide("/"),         wide("%002f"), wide("%002F"), wide("%252f"),
                                 wide("%0025002f"), wide("002f"),  wide("2f"),    {0x2F00}};
    std::set<std::string> paths;
    for (const WideString& name : kAlike) paths.insert(pathOf(name));
    EXPECT_EQ(paths.size(), std::size(kAlike));
}

TEST(ObjectPath, FitsIntoTheFileSystemWhateverTheName) {
    for (const VexaWChar unit : {VexaWChar{'x'}, VexaWChar{'/'}, VexaWChar{0xFFFF}}) {
        for (std::size_t length = 0; length <= 600; ++length) {
            const std::string name = fileNameOf(WideString(length, unit));
            ASSERT_LE(name.size(), kLongestFileName) << length;
            ASSERT_EQ(name.find('/'), std::string::npos);
        }
    }
}

// Around the lengths at which names begin to be cut, and at places that are cut away.
TEST(ObjectPath, IsAnotherForEachLongName) {
    std::set<std::string> paths;
    std::size_t names = 0;
    for (const VexaWChar unit : {VexaWChar{'x'}, VexaWChar{0x20AC}}) {
        for (std::size_t length = 1; length <= 260; ++length) {
            paths.insert(pathOf(WideString(length, unit)));
            ++names;
        }
        for (std::size_t place = 0; place < 250; ++place) {
            for (const VexaWChar other : {VexaWChar{'y'}, VexaWChar{'x' << 8}}) {
                WideString name(250, unit);
                name[place] = other;
                paths.insert(pathOf(name));
                ++names;
            }
        }
    }
    EXPECT_EQ(paths.size(), names);
}

TEST(ObjectPath, OfALongNameStartsLikeIt) {
    const std::string path = escapeOf(wide("start") + WideString(300, 'x'));

    EXPECT_EQ(path.substr(0, 10), "startxxxxx");
    EXPECT_NE(path.find('~'), std::string::npos);
}

// One that is written out in full cannot pretend to be the short form of another.
TEST(ObjectPath, OfALongNameIsNoOtherName) {
    const std::string cut = escapeOf(WideString(300, 'x'));

    EXPECT_NE(pathOf(wide(cut)), pathOf(WideString(300, 'x')));
}

// Two threads of different namespaces may have one number, which a lock would take for re-entry.
TEST(ObjectPath, IsAnotherInAnotherPidNamespace) {
    enum Answer : int { Same, Other, NotPossible };
    const std::string here = pathOf(wide("name"));

    Child parent{[&] {
        if (unshare(CLONE_NEWUSER | CLONE_NEWPID) != 0 && unshare(CLONE_NEWPID) != 0) {
            return static_cast<int>(NotPossible);
        }
        Child first{[&] { return pathOf(wide("name")) == here ? Same : Other; }};
        return first.exitCode();
    }};

    const int answer = parent.exitCode();
    if (answer == NotPossible) GTEST_SKIP() << "no PID namespace can be made here";
    EXPECT_EQ(answer, Other);
}

}  // namespace

}  // namespace vexa::test
