/// Writes files of large machines, and measures how long reading them takes: processor time, without the program's
/// start. Under callgrind --toggle-collect counts the instructions of one operation, see the functions readOnce() and
/// simulateOnce().
#include "../median.h"
#include "largemachines.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/simulation.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// What is measured, by names that callgrind finds.
extern "C"
{
#if defined(__GNUC__)
    __attribute__((noinline))
#endif
    void
    readOnce(const std::string* text, sim::Machine* machine)
    {
        *machine = sim::readMachine(*text, "measured");
    }

#if defined(__GNUC__)
    __attribute__((noinline))
#endif
    void
    simulateOnce(sim::Machine* machine)
    {
        const sim::Simulation simulation(std::move(*machine));
    }
}

namespace
{
constexpr int defaultRuns = 11;

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("there is no file " + path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void write(const std::string& name, const std::string& path)
{
    std::ofstream file(path, std::ios::binary);
    file << sim::writeMachine(bench::largeMachine(name));
    if (!file.flush())
        throw std::runtime_error("cannot write " + path);
}

template<class Action>
double millisecondsOf(const Action& action)
{
    const std::clock_t start = std::clock();
    action();
    return static_cast<double>(std::clock() - start) * 1e3 / CLOCKS_PER_SEC;
}

void measure(const std::string& path, int runs)
{
    const std::string text = contentOf(path);
    std::vector<double> reading;
    std::vector<double> simulating;
    std::size_t endpoints = 0;
    std::size_t adapters = 0;
    for (int i = 0; i < runs; ++i)
    {
        sim::Machine machine;
        reading.push_back(millisecondsOf([&] { readOnce(&text, &machine); }));
        endpoints = machine.endpoints.size();
        adapters = machine.adapters.size();
        simulating.push_back(millisecondsOf([&] { simulateOnce(&machine); }));
    }
    std::printf("%zu endpoints %zu adapters %zu bytes: reading %.1f ms, simulating %.1f ms (median of %d)\n", endpoints,
                adapters, text.size(), bench::median(reading), bench::median(simulating), runs);
}
}

int main(int argc, char** argv)
{
    const std::vector<std::string> words(argv + 1, argv + std::max(argc, 1));
    const bool writes = words.size() == 3 && words[0] == "write";
    const bool measures = (words.size() == 2 || words.size() == 3) && words[0] == "measure";
    if (!writes && !measures)
    {
        std::fputs("usage: sonavit-machinefile write KIND:COUNT FILE\n"
                   "       sonavit-machinefile measure FILE [RUNS]\n",
                   stderr);
        return 2;
    }
    try
    {
        if (writes)
            write(words[1], words[2]);
        else
            measure(words[1], std::max(words.size() == 3 ? std::atoi(words[2].c_str()) : defaultRuns, 1));
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
