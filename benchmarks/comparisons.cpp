#include "comparisons.h"

#include "median.h"

#include <valgrind/callgrind.h>

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

void Comparisons::add(const std::string& name, Work ours, const std::string& theirName, Work theirs)
{
    m_pairs.push_back({name, theirName, std::move(ours), std::move(theirs)});
}

bool Comparisons::time() const
{
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

bool Comparisons::count() const
{
    constexpr benchmark::IterationCount few = 10;
    constexpr benchmark::IterationCount many = 110;
    int dumps = 0;
    const auto add = [](const std::string& name, const Work& work, benchmark::IterationCount iterations)
    {
        const auto counted = [work](benchmark::State& state)
        {
            CALLGRIND_ZERO_STATS;
            work(state);
            CALLGRIND_DUMP_STATS;
        };
        benchmark::RegisterBenchmark(name.c_str(), counted)->Iterations(iterations);
    };
    for (const Pair& pair : m_pairs)
    {
        std::printf("%s\t%s\t%d\t%d\t%d\n", pair.name.c_str(), pair.theirName.c_str(), dumps + 2, dumps + 5,
                    static_cast<int>(many - few));
        for (const benchmark::IterationCount iterations : {few, few, many})
            add(pair.ourBenchmark(), pair.ours, iterations);
        for (const benchmark::IterationCount iterations : {few, few, many})
            add(pair.theirBenchmark(), pair.theirs, iterations);
        dumps += 6;
    }
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    return !collector.failed;
}

void Comparisons::print(Samples& samples) const
{
    for (const Pair& pair : m_pairs)
    {
        std::vector<double>& ours = samples[pair.ourBenchmark()];
        std::vector<double>& theirs = samples[pair.theirBenchmark()];
        if (!ours.empty() && !theirs.empty())
            std::printf("%s\t%s\t%.3f\t%.3f\n", pair.name.c_str(), pair.theirName.c_str(), median(ours),
                        median(theirs));
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
