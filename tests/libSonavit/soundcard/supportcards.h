#pragma once

#include "libSonavit/soundcard.h"
#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"

namespace support
{
/// An endpoint without a device of the platform: an id, a name, a kind of jack and a state.
inline AudioDevice endpointOf(const char* id, const char* name = "", const GUID& jack = {},
                              unsigned int state = DEVICE_STATE_ACTIVE)
{
    AudioDevice device;
    device.m_properties.deviceId = id;
    device.m_properties.endpointType = name;
    device.m_properties.subType = jack;
    device.m_properties.deviceState = state;
    return device;
}
}
