// The survey's devices and their topologies.
#include "COM/interfacequery.h"
#include "client/capturing/hardwaresurvey.h"
#include "client/capturing/listitems.h"
#include "client/capturing/taken.h"
#include "client/capturing/textanswer.h"

#include <type_traits>
#include <utility>

namespace sonavit::capturing
{
using reading::Handle;

void HardwareSurvey::walk(const std::vector<OpenEndpoint>& endpoints, const Pause& pause)
{
    std::unordered_map<std::string, std::size_t> records;
    for (std::size_t index = 0; index < m_machine.endpoints.size(); ++index)
        records.emplace(m_machine.endpoints[index].id, index);
    for (const OpenEndpoint& endpoint : endpoints)
    {
        const auto record = records.find(endpoint.id);
        if (record != records.end())
            addEndpoint(endpoint, record->second);
        pause();
    }
    for (bool isNew = true; isNew;)
    {
        isNew = false;
        for (std::size_t device = 0; device < m_devices.size(); ++device) // grows meanwhile
        {
            if (!askParts(device))
                continue;
            isNew = true;
            pause();
        }
        for (std::size_t device = 0; device < m_devices.size(); ++device)
        {
            if (!askPaths(device))
                continue;
            isNew = true;
            pause();
        }
    }
}

/// @param record the position of its record among the machine's endpoints
void HardwareSurvey::addEndpoint(const OpenEndpoint& endpoint, std::size_t record)
{
    if (m_devicesById.count(endpoint.id) != 0)
        return;
    FoundDevice found;
    found.id = endpoint.id;
    found.endpoint = record;
    const std::size_t device = addDevice(std::move(found));
    if (endpoint.device.get() != nullptr)
        openTopology(device, *endpoint.device);
}

std::size_t HardwareSurvey::addDevice(FoundDevice device)
{
    m_devicesById.emplace(device.id, m_devices.size());
    m_devices.push_back(std::move(device));
    return m_devices.size() - 1;
}

/// The device with that id, which is opened unless it is known; none if it cannot be opened, or has no id.
std::size_t HardwareSurvey::deviceNamed(const std::string& id)
{
    if (id.empty())
        return none;
    const auto known = m_devicesById.find(id);
    if (known != m_devicesById.end())
        return known->second;
    const auto [place, isNew] = m_opened.emplace(id, none);
    if (!isNew)
        return place->second;
    IMMDevice* object = nullptr;
    const HRESULT result = m_enumerator.GetDevice(reading::wide(id).data(), &object);
    if (FAILED(result) || object == nullptr)
    {
        m_unopened.emplace_back(id, FAILED(result) ? std::optional<HRESULT>(result) : std::nullopt);
        return none;
    }
    const Handle<IMMDevice> holder(object);
    const std::size_t device = openedDevice(id, *object);
    m_opened[id] = device;
    return device;
}

/// The device calls itself by its own id, which may differ from @p id in case.
std::size_t HardwareSurvey::openedDevice(const std::string& id, IMMDevice& device)
{
    FoundDevice found;
    std::optional<std::string> ownId;
    const HRESULT result = readText([&](LPWSTR* text) { return device.GetId(text); }, ownId);
    if (found.failures.passes(result, {"IMMDevice::GetId"}) && !ownId)
        found.failures.givesNull({"IMMDevice::GetId"});
    found.id = ownId && !ownId->empty() ? *ownId : id;
    const auto known = m_devicesById.find(found.id);
    if (known != m_devicesById.end())
        return known->second;
    describe(found, device);
    const std::size_t index = addDevice(std::move(found));
    openTopology(index, device);
    return index;
}

/// An endpoint that no list contains, or an adapter.
void HardwareSurvey::describe(FoundDevice& found, IMMDevice& device)
{
    IMMEndpoint* object = nullptr;
    const HRESULT result = interfacequery::query(device, object);
    const Handle<IMMEndpoint> holder = taken(result, object);
    if (!found.failures.gives(result, object, {"IMMDevice::QueryInterface", {"IMMEndpoint"}}, {E_NOINTERFACE}))
    {
        found.adapter.id = found.id;
        surveyDevice(device, found.adapter, m_recorder);
        return;
    }
    sim::Endpoint endpoint;
    endpoint.id = found.id;
    endpoint.installed = false;
    surveyUnlistedEndpoint(device, endpoint, m_recorder);
    found.endpoint = m_machine.endpoints.size();
    m_machine.endpoints.push_back(std::move(endpoint));
}

void HardwareSurvey::openTopology(std::size_t device, IMMDevice& platformDevice)
{
    FoundDevice& found = m_devices[device];
    IDeviceTopology* object = nullptr;
    const HRESULT result = interfacequery::activate(platformDevice, object);
    Handle<IDeviceTopology> topology = taken(result, object);
    const Question question = {"IMMDevice::Activate", {"IDeviceTopology", argument(static_cast<DWORD>(CLSCTX_ALL))}};
    if (found.failures.gives(result, topology.get(), question, {E_NOINTERFACE}))
    {
        found.topology = std::move(topology);
        listTopology(device);
    }
    found.isRefused = found.topology.get() == nullptr && result != E_NOINTERFACE;
}

void HardwareSurvey::readDeviceId(FoundDevice& found)
{
    if (!found.idResult)
        found.idResult = readText([&](LPWSTR* text) { return found.topology->GetDeviceId(text); }, found.reportedId);
    found.failures.passes(*found.idResult, {"IDeviceTopology::GetDeviceId"});
}

void HardwareSurvey::listTopology(std::size_t device)
{
    readDeviceId(m_devices[device]);
    listComponents<IConnector>(device, &FoundDevice::connectors, "IDeviceTopology::GetConnectorCount",
                               &IDeviceTopology::GetConnectorCount, "IDeviceTopology::GetConnector",
                               &IDeviceTopology::GetConnector);
    listComponents<ISubunit>(device, &FoundDevice::subunits, "IDeviceTopology::GetSubunitCount",
                             &IDeviceTopology::GetSubunitCount, "IDeviceTopology::GetSubunit",
                             &IDeviceTopology::GetSubunit);
}

template<class Component>
void HardwareSurvey::listComponents(std::size_t device, std::vector<std::size_t> FoundDevice::*places,
                                    const char* countName, HRESULT (STDMETHODCALLTYPE IDeviceTopology::*count)(UINT*),
                                    const char* name,
                                    HRESULT (STDMETHODCALLTYPE IDeviceTopology::*get)(UINT, Component**))
{
    constexpr bool isConnector = std::is_same_v<Component, IConnector>;
    FoundDevice& found = m_devices[device];
    const Handle<IDeviceTopology> topology = found.topology;
    UINT number = 0;
    const bool isCounted = found.failures.passes((topology.get()->*count)(&number), {countName});
    found.isUncounted = found.isUncounted || (isConnector && !isCounted);
    if (isCounted && number > mostItems)
        m_recorder.note(found.id + " counts more connectors or subunits than a device can have.");
    const auto read = [&](UINT index)
    {
        const Question question = {name, {argument(index)}};
        Component* component = nullptr;
        const HRESULT result = (topology.get()->*get)(index, &component);
        const Failures::Codes implied = {isCounted ? S_OK : E_INVALIDARG};
        const bool isThere = found.failures.gives(result, component, question, implied);
        const Handle<Component> holder(isThere ? component : nullptr);
        IPart* part = nullptr;
        Meeting meeting;
        if (isThere && !found.failures.gives(interfacequery::query(*component, part), part, question))
            part = nullptr;
        meeting.part = Handle<IPart>(part);
        if constexpr (isConnector)
            meeting.connector = holder;
        if (part != nullptr || isCounted)
            (found.*places).push_back(part == nullptr ? none : meetListed(meeting, device, isConnector));
        return part != nullptr;
    };
    readItems(isCounted ? std::optional<UINT>(number) : std::nullopt, read, [&] { (found.*places).push_back(none); });
}

/// A part with a place of its own in the topology; none if another device, another list or another place has it.
std::size_t HardwareSurvey::meetListed(const Meeting& meeting, std::size_t device, bool isConnector)
{
    const Identity identity = identityOf(*meeting.part);
    std::size_t index = find(identity, device);
    if (index == none)
    {
        FoundPart found;
        found.device = device;
        found.part = meeting.part;
        found.connector = meeting.connector;
        index = addPart(std::move(found));
        askKind(m_parts[index], isConnector);
    }
    FoundPart& known = m_parts[index];
    const bool isMoved = m_devices[known.device].isStub && !known.isListed && !m_devices[device].isStub;
    if (known.isListed || (known.device != device && !isMoved) || known.isConnector != isConnector)
    {
        m_recorder.note("The topology of " + m_devices[device].id + " lists a part that has another place, too.");
        return none;
    }
    if (known.device != device)
        m_devices[device].met.push_back(index);
    known.device = device;
    known.isListed = true;
    attach(index, meeting, identity);
    return index;
}

/// Asks the parts of a device that are new, and follows its connectors. @return whether there were any
bool HardwareSurvey::askParts(std::size_t device)
{
    bool isNew = false;
    for (std::size_t i = 0; i < m_devices[device].met.size(); ++i) // grows meanwhile
    {
        const std::size_t part = m_devices[device].met[i];
        if (m_parts[part].isAsked || m_parts[part].part.get() == nullptr)
            continue;
        isNew = true;
        askPart(part);
    }
    for (std::size_t i = 0; i < m_devices[device].met.size(); ++i)
    {
        const std::size_t part = m_devices[device].met[i];
        if (m_parts[part].isFollowed || m_parts[part].connector.get() == nullptr)
            continue;
        isNew = true;
        followConnector(part);
    }
    return isNew;
}
}
