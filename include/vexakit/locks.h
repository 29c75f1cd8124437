#ifndef VEXAKIT_LOCKS_H
#define VEXAKIT_LOCKS_H

#include "vexakit/export.h"
#include "vexakit/types.h"

#include <stdint.h>

#ifdef __cplusplus

/**
 * One re-entrant lock for the threads of a process. Each `Enter` or successful `TryEnter` of the
 * owning thread is undone by one `Leave`; a `Leave` by anyone else is not detected. Destroying a held
 * lock is an error of the caller.
 */
class VEXA_API ThreadLock {
public:
    ThreadLock();
    ThreadLock(const ThreadLock&) = delete;
    ThreadLock& operator=(const ThreadLock&) = delete;
    virtual ~ThreadLock();

    void Enter();
    /** @return whether the calling thread now owns the lock, be it once more */
    bool TryEnter();
    void Leave();

private:
#if defined(__aarch64__)
    static constexpr int kSectionSize = 48;
#else
    static constexpr int kSectionSize = 40;
#endif
    alignas(8) unsigned char section_[kSectionSize];
};

/** Obtain policy of a scoped resource that is entered and left, such as a `ThreadLock`. */
template <class Resource>
struct ThreadLockObtain {
    void operator()(Resource resource) const { resource->Enter(); }
};

/** Release policy of a scoped resource that is entered and left, such as a `ThreadLock`. */
template <class Resource>
struct ThreadLockRelease {
    void operator()(Resource resource) const { resource->Leave(); }
};

namespace Oreval {

/**
 * Holds a resource for the length of a scope: obtains it when made, releases it exactly once,
 * at `Release()` or at the end of the scope, an exception included.
 *
 * @tparam Resource       what is held, by value; a pointer as a rule
 * @tparam ReleasePolicy  default-constructible functor that gives the resource back
 * @tparam ObtainPolicy   default-constructible functor that takes it
 */
template <class Resource, class ReleasePolicy, class ObtainPolicy>
class ScopedResource {
public:
    explicit ScopedResource(Resource resource) : resource_(resource) { ObtainPolicy()(resource_); }

    ScopedResource(const ScopedResource&) = delete;
    ScopedResource& operator=(const ScopedResource&) = delete;

    virtual ~ScopedResource() { Release(); }

    /** Gives the resource back before the scope ends; harmless when repeated. */
    void Release() {
        if (!held_) return;
        held_ = false;
        ReleasePolicy()(resource_);
    }

private:
    bool held_ = true;
    Resource resource_;
};

}  // namespace Oreval

/**
 * A fixed set of independent re-entrant locks for the threads of a process, addressed by their index
 * from 0, the lock id. Threads that use different ids never wait for each other.
 */
class VEXA_API CThreadLock {
public:
    /**
     * @param count  locks of the set; with 0 every lock id is out of range
     * @throws std::bad_alloc
     */
    explicit CThreadLock(uint32_t count);

    /** Copies share the locks, which go with the last of them. */
    CThreadLock(const CThreadLock& other);
    CThreadLock& operator=(const CThreadLock& other);

    /** No thread may use the set any more. */
    virtual ~CThreadLock();

    /**
     * Waits until the calling thread owns the lock; each call is undone by one `ReleaseLock`.
     * @throws std::out_of_range  with the message "lockId"
     */
    void ObtainLock(uint32_t lockId);

    /**
     * Takes the lock without waiting.
     * @return 1 where the calling thread now owns it, be it once more; 0 where another thread does
     * @throws std::out_of_range  with the message "lockId"
     */
    int32_t TryLock(uint32_t lockId);

    /**
     * Gives the lock back once. That the calling thread owns it is not checked.
     * @throws std::out_of_range  with the message "lockId"
     */
    void ReleaseLock(uint32_t lockId);

    /** The number of locks. */
    uint32_t GetLocksSize() const;

private:
    ThreadLock* slots_;
    uint32_t count_;
};

/**
 * A lock that many threads of a process hold for reading or one holds for writing.
 *
 * Readers that keep arriving before the last one leaves keep a writer waiting. A writer's lock is not
 * re-entrant: a thread that claims it twice waits for ever. What is claimed in one mode is released
 * in that mode, and a writer releases in the thread that claimed. A writer whose thread ends without
 * releasing lets the next writer go on to the gate, which stays closed until somebody releases.
 *
 * Readers may release in any thread. Nothing is allocated after `Initialize`.
 */
class VEXA_API RWLock {
public:
    /** Makes a lock that has to be initialised before it is used. */
    RWLock();

    /** Copies share the system's objects: one `Cleanup` ends them for all. */
    RWLock(const RWLock& other);
    RWLock& operator=(const RWLock& other);

    /** Leaves the system's objects open: `Cleanup` closes them. */
    virtual ~RWLock();

    /** @return 0; 0x8000 where the system has no more objects, and nothing is left open. */
    virtual int Initialize();

    /** Waits without limit. @param shared  non-zero to read, 0 to write */
    virtual void Claim(int shared);

    /**
     * @param shared  non-zero where the lock was claimed to read, 0 to write
     * @return 0; 0x8000 for a reader's release while no reader is inside, and nothing is changed.
     */
    virtual int Release(int shared);

    /** Closes the system's objects. Repeated, it does nothing. */
    virtual void Cleanup();

private:
    void* readerEvent_ = nullptr;
    void* gateEvent_ = nullptr;
    void* writerMutex_ = nullptr;
    /** Readers inside less one. */
    int32_t readerCount_ = -1;
    /** Held while one leaving reader closes and opens the way. */
    uint32_t leaving_ = 0;
};

/**
 * A lock for the threads of all processes of the machine that use its name. It is re-entrant and owned
 * by a thread, whichever object of the name it goes through.
 *
 * An owner that ends without releasing abandons the lock. The next `ObtainLock` gets it as if it had
 * been released; the next `TryLock` returns false and yet makes the caller its owner, who has to
 * release it.
 *
 * Off Windows a thread cannot abandon more than some 2,000 locks: the rest stay locked. A name lives
 * in a file of the shared memory folder as long as anybody uses it.
 */
class VEXA_API MutexLock {
public:
    /**
     * @param name  zero-terminated, at best up to 253 characters: longer ones are cut. Null makes a
     *              lock that nobody else can name. Names with a backslash cannot be used.
     * @param sa    who may use the lock, where this object is the first of its name; null is everybody
     *
     * Failure is not told: `TryLock` is then false, and the other functions do nothing.
     */
    explicit MutexLock(const VexaWChar* name = nullptr, SECURITY_ATTRIBUTES* sa = nullptr);

    /** Copies share the system's object: the first that is destroyed closes it for all. */
    MutexLock(const MutexLock& other);
    MutexLock& operator=(const MutexLock& other);

    /** Does not release the lock: its owner keeps it, and abandons it at the end of the thread. */
    virtual ~MutexLock();

    /** Waits without limit. */
    void ObtainLock();

    /** @return whether the calling thread now owns the lock; false also for an abandoned one, see above */
    bool TryLock();

    /** Gives the lock back once; does nothing where the calling thread does not own it. */
    void ReleaseLock();

private:
    static int AllocateSecurityDescriptor(SECURITY_ATTRIBUTES** sa);
    static int FreeSecurityDescriptor(SECURITY_ATTRIBUTES** sa);

    void* mutex_ = nullptr;
};

/**
 * A re-entrant lock for the threads of all processes of the machine that use its name. It is taken
 * and given back without a system call unless somebody waits.
 *
 * A process that ends while one of its threads owns the lock leaves it locked for all who have it open;
 * the first who opens it when nobody has it open any more finds it free. Where robustness counts more
 * than speed, take a `MutexLock`.
 */
class VEXA_API InterProcessLock {
public:
    /**
     * @param name       zero-terminated, at most 246 characters, without a backslash
     * @param sa         who may use the lock, where this object is the first of its name; null is
     *                   everybody
     * @param spinCount  how often `TryLock` tries again. It counts for everybody who uses the name, and
     *                   the last who sets it decides. On a machine with one processor it stays 0.
     *
     * Failure is not told: `TryLock` is then false, and the other functions do nothing.
     */
    InterProcessLock(const VexaWChar* name, SECURITY_ATTRIBUTES* sa, uint32_t spinCount);

    /** Copies share the system's objects: the first that is destroyed closes them for all. */
    InterProcessLock(const InterProcessLock& other);
    InterProcessLock& operator=(const InterProcessLock& other);

    /**
     * Gives the lock up, whatever its depth, where it was taken through this object.
     *
     * Do not destroy an object that holds the lock: its thread may still be at work under it, and
     * afterwards the next who has to wait may pass once at once.
     */
    virtual ~InterProcessLock();

    /** Waits without limit. */
    void ObtainLock();

    /** Tries spin count + 1 times. @return whether the calling thread now owns the lock */
    bool TryLock();

    /** Gives the lock back once; does nothing where the calling thread does not own it. */
    void ReleaseLock();

    /** Sets the spin count of the name, for everybody. */
    void SetSpinCount(uint32_t count);

private:
    void HardReleaseLock();
    static int AllocateSecurityDescriptor(SECURITY_ATTRIBUTES** sa);

    uint32_t isSingleProcessor_;
    void* event_ = nullptr;
    void* mapping_ = nullptr;
    void* block_ = nullptr;
};

/** A count of references to an object. */
class VEXA_API IReferenceCount {
public:
    /** @return the new count */
    virtual uint64_t AddRef() = 0;
    /** @return the new count */
    virtual uint64_t Release() = 0;
    /** @return the count */
    virtual uint64_t QueryRef() const = 0;

protected:
    /** @return the count of before */
    virtual uint64_t SetRefs(uint64_t count) = 0;

public:
    virtual ~IReferenceCount();
};

/**
 * Counts references to an object, from any thread. Nothing happens at 0: whoever brought the count
 * there, as the result of `Release` tells, destroys the object. Below 0 the count wraps.
 */
class VEXA_API ReferenceCount : public IReferenceCount {
public:
    /** @param count  the count at first: its maker's reference */
    explicit ReferenceCount(uint64_t count = 1);

    /** Starts with the count of the other. */
    ReferenceCount(const ReferenceCount& other);
    ReferenceCount& operator=(const ReferenceCount& other) = delete;

    uint64_t AddRef() override;
    uint64_t Release() override;
    uint64_t QueryRef() const override;

protected:
    uint64_t SetRefs(uint64_t count) override;

public:
    ~ReferenceCount() override;

private:
    mutable uint64_t count_;
};

/** A value that hosts copy. */
class CRegSettings {
public:
    CRegSettings() = default;
    CRegSettings(const CRegSettings& other) = default;
    VEXA_API CRegSettings& operator=(const CRegSettings& other);

private:
    uint64_t settings_ = 0;
};

#else

typedef struct CThreadLock CThreadLock;
typedef struct RWLock RWLock;

#endif

VEXA_BEGIN_DECLS

/**
 * Makes a set of `count` re-entrant locks.
 *
 * @param[out] lock  receives the set, which the caller gives to `threadLock_destroy`; written on
 *                   success only
 * @return 0; 0x8000 for a null pointer and a failed allocation.
 */
VEXA_API uint32_t threadLock_create(CThreadLock** lock, uint32_t count);

/**
 * Destroys a set of locks, which nobody may use any more.
 *
 * @param[in,out] lock  becomes null
 * @return 0; 0x8000 for a null pointer and a pointer to null.
 */
VEXA_API uint32_t threadLock_destroy(CThreadLock** lock);

/**
 * Takes a lock of the set, waiting without limit; gives it back once.
 *
 * @return 0; 0x8000 for a null pointer. A `lockId` that is no index of the set throws
 *         `std::out_of_range` with the message "lockId", which C callers cannot catch.
 */
VEXA_API uint32_t threadLock_lock(CThreadLock* lock, uint32_t lockId);
VEXA_API uint32_t threadLock_unlock(CThreadLock* lock, uint32_t lockId);

/**
 * Makes a reader/writer lock.
 *
 * @param[out] lock  receives the lock, which the caller gives to `rwlock_destroy`; written on success
 *                   only
 * @return 0; 0x8000 for a null pointer, a failed allocation and where the system has no more objects.
 */
VEXA_API uint32_t rwlock_create(RWLock** lock);

/**
 * Destroys a reader/writer lock, which nobody may use any more.
 *
 * @param[in,out] lock  becomes null at once
 * @return 0; 0x8000 for a null pointer and a pointer to null.
 */
VEXA_API uint32_t rwlock_destroy(RWLock** lock);

/**
 * Claims a lock, waiting without limit; releases it.
 *
 * @param mode  1 to read, 0 to write
 * @return 0; 0x8000 for a null pointer and any other mode, and where a reader releases although none
 *         is inside. Nothing is changed then.
 */
VEXA_API uint32_t rwlock_claim(RWLock* lock, int32_t mode);
VEXA_API uint32_t rwlock_release(RWLock* lock, int32_t mode);

VEXA_END_DECLS

#endif
