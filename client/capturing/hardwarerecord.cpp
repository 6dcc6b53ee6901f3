#include "client/capturing/hardwarerecord.h"

#include "client/capturing/hardwaresurvey.h"
#include "simulator/machine/identity.h"

#include <algorithm>
#include <utility>

namespace sonavit::capturing
{
std::vector<std::size_t> HardwareRecord::Order::all() const
{
    std::vector<std::size_t> parts = connectors;
    parts.insert(parts.end(), subunits.begin(), subunits.end());
    return parts;
}

void HardwareRecord::write()
{
    m_orders.resize(m_devices.size());
    for (std::size_t device = 0; device < m_devices.size(); ++device)
        order(device);
    giveIds();
    for (std::size_t device = 0; device < m_devices.size(); ++device)
        writeDevice(device);
    for (const Order& order : m_orders)
    {
        for (const std::size_t part : order.connectors)
            writeJoin(part);
    }
    for (std::size_t device = 0; device < m_devices.size(); ++device)
        report(device);
}

void HardwareRecord::order(std::size_t device)
{
    Order& order = m_orders[device];
    order.connectors = filled(device, m_devices[device].connectors, true);
    order.subunits = filled(device, m_devices[device].subunits, false);
    giveLocalIds(order);
}

/// The places that the topology has not given take the parts that it does not list, by local id; those that are left
/// over come last.
std::vector<std::size_t> HardwareRecord::filled(std::size_t device, const std::vector<std::size_t>& places,
                                                bool isConnector)
{
    std::vector<std::size_t> unlisted;
    for (const std::size_t part : m_devices[device].met)
    {
        const FoundPart& found = m_parts[part];
        if (found.device == device && found.isConnector == isConnector && !found.isListed)
            unlisted.push_back(part);
    }
    std::stable_sort(unlisted.begin(), unlisted.end(),
                     [&](std::size_t left, std::size_t right)
                     {
                         const auto key = [&](std::size_t part)
                         { return std::pair(!m_parts[part].number, m_parts[part].number.value_or(0)); };
                         return key(left) < key(right);
                     });
    std::vector<std::size_t> parts = places;
    auto next = unlisted.begin();
    for (std::size_t& part : parts)
    {
        if (part == none)
            part = next == unlisted.end() ? invented(device, isConnector) : *next++;
    }
    if (next != unlisted.end() && !m_devices[device].isStub)
        m_recorder.note("The topology of " + m_devices[device].id + " lacks parts to which others lead.");
    parts.insert(parts.end(), next, unlisted.end());
    return parts;
}

std::size_t HardwareRecord::invented(std::size_t device, bool isConnector)
{
    FoundPart part;
    part.device = device;
    part.isConnector = isConnector;
    m_parts.push_back(std::move(part));
    return m_parts.size() - 1;
}

void HardwareRecord::giveLocalIds(const Order& order)
{
    std::set<std::uint32_t> taken;
    for (const std::size_t part : order.all())
    {
        std::optional<std::uint32_t>& number = m_parts[part].number;
        if (!number || taken.insert(*number).second)
            continue;
        m_recorder.note("Two parts of " + m_devices[m_parts[part].device].id + " have the same local id.");
        number.reset();
    }
    giveLocalIds(order.connectors, &sim::usualConnectorLocalId, taken);
    giveLocalIds(order.subunits, &sim::usualSubunitLocalId, taken);
}

/// Parts whose local id is not known get the usual one.
void HardwareRecord::giveLocalIds(const std::vector<std::size_t>& parts, std::uint32_t (*usual)(std::size_t),
                                  std::set<std::uint32_t>& taken)
{
    for (std::size_t position = 0; position < parts.size(); ++position)
    {
        FoundPart& part = m_parts[parts[position]];
        for (std::size_t further = position; !part.number; ++further)
        {
            if (taken.insert(usual(further)).second)
                part.number = usual(further);
        }
        part.record.localId = *part.number;
    }
}

/// A part whose global id could not be read each time has the one that a connector calls it, or an invented one: it is
/// the same when no time gives it.
void HardwareRecord::giveIds()
{
    std::vector<std::size_t> without;
    for (const Order& order : m_orders)
    {
        for (const std::size_t index : order.all())
        {
            FoundPart& part = m_parts[index];
            if (part.id.empty() || part.isNameless || part.isNull)
                without.push_back(index);
            else
                m_ids.insert(part.record.id = part.id);
        }
    }
    const auto take = [&](std::size_t index, const std::string& id)
    {
        if (!id.empty() && m_parts[index].record.id.empty() && m_ids.insert(id).second)
            m_parts[index].record.id = id;
    };
    for (const std::size_t index : without)
        take(index, m_parts[index].nearName);
    for (const std::size_t index : without)
    {
        FoundPart& part = m_parts[index];
        if (part.record.id.empty())
            take(index, unusedId(sim::partId(m_devices[part.device].id, part.record.localId)));
        part.record.reportsId = part.isNameless || !part.isNull;
    }
}

/// An id that no other part has, and that is not taken for a short one.
std::string HardwareRecord::unusedId(std::string id) const
{
    if (!isUsableId(id))
        id.insert(0, "'");
    while (m_ids.count(id) != 0)
        id += "'";
    return id;
}

/// A device that cannot be opened is there for the sake of its parts, or of calls that have failed.
void HardwareRecord::writeDevice(std::size_t device)
{
    FoundDevice& found = m_devices[device];
    const bool hasTopology = found.topology.get() != nullptr || found.isStub;
    if (found.isStub && m_orders[device].all().empty() && found.failures.isEmpty())
        return;
    if (found.endpoint == none)
        m_machine.adapters.push_back(std::move(found.adapter));
    if (!hasTopology)
        return;
    sim::Topology topology = topologyOf(device);
    if (found.endpoint == none)
        m_machine.adapters.back().topology = std::move(topology);
    else
        m_machine.endpoints[found.endpoint].topology = std::move(topology);
}

sim::Topology HardwareRecord::topologyOf(std::size_t device)
{
    sim::Topology topology;
    topology.deviceId = m_devices[device].reportedId;
    for (const std::size_t part : m_orders[device].connectors)
    {
        refer(part);
        topology.connectors.push_back(m_parts[part].record);
    }
    for (const std::size_t part : m_orders[device].subunits)
    {
        refer(part);
        const sim::Part& record = m_parts[part].record;
        static_cast<sim::Part&>(topology.subunits.emplace_back()) = record;
    }
    topology.signalPaths = signalPaths(device);
    return topology;
}

/// Makes the record of a part refer to others.
void HardwareRecord::refer(std::size_t part)
{
    FoundPart& found = m_parts[part];
    const std::size_t selected = selectedPart(part);
    const bool isFed = std::find(found.incoming.begin(), found.incoming.end(), selected) != found.incoming.end();
    found.record.incoming = idsOf(found.incoming, found.device, selected == none || isFed ? part : selected);
    found.record.outgoing = idsOf(found.outgoing, found.device, part);
    if (!found.record.selector || found.record.selector->selection == 0)
        return;
    const std::vector<std::string>& ids = found.record.incoming;
    if (selected != none && std::find(ids.begin(), ids.end(), m_parts[selected].record.id) != ids.end())
        return;
    m_recorder.note(found.record.id + " selects what is no incoming part.");
    found.record.selector->selection = 0;
}

/// The part of the same device with the local id that a selector selects.
std::size_t HardwareRecord::selectedPart(std::size_t part) const
{
    const FoundPart& found = m_parts[part];
    if (!found.record.selector || found.record.selector->selection == 0)
        return none;
    for (const std::size_t other : m_orders[found.device].all())
    {
        if (m_parts[other].record.localId == found.record.selector->selection)
            return other;
    }
    return none;
}

/// @param filler in the place of what cannot be read
std::vector<std::string> HardwareRecord::idsOf(const std::vector<std::size_t>& parts, std::size_t device,
                                               std::size_t filler)
{
    std::vector<std::string> ids;
    for (const std::size_t part : parts)
    {
        const FoundPart& found = m_parts[part == none ? filler : part];
        if (found.device == device)
            ids.push_back(found.record.id);
        else
            m_recorder.note("A list of " + m_devices[device].id + " contains a part of another device.");
    }
    return ids;
}

/// Whether two connectors report each other and each other's device.
bool HardwareRecord::isMutual(std::size_t part) const
{
    const FoundPart& nearEnd = m_parts[part];
    const FoundPart& farEnd = m_parts[nearEnd.farSide.part];
    const auto names = [&](const FarSide& side, std::size_t device)
    { return !side.device || *side.device == m_devices[device].id; };
    return farEnd.farSide.part == part && names(nearEnd.farSide, farEnd.device) &&
           names(farEnd.farSide, nearEnd.device);
}

void HardwareRecord::writeJoin(std::size_t part)
{
    const FoundPart& nearEnd = m_parts[part];
    if (!nearEnd.farSide.isJoined)
        return;
    sim::Join join;
    join.from = nearEnd.record.id;
    join.bothWays = false;
    if (nearEnd.farSide.part == part)
        m_recorder.note(nearEnd.record.id + " is joined to itself; a machine file contains only the device's id.");
    if (nearEnd.farSide.part == none || nearEnd.farSide.part == part)
    {
        join.toDevice = nearEnd.farSide.device.value_or("");
        m_machine.joins.push_back(std::move(join));
        return;
    }
    const FoundPart& farEnd = m_parts[nearEnd.farSide.part];
    join.to = farEnd.record.id;
    join.bothWays = isMutual(part);
    if (nearEnd.farSide.device && *nearEnd.farSide.device != m_devices[farEnd.device].id)
        join.toDevice = nearEnd.farSide.device;
    const bool isTold = join.bothWays && m_told.count(part) != 0; // by the join of the far connector
    if (join.bothWays)
        m_told.insert(nearEnd.farSide.part);
    if (!isTold)
        m_machine.joins.push_back(std::move(join));
}

/// The connectors that were asked for signal paths, in the order of the machine. A driver may announce thousands of
/// others that it does not hand out.
std::vector<std::size_t> HardwareRecord::connectorsWithPaths(std::size_t device) const
{
    std::unordered_set<std::size_t> asked;
    for (const auto& [ends, path] : m_devices[device].paths)
    {
        asked.insert(ends.first);
        asked.insert(ends.second);
    }
    std::vector<std::size_t> connectors;
    for (const std::size_t connector : m_orders[device].connectors)
    {
        if (asked.count(connector) != 0)
            connectors.push_back(connector);
    }
    return connectors;
}

/// In the order of the connectors.
std::vector<sim::SignalPath> HardwareRecord::signalPaths(std::size_t device)
{
    std::vector<sim::SignalPath> paths;
    const auto add = [&](std::size_t from, std::size_t to, const std::vector<std::size_t>& through, bool isMixed) {
        paths.push_back({m_parts[from].record.id, m_parts[to].record.id, idsOf(through, device, from), isMixed});
    };
    const std::vector<std::size_t> connectors = connectorsWithPaths(device);
    for (const std::size_t from : connectors)
    {
        for (const std::size_t to : connectors)
        {
            const auto found = m_devices[device].paths.find({from, to});
            if (found == m_devices[device].paths.end() || !found->second.isThere)
                continue;
            add(from, to, found->second.through, found->second.isMixed);
            if (found->second.unmixed)
                add(from, to, *found->second.unmixed, false);
        }
    }
    return paths;
}

/// Hands over the failures, in an order that does not depend on how parts were met.
void HardwareRecord::report(std::size_t device)
{
    const FoundDevice& found = m_devices[device];
    found.failures.report(found.id, m_recorder);
    for (const std::size_t part : m_orders[device].all())
    {
        m_parts[part].identity.report(m_parts[part].record.id, m_recorder);
        m_parts[part].failures.report(m_parts[part].record.id, m_recorder);
    }
    const std::vector<std::size_t> connectors = connectorsWithPaths(device);
    for (const std::size_t from : connectors)
    {
        for (const std::size_t to : connectors)
        {
            const auto path = found.paths.find({from, to});
            if (path == found.paths.end())
                continue;
            const std::string& fromId = m_parts[from].record.id;
            const std::string& toId = m_parts[to].record.id;
            path->second.calls.report(found.id, m_recorder, {fromId, toId});
            std::string list = fromId;
            list.append(" to ").append(toId);
            path->second.list.report(list, m_recorder);
        }
    }
}
}
