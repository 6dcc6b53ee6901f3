#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace bench
{
/// Pairs of measurements that do the same work, once with this library and once with another one, and the table of
/// their ratios.
class Comparisons
{
public:
    using Work = std::function<void(benchmark::State&)>;

    /// @param circumstances printed above the table, for example the number of threads
    explicit Comparisons(std::string circumstances);

    /// Adds a pair. @param theirName names what the library is compared with
    void add(const std::string& name, Work ours, const std::string& theirName, Work theirs);

    /// Measures all pairs in random order, so that a busy machine affects both sides equally, and prints the table to
    /// standard output. Pairs that the command line filters out are not in the table.
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
