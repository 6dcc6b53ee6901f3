#include "tests/conformity/system.h"

#include "platform/propertykeys.h"
#include "tests/conformity/results.h"
#include "tests/conformity/store.h"

#include <algorithm>
#include <stdexcept>

namespace conformity
{
namespace
{
std::string nameOf(IMMDevice& device, const std::string& id)
{
    const Held<IPropertyStore> store = openedStore(device);
    const std::string name = store ? Value(*store.get(), platform::propertykeys::fullName).text() : std::string();
    return name.empty() || name == " ()" ? id : name;
}

EndpointInSystem described(Held<IMMDevice> device)
{
    EndpointInSystem endpoint;
    endpoint.id = textOf(*device.get(), &IMMDevice::GetId);
    endpoint.name = nameOf(*device.get(), endpoint.id);
    device->GetState(&endpoint.state);
    if (const Held<IMMEndpoint> itself = device.as<IMMEndpoint>())
        itself->GetDataFlow(&endpoint.flow);
    endpoint.device = std::move(device);
    return endpoint;
}
}

System::System(bool mayChange, std::optional<bool> isAdministrator)
    : m_mayChange(mayChange),
      m_isAdministrator(isAdministrator)
{
}

bool System::mayChange() const
{
    return m_mayChange;
}

std::optional<bool> System::isAdministrator() const
{
    return m_isAdministrator;
}

Held<IMMDeviceEnumerator> System::createEnumerator()
{
    Held<IMMDeviceEnumerator> result;
    CoCreateInstance(CLSID_MMDeviceEnumerator, nullptr, CLSCTX_INPROC_SERVER,
                     sim::InterfaceTraits<IMMDeviceEnumerator>::iid(), result.putVoid());
    return result;
}

IMMDeviceEnumerator& System::enumerator()
{
    if (!m_enumerator)
        m_enumerator = createEnumerator();
    if (!m_enumerator)
        throw std::runtime_error("this system has no enumerator of audio endpoints");
    return *m_enumerator.get();
}

const std::vector<EndpointInSystem>& System::endpoints()
{
    if (m_endpoints)
        return *m_endpoints;
    Held<IMMDeviceCollection> collection;
    const HRESULT result = enumerator().EnumAudioEndpoints(eAll, DEVICE_STATEMASK_ALL, collection.put());
    if (FAILED(result) || !collection)
        throw std::runtime_error("the endpoints cannot be listed: " + resultName(result));
    m_endpoints.emplace();
    UINT count = 0;
    collection->GetCount(&count);
    for (UINT index = 0; index < count; ++index)
    {
        Held<IMMDevice> device;
        if (SUCCEEDED(collection->Item(index, device.put())) && device)
            m_endpoints->push_back(described(std::move(device)));
    }
    return *m_endpoints;
}

void System::eachActive(const std::function<void(const EndpointInSystem&)>& action)
{
    for (const EndpointInSystem& endpoint : endpoints())
    {
        if (endpoint.isActive())
            action(endpoint);
    }
}

Held<IMMDevice> System::device(const std::string& id)
{
    Held<IMMDevice> result;
    enumerator().GetDevice(Wide(id), result.put());
    return result;
}

Held<IMMDevice> System::adapter(const EndpointInSystem& endpoint)
{
    const Held<IDeviceTopology> topology = activated<IDeviceTopology>(*endpoint.device.get());
    Held<IConnector> connector;
    if (!topology || FAILED(topology->GetConnector(0, connector.put())) || !connector)
        return {};
    const std::string id = textOf(*connector.get(), &IConnector::GetDeviceIdConnectedTo);
    return id.empty() ? Held<IMMDevice>() : device(id);
}

void System::eachAdapter(const std::function<void(const std::string&, IMMDevice&, IDeviceTopology&)>& action)
{
    std::vector<std::string> seen;
    for (const EndpointInSystem& endpoint : endpoints())
    {
        const Held<IMMDevice> found = adapter(endpoint);
        const std::string id = found ? textOf(*found.get(), &IMMDevice::GetId) : std::string();
        if (id.empty() || std::count(seen.begin(), seen.end(), id) > 0)
            continue;
        seen.push_back(id);
        if (const Held<IDeviceTopology> topology = activated<IDeviceTopology>(*found.get()))
            action(id, *found.get(), *topology.get());
    }
}
}
