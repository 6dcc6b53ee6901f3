#include "tools/sonavit/endpointproperties.h"

#include "COM/identifiers.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "simulator/machine/namedvalues.h"
#include "tools/sonavit/output/text.h"

namespace sonavit::program
{
namespace
{
constexpr unsigned noWaveId = 0xFFFFFFFF;

/// The library asks for the console role alone; this function asks for all three.
std::vector<std::string> readDefaultRoles(const Endpoint& endpoint)
{
    std::vector<std::string> roles;
    const libSonavit::EndpointDeviceEnumerator enumerator;
    if (!enumerator.isInitialized())
        return roles;
    for (const sim::Named<ERole>& role : sim::roleNames)
    {
        IMMDevice* device = nullptr;
        const HRESULT result = enumerator.enumerator()->GetDefaultAudioEndpoint(endpoint.flow, role.value, &device);
        const COMPtr<IMMDevice>::pointer holder(device);
        LPWSTR id = nullptr;
        if (FAILED(result) || device == nullptr || FAILED(device->GetId(&id)))
            continue;
        if (qor::String(platform::ucs2(id)).toUtf8() == endpoint.id)
            roles.emplace_back(role.name);
        CoTaskMemFree(id);
    }
    return roles;
}

/// The library leaves 0 if the platform has no such value, but 0 is a valid mask too.
std::optional<unsigned> readSpeakers(AudioDevice& device)
{
    const COMPtr<IMMDevice>::pointer platformDevice = device.device();
    IPropertyStore* store = nullptr;
    if (platformDevice.get() == nullptr || FAILED(platformDevice->OpenPropertyStore(STGM_READ, &store)))
        return std::nullopt;
    const COMPtr<IPropertyStore>::pointer holder(store);
    if (store == nullptr)
        return std::nullopt;
    PROPVARIANT value{};
    const bool isThere = SUCCEEDED(store->GetValue(propertykeys::physicalSpeakers, &value)) && value.vt == VT_UI4;
    PropVariantClear(&value);
    if (!isThere)
        return std::nullopt;
    return device.deviceProperty().speakerConfig;
}
}

EndpointProperties readProperties(Endpoint& endpoint)
{
    EndpointProperties properties;
    if (!endpoint.device.isInitialized())
        return properties;
    properties.defaultRoles = readDefaultRoles(endpoint);
    const unsigned waveId = endpoint.device.waveLegacyDeviceID();
    if (waveId != noWaveId)
        properties.waveId = waveId;
    properties.directSoundId = typeOrNothing(endpoint.device.deviceProperty().directSoundGuid);
    properties.driverNode = textOrNothing(endpoint.device.deviceProperty().driverNodeStrongName);
    properties.speakers = readSpeakers(endpoint.device);
    return properties;
}
}
