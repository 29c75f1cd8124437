#include "platform/formatted_print.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <cstdlib>

using namespace vexa;

namespace {

int print(char* out, size_t room, const char* format, va_list values) {
    return platform::printNarrow(out, room, format, values);
}

int print(VexaWChar* out, size_t room, const VexaWChar* format, va_list values) {
    return platform::printWide(out, room, format, values);
}

// What does not fit stays without a terminator: the last cell is written on success only.
template <typename Character>
uint32_t printBounded(Character* destination, size_t size, const Character* format,
                      va_list values) {
    if (!destination || size == 0 || !format) return VEXA_FAILURE;
    if (print(destination, size - 1, format, values) < 0) return VEXA_FAILURE;

    destination[size - 1] = 0;
    return VEXA_SUCCESS;
}

VexaWChar* printAllocated(void* (*allocate)(size_t), const VexaWChar* format, va_list values) {
    va_list again;
    va_copy(again, values);
    const int length = platform::printedWideLength(format, again);
    va_end(again);
    if (length < 0) return nullptr;

    const size_t size = static_cast<size_t>(length) + 1;
    auto* const text = static_cast<VexaWChar*>(allocate(size * sizeof(VexaWChar)));
    if (!text) return nullptr;
    if (platform::printWide(text, size, format, values) >= 0) return text;

    std::free(text);
    return nullptr;
}

}  // namespace

uint32_t string_safeSprintfA(char* destination, size_t size, const char* format, ...) {
    va_list values;
    va_start(values, format);
    const uint32_t status = printBounded(destination, size, format, values);
    va_end(values);
    return status;
}

uint32_t string_safeSprintfW(VexaWChar* destination, size_t size, const VexaWChar* format, ...) {
    va_list values;
    va_start(values, format);
    const uint32_t status = printBounded(destination, size, format, values);
    va_end(values);
    return status;
}

uint32_t string_safeVsprintfA(char* destination, size_t size, const char* format, va_list values) {
    return printBounded(destination, size, format, values);
}

uint32_t string_safeVsprintfW(VexaWChar* destination, size_t size, const VexaWChar* format,
                              va_list values) {
    return printBounded(destination, size, format, values);
}

VexaWChar* string_sprintfAllocW(void* (*allocate)(size_t bytes), const VexaWChar* format, ...) {
    if (!allocate || !format) return nullptr;

    va_list values;
    va_start(values, format);
    VexaWChar* const text = printAllocated(allocate, format, values);
    va_end(values);
    return text;
}
