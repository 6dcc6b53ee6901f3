/// Measures the foundation and the standard library in one run: a line for each pair, for ./bench.
///
///     sonavit-benchmark many|one|count [OPTION...]
///
/// many: while the process has a second thread, which sleeps, as every process of Windows has; one: those pairs that
/// depend on it, in a process with one thread; count: all pairs with a second thread, for callgrind.
///
/// Options are those of Google Benchmark: --benchmark_filter=text measures the pairs with "text" in their names,
/// --benchmark_repetitions=51 measures more often.
#include "suites.h"

#include <cstdio>
#include <cstring>
#include <future>
#include <string>
#include <thread>
#include <vector>

namespace
{
/// Puts our defaults for measuring times before the command line, so that its options override them.
std::vector<char*> withDefaults(char** argv)
{
    static char repetitions[] = "--benchmark_repetitions=15";
    static char time[] = "--benchmark_min_time=0.01";
    static char mixed[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments = {argv[0]};
    if (std::strcmp(argv[1], "count") != 0)
        arguments.insert(arguments.end(), {repetitions, time, mixed});
    for (char** argument = argv + 2; *argument != nullptr; ++argument)
        arguments.push_back(*argument);
    return arguments;
}

bench::Comparisons allComparisons()
{
    bench::Comparisons comparisons;
    bench::addTextMakings(comparisons);
    bench::addTextCopies(comparisons);
    bench::addTextComparisons(comparisons);
    bench::addNumberArrays(comparisons);
    bench::addTextArrays(comparisons);
    bench::addTables(comparisons);
    bench::addHandles(comparisons);
    bench::addDisabledMessages(comparisons);
    return comparisons;
}

/// Those with strings that are copied: counting references takes locked instructions once a second thread exists. The
/// library's and that of the C library, and its allocations.
bench::Comparisons comparisonsOfThreads()
{
    bench::Comparisons comparisons;
    bench::addTextMakings(comparisons);
    bench::addTextCopies(comparisons);
    bench::addTextArrays(comparisons);
    bench::addTables(comparisons);
    return comparisons;
}

bool measure(const std::string& what)
{
    if (what == "one")
        return comparisonsOfThreads().time();
    std::promise<void> done;
    std::thread second([&done] { done.get_future().wait(); });
    const bool good = what == "many" ? allComparisons().time() : allComparisons().count();
    done.set_value();
    second.join();
    return good;
}
}

int main(int argc, char** argv)
{
    const std::string what = argc > 1 ? argv[1] : "";
    if (what != "many" && what != "one" && what != "count")
    {
        std::fputs("usage: sonavit-benchmark many|one|count [OPTION...]\n", stderr);
        return 2;
    }
    std::vector<char*> arguments = withDefaults(argv);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;
    return measure(what) ? 0 : 1;
}
