#include "client/diagnosing/explainroad.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

namespace sonavit::diagnosing
{
namespace
{
using Nodes = std::vector<std::size_t>;

Nodes ofType(const Wiring& wiring, const Nodes& nodes, const GUID& type)
{
    Nodes result;
    std::copy_if(nodes.begin(), nodes.end(), std::back_inserter(result),
                 [&](std::size_t node) { return wiring[node].isOfType(type); });
    return result;
}

/// The parts of a type that feed @p node; if there are none, those that it feeds.
Nodes neighbours(const Wiring& wiring, std::size_t node, const GUID& type)
{
    const Nodes incoming = ofType(wiring, wiring[node].incoming, type);
    return incoming.empty() ? ofType(wiring, wiring[node].outgoing, type) : incoming;
}

/// Finds the mute nodes of volume nodes.
class MuteSearch
{
public:
    explicit MuteSearch(const Wiring& wiring) : m_wiring(wiring) {}

    /// The mute node that mutes along with @p volume; none without one, or if it offers no mute.
    std::size_t of(std::size_t volume) const
    {
        const std::size_t mute = m_wiring[volume].isNextToConnector ? first(volume) : between(volume);
        return mute == Wiring::none || !m_wiring[mute].part->mute ? Wiring::none : mute;
    }

private:
    std::size_t first(std::size_t volume) const
    {
        const Nodes mutes = neighbours(m_wiring, volume, KSNODETYPE_MUTE);
        return mutes.empty() ? Wiring::none : mutes.front();
    }

    std::size_t between(std::size_t volume) const
    {
        const Nodes mutes = ofType(m_wiring, m_wiring.wired(volume), KSNODETYPE_MUTE);
        const auto own = std::find_if(mutes.begin(), mutes.end(), [&](std::size_t mute) { return isOf(mute, volume); });
        return own == mutes.end() ? Wiring::none : *own;
    }

    /// A volume node next to a connector goes first, then the one that feeds the mute node.
    bool isOf(std::size_t mute, std::size_t volume) const
    {
        const Nodes around = m_wiring.wired(mute);
        if (std::any_of(around.begin(), around.end(), [&](std::size_t node) { return !m_wiring[node].isTypeKnown; }))
            return false;
        const Nodes volumes = ofType(m_wiring, around, KSNODETYPE_VOLUME);
        const auto isNext = [&](std::size_t each) { return m_wiring[each].isNextToConnector; };
        if (std::any_of(volumes.begin(), volumes.end(),
                        [&](std::size_t each) { return isNext(each) && first(each) == mute; }))
            return false;
        const auto owner = std::find_if_not(volumes.begin(), volumes.end(), isNext);
        return owner != volumes.end() && *owner == volume;
    }

    const Wiring& m_wiring;
};

/// Parts that wires lead to, or come from, with the position of the first stop from which they do.
using Distances = std::unordered_map<std::size_t, std::size_t>;

Distances distancesFrom(const Wiring& wiring, const Road& road, Nodes Wiring::Node::*side)
{
    Distances distances;
    Nodes reached;
    for (std::size_t stop = 0; stop < road.stops.size(); ++stop)
    {
        const auto add = [&](std::size_t node)
        {
            if (distances.emplace(node, stop).second)
                reached.push_back(node);
        };
        const std::size_t first = reached.size();
        add(road.stops[stop].connector);
        for (std::size_t i = first; i < reached.size(); ++i)
        {
            for (const std::size_t node : wiring[reached[i]].*side)
                add(node);
        }
    }
    return distances;
}

/// Whether neither side of the volume node reports a connector as its neighbour.
bool isBetweenNodes(const Wiring& wiring, std::size_t volume)
{
    const Nodes around = wiring.wired(volume);
    return !wiring[volume].isNextToConnector &&
           std::none_of(around.begin(), around.end(),
                        [&](std::size_t node) { return wiring[node].connector != nullptr; });
}

/// Walks the road.
class RoadSearch
{
public:
    RoadSearch(const Wiring& wiring, const sim::Device& endpoint)
        : m_wiring(wiring),
          m_endpoint(endpoint),
          m_mutes(wiring)
    {
    }

    Road search()
    {
        for (const std::size_t connector : m_wiring.connectorsOf(m_endpoint))
            add({connector, Road::By::start, Wiring::none});
        for (std::size_t stop = 0; stop < m_road.stops.size(); ++stop) // grows meanwhile
        {
            addLevels(stop);
            const Wiring::Node& node = m_wiring[m_road.stops[stop].connector];
            if (node.peer != Wiring::none)
                add({node.peer, Road::By::join, stop});
            addLinked(stop);
        }
        addBetween();
        return std::move(m_road);
    }

private:
    void add(const Road::Stop& stop)
    {
        if (!m_road.reaches(stop.connector))
            m_road.stops.push_back(stop);
    }

    void addLevels(std::size_t stop)
    {
        const std::size_t connector = m_road.stops[stop].connector;
        const bool isFed = !ofType(m_wiring, m_wiring[connector].incoming, KSNODETYPE_VOLUME).empty();
        for (const std::size_t volume : neighbours(m_wiring, connector, KSNODETYPE_VOLUME))
        {
            if (!m_road.has(volume))
                m_road.levels.push_back({volume, m_mutes.of(volume), stop, isFed, offersLevel(volume), stop});
        }
    }

    void addLinked(std::size_t stop)
    {
        const std::size_t connector = m_road.stops[stop].connector;
        for (const std::size_t other : m_wiring.linkedWith(connector))
            add({other, Road::By::path, stop});
    }

    void addBetween()
    {
        const Distances fed = distancesFrom(m_wiring, m_road, &Wiring::Node::outgoing);
        const Distances feeding = distancesFrom(m_wiring, m_road, &Wiring::Node::sources);
        for (const auto& [node, distance] : fed)
            m_road.fed.insert(node);
        for (const auto& [node, distance] : feeding)
            m_road.feeding.insert(node);
        std::vector<const sim::Device*> devices;
        for (const Road::Stop& stop : m_road.stops)
        {
            const sim::Device* const device = m_wiring[stop.connector].device;
            if (std::find(devices.begin(), devices.end(), device) == devices.end())
                devices.push_back(device);
        }
        std::vector<Road::Level> levels;
        for (const sim::Device* const device : devices)
        {
            for (std::size_t node = 0; node < m_wiring.nodes().size(); ++node)
            {
                const auto from = fed.find(node);
                const auto to = feeding.find(node);
                if (m_wiring[node].device == device && m_wiring[node].isOfType(KSNODETYPE_VOLUME) &&
                    from != fed.end() && to != feeding.end() && isBetweenNodes(m_wiring, node))
                    levels.push_back({node, m_mutes.of(node), Wiring::none, false, offersLevel(node),
                                      std::min(from->second, to->second)});
            }
        }
        std::stable_sort(levels.begin(), levels.end(),
                         [](const Road::Level& left, const Road::Level& right)
                         { return left.distance < right.distance; });
        m_road.levels.insert(m_road.levels.end(), levels.begin(), levels.end());
    }

    bool offersLevel(std::size_t volume) const { return m_wiring[volume].part->volume.has_value(); }

    const Wiring& m_wiring;
    const sim::Device& m_endpoint;
    MuteSearch m_mutes;
    Road m_road;
};
}

bool Road::reaches(std::size_t connector) const
{
    return std::any_of(stops.begin(), stops.end(), [&](const Stop& stop) { return stop.connector == connector; });
}

bool Road::has(std::size_t volume) const
{
    return std::any_of(levels.begin(), levels.end(), [&](const Level& level) { return level.volume == volume; });
}

Road roadOf(const Wiring& wiring, const sim::Device& endpoint)
{
    return RoadSearch(wiring, endpoint).search();
}
}
