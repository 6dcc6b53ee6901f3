/// @file
/// The operations of the simulated platform by name.
#pragma once

#include <string>
#include <string_view>

namespace sim
{
/// Whether the simulated platform has that operation ("IMMDevice::Activate", "CoCreateInstance"). A bare name such as
/// "Release" means that operation of every interface.
bool isOperation(std::string_view name);

/// Whether IAudioEndpointVolume has an operation of that name ("SetMute").
bool isEndpointVolumeOperation(std::string_view name);

/// The end of a message about a name that is not an operation: ` (did you mean "IMMDevice::Activate"?)`, or the
/// existing operations if no name is near.
std::string operationSuggestion(const std::string& name);
}
