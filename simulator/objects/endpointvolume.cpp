#include "simulator/core/notifications.h"
#include "simulator/core/simulatedobject.h"
#include "simulator/core/unregistration.h"
#include "simulator/machine/volumemath.h"
#include "simulator/objects/objects.h"

#include <algorithm>
#include <cstring>

namespace sim
{
namespace
{
/// Volume and mute of an endpoint. A setter that changes nothing notifies no client.
class EndpointVolumeObject final : public ComObject<IAudioEndpointVolume>
{
public:
    EndpointVolumeObject(const std::shared_ptr<State>& state, std::string endpointId)
        : ComObject(state, std::move(endpointId))
    {
    }

    HRESULT STDMETHODCALLTYPE RegisterControlChangeNotify(IAudioEndpointVolumeCallback* notify) override
    {
        const char* const operation = "IAudioEndpointVolume::RegisterControlChangeNotify";
        const auto answer = [&]() -> HRESULT
        {
            if (notify == nullptr)
                return E_POINTER;
            const HRESULT result = onVolume(operation, [](const EndpointVolume&) { return S_OK; });
            if (SUCCEEDED(result))
                state()->volumeListeners(name())->add(notify);
            return result;
        };
        return call(operation, outputs(), answer, presenceText(notify));
    }

    HRESULT STDMETHODCALLTYPE UnregisterControlChangeNotify(IAudioEndpointVolumeCallback* notify) override
    {
        const auto answer = [&](const WatchedCall& watched) -> HRESULT
        {
            if (notify == nullptr)
                return E_POINTER;
            const std::shared_ptr<State::VolumeListeners> listeners = state()->volumeListeners(name());
            return unregister(*state(), *listeners, notify, watched) ? S_OK : E_NOTFOUND;
        };
        return call("IAudioEndpointVolume::UnregisterControlChangeNotify", outputs(), answer, presenceText(notify));
    }

    HRESULT STDMETHODCALLTYPE GetChannelCount(UINT* count) override
    {
        return read("IAudioEndpointVolume::GetChannelCount", outputs(count),
                    [&](const EndpointVolume& volume) { *count = static_cast<UINT>(volume.channels.size()); });
    }

    HRESULT STDMETHODCALLTYPE SetMasterVolumeLevel(FLOAT level, LPCGUID context) override
    {
        const auto set = [&](EndpointVolume& volume)
        {
            if (!isInRange(volume, level))
                return E_INVALIDARG;
            setMasterLevel(volume, level);
            return S_OK;
        };
        return change("IAudioEndpointVolume::SetMasterVolumeLevel", context, set, level, context);
    }

    HRESULT STDMETHODCALLTYPE SetMasterVolumeLevelScalar(FLOAT level, LPCGUID context) override
    {
        const auto set = [&](EndpointVolume& volume)
        {
            if (!isScalar(level))
                return E_INVALIDARG;
            setMasterLevel(volume, decibelLevel(volume, level));
            return S_OK;
        };
        return change("IAudioEndpointVolume::SetMasterVolumeLevelScalar", context, set, level, context);
    }

    HRESULT STDMETHODCALLTYPE GetMasterVolumeLevel(FLOAT* level) override
    {
        return read("IAudioEndpointVolume::GetMasterVolumeLevel", outputs(level),
                    [&](const EndpointVolume& volume) { *level = masterLevel(volume); });
    }

    HRESULT STDMETHODCALLTYPE GetMasterVolumeLevelScalar(FLOAT* level) override
    {
        return read("IAudioEndpointVolume::GetMasterVolumeLevelScalar", outputs(level),
                    [&](const EndpointVolume& volume) { *level = scalarLevel(volume, masterLevel(volume)); });
    }

    HRESULT STDMETHODCALLTYPE SetChannelVolumeLevel(UINT channel, FLOAT level, LPCGUID context) override
    {
        const auto set = [&](EndpointVolume& volume)
        {
            if (channel >= volume.channels.size() || !isInRange(volume, level))
                return E_INVALIDARG;
            setChannelLevel(volume, channel, level);
            return S_OK;
        };
        return change("IAudioEndpointVolume::SetChannelVolumeLevel", context, set, channel, level, context);
    }

    HRESULT STDMETHODCALLTYPE SetChannelVolumeLevelScalar(UINT channel, FLOAT level, LPCGUID context) override
    {
        const auto set = [&](EndpointVolume& volume)
        {
            if (channel >= volume.channels.size() || !isScalar(level))
                return E_INVALIDARG;
            setChannelLevel(volume, channel, decibelLevel(volume, level));
            return S_OK;
        };
        return change("IAudioEndpointVolume::SetChannelVolumeLevelScalar", context, set, channel, level, context);
    }

    HRESULT STDMETHODCALLTYPE GetChannelVolumeLevel(UINT channel, FLOAT* level) override
    {
        return readChannel("IAudioEndpointVolume::GetChannelVolumeLevel", channel, level,
                           [](const EndpointVolume&, float decibels) { return decibels; });
    }

    HRESULT STDMETHODCALLTYPE GetChannelVolumeLevelScalar(UINT channel, FLOAT* level) override
    {
        return readChannel("IAudioEndpointVolume::GetChannelVolumeLevelScalar", channel, level, scalarLevel);
    }

    /// S_FALSE if it changes nothing.
    HRESULT STDMETHODCALLTYPE SetMute(BOOL mute, LPCGUID context) override
    {
        const auto set = [&](EndpointVolume& volume)
        {
            const bool isChange = volume.muted != (mute != FALSE);
            volume.muted = mute != FALSE;
            return isChange ? S_OK : S_FALSE;
        };
        return change("IAudioEndpointVolume::SetMute", context, set, mute, context);
    }

    HRESULT STDMETHODCALLTYPE GetMute(BOOL* mute) override
    {
        return read("IAudioEndpointVolume::GetMute", outputs(mute),
                    [&](const EndpointVolume& volume) { *mute = volume.muted ? TRUE : FALSE; });
    }

    /// Either pointer may be null.
    HRESULT STDMETHODCALLTYPE GetVolumeStepInfo(UINT* step, UINT* count) override
    {
        return read("IAudioEndpointVolume::GetVolumeStepInfo", optionalOutputs(step, count),
                    [&](const EndpointVolume& volume)
                    {
                        if (step != nullptr)
                            *step = stepOf(volume, masterLevel(volume));
                        if (count != nullptr)
                            *count = stepCount(volume);
                    });
    }

    HRESULT STDMETHODCALLTYPE VolumeStepUp(LPCGUID context) override
    {
        return step("IAudioEndpointVolume::VolumeStepUp", 1, context);
    }

    HRESULT STDMETHODCALLTYPE VolumeStepDown(LPCGUID context) override
    {
        return step("IAudioEndpointVolume::VolumeStepDown", -1, context);
    }

    HRESULT STDMETHODCALLTYPE QueryHardwareSupport(DWORD* mask) override
    {
        return read("IAudioEndpointVolume::QueryHardwareSupport", outputs(mask),
                    [&](const EndpointVolume& volume) { *mask = volume.hardwareSupport; });
    }

    HRESULT STDMETHODCALLTYPE GetVolumeRange(FLOAT* minimum, FLOAT* maximum, FLOAT* stepping) override
    {
        return read("IAudioEndpointVolume::GetVolumeRange", outputs(minimum, maximum, stepping),
                    [&](const EndpointVolume& volume)
                    {
                        *minimum = volume.minimum;
                        *maximum = volume.maximum;
                        *stepping = volume.step;
                    });
    }

private:
    // NaN compares false, so it is out of range.
    static bool isInRange(const EndpointVolume& volume, float decibels)
    {
        return decibels >= volume.minimum && decibels <= volume.maximum;
    }

    static bool isScalar(float level) { return level >= 0.0f && level <= 1.0f; }

    /// Calls @p action with the hardware and the endpoint; E_NOTIMPL if the endpoint refuses @p operation.
    template<class Action>
    HRESULT onEndpoint(const char* operation, const Action& action) const
    {
        return state()->withHardware(
            [&](Hardware& hardware) -> HRESULT
            {
                Endpoint* const endpoint = hardware.endpoint(name());
                if (endpoint == nullptr || !endpoint->volume)
                    return AUDCLNT_E_DEVICE_INVALIDATED;
                const std::vector<std::string>& refused = endpoint->volume->refused;
                const char* const bare = std::strstr(operation, "::") + 2;
                if (std::find(refused.begin(), refused.end(), bare) != refused.end())
                    return E_NOTIMPL;
                return action(hardware, *endpoint);
            });
    }

    /// As above, with the volume as clients see it.
    template<class Action>
    HRESULT onVolume(const char* operation, const Action& action) const
    {
        return onEndpoint(operation, [&](Hardware& hardware, const Endpoint& endpoint)
                          { return action(shownVolume(hardware, endpoint)); });
    }

    template<class Outputs, class Action>
    HRESULT read(const char* operation, const Outputs& results, const Action& action)
    {
        return call(operation, results,
                    [&]
                    {
                        return onVolume(operation,
                                        [&](const EndpointVolume& volume)
                                        {
                                            action(volume);
                                            return S_OK;
                                        });
                    });
    }

    template<class Convert>
    HRESULT readChannel(const char* operation, UINT channel, float* level, const Convert& convert)
    {
        const auto answer = [&]
        {
            return onVolume(operation,
                            [&](const EndpointVolume& volume)
                            {
                                if (channel >= volume.channels.size())
                                    return E_INVALIDARG;
                                *level = convert(volume, volume.channels[channel]);
                                return S_OK;
                            });
        };
        return call(operation, outputs(level), answer, channel);
    }

    template<class Set, class... Arguments>
    HRESULT change(const char* operation, LPCGUID context, const Set& set, const Arguments&... arguments)
    {
        const auto answer = [&]
        {
            LevelChanges changes;
            const HRESULT result = onEndpoint(operation,
                                              [&](Hardware& hardware, Endpoint& endpoint)
                                              {
                                                  const LevelWatch watch(hardware, endpoint);
                                                  EndpointVolume wanted = shownVolume(hardware, endpoint);
                                                  const HRESULT outcome = set(wanted);
                                                  changeVolume(hardware, endpoint, wanted);
                                                  changes = watch.changes(hardware);
                                                  return outcome;
                                              });
            notifyLevelsChanged(state(), changes, context);
            return result;
        };
        return call(operation, outputs(), answer, arguments...);
    }

    HRESULT step(const char* operation, int direction, LPCGUID context)
    {
        const auto set = [&](EndpointVolume& volume)
        {
            setMasterLevel(volume, neighbouringStep(volume, masterLevel(volume), direction));
            return S_OK;
        };
        return change(operation, context, set, context);
    }
};
}

IAudioEndpointVolume* makeEndpointVolume(const std::shared_ptr<State>& state, std::string endpointId)
{
    return new EndpointVolumeObject(state, std::move(endpointId));
}
}
