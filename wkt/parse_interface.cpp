#include "geometry/size.h"
#include "locks/thread_lock.h"
#include "vexakit/conversion.h"
#include "vexakit/strings.h"
#include "vexakit/wkt.h"
#include "wkt/parser.h"
#include "wkt/plain_reader.h"

#include <cstring>

using namespace vexa;

namespace {

Parser parser;         // NOLINT(*-avoid-non-const-global-variables): the parser of the process
ThreadLock parseLock;  // NOLINT(*-avoid-non-const-global-variables): made at load, for all threads

// Plain text is read outside the lock. For other text the copy is made before the lock is taken: where
// there is no memory for it the process ends, and a lock must not be held when it is destroyed.
std::uint32_t parseText(const char* text, Block& result) {
    if (text && (result = readPlainText(text))) {
        const ThreadLockGuard guard{&parseLock};
        parser.clearError();
        return kSuccess;
    }
    const ScanBufferHandle buffer = text ? scanBytes(text) : nullptr;
    const ThreadLockGuard guard{&parseLock};
    return parser.parse(buffer.get(), result);
}

struct FreeString {
    void operator()(char* text) const noexcept { string_freeA(text); }
};
using AnsiText = std::unique_ptr<char, FreeString>;

/// Parses wide text and tells the size of what it gives.
std::uint32_t parseWide(const VexaWChar* text, Block& result, std::uint32_t& size) {
    char* converted = nullptr;
    std::uint32_t status = stringCnv_wcsToMbsAlloc(text, &converted);
    if (status != kSuccess) return status;

    const AnsiText ansi{converted};
    status = parseText(ansi.get(), result);
    if (status != kSuccess) return status;

    return knownOrComputedSize(*result, size);
}

std::uint32_t toBinary(const VexaWChar* text, void* out, std::uint32_t capacity) {
    Block geometry;
    std::uint32_t size = 0;
    const std::uint32_t status = parseWide(text, geometry, size);
    if (status != kSuccess) return status;
    if (size > capacity) return kArrayTooSmall;
    if (!out) return kFailure;

    std::memcpy(out, geometry.get(), size);
    return kSuccess;
}

std::uint32_t sizeOfText(const VexaWChar* text, std::uint32_t* size) {
    Block geometry;
    std::uint32_t told = 0;
    const std::uint32_t status = parseWide(text, geometry, told);
    if (status != kSuccess) return status;
    if (!size) return kFailure;

    *size = told;
    return kSuccess;
}

std::int64_t withSign(std::uint32_t status) {
    return static_cast<std::int32_t>(status);
}

}  // namespace

uint32_t vexaParse_initialize(void) {
    return kSuccess;
}

extern "C" [[gnu::alias("vexaParse_initialize")]] uint32_t vexaParse_uninitialize(void);

uint32_t vexaParse_string(const char* text, GeometryBuffer** result) {
    Block geometry;
    const std::uint32_t status = parseText(text, geometry);
    if (status != kSuccess) return status;
    if (!result) return kFailure;

    *result = geometry.release();
    return kSuccess;
}

const char* vexaParse_errorString(void) {
    return parser.errorText();
}

int64_t vexaWKB_convertTextToBinary(const VexaWChar* text, void* out, uint32_t capacity) {
    return withSign(toBinary(text, out, capacity));
}

int64_t vexaWKB_getSizeFromTextGeom(const VexaWChar* text, uint32_t* size) {
    return withSign(sizeOfText(text, size));
}
