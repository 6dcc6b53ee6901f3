#pragma once

#include "COM/identifiers.h"
#include "libSonavit/soundcard.h"
#include "simulator/machine/machine.h"

#include <string>
#include <vector>

namespace support
{
/// A small machine for the tests of the graph: one card, whose parts have short ids. Part "e1/2" is connector 2 of
/// device "e1".
class GraphMachine
{
public:
    GraphMachine() { machine.name = "graph"; }

    /// An endpoint of the one card, with that many connectors "ID/1", "ID/2", ...
    sim::Endpoint& endpoint(const std::string& id, unsigned int connectors = 1, EDataFlow flow = eRender)
    {
        machine.endpoints.emplace_back();
        sim::Endpoint& endpoint = machine.endpoints.back();
        endpoint.flow = flow;
        fill(endpoint, id, connectors);
        sim::setProperty(endpoint.properties, propertykeys::instancePath, sim::PropertyValue::ofText("{1}.GRAPH"));
        return endpoint;
    }

    sim::Adapter& adapter(const std::string& id, unsigned int connectors)
    {
        machine.adapters.emplace_back();
        fill(machine.adapters.back(), id, connectors);
        return machine.adapters.back();
    }

    GraphMachine& join(const std::string& from, const std::string& to, bool bothWays = true)
    {
        sim::Join join;
        join.from = from;
        join.to = to;
        join.bothWays = bothWays;
        machine.joins.push_back(join);
        return *this;
    }

    /// A signal path from one connector of a device to another connector of the same device.
    GraphMachine& path(const std::string& from, const std::string& to)
    {
        deviceOf(from).topology->signalPaths.push_back({from, to, {}, false});
        return *this;
    }

    /// A node of a device; @p localId is unique in the device.
    sim::Subunit& node(const std::string& device, unsigned int localId, const GUID& type)
    {
        sim::Topology& topology = *deviceCalled(device).topology;
        topology.subunits.emplace_back();
        sim::Subunit& node = topology.subunits.back();
        node.localId = localId;
        node.id = device + "/" + std::to_string(localId);
        node.name = "Node " + std::to_string(localId);
        node.subType = type;
        return node;
    }

    /// A volume node whose first channel has @p level, which identifies the control in a result.
    sim::Subunit& volume(const std::string& device, unsigned int localId, float level)
    {
        sim::Subunit& result = node(device, localId, KSNODETYPE_VOLUME);
        result.volume = sim::VolumeControl{{{-96.0f, 0.0f, 1.0f, level}}};
        return result;
    }

    sim::Subunit& mute(const std::string& device, unsigned int localId, bool muted)
    {
        sim::Subunit& result = node(device, localId, KSNODETYPE_MUTE);
        result.mute = sim::MuteControl{muted};
        return result;
    }

    /// Makes @p from feed @p to.
    GraphMachine& feed(const std::string& from, const std::string& to)
    {
        machine.part(from)->outgoing.push_back(to);
        machine.part(to)->incoming.push_back(from);
        return *this;
    }

    sim::Machine machine;

private:
    static void fill(sim::Device& device, const std::string& id, unsigned int connectors)
    {
        device.id = id;
        device.topology.emplace();
        device.topology->deviceId = id;
        for (unsigned int i = 1; i <= connectors; ++i)
        {
            sim::Connector connector;
            connector.localId = i;
            connector.id = id + "/" + std::to_string(i);
            connector.name = "Plug " + connector.id;
            connector.subType = KSNODETYPE_SPEAKER;
            device.topology->connectors.push_back(connector);
        }
    }

    sim::Device& deviceCalled(const std::string& id)
    {
        sim::Endpoint* const endpoint = machine.endpoint(id);
        return endpoint != nullptr ? static_cast<sim::Device&>(*endpoint) : *machine.adapter(id);
    }

    sim::Device& deviceOf(const std::string& partId) { return deviceCalled(partId.substr(0, partId.find('/'))); }
};

constexpr unsigned int nowhere = 0xFFFFFFFF;

inline std::vector<std::string> nodesOf(const SoundCard& card)
{
    std::vector<std::string> ids;
    for (unsigned int i = 0; i < card.m_connectorMap.size(); ++i)
        ids.push_back(card.m_connectorMap[i].connector.id().toUtf8());
    return ids;
}

inline std::vector<unsigned int> linksOf(const SoundCard& card, unsigned int node)
{
    std::vector<unsigned int> links;
    for (unsigned int i = 0; i < card.m_connectorMap[node].links.size(); ++i)
        links.push_back(card.m_connectorMap[node].links[i]);
    return links;
}

/// The links of each node.
inline std::vector<std::vector<unsigned int>> linksOf(const SoundCard& card)
{
    std::vector<std::vector<unsigned int>> links;
    for (unsigned int node = 0; node < card.m_connectorMap.size(); ++node)
        links.push_back(linksOf(card, node));
    return links;
}
}
