/// @file
/// Levels and mutes of parts, with the object model's controllers.
#pragma once

#include "libSonavit/audiopart.h"
#include "libSonavit/soundcard.h"
#include "libSonavit/volumecontroller.h"
#include "sonavit/control.h"
#include "sonavit/volume.h"

#include <optional>
#include <vector>

namespace sonavit::model
{
/// The range of @p channel; no value if the platform fails or succeeds without a range.
std::optional<LevelRange> readRange(const VolumeControllerInterface& controller, unsigned channel);

/// A control of a card: levels in whole percent. It has neither id nor name, because the object model's records name
/// the connector next to the level and not the level.
Control readControl(const ::SoundCard::VolumeController& record);

/// Whether a volume node has a level, and a mute node a mute; many have none.
bool hasLevel(const AudioPart& part);
bool hasMute(const AudioPart& part);

/// The level of a volume node, channel by channel; no value if the part has none.
std::optional<std::vector<ControlChannel>> readChannels(const AudioPart& part);

/// The mute of a mute node; no value if the part has none.
std::optional<bool> readMute(const AudioPart& part);

/// The selector of a part; nil if the part has none.
COMPtr<IAudioInputSelector>::pointer selectorOf(const AudioPart& part);

std::optional<std::uint32_t> readSelection(const COMPtr<IAudioInputSelector>::pointer& selector);
}
