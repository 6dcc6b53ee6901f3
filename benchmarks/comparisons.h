#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace bench
{
/// Pairs of measurements that do the same work, once with this library and once with another one.
class Comparisons
{
public:
    using Work = std::function<void(benchmark::State&)>;

    /// Adds a pair. @param theirName names what the library is compared with
    void add(const std::string& name, Work ours, const std::string& theirName, Work theirs);

    /// Measures all pairs in random order, so that a busy machine affects both sides equally, and prints a line for
    /// each to standard output: name, what it is compared with, our nanoseconds, theirs; with tabulators between them.
    /// Pairs that the command line filters out are left out.
    /// @return false, with a message on standard error, if a measurement failed
    bool time() const;

    /// Performs each measurement twice, with few repetitions and with many, and lets callgrind write its counts after
    /// each. The lines that it prints have the number of the count in the place of the times: the first of our two and
    /// the first of theirs; and the repetitions between the two.
    /// @return false, with a message on standard error, if a measurement failed
    bool count() const;

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

    std::vector<Pair> m_pairs;
};
}
