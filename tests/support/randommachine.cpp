#include "tests/support/randommachine.h"

#include "tests/support/randomconnections.h"
#include "tests/support/randomhardware.h"
#include "tests/support/randomproperties.h"

#include <algorithm>
#include <string>
#include <utility>

namespace support
{
namespace
{
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

std::string upperCase(std::string text)
{
    for (char& c : text)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return text;
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

void changeStates(RandomChoice& choice, sim::Machine& machine)
{
    for (sim::Endpoint& endpoint : machine.endpoints)
    {
        if (choice.chance(3))
            endpoint.state = choice.oneOf({sim::stateActive | sim::stateUnplugged, std::uint32_t{0}});
    }
}
}

sim::Machine randomMachine(std::uint32_t seed)
{
    RandomChoice choice(seed);
    const std::string name = "random-" + std::to_string(seed);
    const bool hasWildHardware = choice.chance(33);
    sim::Machine machine = hasWildHardware ? randomConnections(seed) : randomCards(choice, name);
    machine.name = name;
    if (hasWildHardware)
        describeEndpoints(choice, machine);
    addOddHardware(choice, machine);
    changeStates(choice, machine);
    for (sim::Endpoint& endpoint : machine.endpoints)
        changeProperties(choice, machine, endpoint);
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
