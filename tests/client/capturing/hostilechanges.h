/// @file
/// Changes that make a machine hostile.
#pragma once

#include "simulator/machine/machine.h"
#include "simulator/machine/propertykeys.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace hostile
{
/// The first endpoint with a volume that no part implements.
inline sim::EndpointVolume& volumeIn(sim::Machine& machine)
{
    for (sim::Endpoint& endpoint : machine.endpoints)
    {
        if (endpoint.volume)
        {
            endpoint.volume->hardware = {};
            return *endpoint.volume;
        }
    }
    throw std::logic_error("the machine has no volume");
}

/// The first adapter with subunits.
inline sim::Topology& topologyIn(sim::Machine& machine)
{
    for (sim::Adapter& adapter : machine.adapters)
    {
        if (adapter.topology && !adapter.topology->subunits.empty())
            return *adapter.topology;
    }
    throw std::logic_error("the machine has no topology");
}

inline sim::Part& partWithVolume(sim::Machine& machine)
{
    for (sim::Subunit& subunit : topologyIn(machine).subunits)
    {
        if (subunit.volume)
            return subunit;
    }
    throw std::logic_error("the machine has no level");
}

/// Changes an id wherever data refer to it.
inline void rename(sim::Machine& machine, const std::string& from, const std::string& to)
{
    const auto change = [&](std::string& id)
    {
        if (id == from)
            id = to;
    };
    const auto changePart = [&](sim::Part& part)
    {
        change(part.id);
        for (std::vector<std::string>* const list : {&part.incoming, &part.outgoing})
            std::for_each(list->begin(), list->end(), change);
    };
    const auto changeDevice = [&](sim::Device& device)
    {
        if (!device.topology)
            return;
        std::for_each(device.topology->connectors.begin(), device.topology->connectors.end(), changePart);
        std::for_each(device.topology->subunits.begin(), device.topology->subunits.end(), changePart);
        for (sim::SignalPath& path : device.topology->signalPaths)
        {
            change(path.from);
            change(path.to);
            std::for_each(path.through.begin(), path.through.end(), change);
        }
    };
    std::for_each(machine.endpoints.begin(), machine.endpoints.end(), changeDevice);
    std::for_each(machine.adapters.begin(), machine.adapters.end(), changeDevice);
    for (sim::Join& join : machine.joins)
    {
        change(join.from);
        change(join.to);
    }
}

inline void fail(sim::Machine& machine, const char* operation, const std::string& object = "*",
                 std::vector<std::string> arguments = {})
{
    sim::FaultRule rule;
    rule.operation = operation;
    rule.object = object;
    rule.arguments = std::move(arguments);
    machine.faults.push_back(rule);
}

inline std::vector<std::uint8_t> plainFormat(WORD sizeOfWhatFollows)
{
    WAVEFORMATEX format = {};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = 2;
    format.nSamplesPerSec = 48000;
    format.nBlockAlign = 4;
    format.nAvgBytesPerSec = 192000;
    format.wBitsPerSample = 16;
    format.cbSize = sizeOfWhatFollows;
    std::vector<std::uint8_t> bytes(sizeof format);
    std::memcpy(bytes.data(), &format, sizeof format);
    return bytes;
}

inline void setMixFormat(sim::Machine& machine, std::vector<std::uint8_t> bytes)
{
    for (sim::Endpoint& endpoint : machine.endpoints)
    {
        endpoint.mixFormat.reset();
        endpoint.mixFormatBytes = bytes;
    }
}

inline void setRange(sim::Machine& machine, float minimum, float maximum, float step, std::vector<float> channels)
{
    sim::EndpointVolume& volume = volumeIn(machine) = {};
    volume.minimum = minimum;
    volume.maximum = maximum;
    volume.step = step;
    volume.channels = std::move(channels);
}

inline PROPERTYKEY keyOf(unsigned long family, DWORD number)
{
    PROPERTYKEY key = {};
    key.fmtid.Data1 = family;
    key.pid = number;
    return key;
}

inline void addProperty(sim::Machine& machine, const PROPERTYKEY& key, sim::PropertyValue value)
{
    sim::Properties& properties = machine.endpoints.front().properties;
    properties.insert(properties.begin(), {key, std::move(value)});
}
}
