#include "bench/ratio_reporter.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace vexa::bench {

namespace {

double bytesPerSecondOf(const benchmark::BenchmarkReporter::Run& run) {
    const auto counter = run.counters.find("bytes_per_second");
    return counter == run.counters.end() ? 0 : counter->second.value;
}

// Bytes a second where they are known, else the time of one round.
std::string speed(double bytesPerSecond, double time) {
    constexpr double kMegabyte = 1e6;
    std::array<char, 32> text{};
    if (bytesPerSecond > 0) {
        std::snprintf(text.data(), text.size(), "%.0f MB/s", bytesPerSecond / kMegabyte);
    } else {
        std::snprintf(text.data(), text.size(), "%.1f ns", time);
    }
    return text.data();
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

std::string RatioReporter::speedOf(const Median& median) {
    return speed(median.bytesPerSecond, median.time);
}

void RatioReporter::Finalize() {
    ConsoleReporter::Finalize();
    std::sort(alone_.begin(), alone_.end());
    std::printf("\n%-34s %-12s %13s %13s %8s\n", "work", "", "", "loop", "ratio");
    for (const auto& [work, contenders] : medians_) {
        const auto loop = std::find_if(contenders.begin(), contenders.end(), [](const Median& it) {
            return it.contender.ends_with("loop");
        });
        if (loop == contenders.end()) continue;
        for (const Median& median : contenders) {
            if (&median == &*loop) continue;
            std::printf("%-34s %-12s %13s %13s %8.2f\n", work.c_str(), median.contender.c_str(),
                        speedOf(median).c_str(), speedOf(*loop).c_str(), median.time / loop->time);
        }
    }
    for (const auto& [name, time, unit] : alone_) {
        std::printf("%-56s %10.1f %s\n", name.c_str(), time, benchmark::GetTimeUnitString(unit));
    }
    std::printf("ratio: time over the bare loop's time, medians of interleaved repetitions\n");
}

}  // namespace vexa::bench
