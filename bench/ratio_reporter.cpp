#include "bench/ratio_reporter.h"

#include <algorithm>
#include <cstdio>

namespace vexa::bench {

namespace {

double bytesPerSecondOf(const benchmark::BenchmarkReporter::Run& run) {
    const auto counter = run.counters.find("bytes_per_second");
    return counter == run.counters.end() ? 0 : counter->second.value;
}

}  // namespace

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
        if (run.aggregate_name != "median") continue;
        const std::string name = run.run_name.str();
        const std::size_t colon = name.find(':');
        if (colon == std::string::npos) {
            alone_.emplace_back(name, run.GetAdjustedCPUTime(), run.time_unit);
            continue;
        }
        // Aggregates carry the time of one iteration, in the unit of the report.
        medians_[name.substr(colon + 1)].push_back(
            {name.substr(0, colon), run.GetAdjustedCPUTime(), bytesPerSecondOf(run)});
    }
}

void RatioReporter::Finalize() {
    ConsoleReporter::Finalize();
    std::sort(alone_.begin(), alone_.end());
    constexpr double kMegabyte = 1e6;
    std::printf("\n%-34s %-12s %10s %10s %8s\n", "work", "", "MB/s", "loop MB/s", "ratio");
    for (const auto& [work, contenders] : medians_) {
        const auto loop = std::find_if(contenders.begin(), contenders.end(), [](const Median& it) {
            return it.contender.ends_with("loop");
        });
        if (loop == contenders.end()) continue;
        for (const Median& median : contenders) {
            if (&median == &*loop) continue;
            std::printf("%-34s %-12s %10.0f %10.0f %8.2f\n", work.c_str(), median.contender.c_str(),
                        median.bytesPerSecond / kMegabyte, loop->bytesPerSecond / kMegabyte,
                        median.seconds / loop->seconds);
        }
    }
    for (const auto& [name, time, unit] : alone_) {
        std::printf("%-56s %10.1f %s\n", name.c_str(), time, benchmark::GetTimeUnitString(unit));
    }
    std::printf("ratio: time over the bare loop's time, medians of interleaved repetitions\n");
}

}  // namespace vexa::bench
