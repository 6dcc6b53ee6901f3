/// @file
/// Ids in the form that real machines have, derived from a string: equal strings lead to equal ids.
#pragma once

#include "platform/coreaudio.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace sim
{
/// A GUID that depends on @p seed alone.
GUID derivedGuid(const std::string& seed);

/// @p digits upper-case hexadecimal digits that depend on @p seed alone, at most 16.
std::string derivedHex(const std::string& seed, int digits);

/// "{0.0.0.00000000}.{guid}" for a render, "{0.0.1.00000000}.{guid}" for a capture endpoint.
std::string endpointId(EDataFlow flow, const GUID& guid);

/// A device instance and its parent: a codec on the board's audio bus, or one function of a USB device.
std::string boardInstance(const std::string& seed);
std::string boardParent(const std::string& seed);
std::string usbInstance(const std::string& seed);
std::string usbParent(const std::string& seed);

/// "{2}.\\?\hdaudio#...#{category}\topo", the id of the adapter device of a device instance.
std::string adapterId(const std::string& instanceId);

/// The instance id that such an adapter id contains, in upper case; no value for an id of another form.
std::optional<std::string> instanceOfAdapter(const std::string& adapterId);

/// The instance id in an instance path: the text after its first dot, up to the second.
std::string instanceOfPath(const std::string& instancePath);

/// The container of a device instance: one GUID for each USB or Bluetooth device, whatever functions it has, and
/// {00000000-0000-0000-FFFF-FFFFFFFFFFFF} for all others, which are parts of the computer. @p parent is the parent of
/// the instance, which the functions of one USB device share. The profiles of a Bluetooth device share its address,
/// which is in the instance's id or in its parent's.
GUID containerOf(const std::string& instanceId, const std::optional<std::string>& parent);

/// Whether @p id has the form that the platform accepts as a device's id, whether or not there is such a device: that
/// of endpointId(), or "{2}.\\?\" and the path of an adapter device. Letters of either case are accepted.
bool isDeviceId(const std::string& id);

/// The strong name of the driver node of the device with that instance path.
std::string driverName(const std::string& instancePath);

/// The local id that a connector or a subunit usually has at its position in the topology.
std::uint32_t usualConnectorLocalId(std::size_t position);
std::uint32_t usualSubunitLocalId(std::size_t position);

/// The global id of a part: the device's id, then the local id.
std::string partId(const std::string& deviceId, std::uint32_t localId);
}
