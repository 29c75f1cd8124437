#pragma once

#include <cstddef>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace vexa::test {

/// Room for so many characters that only its ends can have memory: what lies between is addresses
/// alone. Null where the system has none to give.
template <class Character>
class HugeRoom {
public:
    explicit HugeRoom(std::size_t size) : bytes_(size * sizeof(Character)) {
#ifdef _WIN32
        char* const block =
            static_cast<char*>(VirtualAlloc(nullptr, bytes_, MEM_RESERVE, PAGE_READWRITE));
        if (!block) return;
        block_ = block;
        constexpr std::size_t kEnd = 0x10000;
        const bool isUsable = VirtualAlloc(block, kEnd, MEM_COMMIT, PAGE_READWRITE) &&
                              VirtualAlloc(block + bytes_ - kEnd, kEnd, MEM_COMMIT, PAGE_READWRITE);
        if (!isUsable) release();
#else
        void* const block = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE,
                                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (block != MAP_FAILED) block_ = block;
#endif
    }
    HugeRoom(const HugeRoom&) = delete;
    HugeRoom& operator=(const HugeRoom&) = delete;
    ~HugeRoom() {
        if (block_) release();
    }

    explicit operator bool() const {
        return block_ != nullptr;
    }
    Character* data() {
        return static_cast<Character*>(block_);
    }
    Character& operator[](std::size_t index) {
        return data()[index];
    }

private:
    void release() {
#ifdef _WIN32
        VirtualFree(block_, 0, MEM_RELEASE);
#else
        munmap(block_, bytes_);
#endif
        block_ = nullptr;
    }

    std::size_t bytes_;
    void* block_ = nullptr;
};

}  // namespace vexa::test
