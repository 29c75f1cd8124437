#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include <benchmark/benchmark.h>

namespace vexa::bench {

/// What is done, at one size.
struct Work {
    /// Works of one family share a plot.
    std::string family;
    std::string name;
    std::size_t size = 0;
    /// Whether the time has to grow with the size, little faster: nothing is to be found, so all has
    /// to be looked at.
    bool isWatchedForGrowth = false;
};

/// Text, size and contender as the report shows them: "contender:work/size".
std::string benchmarkName(const std::string& contender, const Work& work);

/// The library's own name among the contenders.
inline constexpr const char* kOurs = "vexakit";

/// The library and those it is measured beside, on one work. Who gives a wrong answer ends the
/// program; a peer that takes more than a second a round is left out, and said to be.
class Contest {
public:
    using Run = std::function<void(benchmark::State&)>;

    explicit Contest(Work work) : work_(std::move(work)) {}

    std::size_t size() const { return work_.size; }

    /// @param round    does the work once
    /// @param isRight  after a round: whether its answer is the expected one
    template <class Round, class IsRight>
    void ours(Round round, IsRight isRight) {
        enter(kOurs, 0, std::move(round), std::move(isRight));
    }

    /// @param reach  the library's time is to be at most so much of the peer's; 0 where nothing is
    ///               to be reached. Of peers with the same reach the fastest counts.
    template <class Round, class IsRight>
    void peer(const std::string& name, double reach, Round round, IsRight isRight) {
        enter(name, reach, std::move(round), std::move(isRight));
    }

    /// Enters a contender that looks after its own loop, in as many threads.
    void enterThreads(const std::string& name, int threads, const Run& run) const;

private:
    template <class Round, class IsRight>
    void enter(const std::string& name, double reach, Round round, IsRight isRight) {
        if (isTooSlow(name)) return leaveOut(name);
        const double seconds = secondsOf([&round] { round(); });
        if (!isRight()) rejectWrongAnswer(name);
        if (noteSeconds(name, seconds) && name != kOurs) return leaveOut(name);

        enterRun(name, reach, [round](benchmark::State& state) mutable {
            for (auto _ : state) round();
        });
    }

    static double secondsOf(const std::function<void()>& round);
    /// Whether what the contender took at smaller sizes foretells more than a second.
    bool isTooSlow(const std::string& name) const;
    /// Keeps the time for larger sizes; true where it is more than a second.
    bool noteSeconds(const std::string& name, double seconds) const;
    void leaveOut(const std::string& name) const;
    [[noreturn]] void rejectWrongAnswer(const std::string& name) const;
    /// `run` is copied nowhere, so that a round's own data stays one.
    void enterRun(const std::string& name, double reach, Run run) const;

    Work work_;
};

}  // namespace vexa::bench
