#include "client/capturing/volumeanswers.h"

#include "COM/interfacequery.h"
#include "client/capturing/taken.h"
#include "client/reading/handle.h"

#include <algorithm>
#include <cmath>
#include <limits>

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

    UINT channelCount()
    {
        UINT count = 0;
        if (!m_recorder.passes(m_volume.GetChannelCount(&count), {"IAudioEndpointVolume::GetChannelCount", m_id}))
            return 0;
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

    std::optional<StepAnswers> steps()
    {
        UINT step = 0;
        UINT count = 0;
        const Call call = {"IAudioEndpointVolume::GetVolumeStepInfo", m_id};
        if (!m_recorder.passes(m_volume.GetVolumeStepInfo(&step, &count), call))
            return std::nullopt;
        if (count > 0)
            return StepAnswers{step, count};
        m_recorder.givesNull(call); // every volume has a step at least
        return std::nullopt;
    }

    /// The nearest finite number; no value for what is no number.
    std::optional<float> finite(HRESULT result, const float& number, const Call& call)
    {
        if (!m_recorder.passes(result, call))
            return std::nullopt;
        if (!std::isfinite(number))
            m_recorder.note(std::string(call.operation) + " of " + m_id + " stores what is no finite number.");
        if (std::isnan(number))
            return std::nullopt;
        constexpr float largest = std::numeric_limits<float>::max();
        return std::clamp(number, -largest, largest);
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
    const reading::Handle<IAudioEndpointVolume> holder = taken(result, volume);
    if (!recorder.gives(result, volume,
                        {"IMMDevice::Activate", endpointId, {"IAudioEndpointVolume", argument(DWORD{CLSCTX_ALL})}},
                        {E_NOINTERFACE}))
        return std::nullopt;
    return VolumeQuestions(*volume, endpointId, recorder).ask();
}
}
