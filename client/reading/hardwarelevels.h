/// @file
/// The levels and mutes that the parts of a walk have now.
#pragma once

#include "client/reading/judge.h"
#include "platform/coreaudio.h"
#include "sonavit/control.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace sonavit::reading
{
/// All channels; no value if their number cannot be read.
std::optional<std::vector<ControlChannel>> readChannels(IAudioVolumeLevel& level, Judge judge);
std::optional<bool> readMute(IAudioMute& mute, Judge judge);
std::optional<std::uint32_t> readSelection(IAudioInputSelector& selector, Judge judge);
}
