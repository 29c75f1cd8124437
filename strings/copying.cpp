#include "strings/bounded_copy.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <algorithm>

using namespace vexa;

namespace {

template <typename Character>
uint32_t copy(const Character* source, Character* destination, size_t size) {
    if (!source || !destination || size == 0) return VEXA_FAILURE;

    copyAndFill(source, lengthWithin(source, size - 1), destination, size);
    return VEXA_SUCCESS;
}

}  // namespace

uint32_t string_safeCopyA(const char* source, char* destination, size_t size) {
    return copy(source, destination, size);
}

uint32_t string_safeCopyW(const VexaWChar* source, VexaWChar* destination, size_t size) {
    return copy(source, destination, size);
}

uint32_t string_safeConcatenateW(const VexaWChar* source, VexaWChar* destination, size_t size) {
    if (!source || !destination || size == 0) return VEXA_FAILURE;

    const size_t used = lengthWithin(destination, size);
    if (used == size) return VEXA_FAILURE;

    const size_t added = lengthWithin(source, size - 1 - used);
    VexaWChar* const end = std::copy_n(source, added, destination + used);
    *end = 0;
    destination[size - 1] = 0;
    return VEXA_SUCCESS;
}
