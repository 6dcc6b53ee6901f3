#include "tests/support/randommachine.h"

#include "tests/support/randomconnections.h"
#include "tests/support/randomhardware.h"
#include "tests/support/randomproperties.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace support
{
namespace
{
std::string upperCase(std::string text)
{
    for (char& c : text)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return text;
}

template<class Action>
void forEachTopology(sim::Machine& machine, const Action& action)
{
    const auto visit = [&](sim::Device& device)
    {
        if (device.topology)
            action(*device.topology);
    };
    std::for_each(machine.endpoints.begin(), machine.endpoints.end(), visit);
    std::for_each(machine.adapters.begin(), machine.adapters.end(), visit);
}

/// Gives connectors whose id differs from that of an earlier one in case alone an id of their own. No driver makes such
/// ids, and they hide much else.
void renameTwinConnectors(sim::Machine& machine)
{
    std::set<std::string> known;
    std::map<std::string, std::string> newIds;
    forEachTopology(machine,
                    [&](sim::Topology& topology)
                    {
                        for (sim::Connector& connector : topology.connectors)
                        {
                            if (!known.insert(upperCase(connector.id)).second)
                                newIds[connector.id] = connector.id + "-" + std::to_string(newIds.size());
                        }
                    });
    const auto rename = [&](std::string& id)
    {
        const auto found = newIds.find(id);
        id = found == newIds.end() ? id : found->second;
    };
    const auto renamePart = [&](sim::Part& part)
    {
        rename(part.id);
        std::for_each(part.incoming.begin(), part.incoming.end(), rename);
        std::for_each(part.outgoing.begin(), part.outgoing.end(), rename);
    };
    forEachTopology(machine,
                    [&](sim::Topology& topology)
                    {
                        std::for_each(topology.connectors.begin(), topology.connectors.end(), renamePart);
                        std::for_each(topology.subunits.begin(), topology.subunits.end(), renamePart);
                        for (sim::SignalPath& path : topology.signalPaths)
                        {
                            rename(path.from);
                            rename(path.to);
                        }
                    });
    for (sim::Join& join : machine.joins)
    {
        rename(join.from);
        rename(join.to);
    }
}

/// Endpoints of machines that have hardware alone get volumes, states and a place among the defaults.
void describeEndpoints(RandomChoice& choice, sim::Machine& machine)
{
    for (sim::Endpoint& endpoint : machine.endpoints)
    {
        endpoint.state = choice.oneOf({sim::stateActive, sim::stateActive, sim::stateActive, sim::stateUnplugged,
                                       sim::stateDisabled, sim::stateNotPresent});
        if (choice.chance(70))
            endpoint.volume = randomVolume(choice);
        if (choice.chance(30) && machine.namedDefault(endpoint.flow, eConsole) == nullptr)
            endpoint.defaultFor.push_back(eConsole);
        std::vector<sim::WaveDevice>& waves = endpoint.flow == eRender ? machine.waveOut : machine.waveIn;
        if (choice.chance(70))
            waves.push_back({endpoint.id});
    }
}

/// Numbers that fail, that belong to nothing, or to an endpoint in other case.
void changeWaveIds(RandomChoice& choice, std::vector<sim::WaveDevice>& waves)
{
    for (sim::WaveDevice& wave : waves)
    {
        if (choice.chance(5))
            wave.sizeResult = MMSYSERR_NODRIVER;
        if (choice.chance(5))
            wave.idResult = MMSYSERR_NODRIVER;
        if (choice.chance(4))
            wave.endpointId = upperCase(wave.endpointId);
    }
    if (choice.chance(10))
        waves.insert(waves.begin(), sim::WaveDevice{"{0.0.0.00000000}.{00000000-0000-0000-0000-000000000000}"});
    if (waves.size() > 1 && choice.chance(20))
        std::swap(waves.front(), waves.back());
}

/// A second endpoint whose id differs from that of another in case alone, which may be the default in its place.
void addTwin(RandomChoice& choice, sim::Machine& machine)
{
    if (machine.endpoints.empty())
        return;
    sim::Endpoint& original = choice.from(machine.endpoints);
    sim::Endpoint twin = original;
    twin.id = upperCase(twin.id);
    twin.topology.reset();
    if (choice.chance(50))
        original.defaultFor.clear();
    else
        twin.defaultFor.clear();
    if (twin.id != original.id)
        machine.endpoints.push_back(twin);
}

void changeStates(RandomChoice& choice, sim::Machine& machine)
{
    for (sim::Endpoint& endpoint : machine.endpoints)
    {
        if (choice.chance(3))
            endpoint.state = choice.oneOf({sim::stateActive | sim::stateUnplugged, std::uint32_t{0}});
    }
}
}

sim::Machine randomMachine(std::uint32_t seed, std::vector<std::uint8_t> first)
{
    RandomChoice choice(seed, std::move(first));
    const std::string name = "random-" + std::to_string(seed);
    const bool hasWildHardware = choice.chance(25);
    sim::Machine machine = hasWildHardware ? randomConnections(seed) : randomCards(choice, name);
    machine.name = name;
    if (hasWildHardware)
        describeEndpoints(choice, machine);
    if (!choice.chance(5))
        renameTwinConnectors(machine);
    addOddHardware(choice, machine);
    changeStates(choice, machine);
    for (sim::Endpoint& endpoint : machine.endpoints)
        changeProperties(choice, machine, endpoint);
    if (choice.chance(5))
        addTwin(choice, machine);
    changeWaveIds(choice, machine.waveOut);
    changeWaveIds(choice, machine.waveIn);
    if (choice.chance(15)) // more inputs than outputs
        machine.waveOut.resize(choice.below(machine.waveOut.size() + 1));
    if (choice.chance(20))
        machine.account = sim::Account::ordinary;
    if (choice.chance(10))
        machine.notPresentNames = sim::NotPresentNames::failing;
    return machine;
}

sim::Machine withOddLevels(sim::Machine machine, std::uint32_t seed)
{
    RandomChoice choice(seed);
    for (sim::Endpoint& endpoint : machine.endpoints)
    {
        if (!endpoint.volume || !endpoint.volume->hardware.volume.empty())
            continue;
        if (choice.chance(20))
            endpoint.volume->channels.clear();
        if (choice.chance(20))
        {
            endpoint.volume->maximum = endpoint.volume->minimum;
            std::fill(endpoint.volume->channels.begin(), endpoint.volume->channels.end(), endpoint.volume->minimum);
        }
    }
    for (sim::Adapter& adapter : machine.adapters)
    {
        if (!adapter.topology)
            continue;
        for (sim::Subunit& subunit : adapter.topology->subunits)
        {
            if (!subunit.volume)
                continue;
            if (choice.chance(20))
                subunit.volume->channels.clear();
            for (sim::ChannelLevel& level : subunit.volume->channels)
            {
                if (choice.chance(20))
                    level.level = level.maximum = level.minimum;
            }
        }
    }
    return machine;
}
}
