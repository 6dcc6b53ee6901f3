#include "hostdescription.h"

#include <benchmark/benchmark.h>

#include <fstream>
#include <sstream>

namespace bench
{
namespace
{
std::string processorName()
{
    std::ifstream description("/proc/cpuinfo");
    for (std::string line; std::getline(description, line);)
    {
        if (line.compare(0, 10, "model name") == 0)
            return line.substr(line.find(':') + 2);
    }
    return "unknown processor";
}
}

std::string hostAndBuild()
{
    const benchmark::CPUInfo& processors = benchmark::CPUInfo::Get();
    std::ostringstream text;
    text << processors.num_cpus << " x " << processorName() << ", load";
    for (const double load : processors.load_avg)
        text << ' ' << load;
    text << "\n" SONAVIT_BENCHMARK_BUILD;
    return text.str();
}
}
