#include "vexakit/conversion.h"

#include "platform/encodings.h"
#include "platform/wide_characters.h"
#include "strings/bounded_copy.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>

using namespace vexa;

namespace {

constexpr int kToTerminator = -1;

template <typename From, typename To>
using Conversion = int (*)(const From* source, int length, To* out, int room) noexcept;

template <typename Element>
Element* allocate(std::size_t count) {
    return static_cast<Element*>(std::malloc(count * sizeof(Element)));
}

int clamped(size_t length) {
    constexpr size_t kMost = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(length, kMost));
}

// As much of the text as the limit allows. The limit counts characters of the source, so the output may
// still be too long.
template <typename From, typename To>
uint32_t convertStart(const From* source, To* destination, size_t length,
                      Conversion<From, To> convert) {
    if (!source || !destination || length == 0) return VEXA_FAILURE;

    const int room = clamped(length);
    const int count = static_cast<int>(lengthWithin(source, static_cast<size_t>(room) - 1));
    const int written = count == 0 ? 0 : convert(source, count, destination, room);
    if (written == 0 && count != 0) return VEXA_FAILURE;

    // Where the output fills the room, its last character gives way.
    destination[std::min(written, room - 1)] = 0;
    return VEXA_SUCCESS;
}

// The characters of the whole text; 0 where they cannot be told.
template <typename From, typename To>
size_t convertedSize(const From* source, Conversion<From, To> convert) {
    return static_cast<size_t>(convert(source, kToTerminator, nullptr, 0));
}

// The whole text of `size` characters in a new block that is `spare` characters longer; these are 0.
template <typename From, typename To>
To* convertedBlock(const From* source, size_t size, size_t spare, Conversion<From, To> convert) {
    To* const block = allocate<To>(size + spare);
    if (!block) return nullptr;

    const int written =
        size == 0 ? 0 : convert(source, kToTerminator, block, static_cast<int>(size));
    std::fill(block + written, block + size + spare, To{0});
    return block;
}

// Leaves the result alone on failure. A size that cannot be told still gives a string, the empty one.
template <typename From, typename To>
uint32_t convertAnsi(const From* source, To** result, Conversion<From, To> convert) {
    if (!source || !result) return VEXA_FAILURE;

    To* const text = convertedBlock(source, convertedSize(source, convert), 1, convert);
    if (!text) return VEXA_FAILURE;
    *result = text;
    return VEXA_SUCCESS;
}

// The result is null on failure.
template <typename From, typename To>
uint32_t convertUtf8(const From* source, To** result, size_t spare, Conversion<From, To> convert) {
    if (!source || !result) return VEXA_FAILURE;

    *result = nullptr;
    const size_t size = convertedSize(source, convert);
    if (size > 0) *result = convertedBlock(source, size, spare, convert);
    return *result ? VEXA_SUCCESS : VEXA_FAILURE;
}

template <typename From, typename To>
using AllocatingConversion = uint32_t (*)(const From* source, To** result);

template <typename From, typename To>
uint32_t convertEach(const From* const* source, int32_t count, To*** result,
                     AllocatingConversion<From, To> convert) {
    if (!source || !result || count < 0) return VEXA_FAILURE;

    const auto strings = static_cast<std::size_t>(count);
    // A block of no bytes may be null.
    To** const array = allocate<To*>(std::max<std::size_t>(strings, 1));
    if (!array) return VEXA_FAILURE;

    for (std::size_t i = 0; i < strings; ++i) {
        array[i] = nullptr;
        convert(source[i], &array[i]);
    }
    *result = array;
    return VEXA_SUCCESS;
}

}  // namespace

uint32_t stringCnv_mbsToWcs(const char* source, VexaWChar* destination, int length) {
    if (!source || !destination || length < 1) return VEXA_FAILURE;
    if (platform::ansiToWide(source, kToTerminator, destination, length) == 0) return VEXA_FAILURE;

    destination[length - 1] = 0;
    return VEXA_SUCCESS;
}

uint32_t stringCnv_mbsToTcs(const char* source, VexaWChar* destination, size_t length) {
    return stringCnv_mbsToWcs(source, destination, clamped(length));
}

uint32_t stringCnv_wcsToMbs(const VexaWChar* source, char* destination, size_t length) {
    if (!source || !destination || length == 0) return VEXA_FAILURE;

    *destination = '\0';
    const int written = platform::wideToAnsi(source, kToTerminator, destination, clamped(length));
    return written != 0 ? VEXA_SUCCESS : VEXA_FAILURE;
}

uint32_t stringCnv_tcsToMbs(const VexaWChar* source, char* destination, size_t length) {
    return stringCnv_wcsToMbs(source, destination, length);
}

uint32_t stringCnv_wcsToUTF8(const VexaWChar* source, char* destination, size_t length) {
    return convertStart(source, destination, length, &platform::wideToUtf8);
}

uint32_t stringCnv_utf8ToWcs(const char* source, VexaWChar* destination, size_t length) {
    return convertStart(source, destination, length, &platform::utf8ToWide);
}

uint32_t stringCnv_tcsToWcs(const VexaWChar* source, VexaWChar* destination, int length) {
    if (!source || !destination || length < 1) return VEXA_FAILURE;

    const size_t characters = platform::wideLength(source);
    // A length of just the characters passes: the terminator is then written one past it.
    if (static_cast<size_t>(length) < characters) return VEXA_FAILURE;
    std::memcpy(destination, source, (characters + 1) * sizeof(VexaWChar));
    return VEXA_SUCCESS;
}

extern "C" [[gnu::alias("stringCnv_tcsToWcs")]] uint32_t stringCnv_wcsToTcs(const VexaWChar* source,
                                                                            VexaWChar* destination,
                                                                            int length);

uint32_t stringCnv_mbsToWcsAlloc(const char* source, VexaWChar** result) {
    return convertAnsi(source, result, &platform::ansiToWide);
}

uint32_t stringCnv_mbsToTcsAlloc(const char* source, VexaWChar** result) {
    return stringCnv_mbsToWcsAlloc(source, result);
}

uint32_t stringCnv_wcsToMbsAlloc(const VexaWChar* source, char** result) {
    return convertAnsi(source, result, &platform::wideToAnsi);
}

uint32_t stringCnv_tcsToMbsAlloc(const VexaWChar* source, char** result) {
    return stringCnv_wcsToMbsAlloc(source, result);
}

uint32_t stringCnv_wcsToUTF8Alloc(const VexaWChar* source, char** result) {
    return convertUtf8(source, result, 1, &platform::wideToUtf8);
}

uint32_t stringCnv_utf8ToWcsAlloc(const char* source, VexaWChar** result) {
    return convertUtf8(source, result, 0, &platform::utf8ToWide);
}

uint32_t stringCnv_tcsToWcsAlloc(const VexaWChar* source, VexaWChar** result) {
    if (!source || !result) return VEXA_FAILURE;

    const size_t size = platform::wideLength(source) + 1;
    VexaWChar* const text = allocate<VexaWChar>(size);
    if (!text) return VEXA_FAILURE;
    std::memcpy(text, source, size * sizeof(VexaWChar));
    *result = text;
    return VEXA_SUCCESS;
}

extern "C" [[gnu::alias("stringCnv_tcsToWcsAlloc")]] uint32_t stringCnv_wcsToTcsAlloc(
    const VexaWChar* source, VexaWChar** result);

uint32_t stringCnv_mbspToWcsp(const char* const* source, int32_t count, VexaWChar*** result) {
    return convertEach(source, count, result, &stringCnv_mbsToWcsAlloc);
}

uint32_t stringCnv_wcspToMbsp(const VexaWChar* const* source, int32_t count, char*** result) {
    return convertEach(source, count, result, &stringCnv_wcsToMbsAlloc);
}

uint32_t stringCnv_wcspToUTF8p(const VexaWChar* const* source, int32_t count, char*** result) {
    return convertEach(source, count, result, &stringCnv_wcsToUTF8Alloc);
}

uint32_t stringCnv_utf8pToWcsp(const char* const* source, int32_t count, VexaWChar*** result) {
    return convertEach(source, count, result, &stringCnv_utf8ToWcsAlloc);
}
