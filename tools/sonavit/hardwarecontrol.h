#pragma once

#include "libSonavit/soundcard.h"
#include "tools/sonavit/endpointvolume.h"
#include "tools/sonavit/json.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit
{
/// One channel of a hardware control, as far as it could be read.
struct ControlChannel
{
    Level level;
    std::optional<LevelRange> range;
};

/// A volume control in the hardware that acts on an endpoint, with the mute beside it.
struct HardwareControl
{
    std::optional<std::string> ownerName; ///< of the connector next to it
    std::optional<GUID> ownerType;
    std::optional<std::vector<ControlChannel>> channels; ///< no value where their number is not to be had
    bool hasMute = false;
    std::optional<bool> isMuted;
};

HardwareControl readControl(const SoundCard::VolumeController& record);
Json controlJson(const HardwareControl& control);
}
