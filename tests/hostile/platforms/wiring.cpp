// Graphs that no hardware has: joins to oneself and in rings, very many parts, one id for several things.
#include "tests/hostile/platforms/platform.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/nodetypes.h"

#include <algorithm>

namespace hostile
{
namespace
{
/// Every connector of the machine is joined to the next one, the last one to the first.
void joinInARing(sim::Machine& machine)
{
    std::vector<std::string> connectors;
    const auto add = [&](const sim::Device& device)
    {
        for (const sim::Connector& connector : device.topology->connectors)
            connectors.push_back(connector.id);
    };
    for (const sim::Endpoint& endpoint : machine.endpoints)
        add(endpoint);
    for (const sim::Adapter& adapter : machine.adapters)
        add(adapter);
    machine.joins.clear();
    for (std::size_t index = 0; index < connectors.size(); ++index)
        machine.joins.push_back({connectors[index], connectors[(index + 1) % connectors.size()], {}, false});
}

void joinToThemselves(sim::Machine& machine)
{
    for (sim::Join& join : machine.joins)
        join.to = join.from;
}

/// Each part has each part of its device as a neighbour on both sides, itself included, and there is a path from each
/// connector to each.
void connectAllWithAll(sim::Machine& machine)
{
    for (sim::Adapter& adapter : machine.adapters)
    {
        std::vector<std::string> all;
        for (const sim::Connector& connector : adapter.topology->connectors)
            all.push_back(connector.id);
        for (const sim::Subunit& subunit : adapter.topology->subunits)
            all.push_back(subunit.id);
        const auto connect = [&](sim::Part& part) { part.incoming = part.outgoing = all; };
        std::for_each(adapter.topology->connectors.begin(), adapter.topology->connectors.end(), connect);
        std::for_each(adapter.topology->subunits.begin(), adapter.topology->subunits.end(), connect);
        adapter.topology->signalPaths.clear();
        for (const std::string& from : all)
        {
            for (const std::string& to : all)
                adapter.topology->signalPaths.push_back({from, to, all, false});
        }
    }
}

sim::Topology& codecIn(sim::Machine& machine)
{
    return *machine.adapter(honest().codec)->topology;
}

void addThousandSubunits(sim::Machine& machine)
{
    addSubunits(machine, 1000);
}

void addHundredConnectors(sim::Machine& machine)
{
    constexpr std::size_t hundred = 100;
    for (std::size_t number = 0; number < hundred; ++number)
    {
        sim::Connector connector;
        connector.id = "{2}.many/" + std::to_string(number);
        connector.localId = static_cast<std::uint32_t>(0x40000 + number);
        connector.incoming = {honest().volume};
        codecIn(machine).connectors.push_back(connector);
    }
}

/// As many volume nodes as the speaker's jack has neighbours, each beside the same mute.
void addThousandVolumes(sim::Machine& machine)
{
    constexpr std::size_t thousand = 1000;
    sim::Topology& codec = codecIn(machine);
    std::vector<std::string> added;
    for (std::size_t number = 0; number < thousand; ++number)
    {
        sim::Subunit volume;
        volume.id = "{2}.many/" + std::to_string(number);
        volume.localId = static_cast<std::uint32_t>(0x40000 + number);
        volume.subType = sim::nodetypes::volume;
        volume.volume.emplace();
        volume.outgoing = {honest().mute};
        added.push_back(volume.id);
        codec.subunits.push_back(volume);
    }
    for (sim::Connector& connector : codec.connectors)
    {
        if (connector.id == honest().speakerJack)
            connector.incoming = added;
    }
}

void giveAllEndpointsOneId(sim::Machine& machine)
{
    for (sim::Endpoint& endpoint : machine.endpoints)
        endpoint.id = machine.endpoints.front().id;
}

/// Every endpoint and adapter is in one card, or none is.
void giveAllOnePath(sim::Machine& machine)
{
    for (sim::Endpoint& endpoint : machine.endpoints)
    {
        for (sim::Property& property : endpoint.properties)
        {
            if (property.value.tag == VT_LPWSTR)
                property.value = sim::PropertyValue::ofText("one.text.for.all");
        }
    }
}

Platform changed(const char* name, void (*change)(sim::Machine&), const std::string& beyondObjectModel = {})
{
    return {name, change, {}, beyondObjectModel};
}
}

void addSubunits(sim::Machine& machine, std::size_t count)
{
    std::vector<sim::Subunit>& subunits = codecIn(machine).subunits;
    std::string last = honest().volume;
    for (std::size_t number = 0; number < count; ++number)
    {
        sim::Subunit mute;
        mute.id = "{2}.many/" + std::to_string(number);
        mute.localId = static_cast<std::uint32_t>(0x40000 + number);
        mute.subType = sim::nodetypes::mute;
        mute.mute.emplace();
        mute.incoming = {last};
        last = mute.id;
        subunits.push_back(mute);
    }
}

std::vector<Platform> platformsWithStrangeWiring()
{
    return {changed("ConnectorsInARing", &joinInARing),
            changed("ConnectorsJoinedToThemselves", &joinToThemselves),
            changed("AllPartsConnectedWithAll", &connectAllWithAll),
            changed("AThousandSubunits", &addThousandSubunits),
            changed("AHundredMoreConnectors", &addHundredConnectors),
            changed("AThousandVolumesAroundOneMute", &addThousandVolumes),
            changed("EndpointsOfOneId", &giveAllEndpointsOneId),
            changed("OneTextForAllProperties", &giveAllOnePath)};
}
}
