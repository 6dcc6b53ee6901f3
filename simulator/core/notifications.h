/// @file
/// How the machine notifies its clients of changes.
///
/// Each function queues the calls on the notification thread, or makes them before it returns; see
/// Notifier::deliverAtOnce(). The journal records every call of a client. Without a client nothing is queued.
/// An id without value is a null pointer.
#pragma once

#include "simulator/core/hardwarelevels.h"
#include "simulator/core/state.h"

#include <memory>
#include <string>

namespace sim
{
void notifyDeviceAdded(const std::shared_ptr<State>& state, const Text& endpointId);
void notifyDeviceRemoved(const std::shared_ptr<State>& state, const Text& endpointId);
void notifyStateChanged(const std::shared_ptr<State>& state, const Text& endpointId, DWORD newState);
/// Without an @p endpointId the flow has lost its default.
void notifyDefaultChanged(const std::shared_ptr<State>& state, EDataFlow flow, ERole role, const Text& endpointId);
void notifyPropertyChanged(const std::shared_ptr<State>& state, const Text& deviceId, const PROPERTYKEY& key);
/// Passes the current levels. A null @p context is passed on as the zero GUID.
void notifyVolumeChanged(const std::shared_ptr<State>& state, const std::string& endpointId, LPCGUID context);
/// Notifies of all of @p changes.
void notifyLevelsChanged(const std::shared_ptr<State>& state, const LevelChanges& changes, LPCGUID context);
/// A null @p context is passed on as null.
void notifyControlChanged(const std::shared_ptr<State>& state, const std::string& partId,
                          const std::string& interfaceName, LPCGUID context);
}
