#include "tools/sonavit/hardwarecontrol.h"

#include "tools/sonavit/nodekind.h"
#include "tools/sonavit/output/text.h"

namespace sonavit::program
{
namespace
{
/// The library computes percent from the range: without a range there is no percent.
ControlChannel readChannel(const RegularVolumeController& policy, const VolumeControllerInterface& controller,
                           unsigned channel)
{
    ControlChannel result;
    result.range = readRange(controller, channel);
    float decibels = 0.0f;
    if (FAILED(policy.volumeLevel->GetLevel(channel, &decibels)))
        return result;
    result.level.decibels = controller.volumeLevelDecibel(channel);
    if (result.range && result.range->maximum > result.range->minimum)
        result.level.percent = controller.volumeLevelPercent(channel);
    return result;
}

std::vector<ControlChannel> readChannels(const RegularVolumeController& policy,
                                         const VolumeControllerInterface& controller)
{
    std::vector<ControlChannel> channels;
    const unsigned count = controller.numChannel();
    for (unsigned channel = 0; channel < count; ++channel)
        channels.push_back(readChannel(policy, controller, channel));
    return channels;
}
}

HardwareControl readControl(const SoundCard::VolumeController& record)
{
    RegularVolumeController policy;
    policy.volumeLevel = record.volumeLevel;
    policy.mute = record.mute;
    policy.ownerType = record.ownerType;
    policy.ownerName = record.ownerName;
    const VolumeController<RegularVolumeController> controller(policy);

    HardwareControl control;
    control.ownerName = textOrNothing(controller.ownerName());
    control.ownerType = typeOrNothing(controller.ownerType());
    UINT count = 0;
    if (policy.volumeLevel.get() != nullptr && SUCCEEDED(policy.volumeLevel->GetChannelCount(&count)))
        control.channels = readChannels(policy, controller);
    control.hasMute = controller.hasMuteControl();
    BOOL isMuted = FALSE;
    if (control.hasMute && SUCCEEDED(policy.mute->GetMute(&isMuted)))
        control.isMuted = controller.isMuted();
    return control;
}
}
