/// What the client layer costs: `./bench client` judges the numbers.
///
///     sonavit-clientcost calls                      the rows that are counted in calls of the platform
///     sonavit-clientcost growth                     how calls grow with the machine
///     sonavit-clientcost compare                    the client without the layer does the same
///     sonavit-clientcost STEP MACHINE [COUNT]       one step, for an instrument; see steps.h
#include "calls.h"
#include "platform/coreaudio.h"
#include "steps.h"

#include <cstdio>
#include <exception>
#include <string>

namespace
{
/// For the client without the layer, and for the machine's registration on Windows.
class ComScope
{
public:
    ComScope() { static_cast<void>(CoInitializeEx(nullptr, COINIT_MULTITHREADED)); }
    ~ComScope() { CoUninitialize(); }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
};

int run(const std::string& what, const std::string& machine, const std::string& count)
{
    const ComScope com;
    if (what == "calls" || what == "growth")
    {
        what == "calls" ? bench::printCalls() : bench::printGrowthOfCalls();
        return 0;
    }
    if (what == "compare")
        return bench::printComparison() ? 0 : 1;
    if (bench::performStep(what, machine, std::stoul(count)))
        return 0;
    std::fputs("usage: sonavit-clientcost calls|growth|compare|STEP MACHINE [COUNT]\n", stderr);
    return 2;
}
}

int main(int argc, char** argv)
{
    try
    {
        return run(argc > 1 ? argv[1] : "", argc > 2 ? argv[2] : "crowded", argc > 3 ? argv[3] : "0");
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
