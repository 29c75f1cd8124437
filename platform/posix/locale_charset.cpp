#include "platform/posix/locale_charset.h"

#include "platform/posix/code_pages.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string_view>

namespace vexa::platform {

namespace {

constexpr unsigned kWesternPage = 1252;

struct NamedCharset {
    std::string_view name;
    unsigned page;
};

// Names as they are left when case and punctuation are gone.
constexpr NamedCharset kNamedCharsets[] = {
    {"utf8", kUtf8Page},
    // Japanese
    {"eucjisx0213", 932},
    {"eucjp", 932},
    {"eucjpms", 932},
    {"mskanji", 932},
    {"pck", 932},
    {"shiftjis", 932},
    {"shiftjisx0213", 932},
    {"sjis", 932},
    {"ujis", 932},
    {"windows31j", 932},
    // Chinese
    {"euccn", 936},
    {"gb18030", 936},
    {"gb2312", 936},
    {"gbk", 936},
    {"big5", 950},
    {"big5hkscs", 950},
    {"euctw", 950},
    // Korean
    {"euckr", 949},
    {"johab", 949},
    {"ksc5601", 949},
    {"uhc", 949},
    // Thai
    {"tis620", 874},
    {"tis6202533", 874},
    // Cyrillic
    {"koi8r", 1251},
    {"koi8t", 1251},
    {"koi8u", 1251},
    {"pt154", 1251},
    {"rk1048", 1251},
    // Vietnamese
    {"tcvn", 1258},
    {"tcvn57121", 1258},
    {"viscii", 1258},
};

// The part of ISO 8859 is the index. The page is the one that has the most of its letters.
constexpr unsigned kIsoPages[] = {0,    1252, 1250, 1254, 1257, 1251, 1256, 1253, 1255,
                                  1254, 1257, 874,  0,    1257, 1252, 1252, 1250};

struct NumberedCharset {
    unsigned number;
    unsigned page;
};

// Pages of the old consoles, by the alphabet that they are for.
constexpr NumberedCharset kConsolePages[] = {
    {720, 1256}, {737, 1253}, {775, 1257}, {852, 1250}, {855, 1251}, {857, 1254},
    {862, 1255}, {864, 1256}, {866, 1251}, {869, 1253}, {943, 932},  {1361, 949},
};

constexpr std::string_view kPagePrefixes[] = {"", "cp", "ibm", "microsoftcp", "ms", "windows"};
constexpr std::string_view kIsoPrefixes[] = {"iso8859", "8859"};

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

// A charset's name without case and punctuation. The empty name and one longer than any that is
// known are alike unknown.
class CharsetName {
public:
    explicit CharsetName(std::string_view name) {
        for (const char c : name) {
            const char plain = lower(c);
            if (!isLetterOrDigit(plain)) continue;
            if (size_ == text_.size()) {
                size_ = 0;
                return;
            }
            text_[size_++] = plain;
        }
    }

    [[nodiscard]] std::string_view view() const { return {text_.data(), size_}; }

private:
    std::array<char, 24> text_{};
    std::size_t size_ = 0;
};

std::string_view firstSet(const char* all, const char* ctype, const char* lang) {
    for (const char* value : {all, ctype, lang}) {
        if (value && *value != '\0') return value;
    }
    return {};
}

// language_TERRITORY.charset@modifier
std::string_view charsetOf(std::string_view locale) {
    locale = locale.substr(0, locale.find('@'));
    const std::size_t dot = locale.find('.');
    return dot == std::string_view::npos ? std::string_view{} : locale.substr(dot + 1);
}

// The number that follows the prefix and ends the name.
std::optional<unsigned> numberAfter(std::string_view prefix, std::string_view name) {
    if (!name.starts_with(prefix)) return std::nullopt;

    name.remove_prefix(prefix.size());
    const char* const end = name.data() + name.size();
    unsigned number = 0;
    const auto [last, error] = std::from_chars(name.data(), end, number);
    if (error != std::errc{} || last != end) return std::nullopt;
    return number;
}

std::optional<unsigned> pageOfNumber(unsigned number) {
    if (findCodePage(number)) return number;
    for (const NumberedCharset& charset : kConsolePages) {
        if (charset.number == number) return charset.page;
    }
    return std::nullopt;
}

std::optional<unsigned> pageOfCharset(std::string_view name) {
    for (const NamedCharset& charset : kNamedCharsets) {
        if (charset.name == name) return charset.page;
    }
    for (const std::string_view prefix : kIsoPrefixes) {
        const auto part = numberAfter(prefix, name);
        if (part && *part < std::size(kIsoPages) && kIsoPages[*part] != 0) return kIsoPages[*part];
    }
    for (const std::string_view prefix : kPagePrefixes) {
        const auto number = numberAfter(prefix, name);
        if (number) return pageOfNumber(*number);
    }
    return std::nullopt;
}

}  // namespace

unsigned codePageOfLocale(const char* all, const char* ctype, const char* lang) noexcept {
    const CharsetName name{charsetOf(firstSet(all, ctype, lang))};
    return pageOfCharset(name.view()).value_or(kWesternPage);
}

}  // namespace vexa::platform
