/// @file
/// Ids in the form that real machines have, derived from a string: equal strings lead to equal ids.
#pragma once

#include "platform/coreaudio.h"

#include <cstddef>
#include <cstdint>
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
