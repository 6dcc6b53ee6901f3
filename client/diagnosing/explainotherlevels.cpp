#include "client/diagnosing/explainotherlevels.h"

#include "sonavit/text.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

namespace sonavit::diagnosing
{
namespace
{
/// Why a level is none of the endpoint's.
enum class Why
{
    otherConnector, ///< it is next to a connector that the search does not reach
    leadsAway,      ///< it is fed from the road and does not lead back
    leadsHere,      ///< it feeds the road and is not fed from there
    apart,          ///< no wire connects it with the road
    otherKind       ///< it is no volume node
};

/// The number of reasons.
constexpr std::size_t reasonCount = 5;

/// Sorts the levels of the card that are not on the road.
class OtherLevels
{
public:
    OtherLevels(FactList& facts, const Subject& subject, const Wiring& wiring, const Road& road)
        : m_facts(facts),
          m_wiring(wiring),
          m_road(road)
    {
        std::vector<EndpointId> ids;
        for (const Endpoint& endpoint : subject.place.card.endpoints())
        {
            ids.push_back(endpoint.id());
            const sim::Endpoint* const surveyed = surveyedEndpoint(subject.survey, endpoint.id());
            if (endpoint.id() != subject.endpoint().id() && surveyed != nullptr)
                m_others.emplace_back(endpoint.description().value_or(endpoint.title()), roadOf(wiring, *surveyed));
        }
        const std::vector<const sim::Device*> devices = wiring.devicesOf(ids);
        m_devices.insert(devices.begin(), devices.end());
        sort();
    }

    void explain()
    {
        addMixedPaths();
        addFact(Why::otherConnector, {"is next to a connector", "are next to connectors"},
                " that the search does not reach, as no signal path leads there", "IDeviceTopology::GetSignalPath");
        addFact(Why::leadsAway, {"gets", "get"}, " the sound of these connectors and passes it on to none of them",
                "IPart::EnumPartsOutgoing");
        addFact(Why::leadsHere, {"passes", "pass"}, " sound to these connectors without getting it from any of them",
                "IPart::EnumPartsOutgoing");
        addFact(Why::apart, {"has", "have"}, " no wire from or to these connectors", "IPart::EnumPartsOutgoing");
        addFact(Why::otherKind, {"belongs", "belong"}, " to a node of another kind, and only volume nodes count",
                "IPart::GetSubType");
    }

private:
    void sort()
    {
        for (std::size_t node = 0; node < m_wiring.nodes().size(); ++node)
        {
            const Wiring::Node& known = m_wiring[node];
            if (m_devices.count(known.device) == 0 || m_road.has(node) || !known.part->volume)
                continue;
            const Why why = !known.isOfType(KSNODETYPE_VOLUME) ? Why::otherKind
                            : known.isNextToConnector          ? Why::otherConnector
                            : m_road.fed.count(node) != 0      ? Why::leadsAway
                            : m_road.feeding.count(node) != 0  ? Why::leadsHere
                                                               : Why::apart;
            m_levels[static_cast<std::size_t>(why)].push_back(node);
        }
    }

    /// The paths that would be followed if they did not mix.
    void addMixedPaths()
    {
        std::vector<std::string> names;
        std::string device;
        for (const sim::Device* const each : m_devices)
        {
            for (const sim::SignalPath& path : each->topology->signalPaths)
            {
                if (path.mixed && isOnRoad(path.from) != isOnRoad(path.to))
                {
                    names.push_back(nameOf(path.from) + " to " + nameOf(path.to));
                    device = each->id;
                }
            }
        }
        if (!names.empty())
            m_facts.add(text::counted(names.size(), "more signal path") + (names.size() == 1 ? " passes" : " pass") +
                            " a sum, which mixes several sounds. The search does not follow that: " + listed(names) +
                            ".",
                        "IDeviceTopology::GetSignalPath", device);
    }

    bool isOnRoad(const std::string& connector) const
    {
        return std::any_of(m_road.stops.begin(), m_road.stops.end(),
                           [&](const Road::Stop& stop) { return m_wiring[stop.connector].part->id == connector; });
    }

    std::string nameOf(const std::string& connector) const
    {
        const auto& nodes = m_wiring.nodes();
        const auto found = std::find_if(nodes.begin(), nodes.end(),
                                        [&](const Wiring::Node& node) { return node.part->id == connector; });
        return found == nodes.end() ? "-" : diagnosing::nameOf(*found);
    }

    /// A verb for one thing and for several.
    struct Verb
    {
        const char* one;
        const char* several;
    };

    void addFact(Why why, const Verb& verb, const std::string& what, const std::string& call)
    {
        const std::vector<std::size_t>& levels = m_levels[static_cast<std::size_t>(why)];
        if (levels.empty())
            return;
        std::vector<std::string> names;
        std::set<std::string> devices;
        for (const std::size_t level : levels)
        {
            names.push_back(diagnosing::nameOf(m_wiring[level]) + ownersOf(level));
            devices.insert(m_wiring[level].device->id);
        }
        m_facts.add(text::counted(levels.size(), "other level") + " " + (levels.size() == 1 ? verb.one : verb.several) +
                        what + ": " + listed(names) + ".",
                    call, devices.size() == 1 ? *devices.begin() : std::string());
    }

    /// " (of Microphone 2)", the endpoints that the level acts on.
    std::string ownersOf(std::size_t level) const
    {
        std::vector<std::string> names;
        for (const auto& [name, road] : m_others)
        {
            if (road.has(level))
                names.push_back(text::printable(name));
        }
        return names.empty() ? " (of no endpoint)" : " (of " + listed(names) + ")";
    }

    FactList& m_facts;
    const Wiring& m_wiring;
    const Road& m_road;
    std::vector<std::pair<std::string, Road>> m_others; ///< of the card's other endpoints
    std::set<const sim::Device*> m_devices;             ///< those behind the card's endpoints
    std::array<std::vector<std::size_t>, reasonCount> m_levels;
};
}

void addOtherLevels(FactList& facts, const Subject& subject, const Wiring& wiring, const Road& road)
{
    OtherLevels(facts, subject, wiring, road).explain();
}
}
