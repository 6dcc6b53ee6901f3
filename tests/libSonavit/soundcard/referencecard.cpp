#include "tests/libSonavit/soundcard/referencecard.h"

#include "COM/identifiers.h"
#include "simulator/machine/casefolding.h"

#include <algorithm>

namespace support
{
namespace
{
constexpr std::uint32_t noPlace = 0xFFFFFFFF;

bool contains(const std::vector<std::string>& texts, const std::string& text)
{
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

/// The non-mixed paths of the device between two connectors, in this direction.
bool hasPath(const sim::Device& device, const std::string& from, const std::string& to)
{
    const auto joins = [&](const sim::SignalPath& path) { return path.from == from && path.to == to && !path.mixed; };
    return std::any_of(device.topology->signalPaths.begin(), device.topology->signalPaths.end(), joins);
}
}

bool operator==(const ReferenceControl& left, const ReferenceControl& right)
{
    return left.level == right.level && left.mute == right.mute && left.ownerName == right.ownerName &&
           left.ownerType == right.ownerType;
}

void PrintTo(const ReferenceControl& control, std::ostream* out)
{
    *out << control.ownerName << " at " << control.level << " dB, mute " << control.mute;
}

ReferenceCard::ReferenceCard(const sim::Machine& machine, const std::string& instancePath) : m_machine(machine)
{
    for (const sim::Endpoint& endpoint : machine.endpoints)
    {
        const sim::PropertyValue* const path = sim::findProperty(endpoint.properties, propertykeys::instancePath);
        if (path != nullptr && path->text == instancePath)
            (endpoint.flow == eRender ? m_playback : m_record).push_back(&endpoint);
    }
    std::vector<std::string> known;
    for (const auto* side : {&m_playback, &m_record})
    {
        for (const sim::Endpoint* endpoint : *side)
        {
            enter(*endpoint);
            known.push_back(endpoint->id);
        }
    }
    for (std::size_t node = 0; node < m_nodes.size(); ++node)
        expand(node, known);
    for (std::size_t node = 0; node < m_nodes.size(); ++node)
        connect(node);
}

std::vector<std::string> ReferenceCard::internalDevices() const
{
    std::vector<std::string> ids;
    for (const sim::Device* device : m_internal)
        ids.push_back(device->id);
    return ids;
}

std::size_t ReferenceCard::selectors() const
{
    std::size_t count = 0;
    for (const sim::Device* device : m_internal)
    {
        if (!device->topology)
            continue;
        for (const sim::Subunit& subunit : device->topology->subunits)
            count += subunit.selector ? 1 : 0;
    }
    return count;
}

ReferenceAnswer ReferenceCard::controlsOf(const sim::Endpoint& endpoint) const
{
    ReferenceAnswer answer;
    std::vector<std::uint32_t> queue;
    if (endpoint.topology)
    {
        for (const sim::Connector& connector : endpoint.topology->connectors)
            queue.push_back(find(connector.id));
    }
    for (std::size_t position = 0; position < queue.size(); ++position)
    {
        const std::uint32_t node = queue[position];
        if (node >= m_nodes.size())
        {
            answer.leftTheGraph = true;
            return answer;
        }
        controlsAt(m_nodes[node], answer.controls);
        for (const std::uint32_t link : m_links[node])
        {
            if (std::find(queue.begin(), queue.end(), link) == queue.end())
                queue.push_back(link);
        }
    }
    return answer;
}

std::uint32_t ReferenceCard::find(const std::string& connectorId) const
{
    for (std::size_t node = 0; node < m_nodes.size(); ++node)
    {
        if (sim::equalNoCase(m_nodes[node], connectorId))
            return static_cast<std::uint32_t>(node);
    }
    return noPlace;
}

void ReferenceCard::enter(const sim::Device& device)
{
    if (!device.topology)
        return;
    for (const sim::Connector& connector : device.topology->connectors)
    {
        if (find(connector.id) != noPlace)
            continue;
        m_nodes.push_back(connector.id);
        m_links.emplace_back();
    }
}

/// Adds the device on the far side of a node, or the one on this side if the far one cannot be opened; then records
/// the join.
void ReferenceCard::expand(std::size_t node, std::vector<std::string>& known)
{
    const std::optional<sim::Peer> peer = m_machine.peer(m_nodes[node]);
    const std::string farId = peer ? peer->device.value_or("") : "";
    const sim::Device* const farDevice = farId.empty() ? nullptr : m_machine.openDevice(farId);
    const auto isFar = [&](const sim::Device* device)
    { return farDevice != nullptr && sim::equalNoCase(device->id, farDevice->id); };
    if (!contains(known, farId) && std::none_of(m_internal.begin(), m_internal.end(), isFar))
    {
        if (farDevice != nullptr)
        {
            m_internal.push_back(farDevice);
            known.push_back(farId);
            enter(*farDevice);
        }
        else
        {
            const sim::Device& owner = *m_machine.part(m_nodes[node]).device;
            const std::string ownerId = owner.topology->deviceId.value_or("");
            if (!contains(known, ownerId))
            {
                enter(owner);
                known.push_back(ownerId);
            }
        }
    }
    if (peer && !peer->connector.empty())
        m_links[node].push_back(find(peer->connector));
}

/// Signal paths, either way, within the device of the first connector of a pair.
void ReferenceCard::connect(std::size_t node)
{
    const sim::Device& device = *m_machine.part(m_nodes[node]).device;
    for (std::size_t other = node + 1; other < m_nodes.size(); ++other)
    {
        if (!hasPath(device, m_nodes[node], m_nodes[other]) && !hasPath(device, m_nodes[other], m_nodes[node]))
            continue;
        m_links[node].push_back(static_cast<std::uint32_t>(other));
        m_links[other].push_back(static_cast<std::uint32_t>(node));
    }
}

/// The volume nodes that feed the connector or, if there are none, those that it feeds.
void ReferenceCard::controlsAt(const std::string& connectorId, std::vector<ReferenceControl>& controls) const
{
    const sim::Connector& connector = *m_machine.part(connectorId).connector;
    const auto ofType = [&](const std::vector<std::string>& ids, const GUID& type)
    {
        std::vector<const sim::Part*> parts;
        for (const std::string& id : ids)
        {
            const sim::Part* const part = m_machine.part(id).part;
            if (part->subType == type)
                parts.push_back(part);
        }
        return parts;
    };
    std::vector<const sim::Part*> volumes = ofType(connector.incoming, KSNODETYPE_VOLUME);
    if (volumes.empty())
        volumes = ofType(connector.outgoing, KSNODETYPE_VOLUME);
    for (const sim::Part* volume : volumes)
    {
        if (!volume->volume)
            continue;
        std::vector<const sim::Part*> mutes = ofType(volume->incoming, KSNODETYPE_MUTE);
        if (mutes.empty())
            mutes = ofType(volume->outgoing, KSNODETYPE_MUTE);
        const bool muted = !mutes.empty() && mutes.front()->mute;
        controls.push_back({volume->volume->channels.front().level, muted ? (mutes.front()->mute->muted ? 1 : 0) : -1,
                            connector.name.value_or(""), connector.subType});
    }
}
}
