#include "comparisons.h"

#include "median.h"

#include <cstdio>
#include <utility>

namespace bench
{
/// Keeps the time of each repetition; the report of Google Benchmark does not compare pairs.
class Comparisons::Collector final : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
        {
            if (run.error_occurred)
            {
                std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
                failed = true;
            }
            else if (run.run_type == Run::RT_Iteration)
                samples[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
        }
    }

    Samples samples;
    bool failed = false;
};

Comparisons::Comparisons(std::string circumstances) : m_circumstances(std::move(circumstances)) {}

void Comparisons::add(const std::string& name, Work ours, const std::string& theirName, Work theirs)
{
    m_pairs.push_back({name, theirName, std::move(ours), std::move(theirs)});
}

bool Comparisons::run() const
{
    benchmark::ClearRegisteredBenchmarks();
    for (const Pair& pair : m_pairs)
    {
        benchmark::RegisterBenchmark(pair.ourBenchmark().c_str(), pair.ours);
        benchmark::RegisterBenchmark(pair.theirBenchmark().c_str(), pair.theirs);
    }
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    print(collector.samples);
    return !collector.failed;
}

void Comparisons::print(Samples& samples) const
{
    std::printf("\n%s\n", m_circumstances.c_str());
    std::printf("%-44s %10s %10s %7s   %s\n", "", "ours ns", "theirs ns", "ratio", "theirs");
    for (const Pair& pair : m_pairs)
    {
        std::vector<double>& ours = samples[pair.ourBenchmark()];
        std::vector<double>& theirs = samples[pair.theirBenchmark()];
        if (ours.empty() || theirs.empty())
            continue;
        const double ourTime = median(ours);
        const double theirTime = median(theirs);
        std::printf("%-44s %10.2f %10.2f %7.2f   %s\n", pair.name.c_str(), ourTime, theirTime, ourTime / theirTime,
                    pair.theirName.c_str());
    }
}

std::string Comparisons::Pair::ourBenchmark() const
{
    return name + ", against " + theirName + ": ours";
}

std::string Comparisons::Pair::theirBenchmark() const
{
    return name + ", against " + theirName + ": theirs";
}
}
