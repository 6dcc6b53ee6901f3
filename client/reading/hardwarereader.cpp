// The walk's devices.
#include "client/reading/hardwarereader.h"

#include "COM/interfacequery.h"
#include "client/reading/endpointreading.h"
#include "client/reading/properties.h"
#include "platform/propertykeys.h"
#include "qor/string.h"
#include "sonavit/text.h"

#include <algorithm>

namespace sonavit::reading
{
namespace
{
/// No device has more connectors or subunits.
constexpr UINT mostComponents = 4096;
/// After so many failures in a row the rest of a list is taken as lost.
constexpr unsigned mostFailures = 16;
/// No computer has more devices.
constexpr std::size_t mostDevices = 0x10000;

/// Opens a device by its id; nil if the platform does not find it.
Handle<IMMDevice> openDevice(IMMDeviceEnumerator& enumerator, const std::string& id, Judge judge,
                             Judge::Codes tolerated)
{
    IMMDevice* device = nullptr;
    const qor::String text = qor::String::fromUtf8(id);
    const HRESULT result = enumerator.GetDevice(platform::wide(text.getUCS2Buffer()), &device);
    const bool isOpen = judge.gives(result, device, {"IMMDeviceEnumerator::GetDevice"}, tolerated);
    return Handle<IMMDevice>(isOpen ? device : nullptr);
}
}

Judge HardwareReader::judgeOf(std::size_t device)
{
    HardwareDevice& known = m_map.devices[device];
    return {known.facts.id, known.problems};
}

/// Registers a device under its id.
std::size_t HardwareReader::addDevice(Graph::Device facts)
{
    const std::size_t index = m_map.devices.size();
    if (!facts.id.empty())
        m_map.deviceIndexes.emplace(EndpointId(facts.id), index);
    m_map.devices.emplace_back().facts = std::move(facts);
    return index;
}

void HardwareReader::addListedEndpoint(const Endpoint& endpoint)
{
    if (m_map.deviceIndexes.count(endpoint.id()) != 0)
        return;
    Graph::Device facts;
    facts.kind = Graph::Device::Kind::endpoint;
    facts.id = endpoint.id().text();
    facts.name = endpoint.title();
    facts.flow = endpoint.flow();
    facts.state = endpoint.state();
    const std::size_t device = addDevice(std::move(facts));
    const Device platformDevice = listedDevice(endpoint.id(), m_map.devices[device].problems);
    if (platformDevice.get() != nullptr)
        readTopology(device, *platformDevice);
}

/// Opens an endpoint by its id; one that the platform does not find is taken from the list of all endpoints.
HardwareReader::Device HardwareReader::listedDevice(const EndpointId& id, std::vector<Problem>& problems)
{
    if (id.isEmpty())
        return {};
    Device device = openDevice(m_enumerator, id.text(), {id.text(), problems}, {});
    if (device.get() != nullptr)
        return device;
    if (!m_listing)
    {
        m_listing.emplace();
        const Listing listing = listEndpoints(m_enumerator);
        for (const EndpointReading& reading : listing.endpoints)
            m_listing->emplace(reading.content.id, reading.device);
    }
    const auto found = m_listing->find(id);
    return found == m_listing->end() ? Device() : found->second;
}

void HardwareReader::readTopology(std::size_t device, IMMDevice& platformDevice)
{
    HardwareDevice& known = m_map.devices[device];
    IDeviceTopology* topology = nullptr;
    const HRESULT result = interfacequery::activate(platformDevice, topology);
    known.facts.hasTopology = result != E_NOINTERFACE;
    if (!judgeOf(device).gives(result, topology, {"IMMDevice::Activate", "IDeviceTopology"}, {E_NOINTERFACE}))
        return;
    known.topology = Handle<IDeviceTopology>(topology);
    readComponents(device, Place::graph);
}

/// Registers the connectors and subunits of a device that has a topology.
void HardwareReader::readComponents(std::size_t device, Place place)
{
    readComponents<IConnector>(device, &IDeviceTopology::GetConnectorCount, &IDeviceTopology::GetConnector,
                               "IDeviceTopology::GetConnectorCount", "IDeviceTopology::GetConnector",
                               [&](const Handle<IConnector>& connector)
                               {
                                   std::vector<std::size_t>& list = m_map.devices[device].connectors;
                                   const std::size_t part = addConnector(connector, device, place);
                                   if (part == HardwarePart::none)
                                       return;
                                   HardwarePart& known = m_map.parts[part];
                                   if (known.device != device || known.position == HardwarePart::none)
                                   {
                                       known.position = known.device == device ? list.size() : known.position;
                                       list.push_back(part);
                                   }
                               });
    if (place == Place::surroundings)
        return;
    readComponents<ISubunit>(device, &IDeviceTopology::GetSubunitCount, &IDeviceTopology::GetSubunit,
                             "IDeviceTopology::GetSubunitCount", "IDeviceTopology::GetSubunit",
                             [&](const Handle<ISubunit>& subunit)
                             {
                                 IPart* part = nullptr;
                                 const HRESULT result = interfacequery::query(*subunit, part);
                                 if (!judgeOf(device).gives(result, part, {"ISubunit::QueryInterface", "IPart"}))
                                     return;
                                 const std::size_t index = addPart(Part(part), device, place);
                                 if (index != HardwarePart::none)
                                     m_map.devices[device].subunits.push_back(index);
                             });
}

template<class Component, class Add>
void HardwareReader::readComponents(std::size_t device, HRESULT (STDMETHODCALLTYPE IDeviceTopology::*count)(UINT*),
                                    HRESULT (STDMETHODCALLTYPE IDeviceTopology::*get)(UINT, Component**),
                                    const char* countName, const char* name, const Add& add)
{
    const Handle<IDeviceTopology> topology = m_map.devices[device].topology;
    UINT number = 0;
    if (!judgeOf(device).passes((topology.get()->*count)(&number), {countName}))
        return;
    if (number > mostComponents)
        judgeOf(device).fails(invalidData, {countName});
    unsigned failures = 0;
    for (UINT index = 0; index < std::min(number, mostComponents) && failures < mostFailures; ++index)
    {
        Component* component = nullptr;
        const HRESULT result = (topology.get()->*get)(index, &component);
        const bool isThere = judgeOf(device).gives(result, component, {name, nullptr, index});
        failures = isThere ? 0 : failures + 1;
        const Handle<Component> holder(isThere ? component : nullptr);
        if (isThere)
            add(holder);
    }
}

/// The device with that id, which is opened when the walk meets it for the first time.
std::size_t HardwareReader::deviceIndex(const std::string& id, std::vector<Problem>& problems)
{
    const auto found = m_map.deviceIndexes.find(EndpointId(id));
    if (found != m_map.deviceIndexes.end())
        return found->second;
    if (m_map.devices.size() >= mostDevices)
        return HardwarePart::none;
    const Device platformDevice = openDevice(m_enumerator, id, {id, problems}, {});
    Graph::Device facts;
    facts.id = id;
    facts.kind = Graph::Device::Kind::closed;
    facts.name = "cannot be opened";
    const std::size_t device = addDevice(std::move(facts));
    if (platformDevice.get() != nullptr)
    {
        readFarDevice(device, *platformDevice);
        readTopology(device, *platformDevice);
    }
    return device;
}

/// An endpoint of another card, or one that the platform does not list, or an adapter.
void HardwareReader::readFarDevice(std::size_t device, IMMDevice& platformDevice)
{
    HardwareDevice& known = m_map.devices[device];
    IMMEndpoint* endpoint = nullptr;
    const HRESULT result = interfacequery::query(platformDevice, endpoint);
    if (!judgeOf(device).gives(result, endpoint, {"IMMDevice::QueryInterface", "IMMEndpoint"}, {E_NOINTERFACE}))
    {
        known.facts.kind = Graph::Device::Kind::adapter;
        readAdapterName(device, platformDevice);
        return;
    }
    const Handle<IMMEndpoint> holder(endpoint);
    known.facts.kind = Graph::Device::Kind::endpoint;
    known.facts.isListed = false;
    EDataFlow flow = eAll;
    if (judgeOf(device).passes(endpoint->GetDataFlow(&flow), {"IMMEndpoint::GetDataFlow"}))
    {
        if (flow == eRender || flow == eCapture)
            known.facts.flow = flow == eRender ? Flow::output : Flow::input;
        else
            judgeOf(device).fails(invalidData, {"IMMEndpoint::GetDataFlow"});
    }
    EndpointReading reading;
    reading.content.id = EndpointId(known.facts.id);
    reading.content.flow = known.facts.flow.value_or(Flow::output);
    platformDevice.AddRef();
    reading.device = Handle<IMMDevice>(&platformDevice);
    readState(reading);
    readProperties(reading);
    for (const EndpointProblem& problem : reading.content.problems)
        known.problems.push_back(problem.problem);
    known.problems.insert(known.problems.end(), reading.busProblems.begin(), reading.busProblems.end());
    known.facts.state = reading.content.state;
    known.facts.name = Endpoint(std::move(reading.content)).title();
}

void HardwareReader::readAdapterName(std::size_t device, IMMDevice& platformDevice)
{
    HardwareDevice& known = m_map.devices[device];
    std::optional<std::string> name;
    IPropertyStore* store = nullptr;
    const HRESULT result = platformDevice.OpenPropertyStore(STGM_READ, &store);
    if (judgeOf(device).gives(result, store, {"IMMDevice::OpenPropertyStore"}))
    {
        const Handle<IPropertyStore> holder(store);
        name = PropertyReader(*store, known.facts.id, known.problems)
                   .text({platform::propertykeys::friendlyName, "friendlyName"});
    }
    known.facts.name = text::printable(name.value_or("Adapter"));
}
}
