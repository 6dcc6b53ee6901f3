#include "libSonavit/volumecontroller/sharedoperations.h"

#include "libSonavit/precondition.h"
#include "libSonavit/volumecontroller/stepwiserounding.h"

namespace
{
using volumecontroller::fractionFromPercent;
using volumecontroller::truncated;

/// The place of @p level in @p range, 0.0 at the bottom and 1.0 at the top, in single precision.
float fractionOf(float level, const VolumeControllerInterface::DbVolumeRange& range)
{
    return (level - range.minLevel) / (range.maxLevel - range.minLevel);
}
}

template<>
unsigned int VolumeController<RegularVolumeController>::numChannel() const
{
    UINT count = 0;
    m_policy.volumeLevel->GetChannelCount(&count);
    return count;
}

template<>
unsigned int VolumeController<RegularVolumeController>::volumeLevelPercent(unsigned int channel) const
{
    SONAVIT_TRACE(volumelog, "VolumeController::volumeLevelPercent");
    DbVolumeRange range = {};
    volumeRangeDecibel(channel, range); // the result is ignored on purpose: a range that cannot be read is zero
    const float percent = fractionOf(volumeLevelDecibel(channel), range) * 100.0f;
    return truncated(static_cast<double>(percent) + 0.5);
}

template<>
float VolumeController<RegularVolumeController>::volumeLevelDecibel(unsigned int channel) const
{
    SONAVIT_TRACE(volumelog, "VolumeController::volumeLevelDecibel");
    float level = 0.0f;
    m_policy.volumeLevel->GetLevel(channel, &level);
    return level;
}

// Required behaviour: the label is that of the setter; readers of the log match it.
template<>
bool VolumeController<RegularVolumeController>::volumeRangeDecibel(unsigned int channel, DbVolumeRange& range) const
{
    SONAVIT_TRACE(volumelog, "VolumeController::setVolumeLevelDecibel");
    return SUCCEEDED(m_policy.volumeLevel->GetLevelRange(channel, &range.minLevel, &range.maxLevel, &range.stepping));
}

/// Required behaviour: 0.5 is added before the multiplication by 100, so that the answer ranges from 50 to 150. Callers
/// are adapted to these numbers; the formula of a channel must not replace this one.
template<>
unsigned int VolumeController<RegularVolumeController>::masterVolumeLevelPercent() const
{
    SONAVIT_TRACE(volumelog, "VolumeController::masterVolumeLevelPercent");
    precondition::check(numChannel() > 0, __FILE__, __LINE__, "numChannel() > 0");
    DbVolumeRange range = {};
    volumeRangeDecibel(0, range); // the range of channel 0 counts for all channels
    const float raised = fractionOf(masterVolumeLevelDecibel(), range) + 0.5f;
    const float percent = raised * 100.0f;
    return truncated(percent);
}

/// The mean of the channels; NaN without channels. Required behaviour: each pass asks for the number of channels again.
template<>
float VolumeController<RegularVolumeController>::masterVolumeLevelDecibel() const
{
    SONAVIT_TRACE(volumelog, "VolumeController::masterVolumeLevelDecibel");
    float sum = 0.0f;
    for (unsigned int channel = 0; channel < numChannel(); ++channel)
        sum += volumeLevelDecibel(channel);
    return sum / static_cast<float>(numChannel());
}

template<>
bool VolumeController<RegularVolumeController>::setVolumeLevelPercent(unsigned int channel, unsigned int percent)
{
    SONAVIT_TRACE(volumelog, "VolumeController::setVolumeLevelPercent");
    const float fraction = fractionFromPercent(percent);
    DbVolumeRange range = {};
    volumeRangeDecibel(channel, range);
    const float level = (range.maxLevel - range.minLevel) * fraction + range.minLevel;
    return SUCCEEDED(m_policy.volumeLevel->SetLevel(channel, level, nullptr));
}

template<>
bool VolumeController<RegularVolumeController>::setVolumeLevelDecibel(unsigned int channel, float level)
{
    SONAVIT_TRACE(volumelog, "VolumeController::setVolumeLevelDecibel");
    return SUCCEEDED(m_policy.volumeLevel->SetLevel(channel, level, nullptr));
}

/// Required behaviour: a part has a master level in decibels only. Returns false without a message.
template<>
bool VolumeController<RegularVolumeController>::setMasterVolumeLevelPercent(unsigned int)
{
    return false;
}

template<>
bool VolumeController<RegularVolumeController>::setMasterVolumeLevelDecibel(float level)
{
    SONAVIT_TRACE(volumelog, "VolumeController::setMasterVolumeLevelDecibel");
    return SUCCEEDED(m_policy.volumeLevel->SetLevelUniform(level, nullptr));
}

/// Required behaviour: a part does not notify. Returns false without a message.
template<>
bool VolumeController<RegularVolumeController>::registerVolumeChangeNotification(
    const COMPtr<VolumeChangeNotification>::pointer&)
{
    return false;
}

template<>
bool VolumeController<RegularVolumeController>::hasVolumeControl() const
{
    return m_policy.volumeLevel.get() != nullptr;
}

template<>
bool VolumeController<RegularVolumeController>::hasMuteControl() const
{
    return m_policy.mute.get() != nullptr;
}

template<>
VolumeController<RegularVolumeController>::~VolumeController() noexcept(false) = default;

template class VolumeController<RegularVolumeController>;
