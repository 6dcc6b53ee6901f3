// The survey's joins: what is on the far side of connectors.
#include "COM/interfacequery.h"
#include "client/capturing/hardwaresurvey.h"
#include "client/capturing/taken.h"
#include "client/capturing/textanswer.h"

#include <algorithm>
#include <utility>

namespace sonavit::capturing
{
using reading::Handle;

void HardwareSurvey::followConnector(std::size_t part)
{
    FoundPart& nearEnd = m_parts[part];
    nearEnd.isFollowed = true;
    BOOL isConnected = FALSE;
    const bool isTold =
        nearEnd.failures.passes(nearEnd.connector->IsConnected(&isConnected), {"IConnector::IsConnected"});
    FarAnswers answers = farAnswers(nearEnd);
    const std::size_t peer = peerOf(answers);
    nearEnd.farSide = {peer != none || answers.deviceId || isConnected != FALSE, peer, answers.deviceId};
    if (isTold && nearEnd.farSide.isJoined != (isConnected != FALSE))
        m_recorder.note("A connector reports what is on its far side, and that it is not connected.");
    judgeFarSide(nearEnd, answers);
}

HardwareSurvey::FarAnswers HardwareSurvey::farAnswers(FoundPart& nearEnd)
{
    FarAnswers answers;
    IConnector& connector = *nearEnd.connector;
    IConnector* object = nullptr;
    answers.connectorResult = connector.GetConnectedTo(&object);
    if (SUCCEEDED(answers.connectorResult))
        answers.connector = Handle<IConnector>(object);
    answers.connectorIdResult =
        readText([&](LPWSTR* text) { return connector.GetConnectorIdConnectedTo(text); }, answers.connectorId);
    answers.deviceIdResult =
        readText([&](LPWSTR* text) { return connector.GetDeviceIdConnectedTo(text); }, answers.deviceId);
    if (answers.deviceId)
        answers.device = deviceNamed(*answers.deviceId);
    return answers;
}

/// The far connector; none if there is none, or if it cannot be had.
std::size_t HardwareSurvey::peerOf(FarAnswers& answers)
{
    std::size_t peer = answers.connector.get() == nullptr ? none : farPart(answers);
    if (peer == none)
        peer = namedConnector(answers);
    else if (isUsableId(answers.connectorId) && m_parts[peer].nearName.empty())
    {
        m_parts[peer].nearName = *answers.connectorId;
        m_partsByNearName.emplace(*answers.connectorId, peer);
    }
    if (peer == none || m_parts[peer].isConnector)
        return peer;
    m_recorder.note("A connector is joined to what is none; a machine file contains only the device's id.");
    return none;
}

/// Keeps the failures that the join does not show by itself.
void HardwareSurvey::judgeFarSide(FoundPart& nearEnd, const FarAnswers& answers)
{
    const HRESULT withoutPart = nearEnd.farSide.part == none ? E_NOTFOUND : S_OK;
    const HRESULT withoutJoin = nearEnd.farSide.isJoined ? S_OK : E_NOTFOUND;
    const bool isThere = SUCCEEDED(answers.connectorResult);
    const IConnector* const connector = answers.connector.get();
    if (nearEnd.failures.passes(answers.connectorResult, {"IConnector::GetConnectedTo"}, {withoutPart}) && isThere &&
        connector == nullptr)
        nearEnd.failures.givesNull({"IConnector::GetConnectedTo"});
    const auto judge = [&](HRESULT result, const std::optional<std::string>& text, const char* operation, HRESULT code)
    {
        if (nearEnd.failures.passes(result, {operation}, {code}) && !text)
            nearEnd.failures.givesNull({operation});
    };
    judge(answers.connectorIdResult, answers.connectorId, "IConnector::GetConnectorIdConnectedTo", withoutPart);
    judge(answers.deviceIdResult, answers.deviceId, "IConnector::GetDeviceIdConnectedTo", withoutJoin);
}

/// The far connector. One that cannot be identified counts as one that the platform has not returned.
std::size_t HardwareSurvey::farPart(FarAnswers& answers)
{
    IPart* object = nullptr;
    const HRESULT result = interfacequery::query(*answers.connector, object);
    if (FAILED(result) || object == nullptr)
    {
        answers.connectorResult = FAILED(result) ? result : E_POINTER;
        return none;
    }
    const Handle<IPart> part(object);
    Identity identity = identityOf(*part);
    if (identity.isUnknown())
    {
        answers.connectorResult = identity.code;
        return none;
    }
    std::size_t index = find(identity, answers.device);
    if (index == none)
    {
        const std::size_t owner = ownerOf(part, identity, answers);
        index = find(identity, owner);
        if (index == none)
        {
            FoundPart found;
            found.device = owner;
            found.part = part;
            found.connector = answers.connector;
            index = addPart(std::move(found));
            askKind(m_parts[index], true);
        }
    }
    attach(index, {part, answers.connector}, identity);
    return index;
}

/// The device of a connector that the named device does not list.
std::size_t HardwareSurvey::ownerOf(const Handle<IPart>& part, Identity& identity, const FarAnswers& answers)
{
    const OwnTopology own = topologyOf(*part, identity);
    const std::size_t device = own.id ? deviceNamed(*own.id) : none;
    const bool hasIt = device != none && (find(identity, device) != none || hasGap(device));
    if (hasIt)
        return device;
    const std::size_t adopting = adoptingDevice(own, device, answers);
    if (adopting != none)
    {
        adopt(adopting, own);
        return adopting;
    }
    if (!own.id && hasGap(answers.device))
        return answers.device;
    const std::size_t stub = stubNamed({own.id, answers.deviceId});
    if (m_devices[stub].topology.get() == nullptr && own.topology.get() != nullptr)
        adopt(stub, own);
    return stub;
}

HardwareSurvey::OwnTopology HardwareSurvey::topologyOf(IPart& part, Identity& identity)
{
    OwnTopology own;
    IDeviceTopology* topology = nullptr;
    const HRESULT result = part.GetTopologyObject(&topology);
    Handle<IDeviceTopology> holder = taken(result, topology);
    if (!identity.failures.gives(result, topology, {"IPart::GetTopologyObject"}))
        return own;
    own.topology = std::move(holder);
    own.idResult = readText([&](LPWSTR* text) { return topology->GetDeviceId(text); }, own.id);
    return own;
}

/// A device whose own topology could not be had takes that of the part.
std::size_t HardwareSurvey::adoptingDevice(const OwnTopology& own, std::size_t device, const FarAnswers& answers) const
{
    const std::size_t candidate = own.id ? device : answers.device;
    const bool isMeant = own.topology.get() != nullptr && candidate != none && m_devices[candidate].isRefused &&
                         m_devices[candidate].topology.get() == nullptr;
    return isMeant ? candidate : none;
}

void HardwareSurvey::adopt(std::size_t device, const OwnTopology& own)
{
    FoundDevice& found = m_devices[device];
    found.topology = own.topology;
    found.idResult = own.idResult;
    found.reportedId = own.id;
    listTopology(device);
}

/// A device that cannot be opened, with the first of these ids that no other device has.
std::size_t HardwareSurvey::stubNamed(const std::vector<sim::OptionalString>& ids)
{
    FoundDevice stub;
    for (const sim::OptionalString& id : ids)
    {
        if (!id || id->empty())
            continue;
        const auto known = m_devicesById.find(*id);
        if (known != m_devicesById.end() && m_devices[known->second].isStub)
            return known->second;
        if (known == m_devicesById.end())
        {
            stub.id = *id;
            break;
        }
    }
    while (stub.id.empty() || m_devicesById.count(stub.id) != 0)
        stub.id = "{2}.\\\\?\\unknown#" + argument(++m_invented);
    stub.isStub = true;
    stub.adapter.id = stub.id;
    stub.adapter.openable = false;
    return addDevice(std::move(stub));
}

/// Whether a topology has a connector that it has not given.
bool HardwareSurvey::hasGap(std::size_t device) const
{
    if (device == none || m_devices[device].topology.get() == nullptr)
        return false;
    const FoundDevice& found = m_devices[device];
    const auto isExtra = [&](std::size_t part) { return m_parts[part].isConnector && !m_parts[part].isListed; };
    const auto gaps = std::count(found.connectors.begin(), found.connectors.end(), none);
    return found.isUncounted || gaps > std::count_if(found.met.begin(), found.met.end(), isExtra);
}

/// A connector of which only the id is known.
std::size_t HardwareSurvey::namedConnector(const FarAnswers& answers)
{
    if (!isUsableId(answers.connectorId))
        return none;
    const auto known = m_partsById.find(*answers.connectorId);
    if (known != m_partsById.end())
        return known->second;
    const auto named = m_partsByNearName.find(*answers.connectorId);
    if (named != m_partsByNearName.end())
        return named->second;
    FoundPart found;
    found.device = hasGap(answers.device) ? answers.device : stubNamed({answers.deviceId});
    found.isConnector = true;
    found.id = *answers.connectorId;
    const std::size_t index = addPart(std::move(found));
    m_partsById.emplace(*answers.connectorId, index);
    return index;
}
}
