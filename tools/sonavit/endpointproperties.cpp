#include "tools/sonavit/endpointproperties.h"

#include "COM/identifiers.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "tools/sonavit/text.h"

#include <array>

namespace sonavit
{
namespace
{
constexpr unsigned noWaveId = 0xFFFFFFFF;

struct RoleName
{
    ERole role;
    const char* name;
};

constexpr std::array<RoleName, 3> roleNames = {
    {{eConsole, "console"}, {eMultimedia, "multimedia"}, {eCommunications, "communications"}}};

/// The library answers for the console role alone; here all three are wanted.
std::vector<std::string> readDefaultRoles(const Endpoint& endpoint)
{
    std::vector<std::string> roles;
    const libSonavit::EndpointDeviceEnumerator enumerator;
    if (!enumerator.isInitialized())
        return roles;
    for (const RoleName& name : roleNames)
    {
        IMMDevice* device = nullptr;
        const HRESULT result = enumerator.enumerator()->GetDefaultAudioEndpoint(endpoint.flow, name.role, &device);
        const COMPtr<IMMDevice>::pointer holder(device);
        LPWSTR id = nullptr;
        if (FAILED(result) || device == nullptr || FAILED(device->GetId(&id)))
            continue;
        if (qor::String(platform::ucs2(id)).toUtf8() == endpoint.id)
            roles.emplace_back(name.name);
        CoTaskMemFree(id);
    }
    return roles;
}

/// The library leaves 0 where the platform has no such value, and 0 is a mask as well.
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
