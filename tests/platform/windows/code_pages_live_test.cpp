#include "platform/posix/code_pages.h"
#include "tests/support/code_page_text.h"
#include "tests/support/wide_text.h"

#include <windows.h>

#include <iostream>
#include <mbctype.h>
#include <mbstring.h>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

auto toSystemPage(unsigned number) {
    return [number](const VexaWChar* source, int length, char* out, int room) {
        return WideCharToMultiByte(number, 0, source, length, out, room, nullptr, nullptr);
    };
}

class SystemsCodePage : public testing::TestWithParam<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Table, SystemsCodePage, testing::ValuesIn(kAllCodePages),
                         [](const auto& row) { return std::to_string(row.param); });

TEST_P(SystemsCodePage, ConvertsEveryUnitAlike) {
    unsigned differing = 0;
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const WideString text(1, static_cast<VexaWChar>(unit));
        const Converted theirs = convertedInto(8, text, 1, toSystemPage(GetParam()));
        const Converted ours = convertedInto(8, text, 1, toPage(GetParam()));
        ASSERT_GT(theirs.returned, 0) << "unit " << unit;
        if (ours.returned == theirs.returned && ours.room == theirs.room) continue;

        if (differing++ < 10) ADD_FAILURE() << "unit " << unit;
    }
    std::cout << "Code page " << GetParam() << ": " << differing << " of 65536 units differ\n";
    EXPECT_EQ(differing, 0U);
}

TEST_P(SystemsCodePage, ConvertsRandomTextAlikeIntoRoomsOfAnySize) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);

    for (int round = 0; round < 20000; ++round) {
        const WideString text = randomText(random, 60);
        const int length = round % 2 == 0 ? -1 : static_cast<int>(text.size());
        const int size = toSystemPage(GetParam())(text.c_str(), length, nullptr, 0);
        ASSERT_EQ(toPage(GetParam())(text.c_str(), length, nullptr, 0), size) << readable(text);

        // As often too small as not.
        const int room = static_cast<int>(random() % static_cast<unsigned>(2 * size + 2));
        const Converted theirs = convertedInto(room, text, length, toSystemPage(GetParam()));
        const Converted ours = convertedInto(room, text, length, toPage(GetParam()));
        ASSERT_EQ(ours.returned, theirs.returned) << readable(text) << " in " << room;
        ASSERT_EQ(ours.room, theirs.room) << readable(text) << " in " << room;
        ASSERT_TRUE(ours.guardsUntouched) << readable(text) << " in " << room;
    }
}

// What a conversion to wide text returned, and its room of four units afterwards.
struct WideResult {
    int returned;
    WideString room;

    bool operator==(const WideResult&) const = default;
};

WideResult ourUnits(unsigned page, const std::string& bytes, int length) {
    WideResult result{0, WideString(4, kUntouchedCell)};
    result.returned = platform::codePageToWide(platform::findCodePage(page).value(), bytes.c_str(),
                                               length, result.room.data(), 4);
    return result;
}

WideResult theirUnits(unsigned page, const std::string& bytes, int length) {
    WideResult result{0, WideString(4, kUntouchedCell)};
    result.returned = MultiByteToWideChar(page, 0, bytes.c_str(), length, result.room.data(), 4);
    return result;
}

// Each byte by itself, each two bytes, and each with the terminator behind them.
TEST_P(SystemsCodePage, ReadsEveryCodeAlike) {
    const unsigned page = GetParam();
    if (page == 65001) GTEST_SKIP() << "has characters of up to four bytes: they are read below";

    unsigned differing = 0;
    const auto compare = [&](const std::string& bytes, int length) {
        if (ourUnits(page, bytes, length) == theirUnits(page, bytes, length)) return;
        if (differing++ < 10) ADD_FAILURE() << testing::PrintToString(bytes);
    };
    for (unsigned code = 0; code < 0x10000; ++code) {
        const std::string two = {static_cast<char>(code >> 8), static_cast<char>(code)};
        compare(two, 2);
        compare(two, -1);
        if (code < 0x100) compare(two.substr(1), 1);
        if (code < 0x100) compare(two.substr(1), -1);
    }
    std::cout << "Code page " << page << ": " << differing << " of 65536 codes differ\n";
    EXPECT_EQ(differing, 0U);
}

TEST(SystemsUtf8, IsReadAlikeCharacterByCharacterAndWhereItIsCut) {
    unsigned differing = 0;
    for (unsigned code = 1; code < 0x110000; ++code) {
        if (code >= 0xD800 && code < 0xE000) continue;
        const WideString wide =
            code < 0x10000 ? WideString{static_cast<wchar_t>(code)}
                           : WideString{static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10)),
                                        static_cast<wchar_t>(0xDC00 + (code & 0x3FF))};
        const std::string bytes = inPage(65001, wide);
        for (std::size_t size = 1; size <= bytes.size(); ++size) {
            const int length = static_cast<int>(size);
            if (ourUnits(65001, bytes, length) == theirUnits(65001, bytes, length)) continue;
            if (differing++ < 10) ADD_FAILURE() << code << " cut to " << size << " bytes";
        }
    }
    std::cout << "Code page 65001: " << differing << " of 1112063 characters differ\n";
    EXPECT_EQ(differing, 0U);
}

// The runtime's multibyte functions can be set to a page; afterwards they have that of before.
class RuntimesPage {
public:
    explicit RuntimesPage(unsigned page) : before_(_getmbcp()) { _setmbcp(static_cast<int>(page)); }
    RuntimesPage(const RuntimesPage&) = delete;
    RuntimesPage& operator=(const RuntimesPage&) = delete;
    ~RuntimesPage() { _setmbcp(before_); }

private:
    int before_;
};

TEST_P(SystemsCodePage, HasTheSameLeadBytes) {
    const platform::CodePage page = platform::findCodePage(GetParam()).value();
    const RuntimesPage runtimes(GetParam());

    for (unsigned byte = 0; byte < 0x100; ++byte) {
        const bool isLead = _ismbblead(byte) != 0;
        EXPECT_EQ(platform::isLeadByte(page, static_cast<char>(byte)), isLead) << byte;
    }
}

// A letter whose other case the page lacks has none.
unsigned otherCase(unsigned code, unsigned (*change)(unsigned)) {
    const unsigned other = change(code);
    return other > 0xFF ? other : code;
}

TEST_P(SystemsCodePage, HasTheSameCasesOfDoubleByteLetters) {
    const platform::CodePage page = platform::findCodePage(GetParam()).value();
    const RuntimesPage runtimes(GetParam());

    unsigned differing = 0;
    for (unsigned code = 0x100; code < 0x10000; ++code) {
        const bool isCode = _ismbblead(code >> 8) != 0 && (code & 0xFF) != 0;
        const unsigned upper = isCode ? otherCase(code, &_mbctoupper) : code;
        const unsigned lower = isCode ? otherCase(code, &_mbctolower) : code;
        if (platform::upperCase(page, code) == upper && platform::lowerCase(page, code) == lower) {
            continue;
        }
        if (differing++ < 10) ADD_FAILURE() << "code " << code;
    }
    std::cout << "Code page " << GetParam() << ": the cases of " << differing << " codes differ\n";
    EXPECT_EQ(differing, 0U);
}

}  // namespace

}  // namespace vexa::test
