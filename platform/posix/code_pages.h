#pragma once

#include "vexakit/types.h"

#include <optional>

namespace vexa::platform {

namespace tables {
struct SingleBytePage;
struct DoubleBytePage;
}  // namespace tables

constexpr unsigned kUtf8Page = 65001;

/// A code page that text may be in. It is one of three kinds: a page with a table of one byte a
/// character, a page with a table of one or two, or UTF-8, which has neither.
struct CodePage {
    const tables::SingleBytePage* singleByte = nullptr;
    const tables::DoubleBytePage* doubleByte = nullptr;
};

/// The page of that number: 874, 932, 936, 949, 950, 1250 to 1258, or 65001; nothing for others.
std::optional<CodePage> findCodePage(unsigned number) noexcept;

unsigned numberOf(const CodePage& page) noexcept;

/// Whether the byte starts a character of two bytes; never in UTF-8.
bool isLeadByte(const CodePage& page, char byte) noexcept;

/// The wide character of a code of two bytes, of which the first is a lead byte of the page.
VexaWChar unitOfCode(const CodePage& page, unsigned code) noexcept;

/// The other case of a letter by its code; the code itself where it has none in the page. Of the
/// single bytes ASCII letters alone have one.
unsigned upperCase(const CodePage& page, unsigned code) noexcept;
unsigned lowerCase(const CodePage& page, unsigned code) noexcept;

/// Converts wide text to a code page: what the page lacks becomes its best fit, else "?". Under a
/// page with a table each unit is converted by itself, surrogates too; under UTF-8 a lone
/// surrogate becomes U+FFFD.
///
/// @param source  `length` units, or text up to and with its terminator where `length` is -1
/// @param out     room for `room` bytes; with a `room` of 0 nothing is written
/// @return the bytes of the whole conversion; 0 for a length of 0 or below -1, a negative room,
///         where the room is too small (it then holds the whole characters before the first that
///         does not fit), and where an `int` cannot tell the bytes
int wideToCodePage(const CodePage& page, const VexaWChar* source, int length, char* out,
                   int room) noexcept;

/// Converts text in a code page to wide text: what is no character of the page becomes its
/// replacement. A lead byte at the end or before a zero is one such, any other takes the byte behind
/// it along. Ill-formed UTF-8 becomes one U+FFFD for each maximal part of a character, or for each
/// byte that is none.
///
/// Parameters and result are as above, with bytes and units changing places.
int codePageToWide(const CodePage& page, const char* source, int length, VexaWChar* out,
                   int room) noexcept;

}  // namespace vexa::platform
