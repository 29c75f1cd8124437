// Measures the library beside its peers, work by work: the contenders of one work run in turns, on
// data that are there for that time only.
#include "bench/fail.h"
#include "bench/ratio_reporter.h"
#include "bench/works.h"

#include <cstdio>
#include <exception>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

namespace vexa::bench {

namespace {

Works allWorks() {
    Works works;
    addParsing(works);
    addWriting(works);
    addBuffers(works);
    addRanges(works);
    addTransforms(works);
    addPlanarIntersections(works);
    addMultiIntersections(works);
    addSpaceIntersections(works);
    addEncodings(works);
    addStrings(works);
    addLocks(works);
    return works;
}

/// Takes `--name=value` out of the arguments: it concerns the run as a whole, while Google Benchmark
/// sees one work at a time.
std::string takeOption(int& argc, char** argv, std::string_view option) {
    std::string value;
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument.starts_with(option)) {
            value = argument.substr(option.size());
        } else {
            argv[kept++] = argv[i];
        }
    }
    argc = kept;
    argv[argc] = nullptr;
    return value;
}

/// A filter chooses works by the name of the library's own benchmark; peers come along.
class Filter {
public:
    explicit Filter(std::string text) {
        if (text.empty() || text == "all") return;
        isNegative_ = text.front() == '-';
        if (isNegative_) text.erase(0, 1);
        pattern_.emplace(text, std::regex::extended);
    }

    bool lets(const Work& work) const {
        return !pattern_ || std::regex_search(benchmarkName(kOurs, work), *pattern_) != isNegative_;
    }

private:
    std::optional<std::regex> pattern_;
    bool isNegative_ = false;
};

void run(const std::vector<Entry>& works, const Filter& filter, RatioReporter& reporter) {
    for (std::size_t i = 0; i < works.size(); ++i) {
        const auto& [work, enter] = works[i];
        if (!filter.lets(work)) continue;

        std::fprintf(stderr, "[%zu/%zu] %s/%zu\n", i + 1, works.size(), work.name.c_str(),
                     work.size);
        Contest contest{work};
        enter(contest);
        benchmark::RunSpecifiedBenchmarks(&reporter, ".");
        benchmark::ClearRegisteredBenchmarks();
    }
}

}  // namespace

}  // namespace vexa::bench

int main(int argc, char** argv) try {
    using namespace vexa::bench;

    const std::string out = takeOption(argc, argv, "--benchmark_out=");
    const Filter filter{takeOption(argc, argv, "--benchmark_filter=")};
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

    RatioReporter reporter{out};
    const Works works = allWorks();
    run(works.entries(), filter, reporter);
    reporter.printTables();
    benchmark::Shutdown();
    return 0;
} catch (const std::exception& error) {
    vexa::bench::fail(error.what());
}
