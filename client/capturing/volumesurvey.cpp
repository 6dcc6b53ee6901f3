#include "client/capturing/volumeanswers.h"

#include "COM/interfacequery.h"
#include "client/reading/handle.h"

#include <algorithm>
#include <cmath>

namespace sonavit::capturing
{
namespace
{
/// A machine has no more channels.
constexpr UINT mostChannels = 64;

/// Asks one volume, each question once.
class VolumeQuestions
{
public:
    VolumeQuestions(IAudioEndpointVolume& volume, const std::string& endpointId, Recorder& recorder)
        : m_volume(volume),
          m_id(endpointId),
          m_recorder(recorder)
    {
    }

    VolumeAnswers ask()
    {
        VolumeAnswers answers;
        answers.endpoint = m_id;
        answers.range = range();
        const UINT count = channelCount();
        for (UINT channel = 0; channel < count; ++channel)
            answers.channels.push_back(channelLevel(channel));
        answers.master = masterLevel();
        BOOL isMuted = FALSE;
        if (m_recorder.passes(m_volume.GetMute(&isMuted), {"IAudioEndpointVolume::GetMute", m_id}))
            answers.muted = isMuted != FALSE;
        answers.steps = steps();
        DWORD support = 0;
        if (m_recorder.passes(m_volume.QueryHardwareSupport(&support),
                              {"IAudioEndpointVolume::QueryHardwareSupport", m_id}))
            answers.hardwareSupport = static_cast<std::uint32_t>(support);
        return answers;
    }

private:
    std::optional<RangeAnswers> range()
    {
        RangeAnswers answer;
        const Call call = {"IAudioEndpointVolume::GetVolumeRange", m_id};
        if (!m_recorder.passes(m_volume.GetVolumeRange(&answer.minimum, &answer.maximum, &answer.step), call))
            return std::nullopt;
        if (std::isfinite(answer.minimum) && std::isfinite(answer.maximum) && std::isfinite(answer.step))
            return answer;
        m_recorder.note("The volume range of " + m_id + " is not made of finite numbers.");
        return std::nullopt;
    }

    /// A volume without channels answers as one whose channels are not counted.
    UINT channelCount()
    {
        UINT count = 0;
        const Call call = {"IAudioEndpointVolume::GetChannelCount", m_id};
        if (!m_recorder.passes(m_volume.GetChannelCount(&count), call))
            return 0;
        if (count == 0)
            m_recorder.givesNull(call);
        if (count > mostChannels)
            m_recorder.note("The volume of " + m_id + " has " + argument(count) + " channels; the first " +
                            argument(mostChannels) + " are recorded.");
        return std::min(count, mostChannels);
    }

    LevelAnswers channelLevel(UINT channel)
    {
        LevelAnswers answer;
        float number = 0;
        const Call level = {"IAudioEndpointVolume::GetChannelVolumeLevel", m_id, {argument(channel)}};
        answer.level = finite(m_volume.GetChannelVolumeLevel(channel, &number), number, level);
        const Call scalar = {"IAudioEndpointVolume::GetChannelVolumeLevelScalar", m_id, {argument(channel)}};
        answer.scalar = finite(m_volume.GetChannelVolumeLevelScalar(channel, &number), number, scalar);
        return answer;
    }

    LevelAnswers masterLevel()
    {
        LevelAnswers answer;
        float number = 0;
        const Call level = {"IAudioEndpointVolume::GetMasterVolumeLevel", m_id};
        answer.level = finite(m_volume.GetMasterVolumeLevel(&number), number, level);
        const Call scalar = {"IAudioEndpointVolume::GetMasterVolumeLevelScalar", m_id};
        answer.scalar = finite(m_volume.GetMasterVolumeLevelScalar(&number), number, scalar);
        return answer;
    }

    std::optional<std::uint32_t> steps()
    {
        UINT step = 0;
        UINT count = 0;
        const bool isRead = m_recorder.passes(m_volume.GetVolumeStepInfo(&step, &count),
                                              {"IAudioEndpointVolume::GetVolumeStepInfo", m_id});
        return isRead ? std::optional<std::uint32_t>(count) : std::nullopt;
    }

    std::optional<float> finite(HRESULT result, const float& number, const Call& call)
    {
        if (!m_recorder.passes(result, call))
            return std::nullopt;
        if (std::isfinite(number))
            return number;
        m_recorder.note(std::string(call.operation) + " of " + m_id + " stored what is no finite number.");
        return std::nullopt;
    }

    IAudioEndpointVolume& m_volume;
    const std::string& m_id;
    Recorder& m_recorder;
};
}

std::optional<VolumeAnswers> askVolume(IMMDevice& device, const std::string& endpointId, Recorder& recorder)
{
    IAudioEndpointVolume* volume = nullptr;
    const HRESULT result = interfacequery::activate(device, volume);
    if (!recorder.gives(result, volume,
                        {"IMMDevice::Activate", endpointId, {"IAudioEndpointVolume", argument(DWORD{CLSCTX_ALL})}},
                        {E_NOINTERFACE}))
        return std::nullopt;
    const reading::Handle<IAudioEndpointVolume> holder(volume);
    return VolumeQuestions(*volume, endpointId, recorder).ask();
}
}
