#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/volumecontroller.h"

#include <optional>
#include <vector>

namespace sonavit
{
/// In decibels.
struct LevelRange
{
    float minimum;
    float maximum;
    float step;
};

/// One level, as far as it could be read.
struct Level
{
    std::optional<unsigned> percent;
    std::optional<float> decibels;
};

/// What an endpoint's volume control tells. The library's readers answer a start value where the platform fails, so the
/// platform itself is asked whether there is anything to read.
struct EndpointLevel
{
    bool isThere = false; ///< whether the endpoint has a volume control at all
    Level master;
    std::optional<LevelRange> range;
    std::optional<unsigned> channels;
    std::vector<Level> channelLevels;
    std::optional<bool> isMuted;
};

/// An endpoint's volume control. Every endpoint has a controller from the library, bound or not; this one is only there
/// where the platform has an interface to bind it to.
class EndpointVolume
{
public:
    /// No value where IAudioEndpointVolume cannot be activated, as on endpoints that are not present.
    static std::optional<EndpointVolume> open(AudioDevice& device);

    EndpointLevel read() const;

    /// These answer whether the platform accepted.
    bool setPercent(unsigned percent);
    bool setDecibels(float decibels);
    bool setMute(bool isMuted);

private:
    explicit EndpointVolume(const COMPtr<IAudioEndpointVolume>::pointer& volume);

    std::vector<Level> readChannels(unsigned count) const;

    COMPtr<IAudioEndpointVolume>::pointer m_volume;
    VolumeController<EndpointVolumeController> m_controller;
};

/// The levels of @p device; nothing is there where it has no volume control.
EndpointLevel readLevel(AudioDevice& device);
}
