#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <cstdlib>

uint32_t string_freeA(void* block) {
    if (!block) return VEXA_FAILURE;

    std::free(block);
    return VEXA_SUCCESS;
}

extern "C" [[gnu::alias("string_freeA")]] uint32_t string_freeW(void* block);
