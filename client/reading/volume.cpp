#include "COM/interfacequery.h"
#include "client/reading/endpointreading.h"
#include "client/reading/judge.h"
#include "client/reading/limits.h"
#include "client/reading/steps.h"

#include <algorithm>
#include <cmath>

namespace sonavit::reading
{
namespace
{
class VolumeReader
{
public:
    VolumeReader(IAudioEndpointVolume& volume, Judge& judge) : m_volume(volume), m_judge(judge) {}

    Volume read()
    {
        Volume volume;
        readRange(volume);
        float number = 0;
        if (isRead(m_volume.GetMasterVolumeLevelScalar(&number), number,
                   {"IAudioEndpointVolume::GetMasterVolumeLevelScalar"}))
            volume.master.percent = percentOf(number);
        if (isRead(m_volume.GetMasterVolumeLevel(&number), number, {"IAudioEndpointVolume::GetMasterVolumeLevel"}))
            volume.master.decibels = Decibels(double{number});
        readChannels(volume);
        BOOL isMuted = FALSE;
        if (m_judge.passes(m_volume.GetMute(&isMuted), {"IAudioEndpointVolume::GetMute"}))
            volume.isMuted = isMuted != FALSE;
        DWORD support = 0;
        if (m_judge.passes(m_volume.QueryHardwareSupport(&support), {"IAudioEndpointVolume::QueryHardwareSupport"}))
            volume.isInHardware = (support & ENDPOINT_HARDWARE_SUPPORT_VOLUME) != 0;
        return volume;
    }

private:
    void readRange(Volume& volume)
    {
        const Operation operation = {"IAudioEndpointVolume::GetVolumeRange"};
        float minimum = 0;
        float maximum = 0;
        float step = 0;
        if (!m_judge.passes(m_volume.GetVolumeRange(&minimum, &maximum, &step), operation))
            return;
        if (std::isfinite(minimum) && std::isfinite(maximum) && std::isfinite(step))
            volume.range = LevelRange{double{minimum}, double{maximum}, double{step}};
        else
            m_judge.fails(invalidData, operation);
        m_hasPercent = volume.range && minimum != maximum;
    }

    void readChannels(Volume& volume)
    {
        const Operation operation = {"IAudioEndpointVolume::GetChannelCount"};
        UINT count = 0;
        if (!m_judge.passes(m_volume.GetChannelCount(&count), operation))
            return;
        if (count > mostChannels)
            m_judge.fails(invalidData, operation);
        else
        {
            volume.channels.emplace(count);
            for (UINT channel = 0; channel < count; ++channel)
                (*volume.channels)[channel] = readChannel(channel);
        }
    }

    Level readChannel(UINT channel)
    {
        Level level;
        float number = 0;
        if (isRead(m_volume.GetChannelVolumeLevelScalar(channel, &number), number,
                   {"IAudioEndpointVolume::GetChannelVolumeLevelScalar", nullptr, channel}))
            level.percent = percentOf(number);
        if (isRead(m_volume.GetChannelVolumeLevel(channel, &number), number,
                   {"IAudioEndpointVolume::GetChannelVolumeLevel", nullptr, channel}))
            level.decibels = Decibels(double{number});
        return level;
    }

    bool isRead(HRESULT result, const float& number, const Operation& operation)
    {
        if (!m_judge.passes(result, operation))
            return false;
        if (!std::isfinite(number))
            m_judge.fails(invalidData, operation);
        return std::isfinite(number);
    }

    /// A level on an empty range has no percent. A range that could not be read does not matter.
    std::optional<Percent> percentOf(float scalar) const
    {
        return m_hasPercent ? std::optional<Percent>(Percent(double{scalar} * 100.0)) : std::nullopt;
    }

    IAudioEndpointVolume& m_volume;
    Judge& m_judge;
    bool m_hasPercent = true;
};

void activateVolume(EndpointReading& reading, Judge& judge)
{
    const Operation operation = {"IMMDevice::Activate", "IAudioEndpointVolume"};
    IAudioEndpointVolume* volume = nullptr;
    const HRESULT result = interfacequery::activate(*reading.device, volume);
    // An endpoint need not have a volume, and the device of an unplugged one need not answer.
    const bool isGiven = reading.content.state == State::unplugged
                             ? judge.gives(result, volume, operation, {E_NOINTERFACE, AUDCLNT_E_DEVICE_INVALIDATED})
                             : judge.gives(result, volume, operation, {E_NOINTERFACE});
    if (isGiven)
        reading.volume = Handle<IAudioEndpointVolume>(volume);
}
}

void openVolume(EndpointReading& reading)
{
    reading.volumeProblems.clear();
    reading.content.volume.reset();
    Judge judge(reading.content.id.text(), reading.volumeProblems);
    if (!canHaveHardware(reading))
        reading.volume = nullptr;
    else if (reading.volume.get() == nullptr)
        activateVolume(reading, judge);
}

void readOpenVolume(EndpointReading& reading)
{
    Judge judge(reading.content.id.text(), reading.volumeProblems);
    if (reading.volume.get() != nullptr)
        reading.content.volume = VolumeReader(*reading.volume, judge).read();
    const auto isInvalidated = [](const Problem& problem) { return problem.code() == AUDCLNT_E_DEVICE_INVALIDATED; };
    if (std::any_of(reading.volumeProblems.begin(), reading.volumeProblems.end(), isInvalidated))
        reading.volume = nullptr; // the next reading asks for a new one
    gatherProblems(reading);
}

void readVolume(EndpointReading& reading)
{
    openVolume(reading);
    readOpenVolume(reading);
}
}
