/// @file
/// Changes of levels, mutes and selections, on the platform's objects. All of it runs on the worker.
#pragma once

#include "client/reading/endpointreading.h"
#include "platform/coreaudio.h"
#include "sonavit/control.h"
#include "sonavit/levelchange.h"
#include "sonavit/result.h"
#include "sonavit/volume.h"

namespace sonavit::changing
{
enum class MuteChange : int
{
    off,
    on,
    toggle
};

/// Changes the volume of an endpoint and reads it again into @p reading. @param context of the events that follow
Result<Volume> changeVolume(reading::EndpointReading& reading, const LevelChange& change, const GUID& context);
Result<Volume> changeMute(reading::EndpointReading& reading, MuteChange change, const GUID& context);

/// Changes one hardware control. @return whether all calls succeeded, or the first that failed
Result<Done> changeControl(const Control& control, IAudioVolumeLevel& level, const LevelChange& change,
                           const GUID& context);
Result<Done> changeControlMute(const Control& control, IAudioMute& mute, bool isMuted, const GUID& context);
Result<Done> choose(const Selector& selector, IAudioInputSelector& platform, const SelectorInput& input,
                    const GUID& context);
}
