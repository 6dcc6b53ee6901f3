/// @file
/// What the examiner asks one device.
#pragma once

#include "tests/support/questionsnotes.h"

#include <set>
#include <string>

namespace support
{
/// Asks for state, flow, stores, interfaces, volume, streams and peaks.
/// @param name what the transcript calls the device
/// @param instances receives the ids of device instances that the properties name
/// @return the topology; nil if there is none
bench::Held<IDeviceTopology> askDevice(Notes& notes, const std::string& name, IMMDevice& device,
                                       std::set<std::string>& instances);

/// Asks a stream that nothing has initialised.
void askAudioClient(Notes& notes, const std::string& name, const bench::Held<IAudioClient>& client);
void askMeter(Notes& notes, const std::string& name, IAudioMeterInformation& meter);
void askEndpointVolume(Notes& notes, const std::string& name, IAudioEndpointVolume& volume);
/// @return as askDevice()
void askStore(Notes& notes, const std::string& name, IPropertyStore& store, std::set<std::string>& instances);
}
