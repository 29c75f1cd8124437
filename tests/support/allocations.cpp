#include "tests/support/allocations.h"

#include <cstdlib>

namespace {

struct Counters {
    bool watching = false;
    int requests = 0;
    int refused = 0;
    std::size_t bytes = 0;
    int blocks = 0;
    int failAt = 0;
};

thread_local Counters counters;

// Whether the request that is being made is to be met.
bool isMet() {
    if (!counters.watching) return true;
    if (++counters.requests != counters.failAt) return true;
    ++counters.refused;
    return false;
}

void* counted(void* block, std::size_t bytes, int blocks) {
    if (block && counters.watching) {
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
    if (block && counters.watching) --counters.blocks;
    __real_free(block);
}
}

namespace vexa::test {

AllocationWatch::AllocationWatch() {
    counters = {.watching = true};
}

AllocationWatch::~AllocationWatch() {
    counters = {};
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
