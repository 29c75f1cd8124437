#include "tests/support/allocations.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>
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
std::atomic<bool> areNewsCounted{false};

// Requests to operator new before the one that is refused; 0 when none is to be.
std::atomic<int> newsLeft{0};
std::atomic<bool> isNewRefused{false};

bool isWatched() {
    return isWatching.load(std::memory_order_acquire) && watcher == std::this_thread::get_id();
}

bool isNewCounted() {
    return areNewsCounted.load(std::memory_order_acquire) && isWatched();
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
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the linker's names
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
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

// ---- operator new, of the whole program ---------------------------------------------------------

namespace {

void* newBlock(std::size_t bytes) {
    if (newsLeft.load(std::memory_order_relaxed) > 0 && watcher == std::this_thread::get_id() &&
        --newsLeft == 0) {
        isNewRefused = true;
        throw std::bad_alloc{};
    }
    const bool isCounted = isNewCounted();
    if (isCounted && !isMet()) throw std::bad_alloc{};
    void* const block = __real_malloc(bytes == 0 ? 1 : bytes);
    if (!block) throw std::bad_alloc{};
    return isCounted ? counted(block, bytes, 1) : block;
}

void deleteBlock(void* block) {
    if (block && isNewCounted()) --counters.blocks;
    __real_free(block);
}

}  // namespace

void* operator new(std::size_t bytes) {
    return newBlock(bytes);
}
void* operator new[](std::size_t bytes) {
    return newBlock(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t& /*tag*/) noexcept {
    try {
        return newBlock(bytes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
// The program asks for no alignment beyond that of the heap.
void* operator new(std::size_t bytes, std::align_val_t alignment) {
    if (static_cast<std::size_t>(alignment) > alignof(std::max_align_t)) throw std::bad_alloc{};
    return newBlock(bytes);
}
void operator delete(void* block, std::align_val_t) noexcept {
    deleteBlock(block);
}
void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    deleteBlock(block);
}

void operator delete(void* block) noexcept {
    deleteBlock(block);
}
void operator delete[](void* block) noexcept {
    deleteBlock(block);
}
void operator delete(void* block, std::size_t) noexcept {
    deleteBlock(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    deleteBlock(block);
}

namespace vexa::test {

NewFailure::NewFailure(int nth) {
    watcher = std::this_thread::get_id();
    isNewRefused = false;
    newsLeft = nth;
}

NewFailure::~NewFailure() {
    newsLeft = 0;
}

bool NewFailure::happened() const {
    return isNewRefused;
}

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

HeapFailure::HeapFailure(int nth) : AllocationFailure(nth) {
    areNewsCounted.store(true, std::memory_order_release);
}

HeapFailure::~HeapFailure() {
    areNewsCounted.store(false, std::memory_order_release);
}

}  // namespace vexa::test
