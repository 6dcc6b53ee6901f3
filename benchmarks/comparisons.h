#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace bench
{
/// Pairs of measurements that do the same work, once with this library and once with something well known, and the
/// table of their ratios.
class Comparisons
{
public:
    using Work = std::function<void(benchmark::State&)>;

    /// @param circumstances stand above the table, for example how many threads there are
    explicit Comparisons(std::string circumstances);

    /// Adds a pair. @param theirName says what the library is compared with
    void add(const std::string& name, Work ours, const std::string& theirName, Work theirs);

    /// Measures all pairs, mixed at random so that a busy machine burdens both sides alike, and prints the table on
    /// standard output. A command line that filters pairs away leaves them out of the table.
    /// @return false, with a message on standard error, if a measurement failed
    bool run() const;

private:
    struct Pair
    {
        std::string name;
        std::string theirName;
        Work ours;
        Work theirs;

        std::string ourBenchmark() const;
        std::string theirBenchmark() const;
    };

    /// Nanoseconds of processor time for one iteration, one number for each repetition.
    using Samples = std::map<std::string, std::vector<double>>;

    class Collector;

    void print(Samples& samples) const;

    std::string m_circumstances;
    std::vector<Pair> m_pairs;
};
}
