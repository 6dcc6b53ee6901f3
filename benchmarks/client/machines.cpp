#include "machines.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/file/machinefile.h"

#include <algorithm>
#include <cstddef>

namespace bench
{
namespace
{
sim::Machine machineOf(std::size_t endpoints, std::size_t onEachAdapter)
{
    sim::MachineBuilder builder;
    for (std::size_t first = 0; first < endpoints; first += onEachAdapter)
    {
        sim::CardBuilder card = builder.card("Card " + std::to_string(first / onEachAdapter));
        for (std::size_t index = first; index < std::min(endpoints, first + onEachAdapter); ++index)
            card.speaker("Speakers " + std::to_string(index)).hardwareVolume({}).hardwareMute();
    }
    return builder.build();
}
}

sim::Machine machineNamed(const std::string& name)
{
    const std::size_t colon = name.find(':');
    if (colon == std::string::npos)
        return sim::findMachine(name);
    const std::string kind = name.substr(0, colon);
    const std::size_t count = std::stoul(name.substr(colon + 1));
    if (kind == "adapters")
        return machineOf(count, 1);
    return machineOf(count, kind == "connectors" ? count : 10);
}
}
