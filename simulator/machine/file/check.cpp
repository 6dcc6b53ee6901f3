#include "simulator/machine/file/check.h"

#include "simulator/machine/file/json.h"
#include "simulator/machine/file/machinecheck.h"
#include "simulator/machine/operations.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>
#include <utility>

namespace sim
{
namespace
{
constexpr std::uint32_t allHardwareSupport = 1 | 2 | 4;
constexpr std::uint32_t longestPeriod = 50000000; // 5 s in units of 100 ns: the platform refuses longer ones

/// Multiplies by 2^64 over the golden ratio, so that keys of one format, which differ in their numbers, spread.
struct KeyHash
{
    std::size_t operator()(const PROPERTYKEY& key) const
    {
        std::uint64_t end = 0;
        std::memcpy(&end, key.fmtid.Data4, sizeof end);
        const std::uint64_t start =
            std::uint64_t{key.fmtid.Data1} << 32 ^ std::uint64_t{key.fmtid.Data2} << 16 ^ key.fmtid.Data3;
        return static_cast<std::size_t>((start ^ end ^ key.pid) * 0x9E3779B97F4A7C15u >> 16);
    }
};

using Keys = std::unordered_set<PROPERTYKEY, KeyHash, decltype(&sameKey)>;
}

std::string FilePlace::pointer() const
{
    if (m_outer == nullptr)
        return {};
    std::string result = m_outer->pointer();
    if (m_key != nullptr)
        return result + pointerStep(keyText(*m_key));
    result.append("/").append(m_field);
    if (m_index)
        result.append("/").append(std::to_string(*m_index));
    return result;
}

std::vector<MachineProblem> MachineCheck::run()
{
    requireName(accountNames, m_machine.account, FilePlace(m_file, "account"));
    requireName(removedEndpointsNames, m_machine.removedEndpoints, FilePlace(m_file, "removedEndpoints"));
    requireName(callbackThreadNames, m_machine.callbackThread, FilePlace(m_file, "callbackThread"));
    requireName(latencyPresetNames, m_machine.latencyPreset, FilePlace(m_file, "latencyPreset"));
    requireName(notPresentNamesNames, m_machine.notPresentNames, FilePlace(m_file, "notPresentNames"));
    requireName(compositionNames, m_machine.composition, FilePlace(m_file, "composition"));
    requireName(captureAccessNames, m_machine.captureAccess, FilePlace(m_file, "captureAccess"));
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
    m_endpoints.reserve(m_machine.endpoints.size());
    m_devices.reserve(m_machine.endpoints.size() + m_machine.adapters.size());
    for (std::size_t index = 0; index < m_machine.endpoints.size(); ++index)
    {
        const Endpoint& endpoint = m_machine.endpoints[index];
        const FilePlace place(m_file, "endpoints", index);
        m_endpoints.emplace(endpoint.id, &endpoint);
        device(endpoint, place);
        requireName(flowNames, endpoint.flow, FilePlace(place, "flow"));
        if (endpoint.volume)
            endpointVolume(*endpoint.volume, FilePlace(place, "volume"));
        mixFormat(endpoint, FilePlace(place, "mixFormat"));
        if (endpoint.periods)
            periods(*endpoint.periods, FilePlace(place, "periods"));
    }
    for (std::size_t index = 0; index < m_machine.adapters.size(); ++index)
        device(m_machine.adapters[index], FilePlace(m_file, "adapters", index));
}

void MachineCheck::device(const Device& device, const FilePlace& place)
{
    requireNewId(m_devices, device, place);
    properties(device.properties, FilePlace(place, "properties"));
    unlistedProperties(device, FilePlace(place, "unlistedProperties"));
    if (device.topology)
        topology(*device.topology, FilePlace(place, "topology"));
}

void MachineCheck::properties(const Properties& properties, const FilePlace& place)
{
    Keys keys(properties.size(), KeyHash(), &sameKey);
    for (const Property& property : properties)
    {
        if (!keys.insert(property.key).second)
            report(place, "each property once", "duplicate " + inQuotes(keyText(property.key)));
        propertyValue(property.value, FilePlace(place, property.key));
    }
}

void MachineCheck::unlistedProperties(const Device& device, const FilePlace& place)
{
    if (device.unlistedProperties.empty())
        return;
    properties(device.unlistedProperties, place);
    Keys listed(device.properties.size(), KeyHash(), &sameKey);
    for (const Property& property : device.properties)
        listed.insert(property.key);
    for (const Property& property : device.unlistedProperties)
    {
        if (listed.count(property.key) != 0)
            report(FilePlace(place, property.key), "a property that is not in \"properties\"",
                   "duplicate " + inQuotes(keyText(property.key)));
    }
}

void MachineCheck::propertyValue(const PropertyValue& value, const FilePlace& place)
{
    const bool isLarge = value.tag == VT_UI8 || value.tag == VT_I8 || value.tag == VT_FILETIME;
    if (!isLarge && value.number > UINT32_MAX)
        report(place, "a number of 32 bits, or the tag VT_UI8", std::to_string(value.number));
}

void MachineCheck::periods(const DevicePeriods& periods, const FilePlace& place)
{
    const auto check = [&](std::uint32_t period, const char* field)
    {
        if (period > longestPeriod)
            report(FilePlace(place, field), "a period of at most " + std::to_string(longestPeriod),
                   std::to_string(period));
    };
    check(periods.usual, "default");
    check(periods.minimum, "minimum");
}

void MachineCheck::mixFormat(const Endpoint& endpoint, const FilePlace& place)
{
    const std::vector<std::uint8_t>& bytes = endpoint.mixFormatBytes;
    if (bytes.empty())
        return;
    WAVEFORMATEX format = {};
    std::memcpy(&format, bytes.data(), std::min(bytes.size(), sizeof format));
    if (bytes.size() < sizeof format)
        report(place, "the " + std::to_string(sizeof format) + " bytes of a WAVEFORMATEX or more",
               std::to_string(bytes.size()));
    else if (bytes.size() != sizeof format + format.cbSize)
        report(place, std::to_string(sizeof format + format.cbSize) + " bytes, as the format says",
               std::to_string(bytes.size()));
    if (endpoint.mixFormat)
        report(place, "one mix format", "another as bytes");
}

void MachineCheck::endpointVolume(const EndpointVolume& volume, const FilePlace& place)
{
    range(volume.minimum, volume.maximum, volume.step, place);
    requireName(taperNames, volume.taper, FilePlace(place, "taper"));
    taperPoints(volume, place);
    if (volume.master)
        decibels(*volume.master, FilePlace(place, "master"));
    channelCount(volume.channels.size(), FilePlace(place, "channels"));
    for (std::size_t index = 0; index < volume.channels.size(); ++index)
        decibels(volume.channels[index], FilePlace(place, "channels", index));
    if ((volume.hardwareSupport & ~allHardwareSupport) != 0)
        report(FilePlace(place, "hardwareSupport"), "a sum of 1, 2 and 4", std::to_string(volume.hardwareSupport));
    for (std::size_t index = 0; index < volume.refused.size(); ++index)
    {
        if (!isEndpointVolumeOperation(volume.refused[index]))
            report(FilePlace(place, "refused", index), "an operation of IAudioEndpointVolume",
                   inQuotes(volume.refused[index]));
    }
}

void MachineCheck::taperPoints(const EndpointVolume& volume, const FilePlace& place)
{
    const std::vector<TaperPoint>& points = volume.taperPoints;
    if (!points.empty() && volume.taper != Taper::measured)
        report(FilePlace(place, "taperPoints"), "no points, or the taper \"measured\"", std::to_string(points.size()));
    for (std::size_t index = 0; index < points.size(); ++index)
    {
        const TaperPoint& point = points[index];
        const auto found = [&] { return decimal(point.level) + " at " + decimal(point.scalar); };
        if (!std::isfinite(point.level) || !std::isfinite(point.scalar))
            report(FilePlace(place, "taperPoints", index), "two numbers", found());
        else if (index > 0 && (point.level <= points[index - 1].level || point.scalar < points[index - 1].scalar))
            report(FilePlace(place, "taperPoints", index), "a higher level than before, at no lower scalar", found());
    }
}

void MachineCheck::defaults()
{
    std::set<std::pair<int, int>> taken;
    for (std::size_t index = 0; index < m_machine.endpoints.size(); ++index)
    {
        const Endpoint& endpoint = m_machine.endpoints[index];
        const FilePlace endpointPlace(m_file, "endpoints", index);
        for (std::size_t role = 0; role < endpoint.defaultFor.size(); ++role)
        {
            const FilePlace place(endpointPlace, "defaultFor", role);
            requireName(roleNames, endpoint.defaultFor[role], place);
            if (!taken.insert({endpoint.flow, endpoint.defaultFor[role]}).second)
                report(place, "a role that no other endpoint of this flow has",
                       "duplicate " + inQuotes(nameOf(roleNames, endpoint.defaultFor[role])));
        }
    }
}

void MachineCheck::joins()
{
    for (std::size_t index = 0; index < m_machine.joins.size(); ++index)
    {
        const Join& join = m_machine.joins[index];
        const FilePlace place(m_file, "joins", index);
        connectorId(join.from, FilePlace(place, "from"));
        if (!join.to.empty())
            connectorId(join.to, FilePlace(place, "to"));
        else if (!join.toDevice)
            report(place, "\"to\" or \"toDevice\"", "an object without them");
        if (join.from == join.to)
            report(FilePlace(place, "to"), "another connector than \"from\"", inQuotes(join.to));
    }
}

void MachineCheck::connectorId(const std::string& id, const FilePlace& place)
{
    if (m_connectorIds.count(id) == 0)
        report(place, "the id of a connector", inQuotes(id));
}

void MachineCheck::deviceInstances()
{
    std::unordered_map<std::string_view, const DeviceInstance*> known;
    for (std::size_t index = 0; index < m_machine.deviceInstances.size(); ++index)
        requireNewId(known, m_machine.deviceInstances[index], FilePlace(m_file, "deviceInstances", index));
}

void MachineCheck::range(float minimum, float maximum, float step, const FilePlace& place)
{
    const bool isRange = std::isfinite(minimum) && std::isfinite(maximum) && minimum <= maximum;
    if (!isRange)
        report(place, "a minimum not above the maximum", decimal(minimum) + " to " + decimal(maximum));
    const bool isStep = std::isfinite(step) && step >= 0.0f;
    if (!isStep)
        report(FilePlace(place, "step"), "a step of 0 or more", decimal(step));
}

void MachineCheck::decibels(float level, const FilePlace& place)
{
    if (!std::isfinite(level))
        report(place, "a number of decibels", decimal(level));
}

void MachineCheck::level(float level, float minimum, float maximum, const FilePlace& place)
{
    const bool isInRange = level >= minimum && level <= maximum;
    if (!isInRange)
        report(place, "a level from " + decimal(minimum) + " to " + decimal(maximum), decimal(level));
}

void MachineCheck::channelCount(std::size_t count, const FilePlace& place)
{
    if (count > maximumChannels)
        report(place, "at most " + std::to_string(maximumChannels) + " channels", std::to_string(count));
}

std::vector<MachineProblem> checkMachine(const Machine& machine)
{
    return MachineCheck(machine).run();
}
}
