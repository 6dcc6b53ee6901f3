#include "plainclient.h"
#include "plainlisteners.h"

#include <algorithm>
#include <cmath>

namespace plain
{
namespace
{
/// Reads a volume and notes the calls that fail.
class Reader
{
public:
    Reader(IAudioEndpointVolume& source, Endpoint& endpoint) : m_source(source), m_endpoint(endpoint) {}

    Volume read()
    {
        Volume volume;
        Range range;
        float minimum = 0;
        float maximum = 0;
        float step = 0;
        if (passes(m_source.GetVolumeRange(&minimum, &maximum, &step), "IAudioEndpointVolume::GetVolumeRange"))
        {
            volume.range = Range{minimum, maximum, step};
            m_hasPercent = minimum != maximum;
        }
        float number = 0;
        if (passes(m_source.GetMasterVolumeLevelScalar(&number), "IAudioEndpointVolume::GetMasterVolumeLevelScalar"))
            volume.master.percent = percentOf(number);
        if (passes(m_source.GetMasterVolumeLevel(&number), "IAudioEndpointVolume::GetMasterVolumeLevel"))
            volume.master.decibels = decibelsOf(number);
        UINT count = 0;
        if (passes(m_source.GetChannelCount(&count), "IAudioEndpointVolume::GetChannelCount"))
        {
            volume.channels.reserve(count);
            for (UINT channel = 0; channel < count; ++channel)
                volume.channels.push_back(readChannel(channel));
        }
        BOOL isMuted = FALSE;
        if (passes(m_source.GetMute(&isMuted), "IAudioEndpointVolume::GetMute"))
            volume.isMuted = isMuted != FALSE;
        DWORD support = 0;
        if (passes(m_source.QueryHardwareSupport(&support), "IAudioEndpointVolume::QueryHardwareSupport"))
            volume.isInHardware = (support & ENDPOINT_HARDWARE_SUPPORT_VOLUME) != 0;
        return volume;
    }

private:
    Level readChannel(UINT channel)
    {
        Level level;
        float number = 0;
        if (passes(m_source.GetChannelVolumeLevelScalar(channel, &number),
                   "IAudioEndpointVolume::GetChannelVolumeLevelScalar"))
            level.percent = percentOf(number);
        if (passes(m_source.GetChannelVolumeLevel(channel, &number), "IAudioEndpointVolume::GetChannelVolumeLevel"))
            level.decibels = decibelsOf(number);
        return level;
    }

    std::optional<double> percentOf(float scalar) const
    {
        if (!m_hasPercent || !std::isfinite(scalar))
            return std::nullopt;
        return std::min(100.0, std::max(0.0, double{scalar} * 100));
    }

    static std::optional<double> decibelsOf(float number)
    {
        return std::isfinite(number) ? std::optional<double>(number) : std::nullopt;
    }

    bool passes(HRESULT result, const char* operation)
    {
        if (FAILED(result))
            m_endpoint.problems.push_back({operation, m_endpoint.id, result});
        return SUCCEEDED(result);
    }

    IAudioEndpointVolume& m_source;
    Endpoint& m_endpoint;
    bool m_hasPercent = true;
};
}

/// Registers first, so that no change falls between the two.
void Client::readVolume(Endpoint& endpoint, Source& source)
{
    HRESULT result = source.device->Activate(IID_IAudioEndpointVolume, CLSCTX_ALL, nullptr, source.volume.putVoid());
    if (FAILED(result))
    {
        if (result != E_NOINTERFACE &&
            (endpoint.state != DEVICE_STATE_UNPLUGGED || result != AUDCLNT_E_DEVICE_INVALIDATED))
            endpoint.problems.push_back({"IMMDevice::Activate", endpoint.id, result});
        return;
    }
    *source.listener.put() = new VolumeListener(endpoint.id);
    result = source.volume->RegisterControlChangeNotify(source.listener.get());
    if (FAILED(result))
    {
        endpoint.problems.push_back({"IAudioEndpointVolume::RegisterControlChangeNotify", endpoint.id, result});
        source.listener = Com<VolumeListener>();
    }
    endpoint.volume = Reader(*source.volume.get(), endpoint).read();
}
}
