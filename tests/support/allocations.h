#pragma once

#include <cstddef>

namespace vexa::test {

/// What the code under test asked the heap for while this object lives: `malloc`, `calloc` and
/// `realloc` of the library and of the test itself, this thread's alone. One at a time.
class AllocationWatch {
public:
    AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;
    ~AllocationWatch();

    /// Requests so far, refused ones included.
    [[nodiscard]] int requests() const;
    /// Bytes asked for so far, by requests that were met.
    [[nodiscard]] std::size_t bytes() const;
    /// Blocks taken and not given back since.
    [[nodiscard]] int blocksInUse() const;
};

/// Refuses the n-th allocation, counted from 1, and no other.
class AllocationFailure : public AllocationWatch {
public:
    explicit AllocationFailure(int nth);

    /// Whether so many allocations were asked for that one was refused.
    [[nodiscard]] bool happened() const;
};

/// Refuses the n-th request to `operator new` of this thread, counted from 1, with std::bad_alloc.
class NewFailure {
public:
    explicit NewFailure(int nth);
    NewFailure(const NewFailure&) = delete;
    NewFailure& operator=(const NewFailure&) = delete;
    ~NewFailure();

    /// Whether so many were asked for that one was refused.
    [[nodiscard]] bool happened() const;
};

/// Refuses the n-th request of either kind, counted from 1, and no other: `malloc` and its kin with
/// null, `operator new` with std::bad_alloc. Requests and blocks are those of both. 0 refuses none.
class HeapFailure : public AllocationFailure {
public:
    explicit HeapFailure(int nth);
    HeapFailure(const HeapFailure&) = delete;
    HeapFailure& operator=(const HeapFailure&) = delete;
    ~HeapFailure();
};

}  // namespace vexa::test
