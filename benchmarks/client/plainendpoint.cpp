#include "plainclient.h"
#include "plainlisteners.h"
#include "plaintext.h"
#include "platform/propertykeys.h"

#include <cstring>

namespace plain
{
namespace
{
namespace keys = platform::propertykeys;

/// One property, freed at the end of its scope.
class Value
{
public:
    Value(IPropertyStore& store, const PROPERTYKEY& key)
    {
        PropVariantInit(&m_value);
        m_result = store.GetValue(key, &m_value);
    }
    ~Value()
    {
        if (SUCCEEDED(m_result) && m_value.vt != VT_EMPTY)
            PropVariantClear(&m_value);
    }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;

    HRESULT result() const noexcept { return m_result; }
    const PROPVARIANT* operator->() const noexcept { return &m_value; }

private:
    PROPVARIANT m_value;
    HRESULT m_result;
};

/// Whether the property is there and of that type; anything but its absence is noted.
bool isThere(Endpoint& endpoint, const Value& value, VARTYPE type)
{
    if (SUCCEEDED(value.result()) && value->vt == type)
        return true;
    if (FAILED(value.result()))
        endpoint.problems.push_back({"IPropertyStore::GetValue", endpoint.id, value.result()});
    else if (value->vt != VT_EMPTY)
        endpoint.problems.push_back({"IPropertyStore::GetValue", endpoint.id, E_INVALIDARG});
    return false;
}

std::optional<std::string> readText(Endpoint& endpoint, IPropertyStore& store, const PROPERTYKEY& key)
{
    const Value value(store, key);
    if (!isThere(endpoint, value, VT_LPWSTR) || value->pwszVal == nullptr || *value->pwszVal == 0)
        return std::nullopt;
    return utf8(value->pwszVal);
}

std::optional<std::uint32_t> readNumber(Endpoint& endpoint, IPropertyStore& store, const PROPERTYKEY& key)
{
    const Value value(store, key);
    if (!isThere(endpoint, value, VT_UI4))
        return std::nullopt;
    return static_cast<std::uint32_t>(value->ulVal);
}

std::optional<GUID> readGuid(Endpoint& endpoint, IPropertyStore& store, const PROPERTYKEY& key)
{
    const Value value(store, key);
    if (!isThere(endpoint, value, VT_CLSID) || value->puuid == nullptr)
        return std::nullopt;
    return *value->puuid;
}

std::optional<GUID> readWrittenGuid(Endpoint& endpoint, IPropertyStore& store, const PROPERTYKEY& key)
{
    const Value value(store, key);
    if (!isThere(endpoint, value, VT_LPWSTR) || value->pwszVal == nullptr)
        return std::nullopt;
    return guidIn(value->pwszVal);
}

std::optional<Format> readFormat(Endpoint& endpoint, IPropertyStore& store)
{
    const Value value(store, keys::deviceFormat);
    if (!isThere(endpoint, value, VT_BLOB) || value->blob.pBlobData == nullptr)
        return std::nullopt;
    WAVEFORMATEXTENSIBLE wave = {};
    const ULONG size = value->blob.cbSize;
    if (size != sizeof(WAVEFORMATEX) && size != sizeof wave)
        return std::nullopt;
    std::memcpy(&wave, value->blob.pBlobData, size);
    Format format;
    format.rate = static_cast<std::uint32_t>(wave.Format.nSamplesPerSec);
    format.bits = wave.Format.wBitsPerSample;
    format.validBits = wave.Format.wBitsPerSample;
    format.channels = wave.Format.nChannels;
    format.tag = wave.Format.wFormatTag;
    if (format.tag == WAVE_FORMAT_EXTENSIBLE)
    {
        format.tag = static_cast<WORD>(wave.SubFormat.Data1);
        format.validBits = wave.Samples.wValidBitsPerSample;
        format.speakers = static_cast<std::uint32_t>(wave.dwChannelMask);
        format.subFormat = wave.SubFormat;
    }
    return format;
}

void readProperties(Endpoint& endpoint, IMMDevice& device, std::optional<GUID>& jackType,
                    std::optional<std::uint32_t>& formFactor)
{
    Com<IPropertyStore> store;
    const HRESULT result = device.OpenPropertyStore(STGM_READ, store.put());
    if (FAILED(result))
    {
        endpoint.problems.push_back({"IMMDevice::OpenPropertyStore", endpoint.id, result});
        return;
    }
    endpoint.description = readText(endpoint, *store.get(), keys::deviceDescription);
    endpoint.interfaceName = readText(endpoint, *store.get(), keys::friendlyName);
    endpoint.instancePath = readText(endpoint, *store.get(), keys::instancePath);
    endpoint.driverNode = readText(endpoint, *store.get(), keys::driverNodeStrongName);
    endpoint.format = readFormat(endpoint, *store.get());
    endpoint.speakers = readNumber(endpoint, *store.get(), keys::physicalSpeakers);
    endpoint.directSoundId = readWrittenGuid(endpoint, *store.get(), keys::directSoundGuid);
    endpoint.container = readGuid(endpoint, *store.get(), keys::containerId);
    jackType = readWrittenGuid(endpoint, *store.get(), keys::jackSubType);
    formFactor = readNumber(endpoint, *store.get(), keys::formFactor);
    endpoint.bus = readText(endpoint, *store.get(), keys::enumeratorName);
}

/// The descriptions of the jacks of a part; a jack without description if there is a type alone.
void readJack(Endpoint& endpoint, IPart& part)
{
    GUID type = GUID_NULL;
    HRESULT result = part.GetSubType(&type);
    if (FAILED(result))
        endpoint.problems.push_back({"IPart::GetSubType", endpoint.id, result});
    const bool hasType = SUCCEEDED(result) && !(type == GUID_NULL);
    const std::optional<GUID> jackType = hasType ? std::optional<GUID>(type) : std::nullopt;
    Com<IKsJackDescription> descriptions;
    result = part.Activate(CLSCTX_INPROC_SERVER, IID_IKsJackDescription, descriptions.putVoid());
    if (SUCCEEDED(result))
    {
        UINT count = 0;
        result = descriptions->GetJackCount(&count);
        if (FAILED(result))
            endpoint.problems.push_back({"IKsJackDescription::GetJackCount", endpoint.id, result});
        for (UINT index = 0; index < count; ++index)
        {
            KSJACK_DESCRIPTION description = {};
            result = descriptions->GetJackDescription(index, &description);
            if (SUCCEEDED(result))
                endpoint.jacks.push_back({jackType, std::nullopt, description});
            else
                endpoint.problems.push_back({"IKsJackDescription::GetJackDescription", endpoint.id, result});
        }
    }
    else if (result != E_NOINTERFACE && result != E_NOTFOUND)
        endpoint.problems.push_back({"IPart::Activate", endpoint.id, result});
    if (endpoint.jacks.empty() && jackType)
        endpoint.jacks.push_back({jackType, std::nullopt, std::nullopt});
}

/// The jacks behind the first connector, and the adapter that it leads to.
void readJacks(Endpoint& endpoint, IMMDevice& device)
{
    Com<IDeviceTopology> topology;
    HRESULT result = device.Activate(IID_IDeviceTopology, CLSCTX_ALL, nullptr, topology.putVoid());
    if (FAILED(result))
    {
        if (result != E_NOINTERFACE &&
            (endpoint.state != DEVICE_STATE_UNPLUGGED || result != AUDCLNT_E_DEVICE_INVALIDATED))
            endpoint.problems.push_back({"IMMDevice::Activate", endpoint.id, result});
        return;
    }
    Com<IConnector> connector;
    result = topology->GetConnector(0, connector.put());
    if (FAILED(result))
    {
        if (result != E_INVALIDARG)
            endpoint.problems.push_back({"IDeviceTopology::GetConnector", endpoint.id, result});
        return;
    }
    {
        TaskString adapter;
        result = connector->GetDeviceIdConnectedTo(adapter.put());
        if (SUCCEEDED(result))
            endpoint.adapter = utf8(adapter.get());
        else if (result != E_NOTFOUND)
            endpoint.problems.push_back({"IConnector::GetDeviceIdConnectedTo", endpoint.id, result});
    }
    Com<IConnector> jack;
    result = connector->GetConnectedTo(jack.put());
    if (FAILED(result))
    {
        if (result != E_NOTFOUND)
            endpoint.problems.push_back({"IConnector::GetConnectedTo", endpoint.id, result});
        return;
    }
    Com<IPart> part;
    result = jack->QueryInterface(IID_IPart, part.putVoid());
    if (SUCCEEDED(result))
        readJack(endpoint, *part.get());
    else
        endpoint.problems.push_back({"IConnector::QueryInterface", endpoint.id, result});
}
}

void Client::readEndpoint(Endpoint& endpoint, Source& source)
{
    DWORD state = 0;
    const HRESULT result = source.device->GetState(&state);
    if (SUCCEEDED(result))
        endpoint.state = state;
    else
        endpoint.problems.push_back({"IMMDevice::GetState", endpoint.id, result});
    std::optional<GUID> jackType;
    std::optional<std::uint32_t> formFactor;
    readProperties(endpoint, *source.device.get(), jackType, formFactor);
    if (endpoint.state == DEVICE_STATE_ACTIVE || endpoint.state == DEVICE_STATE_UNPLUGGED)
    {
        readVolume(endpoint, source);
        readJacks(endpoint, *source.device.get());
    }
    if (endpoint.jacks.empty() && (jackType || formFactor))
        endpoint.jacks.emplace_back();
    for (Jack& jack : endpoint.jacks)
    {
        if (!jack.type)
            jack.type = jackType;
        jack.formFactor = formFactor;
    }
}
}
