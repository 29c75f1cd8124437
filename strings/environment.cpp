#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <cstdlib>

uint32_t string_getConfigVarA(char* destination, const char* name, size_t size) {
    if (!destination || !name || *name == '\0') return VEXA_FAILURE;

    // Safe as long as the host does not change its environment meanwhile, as with every reader of it.
    const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
    return value ? string_safeCopyA(value, destination, size) : static_cast<uint32_t>(VEXA_FAILURE);
}
