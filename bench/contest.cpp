#include "bench/contest.h"

#include "bench/fail.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <vector>

namespace vexa::bench {

namespace {

constexpr double kLongestRound = 1;  // seconds
constexpr double kQuickRound = 0.02;

struct Pace {
    std::size_t size;
    double seconds;
};

/// What each contender took for each work, sizes ascending.
std::map<std::string, std::vector<Pace>>& paces() {
    static std::map<std::string, std::vector<Pace>> all;
    return all;
}

std::string contenderAtWork(const std::string& contender, const Work& work) {
    return contender + ':' + work.name;
}

/// Carries the last two sizes on; growth is taken for linear at least. Short first rounds tell of
/// cold caches rather than of growth: what was quick is tried at the next size.
double foretold(const std::vector<Pace>& known, std::size_t size) {
    const Pace& last = known.back();
    if (last.seconds < kQuickRound) return last.seconds;

    double exponent = 1;
    if (known.size() > 1) {
        const Pace& before = known[known.size() - 2];
        exponent = std::log(last.seconds / before.seconds) /
                   std::log(static_cast<double>(last.size) / static_cast<double>(before.size));
    }
    const double growth = static_cast<double>(size) / static_cast<double>(last.size);
    return last.seconds * std::pow(growth, std::clamp(exponent, 1.0, 2.0));
}

}  // namespace

std::string benchmarkName(const std::string& contender, const Work& work) {
    return contenderAtWork(contender, work) + '/' + std::to_string(work.size);
}

double Contest::secondsOf(const std::function<void()>& round) {
    const auto start = std::chrono::steady_clock::now();
    round();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

bool Contest::isTooSlow(const std::string& name) const {
    if (name == kOurs) return false;
    const auto known = paces().find(contenderAtWork(name, work_));
    // Twice the limit: only what is sure to be too slow is not even tried.
    return known != paces().end() && known->second.back().size < work_.size &&
           foretold(known->second, work_.size) > 2 * kLongestRound;
}

bool Contest::noteSeconds(const std::string& name, double seconds) const {
    paces()[contenderAtWork(name, work_)].push_back({work_.size, seconds});
    return seconds > kLongestRound;
}

void Contest::leaveOut(const std::string& name) const {
    enterRun(name, 0, [](benchmark::State& state) {
        state.SkipWithError("left out: more than a second a round");
    });
}

void Contest::rejectWrongAnswer(const std::string& name) const {
    fail("wrong answer: " + benchmarkName(name, work_));
}

void Contest::enterRun(const std::string& name, double reach, Run run) const {
    // A round may count what it did: the registered function is copied, the run is not.
    const auto shared = std::make_shared<Run>(std::move(run));
    const Work work = work_;
    benchmark::RegisterBenchmark(benchmarkName(name, work).c_str(), [=](benchmark::State& state) {
        (*shared)(state);
        state.SetLabel(work.family);
        if (reach > 0) state.counters["reach"] = reach;
        if (work.isWatchedForGrowth) state.counters["growth"] = 1;
    });
}

void Contest::enterThreads(const std::string& name, int threads, const Run& run) const {
    const std::string family = work_.family;
    benchmark::RegisterBenchmark(benchmarkName(name, work_).c_str(), [=](benchmark::State& state) {
        run(state);
        state.SetLabel(family);
    })->Threads(threads);
}

}  // namespace vexa::bench
