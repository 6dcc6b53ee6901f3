/// @file
/// One device: an endpoint, or an adapter.
#pragma once

#include "comptr.h"
#include "topology.h"

#include <memory>
#include <string>
#include <vector>

namespace direct
{
struct Properties
{
    std::u16string deviceId;
    std::u16string instancePath;
    std::u16string driverNodeStrongName;
    std::u16string friendlyName;
    std::u16string endpointType;
    WAVEFORMATEXTENSIBLE format = {};
    GUID subType = {}; ///< the kind of jack
    GUID directSoundGuid = {};
    unsigned int speakerConfig = 0;
    unsigned int state = 0;
};

/// The control of an endpoint.
struct EndpointControl
{
    ComPtr<IAudioEndpointVolume> volume; ///< null if the endpoint has none
    GUID ownerType = {};
    std::u16string ownerName;
};

struct Device
{
    ComPtr<IMMDevice> device;
    ComPtr<IPropertyStore> store;
    Topology topology;
    Properties properties;
    WAVEFORMATEXTENSIBLE savedFormat = {};    ///< as it was when the device was read
    std::shared_ptr<EndpointControl> control; ///< null for an adapter
};

/// Reads everything of @p device; an empty device for a null pointer.
Device readDevice(ComPtr<IMMDevice> device);

void refreshState(Device& device);

/// The flow of an endpoint; eAll for any other device.
EDataFlow flowOf(const Device& device);

/// The endpoints of @p flow in one of the @p states.
std::vector<Device> readEndpoints(IMMDeviceEnumerator& enumerator, EDataFlow flow, DWORD states);

/// A new enumerator, or null.
ComPtr<IMMDeviceEnumerator> createEnumerator();
}
