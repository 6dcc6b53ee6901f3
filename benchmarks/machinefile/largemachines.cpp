#include "largemachines.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/nodetypes.h"

#include <algorithm>
#include <stdexcept>

namespace bench
{
namespace
{
sim::ScriptEvent eventOf(const sim::Endpoint& endpoint, std::size_t index)
{
    sim::ScriptEvent event;
    event.afterMilliseconds = 10;
    event.endpoint = endpoint.id;
    event.kind = index % 2 == 1 ? sim::ScriptEvent::Kind::stateChanged : sim::ScriptEvent::Kind::volumeChanged;
    if (index % 2 == 1)
        event.state = sim::stateUnplugged;
    else
        event.level = -6.0f;
    return event;
}

sim::Subunit volumeNode()
{
    sim::Subunit volume;
    volume.name = "Volume";
    volume.subType = sim::nodetypes::volume;
    volume.volume = sim::VolumeControl{{{}, {}}};
    return volume;
}
}

sim::Machine machineOfEndpoints(std::size_t endpoints, std::size_t onEachAdapter)
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

sim::Machine machineOfEvents(std::size_t endpoints)
{
    sim::Machine machine = machineOfEndpoints(endpoints);
    for (std::size_t index = 0; index < endpoints; ++index)
        machine.script.push_back(eventOf(machine.endpoints[index], index));
    return machine;
}

sim::Machine machineOfChain(std::size_t adapters)
{
    sim::MachineBuilder builder;
    std::string stream = builder.card("Card 0").speaker().hardwareVolume({}).streamId();
    for (std::size_t index = 1; index < adapters; ++index)
    {
        sim::CardBuilder card = builder.card("Card " + std::to_string(index));
        const std::string out = card.connector("Out", sim::nodetypes::stream, Out);
        const std::string in = card.connector("In", sim::nodetypes::stream, In);
        card.chain({in, card.subunit(volumeNode()), out});
        builder.machine().joins.push_back({stream, out, {}, true});
        stream = in;
    }
    return builder.build();
}

sim::Machine largeMachine(const std::string& name)
{
    const std::size_t colon = name.find(':');
    const std::string kind = name.substr(0, colon);
    if (colon == std::string::npos)
        throw std::invalid_argument("a machine needs a size, as in \"endpoints:100\": " + name);
    const std::size_t count = std::stoul(name.substr(colon + 1));
    if (kind == "endpoints")
        return machineOfEndpoints(count);
    if (kind == "adapters")
        return machineOfEndpoints(count, 1);
    if (kind == "connectors")
        return machineOfEndpoints(count, std::max<std::size_t>(count, 1));
    if (kind == "events")
        return machineOfEvents(count);
    if (kind == "chain")
        return machineOfChain(count);
    throw std::invalid_argument("there is no machine \"" + name + "\"");
}
}
