#include "tools/sonavit/endpointvolume.h"

#include <cmath>

namespace sonavit::program
{
namespace
{
EndpointVolumeController controllerOf(const COMPtr<IAudioEndpointVolume>::pointer& volume)
{
    EndpointVolumeController policy;
    policy.endpointVolume = volume;
    return policy;
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

EndpointVolume::EndpointVolume(const COMPtr<IAudioEndpointVolume>::pointer& volume)
    : m_volume(volume),
      m_controller(controllerOf(volume))
{
}

std::optional<EndpointVolume> EndpointVolume::open(AudioDevice& device)
{
    const COMPtr<IMMDevice>::pointer platformDevice = device.device();
    if (platformDevice.get() == nullptr)
        return std::nullopt;
    void* object = nullptr;
    const HRESULT result = platformDevice->Activate(IID_IAudioEndpointVolume, CLSCTX_ALL, nullptr, &object);
    const COMPtr<IAudioEndpointVolume>::pointer volume(static_cast<IAudioEndpointVolume*>(object));
    if (FAILED(result) || volume.get() == nullptr)
        return std::nullopt;
    return EndpointVolume(volume);
}

EndpointLevel EndpointVolume::read() const
{
    EndpointLevel level;
    level.isThere = true;
    float number = 0.0f;
    UINT count = 0;
    BOOL isMuted = FALSE;
    if (SUCCEEDED(m_volume->GetMasterVolumeLevelScalar(&number)))
        level.master.percent = m_controller.masterVolumeLevelPercent();
    if (SUCCEEDED(m_volume->GetMasterVolumeLevel(&number)))
        level.master.decibels = m_controller.masterVolumeLevelDecibel();
    level.range = readRange(m_controller, 0);
    if (SUCCEEDED(m_volume->GetChannelCount(&count)))
    {
        level.channels = m_controller.numChannel();
        level.channelLevels = readChannels(*level.channels);
    }
    if (SUCCEEDED(m_volume->GetMute(&isMuted)))
        level.isMuted = m_controller.isMuted();
    return level;
}

std::vector<Level> EndpointVolume::readChannels(unsigned count) const
{
    std::vector<Level> levels;
    for (unsigned channel = 0; channel < count; ++channel)
    {
        Level level;
        float number = 0.0f;
        if (SUCCEEDED(m_volume->GetChannelVolumeLevelScalar(channel, &number)))
            level.percent = m_controller.volumeLevelPercent(channel);
        if (SUCCEEDED(m_volume->GetChannelVolumeLevel(channel, &number)))
            level.decibels = m_controller.volumeLevelDecibel(channel);
        levels.push_back(level);
    }
    return levels;
}

/// The library takes whole percent; a fraction goes to the platform directly.
bool EndpointVolume::setPercent(float percent)
{
    if (percent == std::floor(percent))
        return m_controller.setMasterVolumeLevelPercent(static_cast<unsigned>(percent));
    return SUCCEEDED(m_volume->SetMasterVolumeLevelScalar(percent / 100.0f, nullptr));
}

bool EndpointVolume::setDecibels(float decibels)
{
    return m_controller.setMasterVolumeLevelDecibel(decibels);
}

bool EndpointVolume::setMute(bool isMuted)
{
    return m_controller.setMute(isMuted);
}

EndpointLevel readLevel(AudioDevice& device)
{
    const std::optional<EndpointVolume> volume = EndpointVolume::open(device);
    return volume ? volume->read() : EndpointLevel();
}
}
