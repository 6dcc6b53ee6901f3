/// Devices that are opened in passing; included by the library's source files only.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/audiodevicetopology/passingtopology.h"

/// A device that an operation opens by its id and gives up: nothing of it is read but what the platform and the log
/// see. It makes the calls of an AudioDevice in the same order and leaves the same records; its topology is a
/// PassingTopology, which ends after the device.
class AudioDevice::InPassing
{
public:
    explicit InPassing(const qor::String& deviceId) : m_device(deviceId, m_topology) {}
    InPassing(const InPassing&) = delete;
    InPassing& operator=(const InPassing&) = delete;

private:
    PassingTopology<partsnapshot::DroppedTexts> m_topology;
    AudioDevice m_device;
};
