#include "tests/support/allocations.h"

#include <atomic>
#include <cstdlib>
#include <thread>

namespace {

struct Counters {
    int requests = 0;
    int refused = 0;
    std::size_t bytes = 0;
    int blocks = 0;
    int failAt = 0;
};

// Not thread-local: where the compiler emulates that, the first access allocates.
Counters counters;
std::atomic<bool> isWatching{false};
std::thread::id watcher;

bool isWatched() {
    return isWatching.load(std::memory_order_acquire) && watcher == std::this_thread::get_id();
}

// Whether the request that is being made is to be met.
bool isMet() {
    if (!isWatched()) return true;
    if (++counters.requests != counters.failAt) return true;
    ++counters.refused;
    return false;
}

void* counted(void* block, std::size_t bytes, int blocks) {
    if (block && isWatched()) {
        counters.bytes += bytes;
        counters.blocks += blocks;
    }
    return block;
}

}  // namespace

// The linker sends the program's calls of `malloc` to `__wrap_malloc`, and `__real_malloc` to the
// heap.
extern "C" {
void* __real_malloc(std::size_t bytes);
void* __real_calloc(std::size_t count, std::size_t bytes);
void* __real_realloc(void* block, std::size_t bytes);
void __real_free(void* block);

void* __wrap_malloc(std::size_t bytes);
void* __wrap_calloc(std::size_t count, std::size_t bytes);
void* __wrap_realloc(void* block, std::size_t bytes);
void __wrap_free(void* block);

void* __wrap_malloc(std::size_t bytes) {
    return isMet() ? counted(__real_malloc(bytes), bytes, 1) : nullptr;
}

void* __wrap_calloc(std::size_t count, std::size_t bytes) {
    return isMet() ? counted(__real_calloc(count, bytes), count * bytes, 1) : nullptr;
}

void* __wrap_realloc(void* block, std::size_t bytes) {
    return isMet() ? counted(__real_realloc(block, bytes), bytes, block ? 0 : 1) : nullptr;
}

void __wrap_free(void* block) {
    if (block && isWatched()) --counters.blocks;
    __real_free(block);
}
}

namespace vexa::test {

AllocationWatch::AllocationWatch() {
    counters = {};
    watcher = std::this_thread::get_id();
    isWatching.store(true, std::memory_order_release);
}

AllocationWatch::~AllocationWatch() {
    isWatching.store(false, std::memory_order_release);
}

int AllocationWatch::requests() const {
    return counters.requests;
}

std::size_t AllocationWatch::bytes() const {
    return counters.bytes;
}

int AllocationWatch::blocksInUse() const {
    return counters.blocks;
}

AllocationFailure::AllocationFailure(int nth) {
    counters.failAt = nth;
}

bool AllocationFailure::happened() const {
    return counters.refused > 0;
}

}  // namespace vexa::test
