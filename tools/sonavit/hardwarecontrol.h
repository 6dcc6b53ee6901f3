#pragma once

#include "libSonavit/soundcard.h"
#include "tools/sonavit/endpointvolume.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit::program
{
/// One channel of a hardware control; what cannot be read has no value.
struct ControlChannel
{
    Level level;
    std::optional<LevelRange> range;
};

/// A hardware volume control of an endpoint, with the mute next to it in the hardware.
struct HardwareControl
{
    std::optional<std::string> ownerName; ///< of the neighbouring connector
    std::optional<GUID> ownerType;
    std::optional<std::vector<ControlChannel>> channels; ///< no value if their number cannot be read
    bool hasMute = false;
    std::optional<bool> isMuted;
};

HardwareControl readControl(const SoundCard::VolumeController& record);
}
