/// @file
/// How the machine tells its clients of changes.
///
/// Each function queues the calls on the notification thread, or makes them at once where that is asked for; see
/// Notifier. The journal shows every call of a client. Where nobody listens, nothing is queued.
#pragma once

#include <memory>
#include <string>

#include "simulator/core/state.h"

namespace sim
{
void notifyDeviceAdded(const std::shared_ptr<State>& state, const std::string& endpointId);
void notifyDeviceRemoved(const std::shared_ptr<State>& state, const std::string& endpointId);
void notifyStateChanged(const std::shared_ptr<State>& state, const std::string& endpointId, DWORD newState);
/// No @p endpointId: the flow has no default any more.
void notifyDefaultChanged(const std::shared_ptr<State>& state, EDataFlow flow, ERole role, const Text& endpointId);
void notifyPropertyChanged(const std::shared_ptr<State>& state, const std::string& deviceId, const PROPERTYKEY& key);
/// Tells the levels as they are at this moment. A null @p context is handed on as the zero GUID.
void notifyVolumeChanged(const std::shared_ptr<State>& state, const std::string& endpointId, LPCGUID context);
/// A null @p context is handed on as such.
void notifyControlChanged(const std::shared_ptr<State>& state, const std::string& partId,
                          const std::string& interfaceName, LPCGUID context);
}
