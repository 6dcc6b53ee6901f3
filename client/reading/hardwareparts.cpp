#include "COM/tasktext.h"
#include "client/reading/hardwarereader.h"
#include "client/reading/hardwaresearch.h"
#include "client/reading/text.h"

#include <algorithm>
#include <numeric>

namespace sonavit::reading
{
namespace
{
/// No part has more neighbours, and no device more parts.
constexpr UINT mostNeighbours = 4096;
constexpr std::size_t mostParts = 0x10000;
/// After so many failures in a row the rest of a list is taken as lost.
constexpr unsigned mostFailures = 16;

/// Sets of devices that become one when a join connects them.
class Islands
{
public:
    explicit Islands(std::size_t count) : m_parents(count) { std::iota(m_parents.begin(), m_parents.end(), 0); }

    std::size_t of(std::size_t device)
    {
        while (m_parents[device] != device)
        {
            m_parents[device] = m_parents[m_parents[device]];
            device = m_parents[device];
        }
        return device;
    }

    void unite(std::size_t one, std::size_t other) { m_parents[of(one)] = of(other); }

private:
    std::vector<std::size_t> m_parents;
};
}

Judge HardwareReader::judgeOfPart(std::size_t part)
{
    return {m_map.objectOf(part), m_map.parts[part].problems};
}

/// The position of a part, which is new unless a part with the same id is known, or one with the same number in the
/// same device where one of the two has no id. HardwarePart::none if there are too many parts.
std::size_t HardwareReader::addPart(Part part, std::size_t device, Place place)
{
    HardwarePart found;
    found.device = device;
    found.id = readId(*part, device);
    std::size_t index = found.id.empty() ? HardwarePart::none : m_map.find(PartId(found.id));
    if (index == HardwarePart::none)
    {
        found.part = std::move(part);
        index = addPart(std::move(found));
    }
    if (index != HardwarePart::none && place == Place::graph && m_map.parts[index].graphPosition == HardwarePart::none)
        putIntoGraph(index);
    return index;
}

/// The same for a part whose id is not known.
std::size_t HardwareReader::addPart(HardwarePart found)
{
    found.number = readNumber(*found.part, judgeOf(found.device));
    const std::pair<std::size_t, std::int64_t> number(found.device, found.number ? std::int64_t{*found.number} : -1);
    const auto known = m_numbers.find(number);
    std::size_t index = m_map.parts.size();
    if (known != m_numbers.end() && (found.id.empty() || m_map.parts[known->second].id.empty()))
    {
        index = known->second;
        if (m_map.parts[index].id.empty())
            m_map.parts[index].id = found.id;
    }
    else if (index >= mostParts)
        return HardwarePart::none;
    else
    {
        m_map.devices[found.device].parts.push_back(index);
        m_map.parts.push_back(std::move(found));
        m_numbers.emplace(number, index);
        readFacts(m_map.parts[index], judgeOfPart(index));
    }
    m_map.partIndexes.emplace(m_map.partId(index), index);
    return index;
}

void HardwareReader::putIntoGraph(std::size_t part)
{
    HardwarePart& known = m_map.parts[part];
    known.graphPosition = m_map.graphParts.size();
    m_map.graphParts.push_back(part);
    m_map.devices[known.device].facts.parts.push_back(part);
}

/// The global id of a part, of which only the device is known.
std::string HardwareReader::readId(IPart& part, std::size_t device)
{
    TaskText id(TaskText::NullText::skipped);
    const HRESULT result = part.GetGlobalId(id.put());
    return judgeOf(device).gives(result, *id.put(), {"IPart::GetGlobalId"}) ? utf8(id.get()) : std::string();
}

std::optional<std::uint32_t> HardwareReader::readNumber(IPart& part, Judge judge)
{
    UINT number = 0;
    if (!judge.passes(part.GetLocalId(&number), {"IPart::GetLocalId"}))
        return std::nullopt;
    return static_cast<std::uint32_t>(number);
}

/// Reads name and type. A part without a name is no problem.
void HardwareReader::readFacts(HardwarePart& part, Judge judge)
{
    {
        TaskText name(TaskText::NullText::skipped);
        const HRESULT result = part.part->GetName(name.put());
        const bool isRead = result == E_NOTFOUND || judge.passes(result, {"IPart::GetName"});
        if (isRead && name.get() != nullptr && *name.get() != 0)
            part.name = utf8(name.get());
    }
    GUID type = {};
    if (judge.passes(part.part->GetSubType(&type), {"IPart::GetSubType"}) && !guidOf(type).isNull())
        part.type = guidOf(type);
}

/// Reads the parts on one side, once.
void HardwareReader::readSide(std::size_t part, HardwarePart::Side HardwarePart::*side, Place place)
{
    HardwarePart& known = m_map.parts[part];
    HardwarePart::Side& found = known.*side;
    if (found.isRead)
        return;
    found.isRead = true;
    const bool isIncoming = side == &HardwarePart::incoming;
    IPartsList* list = nullptr;
    const HRESULT result = isIncoming ? known.part->EnumPartsIncoming(&list) : known.part->EnumPartsOutgoing(&list);
    const char* const name = isIncoming ? "IPart::EnumPartsIncoming" : "IPart::EnumPartsOutgoing";
    if (!judgeOfPart(part).gives(result, list, {name}, {E_NOTFOUND}))
        return;
    const Handle<IPartsList> holder(list);
    std::vector<std::size_t> parts;
    readList(part, *list, parts, place);
    found.parts = std::move(parts);
}

void HardwareReader::readList(std::size_t part, IPartsList& list, std::vector<std::size_t>& parts, Place place)
{
    UINT count = 0;
    if (!judgeOfPart(part).passes(list.GetCount(&count), {"IPartsList::GetCount"}))
        return;
    if (count > mostNeighbours)
        judgeOfPart(part).fails(invalidData, {"IPartsList::GetCount"});
    unsigned failures = 0;
    for (UINT index = 0; index < std::min(count, mostNeighbours) && failures < mostFailures; ++index)
    {
        IPart* neighbour = nullptr;
        const HRESULT result = list.GetPart(index, &neighbour);
        const bool isThere = judgeOfPart(part).gives(result, neighbour, {"IPartsList::GetPart", nullptr, index});
        failures = isThere ? 0 : failures + 1;
        const std::size_t position =
            isThere ? addPart(Part(neighbour), m_map.parts[part].device, place) : HardwarePart::none;
        if (position != HardwarePart::none)
            parts.push_back(position);
    }
}

void HardwareReader::addWires()
{
    for (std::size_t i = 0; i < m_map.graphParts.size(); ++i) // grows meanwhile
    {
        const std::size_t part = m_map.graphParts[i];
        if (m_map.devices[m_map.parts[part].device].facts.kind == Graph::Device::Kind::closed)
            continue;
        readSide(part, &HardwarePart::outgoing, Place::graph);
        for (const std::size_t target : m_map.parts[part].outgoing.parts)
        {
            std::vector<std::size_t>& sources = m_map.parts[target].sources;
            if (!sources.empty() && sources.back() == part)
                continue;
            sources.push_back(part);
            m_map.edges.push_back({Graph::Edge::Kind::wire, part, target, std::nullopt});
        }
    }
}

void HardwareReader::readSurroundings()
{
    for (std::size_t device = 0; device < m_map.devices.size(); ++device)
    {
        if (m_map.devices[device].facts.kind == Graph::Device::Kind::closed)
            openThroughPeer(device);
    }
    const auto readBoth = [&](std::size_t part)
    {
        readSide(part, &HardwarePart::incoming, Place::surroundings);
        readSide(part, &HardwarePart::outgoing, Place::surroundings);
    };
    const auto readVolumes = [&](const std::vector<std::size_t>& parts)
    {
        for (const std::size_t part : parts)
        {
            if (isOfType(m_map.parts[part], KSNODETYPE_VOLUME))
                readBoth(part);
        }
    };
    for (std::size_t part = 0; part < m_map.parts.size(); ++part) // grows meanwhile
    {
        if (!m_map.parts[part].isConnector)
            continue;
        readBoth(part);
        readVolumes(m_map.parts[part].incoming.parts);
        readVolumes(m_map.parts[part].outgoing.parts);
    }
}

bool HardwareReader::isNextToVolume(const HardwarePart& part) const
{
    const auto isVolume = [&](std::size_t neighbour) { return isOfType(m_map.parts[neighbour], KSNODETYPE_VOLUME); };
    return std::any_of(part.incoming.parts.begin(), part.incoming.parts.end(), isVolume) ||
           std::any_of(part.outgoing.parts.begin(), part.outgoing.parts.end(), isVolume);
}

void HardwareReader::findIslands()
{
    Islands islands(m_map.devices.size());
    for (const auto& [one, other] : m_joinedDevices)
        islands.unite(one, other);
    for (std::size_t device = 0; device < m_map.devices.size(); ++device)
    {
        for (const std::size_t part : m_map.devices[device].connectors)
            islands.unite(device, m_map.parts[part].device);
    }
    for (std::size_t device = 0; device < m_map.devices.size(); ++device)
        m_map.devices[device].island = islands.of(device);
    m_map.hasVolumes.assign(m_map.devices.size(), false);
    std::vector<std::size_t> connectors;
    for (std::size_t i = 0; i < m_map.parts.size(); ++i)
    {
        const HardwarePart& part = m_map.parts[i];
        if (!part.isConnector)
            continue;
        connectors.push_back(i);
        if (isNextToVolume(part))
            m_map.hasVolumes[m_map.devices[part.device].island] = true;
    }
    for (const VolumeBetween& volume : volumesBetween(m_map, connectors))
        m_map.hasVolumes[m_map.devices[m_map.parts[volume.part].device].island] = true;
}

HardwareMap walkHardware(IMMDeviceEnumerator& enumerator, const std::vector<Card>& cards)
{
    HardwareMap map;
    HardwareReader reader(enumerator, map);
    for (const Card& card : cards)
    {
        for (const Endpoint& endpoint : card.endpoints())
            reader.addListedEndpoint(endpoint);
    }
    reader.followConnectors();
    reader.addWires();
    reader.readSurroundings();
    reader.findIslands();
    return map;
}
}
