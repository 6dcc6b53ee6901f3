#include "tests/faults/library/choice.h"

namespace faults::library
{
namespace
{
/// All topologies, those of adapters first.
std::vector<const sim::Topology*> topologies(const sim::Machine& machine)
{
    std::vector<const sim::Topology*> all;
    const auto add = [&](const sim::Device& device)
    {
        if (device.topology)
            all.push_back(&*device.topology);
    };
    for (const sim::Adapter& adapter : machine.adapters)
        add(adapter);
    for (const sim::Endpoint& endpoint : machine.endpoints)
        add(endpoint);
    return all;
}

template<class Condition>
std::string partWith(const sim::Machine& machine, const Condition& condition)
{
    for (const sim::Topology* const topology : topologies(machine))
    {
        for (const sim::Subunit& subunit : topology->subunits)
        {
            if (condition(subunit))
                return subunit.id;
        }
    }
    return {};
}
}

qor::String text(const std::string& utf8)
{
    return qor::String::fromUtf8(utf8);
}

std::vector<std::string> endpointIds(const sim::Machine& machine)
{
    std::vector<std::string> ids;
    for (const EDataFlow flow : {eRender, eCapture})
    {
        for (const sim::Endpoint& endpoint : machine.endpoints)
        {
            if (endpoint.flow != flow)
                continue;
            ids.push_back(endpoint.id);
            break;
        }
    }
    return ids;
}

std::vector<std::string> deviceIds(const sim::Machine& machine)
{
    std::vector<std::string> ids = endpointIds(machine);
    if (!machine.adapters.empty())
        ids.push_back(machine.adapters.front().id);
    return ids;
}

std::string endpointWithVolume(const sim::Machine& machine)
{
    for (const sim::Endpoint& endpoint : machine.endpoints)
    {
        if (endpoint.volume && endpoint.state == DEVICE_STATE_ACTIVE)
            return endpoint.id;
    }
    return {};
}

std::string partWithVolume(const sim::Machine& machine)
{
    return partWith(machine, [](const sim::Part& part) { return part.volume.has_value(); });
}

std::string partWithMute(const sim::Machine& machine)
{
    return partWith(machine, [](const sim::Part& part) { return part.mute.has_value(); });
}

std::vector<std::string> connectorIds(const sim::Machine& machine)
{
    constexpr std::size_t few = 3;
    std::vector<std::string> ids;
    for (const sim::Topology* const topology : topologies(machine))
    {
        for (const sim::Connector& connector : topology->connectors)
        {
            if (ids.size() < few)
                ids.push_back(connector.id);
        }
        if (!ids.empty())
            break;
    }
    return ids;
}

std::string subunitId(const sim::Machine& machine)
{
    return partWith(machine, [](const sim::Part&) { return true; });
}
}
