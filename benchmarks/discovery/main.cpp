/// Measures the discovery of the sound cards of a simulated machine: processor time, without the machine's journal, and
/// the number of platform calls. Run one process for each machine: the library keeps its enumerator until the end.
#include "../median.h"

#include "libSonavit/libsonavit.h"
#include "qor/logging.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/simulation.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <vector>

namespace
{
/// A small number: each card that is found stays registered with the enumerator.
constexpr int defaultRuns = 51;

/// Microseconds of processor time for one discovery and for destroying its result, including the time of the simulated
/// machine.
double timeOfDiscovery()
{
    const std::clock_t start = std::clock();
    SoundCard::enumerateSystemSoundDevices();
    return static_cast<double>(std::clock() - start) * 1e6 / CLOCKS_PER_SEC;
}

/// @return whether the machine has a sound card
bool measure(const char* machineName, int runs)
{
    sim::Simulation simulation(sim::findMachine(machineName));
    CoInitialize(nullptr);

    const unsigned int cards = SoundCard::enumerateSystemSoundDevices().size();
    const std::size_t calls = simulation.journal().size();

    simulation.journal().record(false);
    std::vector<double> times;
    for (int i = 0; i < runs; ++i)
        times.push_back(timeOfDiscovery());
    const double middle = bench::median(times);
    std::printf("%zu endpoints %u cards %zu calls %.0f us\n", simulation.machine().endpoints.size(), cards, calls,
                middle);
    return cards != 0;
}
}

int main(int argc, char** argv)
{
    if (argc < 2)
    {
        std::fputs("usage: sonavit-discovery MACHINE [RUNS]\n", stderr);
        return 2;
    }
    try
    {
        qor::LogFactory::setSink([](const qor::LogRecord&) {});
        return measure(argv[1], argc > 2 ? std::atoi(argv[2]) : defaultRuns) ? 0 : 1;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
