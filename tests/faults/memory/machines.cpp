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
    return {{"desk", kept::deskMachine, 60},
            shipped("empty", all),
            shipped("remote-desktop", all),
            shipped("virtual", 60),
            shipped("bluetooth", 8),
            shipped("broken", 4),
            shipped("laptop", 6),
            shipped("laptop-user", 6),
            shipped("desktop", 6),
            shipped("studio", 4),
            shipped("waking", 8),
            shipped("published", 4),
            shipped("crowded", 2)};
}
}
