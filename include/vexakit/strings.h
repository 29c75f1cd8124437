#ifndef VEXAKIT_STRINGS_H
#define VEXAKIT_STRINGS_H

#include "vexakit/export.h"
#include "vexakit/types.h"

#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>

/**
 * Text in place: measured, searched, edited, cut, copied, formatted and taken apart.
 *
 * Two families with the same names. `A` functions take zero-terminated multibyte text in the ANSI
 * code page (`conversion.h` says which that is): a character is one or two bytes in the East Asian
 * pages 932, 936, 949 and 950, and one byte in all others, UTF-8 included. `W` functions take
 * zero-terminated UTF-16; a character is one 16-bit unit.
 *
 * Unless a function says otherwise,
 * - a null pointer gives null, a count of 0 or the status 0x8000, and nothing is written;
 * - a status is 0 or 0x8000;
 * - a function that edits returns the string that it was given, edited where it is;
 * - a `size` is the room of the output in its own characters, the terminator included;
 * - the path separator is the backslash.
 *
 * White space and control characters are those of the Windows runtime's "C" locale. In multibyte
 * text white space is the blank, tab, line feed, vertical tab, form feed, carriage return, and the
 * ideographic space of the East Asian pages.
 *
 * Formats are those of the Windows runtime in both families, on every system: `%s` and `%c` take
 * what the family is made of, `%S` and `%C` the other kind, `%hs`, `%hc` narrow and `%ls`, `%ws`,
 * `%lc` wide text; `%d` and `%ld` are 32 bits, `%lld` and `%I64d` 64, `%I32d` 32, `%zu`, `%Id` and
 * `%td` the size of a pointer; `%p` prints sixteen upper-case digits; a null string prints
 * "(null)". Narrow and wide characters stand for each other by their value, so a wide character
 * above 255 in a narrow format makes `%S` fail and `%C` print nothing. Floating forms print as the
 * platform's C runtime prints them. Off Windows `%n` fails and writes nothing.
 */

VEXA_BEGIN_DECLS

/**
 * @name Measuring and stepping
 * @{
 */

/**
 * Characters of multibyte text. A lead byte right before the terminator is not counted.
 */
VEXA_API size_t string_numCharsA(const char* text);

/** Bytes of multibyte text. */
VEXA_API size_t string_safeLengthA(const char* text);

/** Units of wide text. Both names are one function. */
VEXA_API size_t string_numCharsW(const VexaWChar* text);
VEXA_API size_t string_safeLengthW(const VexaWChar* text);

/**
 * How often the character occurs. A double-byte character is its lead byte times 256 plus its trail
 * byte. The terminator is not a character: 0 occurs 0 times.
 */
VEXA_API size_t string_getCharCountA(const char* text, unsigned int character);
VEXA_API size_t string_getCharCountW(const VexaWChar* text, VexaWChar character);

/**
 * The position behind the character at `position`. A lead byte right before the terminator is one
 * step. At the terminator the result is just past it, and must not be read.
 */
VEXA_API char* string_incrementA(const char* position);

/** The position of the next unit; no stop at the terminator. Both names are one function. */
VEXA_API VexaWChar* string_incrementW(const VexaWChar* position);
VEXA_API VexaWChar* string_nextCharW(const VexaWChar* position);

/**
 * The position of the character before `position`.
 *
 * @param[in] start     the text's start, or of any character at or before `position`
 * @param[in] position  the start of a character or of the terminator
 * @return null also where `position` is not behind `start`
 */
VEXA_API char* string_decrementA(const char* start, const char* position);
VEXA_API VexaWChar* string_decrementW(const VexaWChar* start, const VexaWChar* position);

/**
 * `text` plus the number of characters less one, counted in bytes; null where there is no character.
 *
 * That is the last character of single-byte text alone: each double-byte character puts the result
 * one byte too far to the front.
 */
VEXA_API char* string_getLastCharA(const char* text);

/** The last unit; null for empty text. */
VEXA_API VexaWChar* string_getLastCharW(const VexaWChar* text);

/**
 * The first or last occurrence of a character; null where there is none. The character 0 is found at
 * the terminator. In single-byte text only the low eight bits of `character` count.
 */
VEXA_API char* string_strchrA(const char* text, unsigned int character);
VEXA_API VexaWChar* string_strchrW(const VexaWChar* text, VexaWChar character);
VEXA_API char* string_strrchrA(const char* text, unsigned int character);
VEXA_API VexaWChar* string_strrchrW(const VexaWChar* text, VexaWChar character);

/** The first occurrence of `part`, by whole characters; null where either text is empty. */
VEXA_API char* string_strstrA(const char* text, const char* part);
VEXA_API VexaWChar* string_strstrW(const VexaWChar* text, const VexaWChar* part);

/** Non-zero for white space; 0 for the terminator. */
VEXA_API int string_isSpaceW(VexaWChar character);

/** The first unit that is not white space; the terminator where there is none. */
VEXA_API VexaWChar* string_skipWhiteSpaceW(const VexaWChar* text);

/**
 * @}
 * @name Case and replacement
 * @{
 */

/**
 * Changes the case of letters: of ASCII letters, and in the East Asian pages of the double-byte
 * letters (full-width Latin, Greek, Cyrillic) that the page has in both cases. Single bytes above
 * 127 and wide characters beyond ASCII stay as they are.
 */
VEXA_API char* string_toUpperA(char* text);
VEXA_API char* string_toLowerA(char* text);
VEXA_API VexaWChar* string_toUpperW(VexaWChar* text);
VEXA_API VexaWChar* string_toLowerW(VexaWChar* text);

/** Puts `to` for every `from`. The bytes of double-byte characters are never changed. */
VEXA_API char* string_replaceCharA(char* text, char from, char to);
VEXA_API VexaWChar* string_replaceCharW(VexaWChar* text, VexaWChar from, VexaWChar to);

/** Puts a line feed for every backslash that "n" or "N" follows, and for that letter with it. */
VEXA_API char* string_replaceCRA(char* text);
VEXA_API VexaWChar* string_replaceCRW(VexaWChar* text);

/**
 * Appends a backslash unless the last one is there already. Empty text becomes one backslash.
 *
 * The caller has room for one more character. The multibyte function looks at the last byte, so
 * text that ends in a double-byte character with the trail byte 0x5C gets none.
 */
VEXA_API char* string_addFileSeperatorA(char* path);
VEXA_API VexaWChar* string_addFileSeperatorW(VexaWChar* path);

/**
 * @}
 * @name Stripping
 * @{
 */

/** Removes all leading white space. */
VEXA_API char* string_stripLeadWhiteSpaceA(char* text);
VEXA_API VexaWChar* string_stripLeadWhiteSpaceW(VexaWChar* text);

/** Puts terminators for all trailing white space. */
VEXA_API char* string_stripTrailWhiteSpaceA(char* text);
VEXA_API VexaWChar* string_stripTrailWhiteSpaceW(VexaWChar* text);

/**
 * Removes white space everywhere, but of two white-space characters side by side only the first: the
 * character that moved into its place is kept unseen. Of a double-byte space only the first byte is
 * removed.
 */
VEXA_API char* string_stripWhiteSpaceA(char* text);

/** Removes all white space. */
VEXA_API VexaWChar* string_stripWhiteSpaceW(VexaWChar* text);

/**
 * Removes a character everywhere, but of two side by side only the first: the character that moved
 * into its place is kept unseen.
 *
 * The multibyte function works on the text's wide form and puts that back, here and in the four
 * below; so does `string_stripCtlCharA`. What the code page cannot express both ways is changed by
 * it, even where nothing is removed. The byte `character` stands for the wide character of the same
 * value. The result is null, and the text as it was, where the text cannot be converted, grows
 * beyond its bytes by it, or memory is short.
 */
VEXA_API char* string_stripCharA(char* text, char character);
VEXA_API VexaWChar* string_stripCharW(VexaWChar* text, VexaWChar character);

/** Removes control characters everywhere, but of two side by side only the first. */
VEXA_API char* string_stripCtlCharA(char* text);

/**
 * Removes all control characters. Where something was removed and the text ends with an ordinary
 * character, what stood behind the new end stays: "ab", U+0001, "c" becomes "abcc".
 */
VEXA_API VexaWChar* string_stripCtlCharW(VexaWChar* text);

/** Removes up to `count` leading occurrences of a character. */
VEXA_API char* string_stripLeadingCharA(char* text, char character, uint32_t count);
VEXA_API VexaWChar* string_stripLeadingCharW(VexaWChar* text, VexaWChar character, uint32_t count);

/** Removes up to `count` trailing occurrences of a character. */
VEXA_API char* string_stripTrailingCharA(char* text, char character, uint32_t count);
VEXA_API VexaWChar* string_stripTrailingCharW(VexaWChar* text, VexaWChar character, uint32_t count);

/** Removes up to `count` leading control characters. */
VEXA_API char* string_stripLeadingCtlCharA(char* text, uint32_t count);
VEXA_API VexaWChar* string_stripLeadingCtlCharW(VexaWChar* text, uint32_t count);

/**
 * Removes up to `count` trailing control characters.
 *
 * The multibyte function asks the byte whose index in the text is that of the wide character, and
 * not the wide character itself. In text with longer characters that is a byte nearer to the front.
 */
VEXA_API char* string_stripTrailingCtlCharA(char* text, uint32_t count);
VEXA_API VexaWChar* string_stripTrailingCtlCharW(VexaWChar* text, uint32_t count);

/**
 * @}
 * @name Paths
 * @{
 */

/** Keeps what follows the last backslash; everything where there is none. */
VEXA_API char* string_stripFilePathA(char* path);
VEXA_API VexaWChar* string_stripFilePathW(VexaWChar* path);

/** Keeps everything up to the last backslash and that itself; everything where there is none. */
VEXA_API char* string_stripFileNameA(char* path);
VEXA_API VexaWChar* string_stripFileNameW(VexaWChar* path);

/** Cuts at the last "." that lies behind the last backslash. */
VEXA_API char* string_stripFileExtA(char* path);
VEXA_API VexaWChar* string_stripFileExtW(VexaWChar* path);

/**
 * Removes one backslash or slash from the end.
 *
 * @return Only to be compared with null, and even that says little: null for a null pointer and for
 *         empty text; the last character's address where it is no slash; where it was one, its index
 *         as if that were an address, which for "/" is null as well.
 */
VEXA_API VexaWChar* string_removeTerminatingSlashW(VexaWChar* path);

/**
 * @}
 * @name Copying, formatting, environment
 * @{
 */

/**
 * Copies text, as much as fits, and fills the rest of the output with zeros.
 *
 * @return 0, also where the copy is cut; 0x8000 for a null pointer or a size of 0.
 */
VEXA_API uint32_t string_safeCopyA(const char* source, char* destination, size_t size);
VEXA_API uint32_t string_safeCopyW(const VexaWChar* source, VexaWChar* destination, size_t size);

/**
 * Appends text, as much as fits. The last character of the output becomes 0.
 *
 * @return 0, also where the text is cut; 0x8000 for a null pointer, a size of 0, or a destination
 *         that does not end within its size, which then stays as it is.
 */
VEXA_API uint32_t string_safeConcatenateW(const VexaWChar* source, VexaWChar* destination,
                                          size_t size);

/**
 * Prints values by a format.
 *
 * @return 0; 0x8000 for a null pointer, a size of 0, a format that fails, and for text that does not
 *         fit: the output then holds its first `size` - 1 characters, and its last cell is not
 *         written, so it need not be terminated.
 *
 * On success the last cell becomes 0.
 */
VEXA_API uint32_t string_safeSprintfA(char* destination, size_t size, const char* format, ...);
VEXA_API uint32_t string_safeSprintfW(VexaWChar* destination, size_t size, const VexaWChar* format,
                                      ...);
VEXA_API uint32_t string_safeVsprintfA(char* destination, size_t size, const char* format,
                                       va_list values);
VEXA_API uint32_t string_safeVsprintfW(VexaWChar* destination, size_t size, const VexaWChar* format,
                                       va_list values);

/**
 * Prints values into a new block that fits them.
 *
 * @param[in] allocate  gets a number of bytes and returns a block of them or null. `free` has to be
 *                      able to release its blocks: where the format fails, the library does so.
 * @return the caller's to release; null for a null pointer, no block, or a format that fails
 */
VEXA_API VexaWChar* string_sprintfAllocW(void* (*allocate)(size_t bytes), const VexaWChar* format,
                                         ...);

/**
 * The value of an environment variable, as much as fits; the rest of the output is filled with
 * zeros.
 *
 * @return 0, also where the copy is cut; 0x8000 for a null pointer, an empty name, a size of 0 or a
 *         variable that is not set. The output is then as it was.
 */
VEXA_API uint32_t string_getConfigVarA(char* destination, const char* name, size_t size);

/**
 * Releases a block that one of the library's `Alloc` functions handed out.
 *
 * @param[in] block  the block
 * @return 0; 0x8000 for a null pointer.
 *
 * Both names are one function: it frees narrow and wide strings and the arrays of the array
 * conversions alike.
 */
VEXA_API uint32_t string_freeA(void* block);
VEXA_API uint32_t string_freeW(void* block);

/**
 * @}
 * @name Tokens and numbers
 * @{
 */

/**
 * Takes the first token off a list.
 *
 * @param[in]  source      the list; where it starts with a delimiter, that one is skipped
 * @param[in]  delimiters  bytes, each of which ends a token. A double-byte character of the list ends
 *                         it by its lead byte.
 * @param[out] token       receives the token, which may be empty, and a terminator. The caller has
 *                         room for them; `source` itself will do.
 * @param[out] next        may be null; else receives the position behind the delimiter that ended
 *                         the token, or null where the list ended it
 * @return 0; 0x8000 for a null `source`, `delimiters` or `token`, and where one of the first two is
 *         empty. Nothing is written then.
 *
 * A doubled delimiter counts as one: "a,,b" is "a" and "b". "a,,,b" has an empty token in between.
 */
VEXA_API uint32_t string_getTokenA(const char* source, const char* delimiters, char* token,
                                   char** next);

/**
 * Takes the first token off a list.
 *
 * @param[in]  source      the list; all delimiters that it starts with are skipped
 * @param[in]  delimiters  characters, each of which ends a token
 * @param[in]  size        room of `token`
 * @param[out] token       receives the token and a terminator
 * @param[out] next        as in `string_getTokenA`
 * @return 0; 0x8000 for a null `source`, `delimiters` or `token`, where one of the first two is
 *         empty, and for a token that does not fit. Nothing is written then.
 *
 * A list of delimiters alone is one empty token.
 */
VEXA_API uint32_t string_getTokenW(const VexaWChar* source, const VexaWChar* delimiters,
                                   size_t size, VexaWChar* token, VexaWChar** next);

/**
 * How many tokens the list has, taken one after another.
 *
 * @param[out] count  receives the number: 0 for an empty list or no delimiters
 * @return 0; 0x8000 for a null `source` or `count`.
 */
VEXA_API uint32_t string_getTokenCountA(const char* source, const char* delimiters,
                                        uint32_t* count);

/**
 * How many tokens the list has, taken one after another. A token of 256 characters or more ends the
 * count.
 *
 * @param[out] count  receives the number: 0 for an empty list or no delimiters
 * @return 0; 0x8000 for a null pointer.
 */
VEXA_API uint32_t string_getTokenCountW(const VexaWChar* source, const VexaWChar* delimiters,
                                        uint32_t* count);

/**
 * One token of a list by its index from 0. The rest of the output is filled with zeros.
 *
 * @return 0; 0x8000 for a null pointer, a negative index, a list with too few tokens, and where that
 *         token or one before it does not fit `size`. Nothing is written then.
 */
VEXA_API uint32_t string_getTokenByIndexW(const VexaWChar* source, const VexaWChar* delimiters,
                                          int32_t index, VexaWChar* token, size_t size);

/**
 * Reads one whole number off the front of a text.
 *
 * @param[in]  text   white space, one to ten decimal digits without a sign, and behind them the
 *                    terminator, a blank or a character below it
 * @param[out] value  receives the number, 2147483647 for a greater one; 0 where there is none
 * @return the position of what follows the number and its white space, ready for the next; the
 *         terminator for text without a number; null for text that is anything else, and for a null
 *         pointer
 */
VEXA_API VexaWChar* string_readLongW(const VexaWChar* text, int32_t* value);

/**
 * @}
 * @name Fractions
 * @{
 */

/**
 * Prints a number as a whole part and a fraction of halves, quarters, eighths, sixteenths or
 * thirty-seconds ("3 1/2", "7/16"); where five decimal places are no such step, with six decimals
 * ("3.123450").
 *
 * @param[in]  value   -2147483648 to 2147483647 in its whole part
 * @param[out] result  receives the text. The caller has room for 22 characters, the terminator
 *                     included, and for what a decimal point has beyond one.
 * @return 0; 0x8000 for a null pointer, a value out of range, and what is not a number. Nothing is
 *         written then.
 *
 * Both parts of a negative number have the sign, and its half is two quarters: -2.5 is "-2 -2/4".
 * Its decimals stand apart: "-2 -0.300000". A number of no whole part is its fraction alone, so 0
 * is the empty text. The decimal point is that of the C runtime's locale.
 */
VEXA_API uint32_t string_convertDoubleToFracA(double value, char* result);
VEXA_API uint32_t string_convertDoubleToFracW(double value, VexaWChar* result);

/**
 * Prints a number likewise, but with a blank behind every whole part: 3 is "3 ", and decimals keep
 * their zero ("3 0.300000").
 */
VEXA_API uint32_t string_convertFloatToFracA(float value, char* result);
VEXA_API uint32_t string_convertFloatToFracW(float value, VexaWChar* result);

/** @} */

VEXA_END_DECLS

#endif
