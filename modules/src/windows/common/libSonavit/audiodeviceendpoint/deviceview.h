/// Devices without the copies that their public operations hand out; included by the library's source files only.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/audiodeviceendpoint/log.h"

namespace libSonavit
{
/// What the library itself reads of devices.
class DeviceView
{
public:
    /// The topology of @p device, as deviceTopology(AudioDeviceTopology&), by reference. It is traced like that one.
    static const AudioDeviceTopology& topology(const AudioDevice& device)
    {
        SONAVIT_TRACE(endpointlog, "AudioDevice::deviceTopology(AudioDeviceTopology& topo)");
        return device.m_topology;
    }

    /// @p device, for a copy that is its last use.
    static AudioDevice::LastUse lastUse(AudioDevice& device) noexcept { return AudioDevice::LastUse(device); }
};
}
