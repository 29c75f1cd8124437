#include "tests/support/active_page.h"
#include "tests/support/guarded_bytes.h"
#include "vexakit/strings.h"

#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

// Far beyond what the system takes as a path, and beyond a fixed scratch array.
std::string longFolder() {
    std::string folder = "C:";
    while (folder.size() < 100'000) folder += "\\folder.x";
    return folder;
}

// ---- string_addFileSeperatorA -------------------------------------------------------------------

TEST(StringAddFileSeperatorA, AppendsABackslash) {
    EXPECT_EQ(string_addFileSeperatorA(nullptr), nullptr);
    EXPECT_EQ(editedWithRoom(1, string_addFileSeperatorA, ""), "\\");
    EXPECT_EQ(editedWithRoom(1, string_addFileSeperatorA, "C:"), "C:\\");
    EXPECT_EQ(editedWithRoom(1, string_addFileSeperatorA, "C:\\dir"), "C:\\dir\\");
    EXPECT_EQ(editedWithRoom(1, string_addFileSeperatorA, "C:/"), "C:/\\");
}

TEST(StringAddFileSeperatorA, LeavesABackslashAtTheEndAlone) {
    EXPECT_EQ(edited(string_addFileSeperatorA, "\\"), "\\");
    EXPECT_EQ(edited(string_addFileSeperatorA, "C:\\dir\\"), "C:\\dir\\");
}

// the last byte decides, whatever character it belongs to
TEST(StringAddFileSeperatorAInPage932, TakesATrailByteForABackslash) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_addFileSeperatorA, "C:\\\x83\x5C"), "C:\\\x83\x5C");
    EXPECT_EQ(editedWithRoom(1, string_addFileSeperatorA, "C:\\\x83\x61"), "C:\\\x83\x61\\");
}

// ---- string_stripFilePathA ----------------------------------------------------------------------

TEST(StringStripFilePathA, KeepsWhatFollowsTheLastBackslash) {
    EXPECT_EQ(edited(string_stripFilePathA, "C:\\dir\\file.txt"), "file.txt");
    EXPECT_EQ(edited(string_stripFilePathA, "\\file"), "file");
    EXPECT_EQ(edited(string_stripFilePathA, "a\\longer name than before.txt"),
              "longer name than before.txt");
    EXPECT_EQ(edited(string_stripFilePathA, "C:\\dir\\"), "");
    EXPECT_EQ(edited(string_stripFilePathA, "\\"), "");
    EXPECT_EQ(edited(string_stripFilePathA, longFolder() + "\\" + std::string(70'000, 'n')),
              std::string(70'000, 'n'));
}

TEST(StringStripFilePathA, LeavesTextWithoutABackslash) {
    EXPECT_EQ(string_stripFilePathA(nullptr), nullptr);
    EXPECT_EQ(edited(string_stripFilePathA, ""), "");
    EXPECT_EQ(edited(string_stripFilePathA, "file.txt"), "file.txt");
    EXPECT_EQ(edited(string_stripFilePathA, "C:/dir/file.txt"), "C:/dir/file.txt");
}

TEST(StringStripFilePathAInPage932, LooksForBackslashesThatAreCharacters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripFilePathA, "C:\\\x83\x5C.txt"), "\x83\x5C.txt");
    EXPECT_EQ(edited(string_stripFilePathA, "\x83\x5C.txt"), "\x83\x5C.txt");
    EXPECT_EQ(edited(string_stripFilePathA, "\x83\x5C\\file"), "file");
    EXPECT_EQ(edited(string_stripFilePathA, "\x83\x83\x5Cname"), "name");
}

TEST(StringStripFilePathAInPage932, StopsAtTheTerminatorBehindALeadByte) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripFilePathA, "C:\\\x83"), "\x83");
}

TEST(StringStripFilePathAInPage1252, LooksAtEveryByte) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(edited(string_stripFilePathA, "C:\\\x83\x5C.txt"), ".txt");
}

TEST(StringStripFilePathAInPage65001, LooksAtEveryByte) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(string_stripFilePathA, "C:\\\xE3\x82\xBD\\\xC3\xA9.txt"), "\xC3\xA9.txt");
    EXPECT_EQ(edited(string_stripFilePathA, "\xC3\\file"), "file");
}

// ---- string_stripFileNameA ----------------------------------------------------------------------

TEST(StringStripFileNameA, KeepsEverythingUpToTheLastBackslash) {
    EXPECT_EQ(edited(string_stripFileNameA, "C:\\dir\\file.txt"), "C:\\dir\\");
    EXPECT_EQ(edited(string_stripFileNameA, "\\file"), "\\");
    EXPECT_EQ(edited(string_stripFileNameA, "C:\\dir\\a/b"), "C:\\dir\\");
    EXPECT_EQ(edited(string_stripFileNameA, longFolder() + "\\file"), longFolder() + "\\");
}

TEST(StringStripFileNameA, LeavesTextWithoutAName) {
    EXPECT_EQ(string_stripFileNameA(nullptr), nullptr);
    EXPECT_EQ(edited(string_stripFileNameA, ""), "");
    EXPECT_EQ(edited(string_stripFileNameA, "file.txt"), "file.txt");
    EXPECT_EQ(edited(string_stripFileNameA, "C:/dir/file.txt"), "C:/dir/file.txt");
    EXPECT_EQ(edited(string_stripFileNameA, "C:\\dir\\"), "C:\\dir\\");
    EXPECT_EQ(edited(string_stripFileNameA, "\\"), "\\");
}

TEST(StringStripFileNameAInPage932, LooksForBackslashesThatAreCharacters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripFileNameA, "C:\\\x83\x5C.txt"), "C:\\");
    EXPECT_EQ(edited(string_stripFileNameA, "C:\\\x83\x5C"), "C:\\");
    EXPECT_EQ(edited(string_stripFileNameA, "\x83\x5C"), "\x83\x5C");
    EXPECT_EQ(edited(string_stripFileNameA, "\x83\x5C\\file"), "\x83\x5C\\");
    EXPECT_EQ(edited(string_stripFileNameA, "\x83\x83\x5Cname"), "\x83\x83\\");
}

TEST(StringStripFileNameAInPage932, StopsAtTheTerminatorBehindALeadByte) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripFileNameA, "C:\\\x83"), "C:\\");
}

TEST(StringStripFileNameAInPage1252, LooksAtEveryByte) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(edited(string_stripFileNameA, "C:\\\x83\x5C.txt"), "C:\\\x83\x5C");
}

TEST(StringStripFileNameAInPage65001, LooksAtEveryByte) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(string_stripFileNameA, "C:\\\xE3\x82\xBD\\\xC3\xA9"), "C:\\\xE3\x82\xBD\\");
}

// ---- string_stripFileExtA -----------------------------------------------------------------------

TEST(StringStripFileExtA, CutsAtTheLastDot) {
    EXPECT_EQ(edited(string_stripFileExtA, "file.txt"), "file");
    EXPECT_EQ(edited(string_stripFileExtA, "file.tar.gz"), "file.tar");
    EXPECT_EQ(edited(string_stripFileExtA, "C:\\dir.x\\file.y"), "C:\\dir.x\\file");
    EXPECT_EQ(edited(string_stripFileExtA, "file."), "file");
    EXPECT_EQ(edited(string_stripFileExtA, ".profile"), "");
    EXPECT_EQ(edited(string_stripFileExtA, "C:\\.profile"), "C:\\");
    EXPECT_EQ(edited(string_stripFileExtA, "."), "");
    EXPECT_EQ(edited(string_stripFileExtA, ".."), ".");
}

TEST(StringStripFileExtA, LeavesTextWithoutAnExtension) {
    EXPECT_EQ(string_stripFileExtA(nullptr), nullptr);
    EXPECT_EQ(edited(string_stripFileExtA, ""), "");
    EXPECT_EQ(edited(string_stripFileExtA, "file"), "file");
    EXPECT_EQ(edited(string_stripFileExtA, "C:\\dir.x\\file"), "C:\\dir.x\\file");
    EXPECT_EQ(edited(string_stripFileExtA, "dir.x\\"), "dir.x\\");
    EXPECT_EQ(edited(string_stripFileExtA, longFolder() + "\\file"), longFolder() + "\\file");
}

TEST(StringStripFileExtA, TakesNoSlashForASeparator) {
    EXPECT_EQ(edited(string_stripFileExtA, "dir.x/file"), "dir");
}

TEST(StringStripFileExtAInPage932, LooksForBackslashesThatAreCharacters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripFileExtA, "a.b\x83\x5C"), "a");
    EXPECT_EQ(edited(string_stripFileExtA, "a.b\x83\x5Cz"), "a");
    EXPECT_EQ(edited(string_stripFileExtA, "\x83\x5C.txt"), "\x83\x5C");
    EXPECT_EQ(edited(string_stripFileExtA, "a.b\x83\x83\x5Cz"), "a.b\x83\x83\x5Cz");
}

TEST(StringStripFileExtAInPage932, StopsAtTheTerminatorBehindALeadByte) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripFileExtA, "a.\x83"), "a");
}

TEST(StringStripFileExtAInPage1252, LooksAtEveryByte) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(edited(string_stripFileExtA, "a.b\x83\x5Cz"), "a.b\x83\x5Cz");
}

TEST(StringStripFileExtAInPage65001, LooksAtEveryByte) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(string_stripFileExtA, "\xE3\x82\xBD.\xC3\xA9"), "\xE3\x82\xBD");
    EXPECT_EQ(edited(string_stripFileExtA, "a.\xC3\\b"), "a.\xC3\\b");
}

}  // namespace

}  // namespace vexa::test
