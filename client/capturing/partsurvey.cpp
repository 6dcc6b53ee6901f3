// The survey's parts: their ids, their data and their neighbours.
#include "COM/interfacequery.h"
#include "client/capturing/controlsurvey.h"
#include "client/capturing/hardwaresurvey.h"
#include "client/capturing/listitems.h"
#include "client/capturing/taken.h"
#include "client/capturing/textanswer.h"
#include "simulator/machine/namedvalues.h"

#include <utility>

namespace sonavit::capturing
{
using reading::Handle;

bool isUsableId(const std::optional<std::string>& id)
{
    return id && !id->empty() && id->front() != '/';
}

/// The local id is asked for only if no part with the global id is known.
HardwareSurvey::Identity HardwareSurvey::identityOf(IPart& part)
{
    Identity identity;
    std::optional<std::string> id;
    const HRESULT result = readText([&](LPWSTR* text) { return part.GetGlobalId(text); }, id);
    identity.isNameless = !identity.failures.passes(result, {"IPart::GetGlobalId"});
    identity.isNull = !identity.isNameless && !isUsableId(id);
    if (isUsableId(id))
        identity.id = *id;
    else if (id)
        m_recorder.note("A part reports the global id \"" + *id + "\", which no machine file can contain.");
    if (m_partsById.count(identity.id) != 0)
        return identity;
    UINT number = 0;
    identity.code = part.GetLocalId(&number);
    if (identity.failures.passes(identity.code, {"IPart::GetLocalId"}))
        identity.number = static_cast<std::uint32_t>(number);
    return identity;
}

/// A known part; a part of @p device with the same local id is meant if one of the two has no global id.
std::size_t HardwareSurvey::find(const Identity& identity, std::size_t device) const
{
    const auto known = m_partsById.find(identity.id);
    if (known != m_partsById.end())
        return known->second;
    if (device == none || !identity.number)
        return none;
    const auto& numbers = m_devices[device].numbers;
    const auto numbered = numbers.find(*identity.number);
    if (numbered == numbers.end())
        return none;
    return identity.id.empty() || m_parts[numbered->second].id.empty() ? numbered->second : none;
}

/// The part that a list contains, which is new unless it is known; none if it reports neither id.
std::size_t HardwareSurvey::meet(const Handle<IPart>& part, std::size_t device, const Identity& identity)
{
    std::size_t index = find(identity, device);
    if (index == none && identity.isUnknown())
        return none;
    if (index == none)
    {
        FoundPart found;
        found.device = device;
        found.part = part;
        index = addPart(std::move(found));
        askKind(m_parts[index], std::nullopt);
    }
    attach(index, {part, nullptr}, identity);
    return index;
}

std::size_t HardwareSurvey::addPart(FoundPart part)
{
    m_devices[part.device].met.push_back(m_parts.size());
    m_parts.push_back(std::move(part));
    return m_parts.size() - 1;
}

/// Notes what a part has answered at a meeting.
void HardwareSurvey::attach(std::size_t part, const Meeting& meeting, const Identity& identity)
{
    FoundPart& known = m_parts[part];
    if (known.isConnector && known.connector.get() == nullptr)
        known.connector = meeting.connector;
    if (known.part.get() == nullptr)
    {
        known.part = meeting.part;
        askKind(known, known.isConnector);
    }
    known.isNull = known.isNull || identity.isNull;
    known.isNameless = known.isNameless || identity.isNameless;
    known.identity.append(identity.failures);
    if (known.id.empty())
        known.id = identity.id;
    if (!identity.id.empty())
        m_partsById.emplace(identity.id, part);
    if (!identity.number)
        return;
    m_devices[known.device].numbers.emplace(*identity.number, part);
    known.number = known.number.value_or(*identity.number);
}

/// Whether a part is a connector is known of those that a topology lists.
void HardwareSurvey::askKind(FoundPart& part, std::optional<bool> isConnector)
{
    PartType type = Subunit;
    const bool isSure = part.failures.passes(part.part->GetPartType(&type), {"IPart::GetPartType"});
    if (isConnector && isSure && *isConnector != (type == Connector))
        m_recorder.note("A part of " + m_devices[part.device].id + " is listed as another kind than it says.");
    part.isConnector = isConnector.value_or(type == Connector);
    if (part.connector.get() == nullptr && (part.isConnector || (!isConnector && !isSure)))
        askConnector(part, part.isConnector);
}

void HardwareSurvey::askConnector(FoundPart& part, bool isSure)
{
    IConnector* object = nullptr;
    const HRESULT result = interfacequery::query(*part.part, object);
    Handle<IConnector> connector = taken(result, object);
    const Failures::Codes implied = {isSure ? S_OK : E_NOINTERFACE};
    if (!part.failures.gives(result, connector.get(), {"IConnector::QueryInterface", {"IConnector"}}, implied))
        return;
    part.connector = std::move(connector);
    part.isConnector = true;
}

void HardwareSurvey::askPart(std::size_t part)
{
    FoundPart& found = m_parts[part];
    found.isAsked = true;
    const HRESULT nameResult = readText([&](LPWSTR* text) { return found.part->GetName(text); }, found.record.name);
    found.failures.passes(nameResult, {"IPart::GetName"});
    GUID type = {};
    if (found.failures.passes(found.part->GetSubType(&type), {"IPart::GetSubType"}))
        found.record.subType = type;
    ControlSurvey controls(*found.part, found.record, found.failures, m_recorder);
    controls.askControls();
    if (found.connector.get() != nullptr)
        controls.askConnector(*found.connector);
    askNeighbours(part);
}

void HardwareSurvey::askNeighbours(std::size_t part)
{
    FoundPart& found = m_parts[part];
    const auto ask = [&](const char* operation, HRESULT result, IPartsList* object, const char* name,
                         std::vector<std::size_t>& neighbours)
    {
        const Handle<IPartsList> list = taken(result, object);
        if (!found.failures.gives(result, object, {operation}, {E_NOTFOUND}))
            return;
        readList(*list, found.failures, name, found.device, neighbours);
        if (neighbours.empty())
            m_recorder.note("A list of neighbours is empty; a machine file has no list then.");
    };
    IPartsList* list = nullptr;
    HRESULT result = found.part->EnumPartsIncoming(&list);
    ask("IPart::EnumPartsIncoming", result, list, " incoming", found.incoming);
    list = nullptr;
    result = found.part->EnumPartsOutgoing(&list);
    ask("IPart::EnumPartsOutgoing", result, list, " outgoing", found.outgoing);
}

/// The parts of a list; none for those that cannot be read. A list without a count contains at least one part.
void HardwareSurvey::readList(IPartsList& list, Failures& failures, const std::string& name, std::size_t device,
                              std::vector<std::size_t>& items)
{
    UINT count = 0;
    const bool isCounted = failures.passes(list.GetCount(&count), {"IPartsList::GetCount", {}, name});
    if (isCounted && count > mostItems)
        m_recorder.note("A list counts more parts than a device can have.");
    const auto read = [&](UINT index)
    {
        const Question question = {"IPartsList::GetPart", {argument(index)}, name};
        const Failures::Codes implied = {!isCounted && index > 0 ? E_INVALIDARG : S_OK};
        IPart* object = nullptr;
        const HRESULT result = list.GetPart(index, &object);
        std::size_t part = none;
        if (failures.gives(result, object, question, implied))
        {
            const Handle<IPart> holder(object);
            const Identity identity = identityOf(*object);
            part = meet(holder, device, identity);
            if (part == none)
                failures.fails(identity.code, question);
        }
        if (part != none || isCounted || index == 0)
            items.push_back(part);
        return part != none;
    };
    readItems(isCounted ? std::optional<UINT>(count) : std::nullopt, read, [&] { items.push_back(none); });
}
}
