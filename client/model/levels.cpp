#include "client/model/levels.h"

#include "client/model/values.h"
#include "client/reading/limits.h"

#include <algorithm>
#include <cmath>

namespace sonavit::model
{
namespace
{
/// The control of the part; nil if the part has none. A pointer along with a failure code is ignored.
template<class I>
typename COMPtr<I>::pointer activate(const AudioPart& part, const IID& iid)
{
    const COMPtr<IPart>::pointer platformPart = part.part();
    void* object = nullptr;
    if (platformPart.get() == nullptr || FAILED(platformPart->Activate(CLSCTX_ALL, iid, &object)))
        return {};
    return static_cast<I*>(object);
}

/// The object model computes percent from the range: without a range there is no percent.
ControlChannel readChannel(const RegularVolumeController& policy, const VolumeControllerInterface& controller,
                           unsigned channel)
{
    ControlChannel result;
    result.range = readRange(controller, channel);
    float decibels = 0.0f;
    if (FAILED(policy.volumeLevel->GetLevel(channel, &decibels)) || std::isnan(decibels))
        return result;
    result.level.decibels = Decibels(double{controller.volumeLevelDecibel(channel)});
    if (result.range && result.range->maximum > result.range->minimum)
        result.level.percent = Percent(controller.volumeLevelPercent(channel));
    return result;
}

std::optional<std::vector<ControlChannel>> readChannels(const RegularVolumeController& policy)
{
    UINT count = 0;
    if (policy.volumeLevel.get() == nullptr || FAILED(policy.volumeLevel->GetChannelCount(&count)) ||
        count > reading::mostChannels)
        return std::nullopt;
    const VolumeController<RegularVolumeController> controller(policy);
    std::vector<ControlChannel> channels;
    const unsigned number = std::min<unsigned>(controller.numChannel(), count); // which asks once more
    for (unsigned channel = 0; channel < number; ++channel)
        channels.push_back(readChannel(policy, controller, channel));
    return channels;
}

std::optional<bool> readMute(const RegularVolumeController& policy)
{
    BOOL isMuted = FALSE;
    if (policy.mute.get() == nullptr || FAILED(policy.mute->GetMute(&isMuted)))
        return std::nullopt;
    return VolumeController<RegularVolumeController>(policy).isMuted();
}
}

std::optional<LevelRange> readRange(const VolumeControllerInterface& controller, unsigned channel)
{
    VolumeControllerInterface::DbVolumeRange range{};
    if (!controller.volumeRangeDecibel(channel, range))
        return std::nullopt;
    const bool isBlank = range.minLevel == 0.0f && range.maxLevel == 0.0f && range.stepping == 0.0f;
    if (isBlank) // the platform succeeded and stored nothing
        return std::nullopt;
    return LevelRange{range.minLevel, range.maxLevel, range.stepping};
}

Control readControl(const ::SoundCard::VolumeController& record)
{
    RegularVolumeController policy;
    policy.volumeLevel = record.volumeLevel;
    policy.mute = record.mute;
    policy.ownerType = record.ownerType;
    policy.ownerName = record.ownerName;
    const VolumeController<RegularVolumeController> controller(policy);

    Control control;
    control.ownerName = textOrNothing(controller.ownerName());
    control.ownerType = guidOrNothing(controller.ownerType());
    control.channels = readChannels(policy);
    control.hasMute = controller.hasMuteControl();
    control.isMuted = readMute(policy);
    return control;
}

bool hasLevel(const AudioPart& part)
{
    return activate<IAudioVolumeLevel>(part, IID_IAudioVolumeLevel).get() != nullptr;
}

bool hasMute(const AudioPart& part)
{
    return activate<IAudioMute>(part, IID_IAudioMute).get() != nullptr;
}

std::optional<std::vector<ControlChannel>> readChannels(const AudioPart& part)
{
    RegularVolumeController policy;
    policy.volumeLevel = activate<IAudioVolumeLevel>(part, IID_IAudioVolumeLevel);
    return readChannels(policy);
}

std::optional<bool> readMute(const AudioPart& part)
{
    RegularVolumeController policy;
    policy.mute = activate<IAudioMute>(part, IID_IAudioMute);
    return readMute(policy);
}

COMPtr<IAudioInputSelector>::pointer selectorOf(const AudioPart& part)
{
    return activate<IAudioInputSelector>(part, IID_IAudioInputSelector);
}

std::optional<std::uint32_t> readSelection(const COMPtr<IAudioInputSelector>::pointer& selector)
{
    UINT selection = 0;
    if (selector.get() == nullptr || FAILED(selector->GetSelection(&selection)))
        return std::nullopt;
    return selection;
}
}
