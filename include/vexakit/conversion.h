#ifndef VEXAKIT_CONVERSION_H
#define VEXAKIT_CONVERSION_H

#include "vexakit/export.h"
#include "vexakit/types.h"

/**
 * Text between the encodings.
 *
 * `mbs` is text in the ANSI code page: the system's on Windows; elsewhere the one that fits the
 * charset of the environment's locale (`LC_ALL`, `LC_CTYPE`, `LANG`) as it was when the library
 * was loaded, 1252 where there is none. `wcs` is UTF-16.
 */

VEXA_BEGIN_DECLS

/**
 * Converts wide text to a new string in the ANSI code page.
 *
 * @param[in]  source  zero-terminated wide text
 * @param[out] result  receives the new string, which the caller gives back to `string_freeA`;
 *                     written on success only
 * @return 0; 0x8000 for a null pointer, a failed allocation or a failed conversion.
 *
 * Characters that the code page lacks become their best fit in it (a full-width digit its plain
 * digit), else "?"; lone surrogates become U+FFFD under UTF-8.
 */
VEXA_API uint32_t stringCnv_wcsToMbsAlloc(const VexaWChar* source, char** result);

VEXA_END_DECLS

#endif
