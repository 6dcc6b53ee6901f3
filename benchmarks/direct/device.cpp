#include "device.h"

#include "platform/propertykeys.h"
#include "text.h"

#include <cstring>

namespace direct
{
namespace
{
namespace keys = platform::propertykeys;

/// A property that is cleared at the end.
class Property
{
public:
    Property(IPropertyStore& store, const PROPERTYKEY& key) { m_isRead = SUCCEEDED(store.GetValue(key, &m_value)); }
    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;
    ~Property()
    {
        if (m_isRead)
            PropVariantClear(&m_value);
    }

    bool is(VARTYPE type) const { return m_isRead && m_value.vt == type; }
    const PROPVARIANT& value() const { return m_value; }

private:
    PROPVARIANT m_value = {};
    bool m_isRead;
};

void read(IPropertyStore& store, const PROPERTYKEY& key, std::u16string& result)
{
    const Property property(store, key);
    if (property.is(VT_LPWSTR))
        result = copyOf(property.value().pwszVal);
}

void read(IPropertyStore& store, const PROPERTYKEY& key, unsigned int& result)
{
    const Property property(store, key);
    if (property.is(VT_UI4))
        result = property.value().ulVal;
}

void read(IPropertyStore& store, const PROPERTYKEY& key, WAVEFORMATEXTENSIBLE& result)
{
    const Property property(store, key);
    if (property.is(VT_BLOB) && property.value().blob.cbSize == sizeof(result))
        std::memcpy(&result, property.value().blob.pBlobData, sizeof(result));
}

/// The string stays allocated.
void readDirectSoundGuid(IPropertyStore& store, GUID& result)
{
    PROPVARIANT value = {};
    if (SUCCEEDED(store.GetValue(keys::directSoundGuid, &value)))
        CLSIDFromString(value.vt == VT_LPWSTR ? value.pwszVal : nullptr, &result);
}

/// That of the connector that the first one is plugged into.
void readJackType(Device& device)
{
    if (device.topology.connectors.empty() || !device.topology.connectors.front().component)
        return;
    ComPtr<IConnector> jack;
    if (SUCCEEDED(device.topology.connectors.front().component->GetConnectedTo(jack.put())))
        device.properties.subType = readComponent(std::move(jack)).part.subType;
}

void readProperties(Device& device, bool isEndpoint)
{
    const HRESULT result = device.device->OpenPropertyStore(STGM_READWRITE, device.store.put());
    if (FAILED(result) || !device.store)
        return;
    IPropertyStore& store = *device.store.get();
    Properties& properties = device.properties;
    read(store, keys::deviceDescription, properties.endpointType);
    read(store, keys::deviceFormat, properties.format);
    read(store, keys::instancePath, properties.instancePath);
    read(store, keys::driverNodeStrongName, properties.driverNodeStrongName);
    read(store, keys::friendlyName, properties.friendlyName);
    read(store, keys::physicalSpeakers, properties.speakerConfig);
    readDirectSoundGuid(store, properties.directSoundGuid);
    refreshState(device);
    if (isEndpoint)
        readJackType(device);
    device.savedFormat = properties.format;
}

template<class I>
ComPtr<I> activate(const Device& device)
{
    ComPtr<I> result;
    device.device->Activate(iidOf<I>(), CLSCTX_ALL, nullptr, result.putVoid());
    return result;
}

void makeControl(Device& device)
{
    device.control = std::make_shared<EndpointControl>();
    device.control->volume = activate<IAudioEndpointVolume>(device);
    device.control->ownerType = device.properties.subType;
    device.control->ownerName = device.properties.endpointType;
}
}

Device readDevice(ComPtr<IMMDevice> device)
{
    Device result;
    if (!device)
        return result;
    result.device = std::move(device);
    {
        TaskText id;
        result.device->GetId(id.put());
        result.properties.deviceId = copyOf(id.get());
    }
    result.topology = readTopology(activate<IDeviceTopology>(result));
    const bool isEndpoint = static_cast<bool>(result.device.as<IMMEndpoint>());
    readProperties(result, isEndpoint);
    if (isEndpoint)
        makeControl(result);
    return result;
}

void refreshState(Device& device)
{
    if (!device.device)
        return;
    DWORD state = device.properties.state;
    device.device->GetState(&state);
    device.properties.state = state;
}

EDataFlow flowOf(const Device& device)
{
    EDataFlow flow = eAll;
    if (const ComPtr<IMMEndpoint> endpoint = device.device.as<IMMEndpoint>())
        endpoint->GetDataFlow(&flow);
    return flow;
}

std::vector<Device> readEndpoints(IMMDeviceEnumerator& enumerator, EDataFlow flow, DWORD states)
{
    std::vector<Device> result;
    ComPtr<IMMDeviceCollection> collection;
    enumerator.EnumAudioEndpoints(flow, states, collection.put());
    UINT count = 0;
    if (collection)
        collection->GetCount(&count);
    result.reserve(count);
    for (UINT index = 0; index < count; ++index)
    {
        ComPtr<IMMDevice> device;
        collection->Item(index, device.put());
        result.push_back(readDevice(std::move(device)));
    }
    return result;
}

ComPtr<IMMDeviceEnumerator> createEnumerator()
{
    ComPtr<IMMDeviceEnumerator> result;
    CoCreateInstance(CLSID_MMDeviceEnumerator, nullptr, CLSCTX_INPROC_SERVER, iidOf<IMMDeviceEnumerator>(),
                     result.putVoid());
    return result;
}
}
