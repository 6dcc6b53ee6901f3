// The volume of an endpoint.
#include "tests/conformity/fact.h"
#include "tests/conformity/results.h"
#include "tests/conformity/system.h"

#include <cmath>
#include <vector>

namespace conformity
{
namespace
{
using VolumeAction = std::function<void(const EndpointInSystem&, IAudioEndpointVolume&)>;

void eachVolume(System& system, const VolumeAction& action)
{
    system.eachActive(
        [&](const EndpointInSystem& endpoint)
        {
            if (const Held<IAudioEndpointVolume> volume = activated<IAudioEndpointVolume>(*endpoint.device.get()))
                action(endpoint, *volume.get());
        });
}

/// A check of each volume that finds one result.
std::function<Finding(System&)> eachResult(HRESULT expected, const std::function<HRESULT(IAudioEndpointVolume&)>& call)
{
    return [expected, call](System& system)
    {
        Observation observation;
        eachVolume(system,
                   [&](const EndpointInSystem& endpoint, IAudioEndpointVolume& volume)
                   {
                       const HRESULT result = call(volume);
                       observation.see(result == expected, resultName(result), endpoint.name);
                   });
        return observation.finding("no endpoint with a volume");
    };
}

Finding rangeIsOne(System& system)
{
    Observation observation;
    eachVolume(system,
               [&](const EndpointInSystem& endpoint, IAudioEndpointVolume& volume)
               {
                   float minimum = 0;
                   float maximum = 0;
                   float step = 0;
                   const HRESULT result = volume.GetVolumeRange(&minimum, &maximum, &step);
                   const bool isRight = result == S_OK && minimum <= maximum && step > 0;
                   observation.see(isRight, isRight ? "upwards" : resultName(result), endpoint.name);
               });
    return observation.finding("no endpoint with a volume");
}

Finding scalarsAreFractions(System& system)
{
    Observation observation;
    eachVolume(system,
               [&](const EndpointInSystem& endpoint, IAudioEndpointVolume& volume)
               {
                   float scalar = -1;
                   const HRESULT result = volume.GetMasterVolumeLevelScalar(&scalar);
                   const bool isRight = result == S_OK && scalar >= 0 && scalar <= 1;
                   observation.see(isRight, isRight ? "0 to 1" : std::to_string(scalar), endpoint.name);
               });
    return observation.finding("no endpoint with a volume");
}

Finding stepsAreCounted(System& system)
{
    Observation observation;
    eachVolume(system,
               [&](const EndpointInSystem& endpoint, IAudioEndpointVolume& volume)
               {
                   UINT step = 0;
                   UINT count = 0;
                   const HRESULT result = volume.GetVolumeStepInfo(&step, &count);
                   const bool isRight = result == S_OK && step < count;
                   observation.see(isRight, isRight ? "below" : resultName(result), endpoint.name);
               });
    return observation.finding("no endpoint with a volume");
}

Finding sameMuteIsNoChange(System& system)
{
    if (!system.mayChange())
        return {Verdict::notTried, "needs --change"};
    Observation observation;
    eachVolume(system,
               [&](const EndpointInSystem& endpoint, IAudioEndpointVolume& volume)
               {
                   BOOL isMuted = FALSE;
                   if (FAILED(volume.GetMute(&isMuted)))
                       return;
                   const HRESULT result = volume.SetMute(isMuted, nullptr);
                   observation.see(result == S_FALSE, resultName(result), endpoint.name);
               });
    return observation.finding("no endpoint with a mute");
}

/// Puts back the levels of all channels and the mute. Meanwhile the endpoint is muted, so that a change is not heard.
class SavedVolume
{
public:
    explicit SavedVolume(IAudioEndpointVolume& volume) : m_volume(volume)
    {
        UINT count = 0;
        volume.GetChannelCount(&count);
        for (UINT channel = 0; channel < count; ++channel)
        {
            float level = 0;
            if (SUCCEEDED(volume.GetChannelVolumeLevel(channel, &level)))
                m_levels.push_back(level);
        }
        m_isSaved = SUCCEEDED(volume.GetMute(&m_isMuted)) && !m_levels.empty() && m_levels.size() == count &&
                    SUCCEEDED(volume.SetMute(TRUE, nullptr));
    }
    SavedVolume(const SavedVolume&) = delete;
    SavedVolume& operator=(const SavedVolume&) = delete;
    ~SavedVolume()
    {
        if (!m_isSaved)
            return;
        for (UINT channel = 0; channel < m_levels.size(); ++channel)
            m_volume.SetChannelVolumeLevel(channel, m_levels[channel], nullptr);
        m_volume.SetMute(m_isMuted, nullptr);
    }

    /// Whether everything can be put back. If not, nothing may be changed.
    bool isSaved() const { return m_isSaved; }

private:
    IAudioEndpointVolume& m_volume;
    std::vector<float> m_levels;
    BOOL m_isMuted = FALSE;
    bool m_isSaved = false;
};

struct Range
{
    float minimum = 0;
    float maximum = 0;
    float step = 0;
};

using RangeAction = std::function<void(const EndpointInSystem&, IAudioEndpointVolume&, const Range&)>;

/// Calls @p action with each volume whose levels may be changed and can be put back.
void eachChangeable(System& system, const RangeAction& action)
{
    if (!system.mayChange())
        return;
    eachVolume(system,
               [&](const EndpointInSystem& endpoint, IAudioEndpointVolume& volume)
               {
                   Range range;
                   const HRESULT result = volume.GetVolumeRange(&range.minimum, &range.maximum, &range.step);
                   if (FAILED(result) || range.maximum - range.minimum < range.step)
                       return;
                   const SavedVolume saved(volume);
                   if (saved.isSaved())
                       action(endpoint, volume, range);
               });
}

std::string noChange(System& system)
{
    return system.mayChange() ? "no volume that can be changed and put back" : "needs --change";
}

Finding levelsBetweenStepsStay(System& system)
{
    Observation observation;
    eachChangeable(system,
                   [&](const EndpointInSystem& endpoint, IAudioEndpointVolume& volume, const Range& range)
                   {
                       const float asked = range.minimum + 0.4f * range.step;
                       float found = 0;
                       volume.SetMasterVolumeLevel(asked, nullptr);
                       volume.GetMasterVolumeLevel(&found);
                       const bool isKept = std::fabs(found - asked) < 0.01f;
                       observation.see(isKept, isKept ? "kept" : std::to_string(found), endpoint.name);
                   });
    return observation.finding(noChange(system));
}

Finding endsOfTheScale(System& system)
{
    Observation observation;
    eachChangeable(system,
                   [&](const EndpointInSystem& endpoint, IAudioEndpointVolume& volume, const Range& range)
                   {
                       float bottom = 0;
                       float top = 0;
                       volume.SetMasterVolumeLevelScalar(0.0f, nullptr);
                       volume.GetMasterVolumeLevel(&bottom);
                       volume.SetMasterVolumeLevelScalar(1.0f, nullptr);
                       volume.GetMasterVolumeLevel(&top);
                       const bool isRight =
                           std::fabs(bottom - range.minimum) < 0.01f && std::fabs(top - range.maximum) < 0.01f;
                       const std::string found = std::to_string(bottom) + " and " + std::to_string(top);
                       observation.see(isRight, isRight ? "the ends of the range" : found, endpoint.name);
                   });
    return observation.finding(noChange(system));
}

Finding aboveTheRange(System& system)
{
    Observation observation;
    eachChangeable(system,
                   [&](const EndpointInSystem& endpoint, IAudioEndpointVolume& volume, const Range& range)
                   {
                       const HRESULT result = volume.SetMasterVolumeLevel(range.maximum + 1.0f, nullptr);
                       observation.see(result == E_INVALIDARG, resultName(result), endpoint.name);
                   });
    return observation.finding(noChange(system));
}

HRESULT firstChannelPastTheEnd(IAudioEndpointVolume& volume)
{
    UINT count = 0;
    float level = 0;
    volume.GetChannelCount(&count);
    return volume.GetChannelVolumeLevel(count, &level);
}
}

Facts volumeFacts()
{
    const char* const steps = "Microsoft's documentation of IAudioEndpointVolume::GetVolumeStepInfo";
    return {
        {"The range runs in steps above zero", "upwards",
         "Microsoft's documentation of IAudioEndpointVolume::GetVolumeRange", rangeIsOne},
        {"The scalar level is a fraction", "0 to 1",
         "Microsoft's documentation of IAudioEndpointVolume::GetMasterVolumeLevelScalar", scalarsAreFractions},
        {"The step and the number of steps", "below", steps, stepsAreCounted},
        {"The step alone can be asked for", "S_OK", steps,
         eachResult(S_OK,
                    [](IAudioEndpointVolume& volume)
                    {
                        UINT step = 0;
                        return volume.GetVolumeStepInfo(&step, nullptr);
                    })},
        {"The number of steps alone can be asked for", "S_OK", steps,
         eachResult(S_OK,
                    [](IAudioEndpointVolume& volume)
                    {
                        UINT count = 0;
                        return volume.GetVolumeStepInfo(nullptr, &count);
                    })},
        {"Asking for neither step nor number", "E_POINTER", steps,
         eachResult(E_POINTER,
                    [](IAudioEndpointVolume& volume) { return volume.GetVolumeStepInfo(nullptr, nullptr); })},
        {"A channel past the end", "E_INVALIDARG",
         "Microsoft's documentation of IAudioEndpointVolume::GetChannelVolumeLevel",
         eachResult(E_INVALIDARG, firstChannelPastTheEnd)},
        {"A level above the range", "E_INVALIDARG",
         "Microsoft's documentation of IAudioEndpointVolume::SetMasterVolumeLevel", aboveTheRange},
        {"A mute that is set to what it is", "S_FALSE", "Microsoft's documentation of IAudioEndpointVolume::SetMute",
         sameMuteIsNoChange},
        {"An endpoint's volume keeps a level between two steps", "kept",
         "Microsoft's documentation of IAudioEndpointVolume::GetVolumeRange", levelsBetweenStepsStay},
        {"Scalars 0 and 1 are the ends of the range", "the ends of the range",
         "Microsoft's documentation of IAudioEndpointVolume::SetMasterVolumeLevelScalar", endsOfTheScale},
    };
}
}
