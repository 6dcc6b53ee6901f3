/// Measures this library and the standard library in one run, and prints the ratios.
///
/// Options are those of Google Benchmark: --benchmark_filter=text measures the pairs with "text" in their names,
/// --benchmark_repetitions=51 measures more often.
#include "hostdescription.h"
#include "suites.h"

#include <cstdio>
#include <future>
#include <thread>
#include <vector>

namespace
{
/// Puts our defaults before the command line, so that its options override them.
std::vector<char*> withDefaults(int argc, char** argv)
{
    static char repetitions[] = "--benchmark_repetitions=21";
    static char time[] = "--benchmark_min_time=0.02";
    static char mixed[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments = {argv[0], repetitions, time, mixed};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    return arguments;
}

bool compareWithOneThread()
{
    bench::Comparisons comparisons("While the process has one thread");
    bench::addTextCopies(comparisons);
    bench::addTextComparisons(comparisons);
    bench::addNumberArrays(comparisons);
    bench::addTextArrays(comparisons);
    bench::addTables(comparisons);
    bench::addHandles(comparisons);
    bench::addDisabledMessages(comparisons);
    return comparisons.run();
}

/// Reference counting, ours and that of the standard library, uses locked instructions once a second thread exists.
bool compareWithTwoThreads()
{
    std::promise<void> done;
    std::thread second([&done] { done.get_future().wait(); });
    bench::Comparisons comparisons("While the process has a second thread, which sleeps");
    bench::addTextCopies(comparisons);
    bench::addTextArrays(comparisons);
    bench::addTables(comparisons);
    bench::addHandles(comparisons);
    const bool good = comparisons.run();
    done.set_value();
    second.join();
    return good;
}
}

int main(int argc, char** argv)
{
    std::vector<char*> arguments = withDefaults(argc, argv);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;

    std::puts(bench::hostAndBuild().c_str());
    const bool one = compareWithOneThread();
    const bool two = compareWithTwoThreads();
    return one && two ? 0 : 1;
}
