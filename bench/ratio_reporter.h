#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include <benchmark/benchmark.h>

namespace vexa::bench {

/// Prints the usual console table and, at the end, each work's time as a ratio to the bare loop over
/// the same data. A benchmark is named "contender:work"; the bare loop's contender ends in "loop".
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    struct Median {
        std::string contender;
        double time;
        double bytesPerSecond;
    };
    static std::string speedOf(const Median& median);

    /// By work, in the order of the names.
    std::map<std::string, std::vector<Median>> medians_;
    /// Works without a contender: name, time, unit.
    std::vector<std::tuple<std::string, double, benchmark::TimeUnit>> alone_;
};

}  // namespace vexa::bench
