#include "tests/faults/library/machines.h"

#include "tests/faults/engine/smallmachine.h"
#include "tests/libSonavit/portable/supportmachines.h"

namespace faults::library
{
namespace
{
constexpr std::size_t pairs = 400;
constexpr std::size_t pairsOfShipped = 120;

bool isSmall(const std::string& machine)
{
    return machine == "virtual" || machine == "remote-desktop" || machine == "empty";
}

MachineChoice shipped(const std::string& name)
{
    MachineChoice choice = {name, [name] { return sweptMachine(name); }, {}};
    if (isSmall(name))
        choice.extent.pairs = pairsOfShipped;
    else
        choice.extent = {3'000, 2, 0, name == controlled};
    return choice;
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
    for (const std::string& name : sweptMachines())
        all.push_back(shipped(name));
    for (const std::string& name : support::smallMachines())
        all.push_back(built(name, pairs));
    for (const char* const name : {"adapters-closed", "chain-2", "ids-in-other-case", "ids-missing", "ids-twice"})
    {
        all.push_back(built(name, 0));
        all.back().extent = {10'000, 4, 0, false};
    }
    return all;
}
}
