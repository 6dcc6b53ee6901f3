/// @file
/// Changes of levels, mutes and selections, on the platform's objects. All of it runs on the worker.
#pragma once

#include "client/changing/changecontext.h"
#include "client/reading/endpointreading.h"
#include "platform/coreaudio.h"
#include "sonavit/control.h"
#include "sonavit/levelchange.h"
#include "sonavit/result.h"
#include "sonavit/volume.h"

#include <optional>
#include <vector>

namespace sonavit::changing
{
enum class MuteChange : int
{
    off,
    on,
    toggle
};

// A change to what is there already calls no setter: set(get()) changes nothing, whatever the device rounds to.

/// Changes the volume of an endpoint and reads it again into @p reading, whether the change succeeds or not.
///
/// Without a channel it changes the platform's master level, which keeps the distances between the channels.
/// @param context of the events that follow
Result<Volume> changeVolume(reading::EndpointReading& reading, const LevelChange& change, ChangeContext& context);
Result<Volume> changeMute(reading::EndpointReading& reading, MuteChange change, ChangeContext& context);

/// The levels that a volume or a control had once.
struct FormerLevels
{
    std::vector<std::optional<Decibels>> channels;
    std::optional<Decibels> master; ///< used if there is no channel, or if there are more or fewer channels now

    /// Whether there is no level at all.
    bool isEmpty() const;
};

/// Puts levels back, of which there is at least one: channel by channel; one without a value is left as it is. If there
/// are more or fewer channels now, the master or the highest of the channels decides. It goes on after a failure. The
/// context learns whether any level is different afterwards.
/// @return the first problem
Result<Volume> putBack(reading::EndpointReading& reading, const FormerLevels& levels, ChangeContext& context);
Result<Done> putBack(const Control& control, IAudioVolumeLevel& level, const FormerLevels& levels,
                     ChangeContext& context);

/// Changes one hardware control: without a channel, all channels in one call. A new level is the level of each; a step
/// keeps the balance and ends where the first channel reaches the end of its range.
/// @return whether all calls succeeded, or the first that failed
Result<Done> changeControl(const Control& control, IAudioVolumeLevel& level, const LevelChange& change,
                           ChangeContext& context);
Result<Done> changeControlMute(const Control& control, IAudioMute& mute, bool isMuted, ChangeContext& context);
Result<Done> choose(const Selector& selector, IAudioInputSelector& platform, const SelectorInput& input,
                    ChangeContext& context);
}
