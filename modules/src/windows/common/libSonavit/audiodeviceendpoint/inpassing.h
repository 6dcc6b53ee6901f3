/// Devices that are opened in passing; included by the library's source files only.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/audiodevicetopology/passingtopology.h"

/// A device that an operation opens by its id and does not use: only the platform and the log see that it was opened.
///
/// It makes the calls of an AudioDevice in the same order and leaves the same records. Its topology is a
/// PassingTopology, which is released after the device's volume, and not before it.
class AudioDevice::InPassing
{
public:
    explicit InPassing(const qor::String& deviceId) : m_device(deviceId, *this) {}
    InPassing(const InPassing&) = delete;
    InPassing& operator=(const InPassing&) = delete;

    libSonavit::PassingTopology<libSonavit::DroppedTexts>& topology() noexcept { return m_topology; }
    const libSonavit::PassingTopology<libSonavit::DroppedTexts>& topology() const noexcept { return m_topology; }

private:
    libSonavit::PassingTopology<libSonavit::DroppedTexts> m_topology; // complete before the device reads it
    AudioDevice m_device;
};
