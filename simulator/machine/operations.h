/// The operations of the simulated platform by name.
#pragma once

#include <string>
#include <string_view>

namespace sim
{
/// Whether the simulated platform has that operation ("IMMDevice::Activate", "CoCreateInstance"). A bare name such as
/// "Release" stands for that operation of every interface.
bool isOperation(std::string_view name);

/// Whether IAudioEndpointVolume has an operation of that name ("SetMute").
bool isEndpointVolumeOperation(std::string_view name);

/// What to say behind a name that isOperation() refuses: ` (did you mean "IMMDevice::Activate"?)`, or the existing
/// operations.
std::string operationSuggestion(const std::string& name);
}
