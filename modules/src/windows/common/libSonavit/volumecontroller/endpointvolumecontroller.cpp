#include "libSonavit/volumecontroller/sharedoperations.h"

#include "COM/resultcode.h"
#include "libSonavit/volumecontroller/stepwiserounding.h"

namespace
{
using volumecontroller::fractionFromPercent;
using volumecontroller::truncated;

/// @p scalar, 0.0 to 1.0, in percent, rounded; in single precision throughout.
unsigned int percentFromScalar(float scalar)
{
    const float scaled = scalar * 100.0f;
    return truncated(scaled + 0.5f);
}
}

template<>
unsigned int VolumeController<EndpointVolumeController>::numChannel() const
{
    UINT count = 0;
    m_policy.endpointVolume->GetChannelCount(&count);
    return count;
}

template<>
unsigned int VolumeController<EndpointVolumeController>::volumeLevelPercent(unsigned int channel) const
{
    SONAVIT_TRACE(volumelog, "VolumeController::volumeLevelPercent");
    float scalar = 0.0f;
    m_policy.endpointVolume->GetChannelVolumeLevelScalar(channel, &scalar);
    return percentFromScalar(scalar);
}

template<>
float VolumeController<EndpointVolumeController>::volumeLevelDecibel(unsigned int channel) const
{
    SONAVIT_TRACE(volumelog, "VolumeController::volumeLevelDecibel");
    float level = 0.0f;
    m_policy.endpointVolume->GetChannelVolumeLevel(channel, &level);
    return level;
}

// Required behaviour: the label is that of the setter; readers of the log match it.
template<>
bool VolumeController<EndpointVolumeController>::volumeRangeDecibel(unsigned int, DbVolumeRange& range) const
{
    SONAVIT_TRACE(volumelog, "VolumeController::setVolumeLevelDecibel");
    return SUCCEEDED(m_policy.endpointVolume->GetVolumeRange(&range.minLevel, &range.maxLevel, &range.stepping));
}

template<>
unsigned int VolumeController<EndpointVolumeController>::masterVolumeLevelPercent() const
{
    SONAVIT_TRACE(volumelog, "VolumeController::masterVolumeLevelPercent");
    float scalar = 0.0f;
    m_policy.endpointVolume->GetMasterVolumeLevelScalar(&scalar);
    return percentFromScalar(scalar);
}

template<>
float VolumeController<EndpointVolumeController>::masterVolumeLevelDecibel() const
{
    SONAVIT_TRACE(volumelog, "VolumeController::masterVolumeLevelDecibel");
    float level = 0.0f;
    m_policy.endpointVolume->GetMasterVolumeLevel(&level);
    return level;
}

template<>
bool VolumeController<EndpointVolumeController>::setVolumeLevelPercent(unsigned int channel, unsigned int percent)
{
    SONAVIT_TRACE(volumelog, "VolumeController::setVolumeLevelPercent");
    return SUCCEEDED(
        m_policy.endpointVolume->SetChannelVolumeLevelScalar(channel, fractionFromPercent(percent), nullptr));
}

template<>
bool VolumeController<EndpointVolumeController>::setVolumeLevelDecibel(unsigned int channel, float level)
{
    SONAVIT_TRACE(volumelog, "VolumeController::setVolumeLevelDecibel");
    return SUCCEEDED(m_policy.endpointVolume->SetChannelVolumeLevel(channel, level, nullptr));
}

template<>
bool VolumeController<EndpointVolumeController>::setMasterVolumeLevelPercent(unsigned int percent)
{
    SONAVIT_TRACE(volumelog, "VolumeController::setMasterVolumeLevelPercent");
    return SUCCEEDED(m_policy.endpointVolume->SetMasterVolumeLevelScalar(fractionFromPercent(percent), nullptr));
}

template<>
bool VolumeController<EndpointVolumeController>::setMasterVolumeLevelDecibel(float level)
{
    SONAVIT_TRACE(volumelog, "VolumeController::setMasterVolumeLevelDecibel");
    return SUCCEEDED(m_policy.endpointVolume->SetMasterVolumeLevel(level, nullptr));
}

template<>
bool VolumeController<EndpointVolumeController>::registerVolumeChangeNotification(
    const COMPtr<VolumeChangeNotification>::pointer& notification)
{
    if (m_policy.endpointVolume.get() == nullptr)
    {
        SONAVIT_LOG(volumelog, LOG_WARNING, out.append("Volume controller has not been initialized yet"));
        return false;
    }
    if (m_notification.get() != nullptr)
        m_policy.endpointVolume->UnregisterControlChangeNotify(m_notification.get());
    m_notification = notification; // stays even if the platform refuses it
    const HRESULT result = m_policy.endpointVolume->RegisterControlChangeNotify(m_notification.get());
    if (FAILED(result))
        SONAVIT_LOG(volumelog, LOG_WARNING, out.append("Unable to register control change notification "), out + signExtended(result));
    return SUCCEEDED(result);
}

/// Required behaviour: true even if the interface is nil. Callers of an endpoint's controller rely on it.
template<>
bool VolumeController<EndpointVolumeController>::hasVolumeControl() const
{
    return true;
}

template<>
bool VolumeController<EndpointVolumeController>::hasMuteControl() const
{
    return true;
}

/// Required behaviour: a copy unregisters the notification, too, although it did not register it.
template<>
VolumeController<EndpointVolumeController>::~VolumeController() noexcept(false)
{
    if (m_notification.get() != nullptr && m_policy.endpointVolume.get() != nullptr)
        m_policy.endpointVolume->UnregisterControlChangeNotify(m_notification.get());
    m_notification = nullptr;
}

template class VolumeController<EndpointVolumeController>;
