#ifndef VEXAKIT_CONVERSION_H
#define VEXAKIT_CONVERSION_H

#include "vexakit/export.h"
#include "vexakit/types.h"

#include <stddef.h>
#include <stdint.h>

/**
 * Text between the encodings.
 *
 * `mbs` is text in the ANSI code page: the system's on Windows; elsewhere the one that fits the
 * charset of the environment's locale (`LC_ALL`, `LC_CTYPE`, `LANG`) as it was when the library
 * was loaded, 1252 where there is none. `wcs` is UTF-16. `tcs`, the library's general text, is wide
 * text, too.
 *
 * Into a code page, characters that it lacks become their best fit in it (a full-width digit its
 * plain digit), else "?". Bytes that are no character of their code page become its replacement
 * character, "?" or the middle dot U+30FB of page 932. Lone surrogates become U+FFFD in UTF-8, and so
 * does each ill-formed part of UTF-8 in wide text.
 *
 * All functions return a status, which is 0 or 0x8000. Text is zero-terminated; lengths are counted
 * in the characters of the destination and include its terminator. A destination must not overlap its
 * source.
 */

VEXA_BEGIN_DECLS

/**
 * @name Into a caller's buffer
 * @{
 */

/**
 * Converts text in the ANSI code page to wide text.
 *
 * @param[in]  length  room of `destination`, at least 1
 * @param[out] destination  receives the text and its terminator; its last element becomes 0, too.
 *                          Elements between the two keep what they held.
 * @return 0; 0x8000 for a null pointer, a length below 1, and where the text does not fit whole: the
 *         destination may then hold a part of it without a terminator.
 */
VEXA_API uint32_t stringCnv_mbsToWcs(const char* source, VexaWChar* destination, int length);
VEXA_API uint32_t stringCnv_mbsToTcs(const char* source, VexaWChar* destination, size_t length);

/**
 * Converts wide text to the ANSI code page.
 *
 * @return 0; 0x8000 for a null pointer, a length of 0, and where the text does not fit whole: the
 *         destination then holds an empty string or a part of the text without a terminator.
 */
VEXA_API uint32_t stringCnv_wcsToMbs(const VexaWChar* source, char* destination, size_t length);
VEXA_API uint32_t stringCnv_tcsToMbs(const VexaWChar* source, char* destination, size_t length);

/**
 * Converts the first `length` - 1 units of wide text to UTF-8.
 *
 * The limit counts units of the source, not characters and not bytes: a surrogate pair may be cut,
 * and text of longer characters does not fit although it is below the limit. Where the output has
 * exactly `length` bytes, its last byte gives way to the terminator, which may cut a character.
 *
 * @return 0; 0x8000 for a null pointer, a length of 0, and an output longer than `length`: the
 *         destination then holds a part of it without a terminator.
 */
VEXA_API uint32_t stringCnv_wcsToUTF8(const VexaWChar* source, char* destination, size_t length);

/**
 * Converts the first `length` - 1 bytes of UTF-8 to wide text. The limit counts bytes of the source
 * and may cut a character, whose part becomes U+FFFD.
 *
 * @return 0; 0x8000 for a null pointer and a length of 0.
 */
VEXA_API uint32_t stringCnv_utf8ToWcs(const char* source, VexaWChar* destination, size_t length);

/**
 * Copies wide text. Both names are one function.
 *
 * @return 0; 0x8000 for a null pointer, a length below 1 or below the characters of the source.
 *
 * A length of just the characters passes, and the terminator is written one element behind it: pass
 * one more than the characters.
 */
VEXA_API uint32_t stringCnv_tcsToWcs(const VexaWChar* source, VexaWChar* destination, int length);
VEXA_API uint32_t stringCnv_wcsToTcs(const VexaWChar* source, VexaWChar* destination, int length);

/**
 * @}
 * @name Into a new string
 *
 * The caller gives the string back to `string_freeA` or `string_freeW`. The status is 0x8000 for a
 * null pointer, a failed allocation and a failed conversion.
 * @{
 */

/** @param[out] result  receives the new string; written on success only */
VEXA_API uint32_t stringCnv_mbsToWcsAlloc(const char* source, VexaWChar** result);
VEXA_API uint32_t stringCnv_mbsToTcsAlloc(const char* source, VexaWChar** result);

/** @param[out] result  receives the new string; written on success only */
VEXA_API uint32_t stringCnv_wcsToMbsAlloc(const VexaWChar* source, char** result);
VEXA_API uint32_t stringCnv_tcsToMbsAlloc(const VexaWChar* source, char** result);

/**
 * @param[out] result  receives the new string, which ends in two zero bytes; null where the
 *                     allocation or the conversion fails
 */
VEXA_API uint32_t stringCnv_wcsToUTF8Alloc(const VexaWChar* source, char** result);

/** @param[out] result  receives the new string; null where the allocation or the conversion fails */
VEXA_API uint32_t stringCnv_utf8ToWcsAlloc(const char* source, VexaWChar** result);

/** @param[out] result  receives the copy; written on success only. Both names are one function. */
VEXA_API uint32_t stringCnv_tcsToWcsAlloc(const VexaWChar* source, VexaWChar** result);
VEXA_API uint32_t stringCnv_wcsToTcsAlloc(const VexaWChar* source, VexaWChar** result);

/**
 * @}
 * @name Arrays of strings
 *
 * Each converts `count` strings into a new array of as many new strings. The caller gives each string
 * back, then the array. A string that is null or cannot be converted has null in its place, and the
 * others are converted all the same.
 *
 * @param[out] result  receives the array; written on success only. A count of 0 gives an array, too.
 * @return 0; 0x8000 for a null pointer, a negative count, and no memory for the array.
 * @{
 */

VEXA_API uint32_t stringCnv_mbspToWcsp(const char* const* source, int32_t count,
                                       VexaWChar*** result);
VEXA_API uint32_t stringCnv_wcspToMbsp(const VexaWChar* const* source, int32_t count,
                                       char*** result);
VEXA_API uint32_t stringCnv_wcspToUTF8p(const VexaWChar* const* source, int32_t count,
                                        char*** result);
VEXA_API uint32_t stringCnv_utf8pToWcsp(const char* const* source, int32_t count,
                                        VexaWChar*** result);

/** @} */

VEXA_END_DECLS

#endif
