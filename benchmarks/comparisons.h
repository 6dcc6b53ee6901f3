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

    /// Lets callgrind write its counts for each measurement three times: with few repetitions, which what happens only
    /// once is in, again with few, and with many. The lines that it prints have the number of the second of these
    /// counts in the place of the times, and then how many repetitions the third has more than the second.
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
