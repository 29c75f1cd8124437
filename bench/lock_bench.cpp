// Taking a lock and giving it back: alone, and with a second thread that does the same. Beside the
// locks of the standard library. Sizes count threads.
#include "bench/works.h"
#include "vexakit/locks.h"

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace vexa::bench {

namespace {

constexpr uint32_t kSpins = 100;

// A few steps under the lock, which two threads must not mix.
long counter = 0;

std::vector<VexaWChar> lockName() {
    std::vector<VexaWChar> name;
    for (const char c : "vexakit-bench") name.push_back(static_cast<VexaWChar>(c));
    return name;
}

struct RecursiveMutex {
    void enter() { mutex.lock(); }
    void leave() { mutex.unlock(); }
    std::recursive_mutex mutex;
};

struct SharedMutexToWrite {
    void enter() { mutex.lock(); }
    void leave() { mutex.unlock(); }
    std::shared_mutex mutex;
};

struct SharedMutexToRead {
    void enter() { mutex.lock_shared(); }
    void leave() { mutex.unlock_shared(); }
    std::shared_mutex mutex;
};

struct ThreadSlot {
    void enter() { locks.ObtainLock(1); }
    void leave() { locks.ReleaseLock(1); }
    CThreadLock locks{4};
};

template <int kMode>
struct ReaderWriter {
    ReaderWriter() {
        if (rwlock_create(&lock) != VEXA_SUCCESS) std::abort();
    }
    ReaderWriter(const ReaderWriter&) = delete;
    ReaderWriter& operator=(const ReaderWriter&) = delete;
    ~ReaderWriter() { rwlock_destroy(&lock); }
    void enter() { rwlock_claim(lock, kMode); }
    void leave() { rwlock_release(lock, kMode); }
    RWLock* lock = nullptr;
};
using ToRead = ReaderWriter<1>;
using ToWrite = ReaderWriter<0>;

struct InterProcess {
    void enter() { lock.ObtainLock(); }
    void leave() { lock.ReleaseLock(); }
    InterProcessLock lock{lockName().data(), nullptr, kSpins};
};

struct NamedMutex {
    void enter() { lock.ObtainLock(); }
    void leave() { lock.ReleaseLock(); }
    MutexLock lock{lockName().data()};
};

// What the cheapest lock cannot do without: two interlocked operations.
struct TwoExchanges {
    void enter() { word.exchange(1); }
    void leave() { word.exchange(0); }
    std::atomic<int> word{0};
};

template <typename Lock>
void cycle(benchmark::State& state) {
    static Lock lock;
    for (auto _ : state) {
        lock.enter();
        benchmark::DoNotOptimize(++counter);
        lock.leave();
    }
}

template <typename Lock>
void readCycle(benchmark::State& state) {
    static Lock lock;
    for (auto _ : state) {
        lock.enter();
        benchmark::DoNotOptimize(counter);
        lock.leave();
    }
}

template <typename Ours, typename Theirs>
void add(Works& works, const char* name, const char* peer) {
    for (const std::size_t threads : {1U, 2U}) {
        works.add({"locks", name, threads}, [=](Contest& contest) {
            const auto count = static_cast<int>(threads);
            contest.enterThreads(kOurs, count, cycle<Ours>);
            contest.enterThreads(peer, count, cycle<Theirs>);
        });
    }
}

}  // namespace

void addLocks(Works& works) {
    add<ThreadSlot, RecursiveMutex>(works, "thread lock", "recursive_mutex");
    add<ToWrite, SharedMutexToWrite>(works, "reader/writer lock, to write", "shared_mutex");
    for (const std::size_t threads : {1U, 2U}) {
        works.add({"locks", "reader/writer lock, to read", threads}, [=](Contest& contest) {
            const auto count = static_cast<int>(threads);
            contest.enterThreads(kOurs, count, readCycle<ToRead>);
            contest.enterThreads("shared_mutex", count, readCycle<SharedMutexToRead>);
        });
    }
    add<InterProcess, RecursiveMutex>(works, "inter-process lock", "recursive_mutex");
    add<NamedMutex, RecursiveMutex>(works, "named mutex", "recursive_mutex");
    works.add({"locks", "inter-process lock, its steps", 1}, [](Contest& contest) {
        contest.enterThreads(kOurs, 1, cycle<InterProcess>);
        contest.enterThreads("two exchanges", 1, cycle<TwoExchanges>);
    });
}

}  // namespace vexa::bench
