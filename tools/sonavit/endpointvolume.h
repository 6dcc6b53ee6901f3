#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/volumecontroller.h"

#include <optional>
#include <vector>

namespace sonavit::program
{
/// In decibels.
struct LevelRange
{
    float minimum;
    float maximum;
    float step;
};

/// One level; what cannot be read has no value.
struct Level
{
    std::optional<unsigned> percent;
    std::optional<float> decibels;
};

/// What an endpoint's volume control reports. The library's readers return a start value if the platform fails, so the
/// program calls the platform first to see whether the value can be read.
struct EndpointLevel
{
    bool isThere = false; ///< whether the endpoint has a volume control
    Level master;
    std::optional<LevelRange> range;
    std::optional<unsigned> channels;
    std::vector<Level> channelLevels;
    std::optional<bool> isMuted;
};

/// The range of @p channel; no value if the platform fails or succeeds without a range.
std::optional<LevelRange> readRange(const VolumeControllerInterface& controller, unsigned channel);

/// An endpoint's volume control. The library gives every endpoint a controller, whether the platform has a volume
/// interface behind it or not; this one exists only if the platform has the interface.
class EndpointVolume
{
public:
    /// No value if IAudioEndpointVolume cannot be activated, as on endpoints that are not present.
    static std::optional<EndpointVolume> open(AudioDevice& device);

    EndpointLevel read() const;

    /// These return whether the platform accepted the change. @p percent from 0 to 100, fractions included
    bool setPercent(float percent);
    bool setDecibels(float decibels);
    bool setMute(bool isMuted);

private:
    explicit EndpointVolume(const COMPtr<IAudioEndpointVolume>::pointer& volume);

    std::vector<Level> readChannels(unsigned count) const;

    COMPtr<IAudioEndpointVolume>::pointer m_volume;
    VolumeController<EndpointVolumeController> m_controller;
};

/// The levels of @p device; isThere is false if it has no volume control.
EndpointLevel readLevel(AudioDevice& device);
}
