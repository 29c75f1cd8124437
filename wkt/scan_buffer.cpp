#include "wkt/scan_buffer.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace vexa {

namespace {

constexpr std::size_t kEndMarks = 2;
constexpr int kScannerFailed = 2;

// Hosts rely on this exit: nothing of a scan is left to go on with.
[[noreturn]] void endProcess(const char* message) {
    std::fprintf(stderr, "%s\n", message);
    std::exit(kScannerFailed);  // NOLINT(concurrency-mt-unsafe): the exit is the contract
}

bool hasEndMarks(const char* block, std::size_t size) {
    return size >= kEndMarks && block[size - 2] == '\0' && block[size - 1] == '\0';
}

}  // namespace

void ReleaseScanBuffer::operator()(ScanBuffer* buffer) const noexcept {
    if (buffer->owned) std::free(buffer->block);
    std::free(buffer);
}

ScanBufferHandle scanBuffer(char* block, std::size_t size) {
    if (!hasEndMarks(block, size)) return nullptr;

    auto* const buffer = static_cast<ScanBuffer*>(std::malloc(sizeof(ScanBuffer)));
    if (!buffer) endProcess("out of dynamic memory in yy_scan_buffer()");

    *buffer = {block, size, false};
    return ScanBufferHandle{buffer};
}

ScanBufferHandle scanBytes(std::string_view text) {
    const std::size_t size = text.size() + kEndMarks;
    auto* const block = static_cast<char*>(std::malloc(size));
    if (!block) endProcess("out of dynamic memory in yy_scan_bytes()");

    std::memcpy(block, text.data(), text.size());
    std::memset(block + text.size(), 0, kEndMarks);
    ScanBufferHandle buffer = scanBuffer(block, size);
    buffer->owned = true;
    return buffer;
}

}  // namespace vexa
