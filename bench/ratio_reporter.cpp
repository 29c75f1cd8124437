#include "bench/ratio_reporter.h"

#include "bench/contest.h"
#include "bench/fail.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace vexa::bench {

namespace {

constexpr double kGreatestGrowth = 1.2;
constexpr double kLeastSizeForGrowth = 1000;

double counterOf(const benchmark::BenchmarkReporter::Run& run, const char* name) {
    const auto counter = run.counters.find(name);
    return counter == run.counters.end() ? 0 : counter->second.value;
}

std::string timeText(double nanoseconds) {
    struct Unit {
        double nanoseconds;
        const char* name;
    };
    constexpr std::array<Unit, 4> kUnits = {{{1e9, "s"}, {1e6, "ms"}, {1e3, "us"}, {1, "ns"}}};
    const auto* const unit = std::find_if(kUnits.begin(), kUnits.end() - 1, [=](const Unit& it) {
        return nanoseconds >= it.nanoseconds;
    });
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.3g %s", nanoseconds / unit->nanoseconds, unit->name);
    return text.data();
}

std::string numberText(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.2f", value);
    return text.data();
}

/// Texts in columns.
template <class... Texts>
std::string formatted(const char* format, const Texts&... texts) {
    std::array<char, 200> line{};
    std::snprintf(line.data(), line.size(), format, texts.c_str()...);
    return line.data();
}

std::string joined(std::vector<std::string> names) {
    std::sort(names.begin(), names.end());
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

bool isMedian(const benchmark::BenchmarkReporter::Run& run) {
    using Run = benchmark::BenchmarkReporter::Run;
    if (run.run_type == Run::RT_Aggregate) return run.aggregate_name == "median";
    return run.repetitions <= 1;  // one run is its own median
}

}  // namespace

RatioReporter::RatioReporter(const std::string& jsonPath) {
    if (jsonPath.empty()) return;
    file_.open(jsonPath);
    if (!file_) fail(jsonPath + " cannot be written");
    json_.SetOutputStream(&file_);
    json_.SetErrorStream(&file_);
}

bool RatioReporter::ReportContext(const Context& context) {
    if (hasContext_) return true;
    hasContext_ = true;
    PrintBasicContext(&GetErrorStream(), context);
    return !file_.is_open() || json_.ReportContext(context);
}

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
    if (file_.is_open()) json_.ReportRuns(runs);
    for (const Run& run : runs) {
        if (run.error_occurred || isMedian(run)) add(run);
    }
}

RatioReporter::Row& RatioReporter::rowOf(const std::string& workAndSize) {
    const auto [place, isNew] = places_.try_emplace(workAndSize, rows_.size());
    if (isNew) {
        const std::size_t slash = workAndSize.rfind('/');
        rows_.push_back(
            {workAndSize.substr(0, slash), workAndSize.substr(slash + 1), false, {}, {}});
    }
    return rows_[place->second];
}

void RatioReporter::add(const Run& run) {
    const std::string& name = run.run_name.function_name;
    const std::size_t colon = name.find(':');
    const std::string contender = name.substr(0, colon);
    Row& row = rowOf(name.substr(colon + 1));
    row.isWatchedForGrowth = row.isWatchedForGrowth || counterOf(run, "growth") != 0;
    if (!run.error_occurred) {
        row.contenders.push_back({contender, run.GetAdjustedCPUTime(), counterOf(run, "reach")});
    } else if (std::count(row.leftOut.begin(), row.leftOut.end(), contender) == 0) {
        row.leftOut.push_back(contender);  // said once for all repetitions
    }
}

/// The fastest peer for each reach, those without one last and only where there is nobody else.
std::vector<RatioReporter::Median> RatioReporter::rivals(const Row& row) {
    std::map<double, Median, std::greater<>> fastest;
    for (const Median& median : row.contenders) {
        if (median.contender == kOurs) continue;
        const auto [place, isFirst] = fastest.try_emplace(median.reach, median);
        if (!isFirst && median.nanoseconds < place->second.nanoseconds) place->second = median;
    }
    if (fastest.size() > 1) fastest.erase(0);

    std::vector<Median> result;
    result.reserve(fastest.size());
    for (const auto& [reach, median] : fastest) result.push_back(median);
    return result;
}

void RatioReporter::printRow(const Row& row, Score& score) {
    const auto ours = std::find_if(row.contenders.begin(), row.contenders.end(),
                                   [](const Median& it) { return it.contender == kOurs; });
    if (ours == row.contenders.end()) return;

    const std::string start =
        formatted("%-42s %9s %10s", row.work, row.size, timeText(ours->nanoseconds));
    const std::string note =
        row.leftOut.empty() ? "" : "  left out, over 1 s: " + joined(row.leftOut);
    const std::vector<Median> peers = rivals(row);
    if (peers.empty()) std::printf("%s  -%s\n", start.c_str(), note.c_str());
    for (const auto& [name, nanoseconds, reach] : peers) {
        const double ratio = ours->nanoseconds / nanoseconds;
        const bool isShort = reach > 0 && ratio > reach;
        score.reaches += reach > 0 ? 1 : 0;
        score.shortOnes += isShort ? 1 : 0;
        const std::string theirs = formatted("%-18s %10s", name, timeText(nanoseconds));
        const std::string target = reach > 0 ? numberText(reach) : "-";
        std::printf("%s  %s %7.3f %7s%s%s\n", start.c_str(), theirs.c_str(), ratio, target.c_str(),
                    isShort ? "  SHORT" : "", note.c_str());
    }
}

void RatioReporter::printRatios() const {
    std::printf("\n%-42s %9s %10s  %-18s %10s %7s %7s\n", "work", "size", "ours", "beside",
                "theirs", "ratio", "reach");
    Score score;
    for (const Row& row : rows_) printRow(row, score);
    std::printf("\nratio: our time over the peer's; medians of interleaved repetitions\n");
    std::printf("%d of %d fall short of what is to be reached\n", score.shortOnes, score.reaches);
}

void RatioReporter::printGrowth() const {
    struct Span {
        double sizes[2];
        double times[2];
    };
    std::vector<std::pair<std::string, Span>> spans;
    for (const Row& row : rows_) {
        const double size = std::strtod(row.size.c_str(), nullptr);
        if (!row.isWatchedForGrowth || size < kLeastSizeForGrowth) continue;
        for (const Median& median : row.contenders) {
            if (median.contender != kOurs) continue;
            if (spans.empty() || spans.back().first != row.work) {
                spans.push_back({row.work, {{size, size}, {median.nanoseconds, 0}}});
            }
            spans.back().second.sizes[1] = size;
            spans.back().second.times[1] = median.nanoseconds;
        }
    }
    if (spans.empty()) return;

    std::printf("\n%-42s %19s %9s\n", "work", "sizes", "exponent");
    for (const auto& [work, span] : spans) {
        if (span.sizes[0] == span.sizes[1]) continue;
        const double exponent =
            std::log(span.times[1] / span.times[0]) / std::log(span.sizes[1] / span.sizes[0]);
        std::printf("%-42s %9.0f %9.0f %9.2f%s\n", work.c_str(), span.sizes[0], span.sizes[1],
                    exponent, exponent < kGreatestGrowth ? "" : "  SHORT");
    }
}

void RatioReporter::printTables() {
    if (file_.is_open() && hasContext_) json_.Finalize();
    printRatios();
    printGrowth();
}

}  // namespace vexa::bench
