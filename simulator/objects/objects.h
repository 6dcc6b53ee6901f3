/// @file
/// The COM objects of a simulated machine. Each function makes one and hands it out with one reference.
///
/// The classes themselves are nobody's business: one source file each, named after what it answers for. Objects that
/// stand for the same thing share its state in the machine, so what one sets the others read.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "simulator/core/state.h"

namespace sim
{
IMMDeviceEnumerator* makeEnumerator(const std::shared_ptr<State>& state);
/// What CoCreateInstance does for the enumerator's class once the class is found.
HRESULT createEnumerator(const std::shared_ptr<State>& state, REFIID iid, void** object);
/// A snapshot: the devices with these ids in this order. @p name is what the journal shows.
IMMDeviceCollection* makeCollection(const std::shared_ptr<State>& state, std::string name,
                                    std::vector<std::string> deviceIds);
/// An endpoint or an adapter device; null when the machine has none with exactly that id.
IMMDevice* makeDevice(const std::shared_ptr<State>& state, const std::string& deviceId);
/// @p access is one of STGM_READ, STGM_WRITE, STGM_READWRITE.
IPropertyStore* makePropertyStore(const std::shared_ptr<State>& state, std::string deviceId, DWORD access);
IDeviceTopology* makeTopology(const std::shared_ptr<State>& state, std::string deviceId);
IAudioEndpointVolume* makeEndpointVolume(const std::shared_ptr<State>& state, std::string endpointId);
IAudioClient* makeAudioClient(const std::shared_ptr<State>& state, std::string deviceId);
IBaseFilter* makeBaseFilter(const std::shared_ptr<State>& state, std::string deviceId);

/// Null when the machine has no such part, connector or subunit.
IPart* makePart(const std::shared_ptr<State>& state, const std::string& partId);
IConnector* makeConnector(const std::shared_ptr<State>& state, const std::string& partId);
ISubunit* makeSubunit(const std::shared_ptr<State>& state, const std::string& partId);
/// The parts with these ids in this order; @p name is the id of the part from which they were asked.
IPartsList* makePartsList(const std::shared_ptr<State>& state, std::string name, std::vector<std::string> partIds);
IAudioVolumeLevel* makeVolumeLevel(const std::shared_ptr<State>& state, std::string partId);
IAudioMute* makeMute(const std::shared_ptr<State>& state, std::string partId);
IAudioInputSelector* makeInputSelector(const std::shared_ptr<State>& state, std::string partId);
/// Describes the control of @p partId that goes by @p interfaceName.
IControlInterface* makeControlInterface(const std::shared_ptr<State>& state, std::string partId, IID iid,
                                        std::string interfaceName);
}
