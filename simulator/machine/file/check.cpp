#include "simulator/machine/file/check.h"

#include "simulator/machine/file/json.h"
#include "simulator/machine/file/machinecheck.h"
#include "simulator/machine/operations.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"

#include <cmath>
#include <utility>

namespace sim
{
namespace
{
constexpr std::uint32_t allHardwareSupport = 1 | 2 | 4;
constexpr std::uint32_t longestPeriod = 50000000; // 5 s in units of 100 ns: the platform refuses longer ones
}

std::vector<MachineProblem> MachineCheck::run()
{
    requireName(accountNames, m_machine.account, "/account");
    requireName(removedEndpointsNames, m_machine.removedEndpoints, "/removedEndpoints");
    requireName(callbackThreadNames, m_machine.callbackThread, "/callbackThread");
    requireName(latencyPresetNames, m_machine.latencyPreset, "/latencyPreset");
    requireName(notPresentNamesNames, m_machine.notPresentNames, "/notPresentNames");
    requireName(captureAccessNames, m_machine.captureAccess, "/captureAccess");
    devices();
    hardwareControls();
    defaults();
    joins();
    deviceInstances();
    script();
    faults();
    latency();
    return m_problems;
}

void MachineCheck::devices()
{
    for (std::size_t index = 0; index < m_machine.endpoints.size(); ++index)
    {
        const Endpoint& endpoint = m_machine.endpoints[index];
        const std::string place = inner("/endpoints", index);
        device(endpoint, place);
        requireName(flowNames, endpoint.flow, inner(place, "flow"));
        if (endpoint.volume)
            endpointVolume(*endpoint.volume, inner(place, "volume"));
        if (endpoint.periods)
            periods(*endpoint.periods, inner(place, "periods"));
    }
    for (std::size_t index = 0; index < m_machine.adapters.size(); ++index)
        device(m_machine.adapters[index], inner("/adapters", index));
}

void MachineCheck::device(const Device& device, const std::string& place)
{
    requireNew(m_deviceIds, device.id, inner(place, "id"));
    require((device.state & ~allStates) == 0, inner(place, "state"), stateRange, std::to_string(device.state));
    properties(device.properties, inner(place, "properties"));
    if (device.topology)
        topology(*device.topology, inner(place, "topology"));
}

void MachineCheck::properties(const Properties& properties, const std::string& place)
{
    std::set<std::string> keys;
    for (const Property& property : properties)
    {
        const std::string key = keyText(property.key);
        require(keys.insert(key).second, place, "each property once", "duplicate " + inQuotes(key));
        propertyValue(property.value, place + pointerStep(key));
    }
}

void MachineCheck::propertyValue(const PropertyValue& value, const std::string& place)
{
    const bool isNumber = !nameOf(numberTagNames, value.tag).empty();
    const bool isKnown = isNumber || value.tag == VT_EMPTY || value.tag == VT_LPWSTR || value.tag == VT_BLOB ||
                         value.tag == VT_R4 || value.tag == VT_CLSID;
    require(isKnown, place, "an empty value, a string, a number, a GUID or a blob",
            "the tag " + std::to_string(value.tag));
    require(value.tag == VT_UI8 || value.number <= UINT32_MAX, place, "a number of 32 bits, or the tag VT_UI8",
            std::to_string(value.number));
}

void MachineCheck::periods(const DevicePeriods& periods, const std::string& place)
{
    require(periods.usual > 0 && periods.usual <= longestPeriod, inner(place, "default"),
            "a period from 1 to " + std::to_string(longestPeriod), std::to_string(periods.usual));
    require(periods.minimum > 0 && periods.minimum <= periods.usual, inner(place, "minimum"),
            "a period from 1 to the default", std::to_string(periods.minimum));
}

void MachineCheck::endpointVolume(const EndpointVolume& volume, const std::string& place)
{
    range(volume.minimum, volume.maximum, volume.step, place);
    requireName(taperNames, volume.taper, inner(place, "taper"));
    channelCount(volume.channels.size(), inner(place, "channels"));
    for (std::size_t index = 0; index < volume.channels.size(); ++index)
        level(volume.channels[index], volume.minimum, volume.maximum, inner(inner(place, "channels"), index));
    require((volume.hardwareSupport & ~allHardwareSupport) == 0, inner(place, "hardwareSupport"), "a sum of 1, 2 and 4",
            std::to_string(volume.hardwareSupport));
    for (std::size_t index = 0; index < volume.refused.size(); ++index)
        require(isEndpointVolumeOperation(volume.refused[index]), inner(inner(place, "refused"), index),
                "an operation of IAudioEndpointVolume", inQuotes(volume.refused[index]));
}

void MachineCheck::defaults()
{
    std::set<std::pair<int, int>> taken;
    for (std::size_t index = 0; index < m_machine.endpoints.size(); ++index)
    {
        const Endpoint& endpoint = m_machine.endpoints[index];
        for (std::size_t role = 0; role < endpoint.defaultFor.size(); ++role)
        {
            const std::string place = inner(inner(inner("/endpoints", index), "defaultFor"), role);
            requireName(roleNames, endpoint.defaultFor[role], place);
            require(taken.insert({endpoint.flow, endpoint.defaultFor[role]}).second, place,
                    "a role that no other endpoint of this flow has",
                    "duplicate " + inQuotes(nameOf(roleNames, endpoint.defaultFor[role])));
        }
    }
}

void MachineCheck::joins()
{
    for (std::size_t index = 0; index < m_machine.joins.size(); ++index)
    {
        const Join& join = m_machine.joins[index];
        const std::string place = inner("/joins", index);
        connectorId(join.from, inner(place, "from"));
        if (join.to.empty())
            require(join.toDevice.has_value(), place, "\"to\" or \"toDevice\"", "an object without them");
        else
            connectorId(join.to, inner(place, "to"));
        require(join.from != join.to, inner(place, "to"), "another connector than \"from\"", inQuotes(join.to));
    }
}

void MachineCheck::connectorId(const std::string& id, const std::string& place)
{
    require(m_connectorIds.count(id) != 0, place, "the id of a connector", inQuotes(id));
}

void MachineCheck::deviceInstances()
{
    std::set<std::string> known;
    for (std::size_t index = 0; index < m_machine.deviceInstances.size(); ++index)
        requireNew(known, m_machine.deviceInstances[index].id, inner(inner("/deviceInstances", index), "id"));
}

void MachineCheck::range(float minimum, float maximum, float step, const std::string& place)
{
    const bool isRange = std::isfinite(minimum) && std::isfinite(maximum) && minimum < maximum;
    require(isRange, place, "a minimum below the maximum", decimal(minimum) + " to " + decimal(maximum));
    require(step > 0.0f && step <= maximum - minimum, inner(place, "step"), "a step above 0 that fits into the range",
            decimal(step));
}

void MachineCheck::level(float level, float minimum, float maximum, const std::string& place)
{
    require(level >= minimum && level <= maximum, place, "a level from " + decimal(minimum) + " to " + decimal(maximum),
            decimal(level));
}

void MachineCheck::channelCount(std::size_t count, const std::string& place)
{
    require(count >= 1 && count <= maximumChannels, place, "1 to " + std::to_string(maximumChannels) + " channels",
            std::to_string(count));
}

std::vector<MachineProblem> checkMachine(const Machine& machine)
{
    return MachineCheck(machine).run();
}
}
