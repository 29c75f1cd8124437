#pragma once

#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace vexa::bench {

/// Gathers the medians of all works and prints, at the end, the library's times beside those of its
/// peers. Writes everything that is reported to a file, too.
class RatioReporter : public benchmark::BenchmarkReporter {
public:
    /// @param jsonPath  empty for no file
    explicit RatioReporter(const std::string& jsonPath);

    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;

    void printTables();

private:
    struct Median {
        std::string contender;
        double nanoseconds;
        double reach;
    };
    struct Row {
        std::string work;
        std::string size;
        bool isWatchedForGrowth = false;
        std::vector<Median> contenders;
        std::vector<std::string> leftOut;
    };

    Row& rowOf(const std::string& workAndSize);
    void add(const Run& run);
    static std::vector<Median> rivals(const Row& row);
    /// How many reaches there are, and how many of them are missed.
    struct Score {
        int reaches = 0;
        int shortOnes = 0;
    };
    static void printRow(const Row& row, Score& score);
    void printRatios() const;
    void printGrowth() const;

    std::ofstream file_;
    benchmark::JSONReporter json_;
    bool hasContext_ = false;
    std::vector<Row> rows_;
    std::map<std::string, std::size_t> places_;
};

}  // namespace vexa::bench
