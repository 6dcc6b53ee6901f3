/// The operations that both kinds of volume controller share; included by their two source files only.
#pragma once

#include "libSonavit/volumecontroller.h"
#include "libSonavit/volumecontroller/log.h"

#include <cstdint>

namespace volumecontroller
{
/// @p value truncated towards zero, its low 32 bits; 0 if no 64-bit integer can hold it.
inline unsigned int truncated(double value)
{
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (!(value >= -limit && value < limit))
        return 0;
    return static_cast<unsigned int>(static_cast<std::uint64_t>(static_cast<std::int64_t>(value)));
}

/// @p percent as a fraction of 1, in single precision, not clamped.
inline float fractionFromPercent(unsigned int percent)
{
    return static_cast<float>(percent) / 100.0f;
}

// The interface that mutes a control.

inline IAudioEndpointVolume& muteOf(const EndpointVolumeController& policy)
{
    return *policy.endpointVolume;
}

inline IAudioMute& muteOf(const RegularVolumeController& policy)
{
    return *policy.mute;
}
}

template<class Policy>
VolumeController<Policy>::VolumeController(const Policy& policy) : m_policy(policy)
{
}

template<class Policy>
VolumeController<Policy>::VolumeController(const VolumeController& other) = default;

template<class Policy>
VolumeController<Policy>& VolumeController<Policy>::operator=(const VolumeController& other) = default;

template<class Policy>
void VolumeController<Policy>::initialize(const Policy& policy)
{
    m_policy = policy;
}

template<class Policy>
const qor::String& VolumeController<Policy>::ownerName() const
{
    return m_policy.ownerName;
}

template<class Policy>
const GUID& VolumeController<Policy>::ownerType() const
{
    return m_policy.ownerType;
}

/// Required behaviour: the start value is true, so that a control whose state cannot be read counts as muted.
template<class Policy>
bool VolumeController<Policy>::isMuted() const
{
    SONAVIT_TRACE(volumelog, "VolumeController::isMuted");
    BOOL muted = TRUE;
    volumecontroller::muteOf(m_policy).GetMute(&muted);
    return muted == TRUE;
}

template<class Policy>
bool VolumeController<Policy>::setMute(bool mute)
{
    SONAVIT_TRACE(volumelog, "VolumeController::setMute");
    return SUCCEEDED(volumecontroller::muteOf(m_policy).SetMute(mute ? TRUE : FALSE, nullptr));
}
