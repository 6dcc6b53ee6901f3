#include "client/model/endpointvolume.h"

#include "client/model/levels.h"
#include "client/model/values.h"
#include "client/reading/judge.h"
#include "client/reading/limits.h"
#include "libSonavit/volumecontroller.h"

namespace sonavit::model
{
namespace
{
using Interface = COMPtr<IAudioEndpointVolume>::pointer;

EndpointVolumeController policyOf(const Interface& volume)
{
    EndpointVolumeController policy;
    policy.endpointVolume = volume;
    return policy;
}

class VolumeReader
{
public:
    VolumeReader(const Interface& volume, Judge judge)
        : m_volume(volume),
          m_controller(policyOf(volume)),
          m_judge(judge)
    {
    }

    Volume read()
    {
        Volume volume;
        volume.master = readMaster();
        volume.range = readRange(m_controller, 0);
        UINT count = 0;
        const HRESULT counted = m_volume->GetChannelCount(&count);
        const bool isBelieved = FAILED(counted) || count <= reading::mostChannels;
        if (m_judge.passes(isBelieved ? counted : reading::invalidData, "IAudioEndpointVolume::GetChannelCount"))
        {
            volume.channels.emplace();
            const unsigned channels = std::min<unsigned>(m_controller.numChannel(), count); // which asks once more
            for (unsigned channel = 0; channel < channels; ++channel)
                volume.channels->push_back(readChannel(channel));
        }
        BOOL isMuted = FALSE;
        if (m_judge.passes(m_volume->GetMute(&isMuted), "IAudioEndpointVolume::GetMute"))
            volume.isMuted = m_controller.isMuted();
        return volume;
    }

private:
    Level readMaster()
    {
        Level level;
        float number = 0.0f;
        if (m_judge.passes(m_volume->GetMasterVolumeLevelScalar(&number),
                           "IAudioEndpointVolume::GetMasterVolumeLevelScalar"))
            level.percent = Percent(m_controller.masterVolumeLevelPercent());
        if (m_judge.passes(m_volume->GetMasterVolumeLevel(&number), "IAudioEndpointVolume::GetMasterVolumeLevel"))
            level.decibels = Decibels(double{m_controller.masterVolumeLevelDecibel()});
        return level;
    }

    Level readChannel(unsigned channel)
    {
        Level level;
        float number = 0.0f;
        if (m_judge.passes(m_volume->GetChannelVolumeLevelScalar(channel, &number),
                           "IAudioEndpointVolume::GetChannelVolumeLevelScalar"))
            level.percent = Percent(m_controller.volumeLevelPercent(channel));
        if (m_judge.passes(m_volume->GetChannelVolumeLevel(channel, &number),
                           "IAudioEndpointVolume::GetChannelVolumeLevel"))
            level.decibels = Decibels(double{m_controller.volumeLevelDecibel(channel)});
        return level;
    }

    Interface m_volume;
    VolumeController<EndpointVolumeController> m_controller;
    Judge m_judge;
};
}

std::optional<Volume> readVolume(AudioDevice& device, const std::string& id, std::vector<Problem>& problems)
{
    const COMPtr<IMMDevice>::pointer platformDevice = device.device();
    if (platformDevice.get() == nullptr)
        return std::nullopt;
    void* object = nullptr;
    const HRESULT result = platformDevice->Activate(IID_IAudioEndpointVolume, CLSCTX_ALL, nullptr, &object);
    const Interface volume(static_cast<IAudioEndpointVolume*>(object));
    if (FAILED(result) || volume.get() == nullptr)
        return std::nullopt;
    return VolumeReader(volume, Judge(id, problems)).read();
}
}
