#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

// Keeps the time of each benchmark so that the ratios can be printed after the run.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                m_times[run.benchmark_name()] = run.GetAdjustedRealTime();
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }
    void printRatio(const char* what, const std::string& ours, const std::string& base,
                    const char* goal) const {
        const auto a = m_times.find(ours);
        const auto b = m_times.find(base);
        if (a != m_times.end() && b != m_times.end() && b->second > 0) {
            std::printf("%s: %.3f (goal: %s)\n", what, a->second / b->second, goal);
        }
    }

private:
    std::map<std::string, double> m_times;
};
