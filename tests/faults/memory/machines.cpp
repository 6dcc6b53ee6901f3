#include "tests/faults/memory/machines.h"

#include "simulator/machine/file/machinefile.h"
#include "tests/faults/kept/machines.h"

namespace faults::memory
{
namespace
{
MachineChoice shipped(const std::string& name, unsigned most)
{
    return {name, [name] { return sim::findMachine(name); }, most};
}
}

std::vector<MachineChoice> machines()
{
    constexpr unsigned all = 0xFFFFFFFF;
    return {{"desk", kept::deskMachine, all},
            shipped("empty", all),
            shipped("remote-desktop", all),
            shipped("virtual", all),
            shipped("bluetooth", 60),
            shipped("broken", 60),
            shipped("laptop", 60),
            shipped("laptop-user", 60),
            shipped("desktop", 60),
            shipped("studio", 40),
            shipped("waking", 40),
            shipped("published", 40),
            shipped("crowded", 10)};
}
}
