#ifndef VEXAKIT_STRINGS_H
#define VEXAKIT_STRINGS_H

#include "vexakit/export.h"

#include <stdint.h>

VEXA_BEGIN_DECLS

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

VEXA_END_DECLS

#endif
