// The volume of an endpoint.
#include "tests/conformity/fact.h"
#include "tests/conformity/results.h"
#include "tests/conformity/system.h"

#include <cmath>

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
                   observation.see(isRight, isRight ? "so" : resultName(result), endpoint.name);
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
                   observation.see(isRight, isRight ? "so" : std::to_string(scalar), endpoint.name);
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
                   observation.see(isRight, isRight ? "so" : resultName(result), endpoint.name);
               });
    return observation.finding("no endpoint with a volume");
}

Finding sameMuteIsNoChange(System& system)
{
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

/// Sets a level, reads it with @p read, and puts the old one back.
Finding afterSetting(System& system, const std::function<void(const EndpointInSystem&, IAudioEndpointVolume&,
                                                              float minimum, float maximum, float step)>& action)
{
    eachVolume(system,
               [&](const EndpointInSystem& endpoint, IAudioEndpointVolume& volume)
               {
                   float minimum = 0;
                   float maximum = 0;
                   float step = 0;
                   float before = 0;
                   if (FAILED(volume.GetVolumeRange(&minimum, &maximum, &step)) || maximum - minimum < step ||
                       FAILED(volume.GetMasterVolumeLevel(&before)) ||
                       FAILED(volume.SetMasterVolumeLevel(before, nullptr)))
                       return;
                   action(endpoint, volume, minimum, maximum, step);
                   volume.SetMasterVolumeLevel(before, nullptr);
               });
    return {};
}

Finding levelsBetweenStepsStay(System& system)
{
    if (!system.mayChange())
        return {Verdict::notTried, "needs --change"};
    Observation observation;
    afterSetting(system,
                 [&](const EndpointInSystem& endpoint, IAudioEndpointVolume& volume, float minimum, float, float step)
                 {
                     const float asked = minimum + 0.4f * step;
                     float found = 0;
                     volume.SetMasterVolumeLevel(asked, nullptr);
                     volume.GetMasterVolumeLevel(&found);
                     const bool isKept = std::fabs(found - asked) < 0.01f;
                     observation.see(isKept, isKept ? "kept" : std::to_string(found), endpoint.name);
                 });
    return observation.finding("no volume that can be set");
}

Finding endsOfTheScale(System& system)
{
    if (!system.mayChange())
        return {Verdict::notTried, "needs --change"};
    Observation observation;
    afterSetting(
        system,
        [&](const EndpointInSystem& endpoint, IAudioEndpointVolume& volume, float minimum, float maximum, float)
        {
            float bottom = 0;
            float top = 0;
            volume.SetMasterVolumeLevelScalar(0.0f, nullptr);
            volume.GetMasterVolumeLevel(&bottom);
            volume.SetMasterVolumeLevelScalar(1.0f, nullptr);
            volume.GetMasterVolumeLevel(&top);
            const bool isRight = std::fabs(bottom - minimum) < 0.01f && std::fabs(top - maximum) < 0.01f;
            observation.see(isRight,
                            isRight ? "the ends of the range" : std::to_string(bottom) + " and " + std::to_string(top),
                            endpoint.name);
        });
    return observation.finding("no volume that can be set");
}

HRESULT firstChannelPastTheEnd(IAudioEndpointVolume& volume)
{
    UINT count = 0;
    float level = 0;
    volume.GetChannelCount(&count);
    return volume.GetChannelVolumeLevel(count, &level);
}

HRESULT aboveTheRange(IAudioEndpointVolume& volume)
{
    float minimum = 0;
    float maximum = 0;
    float step = 0;
    volume.GetVolumeRange(&minimum, &maximum, &step);
    return volume.SetMasterVolumeLevel(maximum + 1.0f, nullptr);
}
}

Facts volumeFacts()
{
    const char* const steps = "Microsoft's documentation of IAudioEndpointVolume::GetVolumeStepInfo";
    return {
        {"The range runs upwards in steps above zero", "so",
         "Microsoft's documentation of IAudioEndpointVolume::GetVolumeRange", rangeIsOne},
        {"The scalar level lies between 0 and 1", "so",
         "Microsoft's documentation of IAudioEndpointVolume::GetMasterVolumeLevelScalar", scalarsAreFractions},
        {"The step is below the number of steps", "so", steps, stepsAreCounted},
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
         "Microsoft's documentation of IAudioEndpointVolume::SetMasterVolumeLevel",
         eachResult(E_INVALIDARG, aboveTheRange)},
        {"A mute that is set to what it is", "S_FALSE", "Microsoft's documentation of IAudioEndpointVolume::SetMute",
         sameMuteIsNoChange},
        {"An endpoint's volume keeps a level between two steps", "kept",
         "Microsoft's documentation of IAudioEndpointVolume::GetVolumeRange", levelsBetweenStepsStay},
        {"Scalars 0 and 1 are the ends of the range", "the ends of the range",
         "Microsoft's documentation of audio-tapered volume controls", endsOfTheScale},
    };
}
}
