#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace vexa::test {

/// Which side of a block touches memory that nobody may read or write.
enum class Fence { Before, Behind };

/// A block at the edge of its pages, so that the machine itself stops whoever looks one byte too far:
/// also those loads under a mask that no sanitizer follows.
class FencedBlock {
public:
    FencedBlock(std::size_t size, Fence fence) : inside_(wholePages(size)) {
        bytes_ = reserve(inside_ + 2 * pageSize());
        if (!bytes_ || !open(bytes_ + pageSize(), inside_)) throw std::bad_alloc{};
        data_ = bytes_ + pageSize() + (fence == Fence::Behind ? inside_ - size : 0);
    }
    FencedBlock(const void* source, std::size_t size, Fence fence) : FencedBlock(size, fence) {
        if (size > 0) std::memcpy(data_, source, size);
    }
    FencedBlock(const FencedBlock&) = delete;
    FencedBlock& operator=(const FencedBlock&) = delete;
    ~FencedBlock() { release(bytes_, inside_ + 2 * pageSize()); }

    template <class Element>
    Element* as() const {
        return reinterpret_cast<Element*>(data_);
    }

private:
    static std::size_t wholePages(std::size_t size) { return (size / pageSize() + 1) * pageSize(); }

#ifdef _WIN32
    static std::size_t pageSize() {
        SYSTEM_INFO info;
        GetSystemInfo(&info);
        return info.dwPageSize;
    }
    static std::byte* reserve(std::size_t size) {
        return static_cast<std::byte*>(VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS));
    }
    static bool open(std::byte* first, std::size_t size) {
        return VirtualAlloc(first, size, MEM_COMMIT, PAGE_READWRITE) != nullptr;
    }
    static void release(std::byte* bytes, std::size_t /*size*/) {
        VirtualFree(bytes, 0, MEM_RELEASE);
    }
#else
    static std::size_t pageSize() {
        return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    }
    static std::byte* reserve(std::size_t size) {
        void* const bytes = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        return bytes == MAP_FAILED ? nullptr : static_cast<std::byte*>(bytes);
    }
    static bool open(std::byte* first, std::size_t size) {
        return mprotect(first, size, PROT_READ | PROT_WRITE) == 0;
    }
    static void release(std::byte* bytes, std::size_t size) {
        munmap(bytes, size);
    }
#endif

    std::size_t inside_;
    std::byte* bytes_ = nullptr;
    std::byte* data_ = nullptr;
};

}  // namespace vexa::test
