/// @file
/// What the instance id of a device says about it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sonavit::references
{
/// A device, as its instance id and that of its parent describe it. A member is empty if they do not.
struct DeviceIdentity
{
    std::string bus;      ///< "USB": its enumerator, in upper case
    std::string vendor;   ///< "USB:1235": the bus and the vendor's number there
    std::string product;  ///< "8210"; with the subsystem where the bus has one: "0887&10438445"
    std::string function; ///< "00": which function of a composite device
    std::string serial;   ///< only if the device has one
};

/// Reads "USB\VID_xxxx&PID_xxxx&MI_xx\...", "HDAUDIO\FUNC_xx&VEN_xxxx&DEV_xxxx&SUBSYS_xxxxxxxx\...",
/// "PCI\VEN_xxxx&DEV_xxxx&SUBSYS_xxxxxxxx\..." and "BTHENUM\..._VID&xxxxxxxx_PID&xxxx\...".
///
/// The last part of an instance id is a serial number unless its second character is "&": then Windows has made it from
/// the place of the device. The serial number of a composite USB device is that of @p parent, if that is the same
/// device and not the hub that it is attached to.
DeviceIdentity identityOf(std::string_view instanceId, std::optional<std::string_view> parent);

/// The instance id in an instance path: "USB\..." of "{1}.USB\..."; empty without the number in braces.
std::string_view instanceIdIn(std::string_view instancePath) noexcept;
}
