#include "tests/support/randomconnections.h"

#include "COM/identifiers.h"

#include <algorithm>
#include <random>

namespace support
{
namespace
{
constexpr std::size_t mostConnectors = 60;

class Generator
{
public:
    explicit Generator(std::uint32_t seed) : m_engine(seed) { m_machine.name = "random-" + std::to_string(seed); }

    sim::Machine generate()
    {
        const unsigned int cards = 1 + below(3);
        const unsigned int adapters = below(6);
        for (unsigned int i = 0; i < adapters; ++i)
            addAdapter(i);
        const unsigned int endpoints = 1 + below(8);
        for (unsigned int i = 0; i < endpoints; ++i)
            addEndpoint(i, below(cards));
        addJoins();
        return m_machine;
    }

private:
    /// The standard's distributions differ between systems; the engine does not.
    unsigned int below(unsigned int limit) { return static_cast<unsigned int>(m_engine()) % limit; }
    bool chance(unsigned int percent) { return below(100) < percent; }

    void addAdapter(unsigned int number)
    {
        sim::Adapter adapter;
        adapter.id = "{2}.\\\\?\\adapter#" + std::to_string(number);
        adapter.openable = !chance(15);
        if (!chance(10))
            adapter.topology = topologyWithin(adapter.id, 1, 14, 10);
        m_machine.adapters.push_back(adapter);
    }

    void addEndpoint(unsigned int number, unsigned int card)
    {
        sim::Endpoint endpoint;
        endpoint.id = "{0.0.0.00000000}.{endpoint-" + std::to_string(number) + "}";
        endpoint.flow = chance(50) ? eRender : eCapture;
        const std::string path = "{1}.ROOT\\CARD\\" + std::to_string(card);
        sim::setProperty(endpoint.properties, propertykeys::instancePath, sim::PropertyValue::ofText(path));
        if (!chance(10))
            endpoint.topology = topologyWithin(endpoint.id, 0, 4, 3);
        m_machine.endpoints.push_back(endpoint);
    }

    /// Draws one number in each statement: compilers differ in the order in which they evaluate arguments.
    sim::Topology topologyWithin(const std::string& owner, unsigned int fewest, unsigned int connectors,
                                 unsigned int subunits)
    {
        const unsigned int drawnConnectors = fewest + below(connectors);
        const unsigned int drawnSubunits = below(subunits);
        return topologyOf(owner, drawnConnectors, drawnSubunits);
    }

    sim::Topology topologyOf(const std::string& owner, unsigned int connectors, unsigned int subunits)
    {
        sim::Topology topology;
        topology.deviceId = chance(90) ? sim::Text(owner) : sim::Text();
        for (unsigned int i = 0; i < connectors && m_connectors.size() < mostConnectors; ++i)
        {
            sim::Connector connector;
            fill(connector, owner, topology.connectors.size() + 1);
            if (chance(5) && !m_connectors.empty())
                connector.id = upperCase(m_connectors[below(static_cast<unsigned int>(m_connectors.size()))]);
            if (!isNew(connector.id))
                continue;
            m_connectors.push_back(connector.id);
            topology.connectors.push_back(connector);
        }
        for (unsigned int i = 0; i < subunits; ++i)
        {
            sim::Subunit subunit;
            fill(subunit, owner, 100 + i);
            topology.subunits.push_back(subunit);
        }
        addNeighbours(topology);
        addPaths(topology);
        return topology;
    }

    void fill(sim::Part& part, const std::string& owner, std::size_t localId)
    {
        static const GUID jacks[] = {KSNODETYPE_SPEAKER, KSNODETYPE_HEADPHONES, KSNODETYPE_MICROPHONE,
                                     KSNODETYPE_LINE_CONNECTOR};
        static const GUID nodes[] = {KSNODETYPE_VOLUME, KSNODETYPE_VOLUME, KSNODETYPE_MUTE, KSNODETYPE_SUM};
        part.localId = static_cast<std::uint32_t>(localId);
        part.id = owner + "/part" + std::to_string(localId);
        part.name = chance(90) ? sim::Text("Part " + std::to_string(++m_names)) : sim::Text();
        part.subType = localId >= 100 || chance(10) ? nodes[below(4)] : jacks[below(4)];
        if (chance(80) && part.subType == GUID(KSNODETYPE_VOLUME))
            part.volume = sim::VolumeControl{{{-5000.0f, 0.0f, 0.5f, -static_cast<float>(m_names)}}};
        if (chance(80) && part.subType == GUID(KSNODETYPE_MUTE))
            part.mute = sim::MuteControl{chance(50)};
        if (chance(15))
            part.selector = sim::SelectorControl{};
    }

    void addNeighbours(sim::Topology& topology)
    {
        std::vector<sim::Part*> parts;
        for (sim::Connector& connector : topology.connectors)
            parts.push_back(&connector);
        for (sim::Subunit& subunit : topology.subunits)
            parts.push_back(&subunit);
        for (sim::Part* part : parts)
        {
            for (std::vector<std::string>* list : {&part->incoming, &part->outgoing})
            {
                for (unsigned int i = below(4); i > 0; --i)
                    list->push_back(parts[below(static_cast<unsigned int>(parts.size()))]->id);
            }
        }
    }

    void addPaths(sim::Topology& topology)
    {
        for (const sim::Connector& from : topology.connectors)
        {
            for (const sim::Connector& to : topology.connectors)
            {
                if (chance(20))
                    topology.signalPaths.push_back({from.id, to.id, {}, chance(20)});
            }
        }
    }

    void addJoins()
    {
        const unsigned int joins = static_cast<unsigned int>(m_connectors.size());
        for (unsigned int i = 0; i < joins; ++i)
        {
            sim::Join join;
            join.from = m_connectors[below(joins)];
            join.bothWays = chance(70);
            if (chance(90))
                join.to = m_connectors[below(joins)];
            else
                join.toDevice = "{2}.\\\\?\\nowhere#" + std::to_string(below(2));
            if (join.from != join.to)
                m_machine.joins.push_back(join);
        }
    }

    bool isNew(const std::string& id) const
    {
        return std::find(m_connectors.begin(), m_connectors.end(), id) == m_connectors.end();
    }

    static std::string upperCase(std::string text)
    {
        for (char& c : text)
            c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        return text;
    }

    std::mt19937 m_engine;
    sim::Machine m_machine;
    std::vector<std::string> m_connectors;
    unsigned int m_names = 0;
};
}

sim::Machine randomConnections(std::uint32_t seed)
{
    return Generator(seed).generate();
}
}
