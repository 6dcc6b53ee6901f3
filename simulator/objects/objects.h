/// @file
/// The COM objects of a simulated machine. Each make function creates one and returns it with one reference.
///
/// Each class is private to the source file that is named after it. Objects of the same device or part share its state
/// in the machine: what one sets, the others read.
#pragma once

#include "simulator/core/state.h"

#include <memory>
#include <string>
#include <vector>

namespace sim
{
/// The machine's one enumerator, with one more reference.
IMMDeviceEnumerator* lendEnumerator(const std::shared_ptr<State>& state);
/// CoCreateInstance for the enumerator's class.
HRESULT createEnumerator(const std::shared_ptr<State>& state, REFIID iid, void** object);
/// A snapshot: the devices with these ids in this order. The journal calls it @p name.
IMMDeviceCollection* makeCollection(const std::shared_ptr<State>& state, std::string name,
                                    std::vector<std::string> deviceIds);
/// An endpoint or an adapter device; null if the machine has none with exactly that id.
IMMDevice* makeDevice(const std::shared_ptr<State>& state, const std::string& deviceId);
/// @p access is one of STGM_READ, STGM_WRITE, STGM_READWRITE.
IPropertyStore* makePropertyStore(const std::shared_ptr<State>& state, std::string deviceId, DWORD access);
IDeviceTopology* makeTopology(const std::shared_ptr<State>& state, std::string deviceId);
IAudioEndpointVolume* makeEndpointVolume(const std::shared_ptr<State>& state, std::string endpointId);
IAudioClient* makeAudioClient(const std::shared_ptr<State>& state, std::string deviceId);
IAudioMeterInformation* makeMeter(const std::shared_ptr<State>& state, std::string endpointId);
IBaseFilter* makeBaseFilter(const std::shared_ptr<State>& state, std::string deviceId);

/// Null if the machine has no such part, connector or subunit.
IPart* makePart(const std::shared_ptr<State>& state, const std::string& partId);
IConnector* makeConnector(const std::shared_ptr<State>& state, const std::string& partId);
ISubunit* makeSubunit(const std::shared_ptr<State>& state, const std::string& partId);
/// What a list of parts contains, which fault rules tell apart: the neighbours on one side of a part, or the parts of a
/// signal path.
enum class ListedParts
{
    incoming,
    outgoing,
    path
};

/// The parts with these ids in this order; @p name is the id of the part that listed them, or at which the path begins.
IPartsList* makePartsList(const std::shared_ptr<State>& state, std::string name, ListedParts listed,
                          std::vector<std::string> partIds);
IAudioVolumeLevel* makeVolumeLevel(const std::shared_ptr<State>& state, std::string partId);
IAudioMute* makeMute(const std::shared_ptr<State>& state, std::string partId);
IAudioInputSelector* makeInputSelector(const std::shared_ptr<State>& state, std::string partId);
IKsJackDescription* makeJackDescription(const std::shared_ptr<State>& state, std::string partId);
IKsJackDescription2* makeJackDescription2(const std::shared_ptr<State>& state, std::string partId);
/// Describes the control @p iid with the name @p controlName of @p partId, which has @p index among the part's
/// controls.
IControlInterface* makeControlInterface(const std::shared_ptr<State>& state, std::string partId, UINT index, IID iid,
                                        OptionalString controlName);
}
