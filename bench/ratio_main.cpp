#include <algorithm>
#include <cstdio>
#include <map>
#include <vector>

#include <benchmark/benchmark.h>

#include "ratio.h"

namespace {

/// Prints as usual, and keeps each benchmark's times for the table of ratios.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration)
                m_times[run.run_name.str()].push_back(
                    (usesRealTime(run) ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime()) *
                    unit(run));
        ConsoleReporter::ReportRuns(runs);
    }
    void printTable() const
    {
        std::printf("\n%-64s %9s %8s %8s\n", "ratio to the baseline of the same run (median)",
                    "measured", "first", "goal");
        for (const RatioRow& row : ratioRows()) {
            const double own = median(row.benchmark);
            const double base = median(row.baseline) * row.scale;
            if (own > 0 && base > 0 && row.limit == 0)
                std::printf("%-64s %8.2fx\n", row.label.c_str(), own / base);
            else if (own > 0 && base > 0)
                std::printf("%-64s %8.2fx %7.2fx %7.2fx%s\n", row.label.c_str(), own / base,
                            row.limit, row.goal, own / base > row.limit ? "  OVER" : "");
        }
    }

private:
    /// Processor time, since others use the machine too; what times itself by hand has only the
    /// clock.
    static bool usesRealTime(const Run& run)
    {
        const std::string name = run.run_name.str();
        return name.find("manual_time") != std::string::npos ||
               name.find("real_time") != std::string::npos;
    }
    static double unit(const Run& run)
    {
        return 1 / benchmark::GetTimeUnitMultiplier(run.time_unit);
    }
    double median(const std::string& name) const
    {
        const auto found = m_times.find(name);
        if (found == m_times.end())
            return 0;
        std::vector<double> times = found->second;
        std::sort(times.begin(), times.end());
        return times[times.size() / 2];
    }
    std::map<std::string, std::vector<double>> m_times;
};

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printTable();
    return 0;
}
