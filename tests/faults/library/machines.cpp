#include "tests/faults/library/machines.h"

#include "simulator/machine/file/machinefile.h"
#include "tests/libSonavit/portable/supportmachines.h"

namespace faults::library
{
namespace
{
constexpr std::size_t pairs = 300;

constexpr std::size_t platformCalls = 100'000;
constexpr std::size_t runsAtLeast = 20;

MachineChoice shipped(const std::string& name)
{
    return {name, [name] { return sim::findMachine(name); }, {platformCalls, runsAtLeast, 0}};
}

MachineChoice built(const std::string& name, std::size_t mostPairs)
{
    MachineChoice choice = {name, [name] { return support::transcriptMachine(name); }, {}};
    choice.extent.pairs = mostPairs;
    return choice;
}
}

std::vector<MachineChoice> machines()
{
    std::vector<MachineChoice> all;
    for (const std::string& name : sim::machineNames())
        all.push_back(shipped(name));
    for (const std::string& name : support::smallMachines())
        all.push_back(built(name, pairs));
    for (const char* const name : {"adapters-closed", "chain-2", "ids-in-other-case", "ids-missing", "ids-twice"})
        all.push_back(built(name, 0));
    return all;
}
}
