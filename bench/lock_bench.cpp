// Taking a lock and giving it back: alone, and with a second thread that does the same. Beside the
// locks of the standard library in the same run.
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

void enter(const char* name, void (*run)(benchmark::State&)) {
    const std::string work = name;
    const std::string contender = work.substr(0, work.find(':'));
    const std::string rest = work.substr(work.find(':') + 1);
    benchmark::RegisterBenchmark((contender + ":" + rest + "_alone").c_str(), run)->Threads(1);
    benchmark::RegisterBenchmark((contender + ":" + rest + "_2_threads").c_str(), run)->Threads(2);
}

const bool kEntered = [] {
    enter("recursive_mutex loop:thread_lock", &cycle<RecursiveMutex>);
    enter("vexakit:thread_lock", &cycle<ThreadSlot>);
    enter("shared_mutex loop:rw_lock_write", &cycle<SharedMutexToWrite>);
    enter("vexakit:rw_lock_write", &cycle<ToWrite>);
    enter("shared_mutex loop:rw_lock_read", &readCycle<SharedMutexToRead>);
    enter("vexakit:rw_lock_read", &readCycle<ToRead>);
    enter("recursive_mutex loop:inter_process_lock", &cycle<RecursiveMutex>);
    enter("vexakit:inter_process_lock", &cycle<InterProcess>);
    enter("recursive_mutex loop:mutex_lock", &cycle<RecursiveMutex>);
    enter("vexakit:mutex_lock", &cycle<NamedMutex>);
    benchmark::RegisterBenchmark("two_exchanges loop:inter_process_lock_steps",
                                 &cycle<TwoExchanges>);
    benchmark::RegisterBenchmark("vexakit:inter_process_lock_steps", &cycle<InterProcess>);
    return true;
}();

}  // namespace

}  // namespace vexa::bench
