#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

/// Prints the named counters of each case as one row of a Markdown table.
class RatioReporter : public benchmark::BenchmarkReporter {
public:
    explicit RatioReporter(std::vector<std::string> counters) : counters_(std::move(counters)) {}

    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;

private:
    std::vector<std::string> counters_;
};
