#include "simulator/core/notifications.h"
#include "simulator/core/simulatedobject.h"
#include "simulator/machine/volumemath.h"
#include "simulator/objects/lookup.h"
#include "simulator/objects/objects.h"

#include <algorithm>
#include <cmath>

namespace sim
{
namespace
{
/// The level of a hardware node. As in hardware, a level outside the range becomes the nearest end of the range, and a
/// level between two steps the nearer one. NaN is refused.
class VolumeLevelObject final : public ComObject<IAudioVolumeLevel>
{
public:
    VolumeLevelObject(const std::shared_ptr<State>& state, std::string partId) : ComObject(state, std::move(partId)) {}

    HRESULT STDMETHODCALLTYPE GetChannelCount(UINT* count) override
    {
        return call("IAudioVolumeLevel::GetChannelCount", outputs(count),
                    [&]
                    {
                        return onChannels(
                            [&](const Channels& channels)
                            {
                                *count = static_cast<UINT>(channels.size());
                                return S_OK;
                            });
                    });
    }

    HRESULT STDMETHODCALLTYPE GetLevelRange(UINT channel, float* minimum, float* maximum, float* step) override
    {
        const auto answer = [&]
        {
            return onChannel(channel,
                             [&](const ChannelLevel& level)
                             {
                                 *minimum = level.minimum;
                                 *maximum = level.maximum;
                                 *step = level.step;
                             });
        };
        return call("IAudioVolumeLevel::GetLevelRange", outputs(minimum, maximum, step), answer, channel);
    }

    HRESULT STDMETHODCALLTYPE GetLevel(UINT channel, float* level) override
    {
        const auto answer = [&]
        { return onChannel(channel, [&](const ChannelLevel& found) { *level = found.level; }); };
        return call("IAudioVolumeLevel::GetLevel", outputs(level), answer, channel);
    }

    HRESULT STDMETHODCALLTYPE SetLevel(UINT channel, float level, LPCGUID context) override
    {
        const auto answer = [&]
        {
            return change(context,
                          [&](Channels& channels) -> HRESULT
                          {
                              if (channel >= channels.size() || std::isnan(level))
                                  return E_INVALIDARG;
                              set(channels[channel], level);
                              return S_OK;
                          });
        };
        return call("IAudioVolumeLevel::SetLevel", outputs(), answer, channel, level, context);
    }

    HRESULT STDMETHODCALLTYPE SetLevelUniform(float level, LPCGUID context) override
    {
        const auto answer = [&]
        {
            return change(context,
                          [&](Channels& channels)
                          {
                              if (std::isnan(level))
                                  return E_INVALIDARG;
                              for (ChannelLevel& channel : channels)
                                  set(channel, level);
                              return S_OK;
                          });
        };
        return call("IAudioVolumeLevel::SetLevelUniform", outputs(), answer, level, context);
    }

    HRESULT STDMETHODCALLTYPE SetLevelAllChannels(float* levels, ULONG count, LPCGUID context) override
    {
        const auto answer = [&]() -> HRESULT
        {
            if (levels == nullptr)
                return E_POINTER;
            return change(context,
                          [&](Channels& channels) -> HRESULT
                          {
                              const auto isNoNumber = [](float level) { return std::isnan(level); };
                              if (count != channels.size() || std::any_of(levels, levels + count, isNoNumber))
                                  return E_INVALIDARG;
                              for (std::size_t channel = 0; channel < channels.size(); ++channel)
                                  set(channels[channel], levels[channel]);
                              return S_OK;
                          });
        };
        return call("IAudioVolumeLevel::SetLevelAllChannels", outputs(), answer, count, context);
    }

private:
    using Channels = std::vector<ChannelLevel>;

    static void set(ChannelLevel& channel, float level) { channel.level = nearestStep(channel, level); }

    template<class Action>
    HRESULT onChannels(const Action& action) const
    {
        return onPart(*state(), name(),
                      [&](const ChangeablePartPlace& place) -> HRESULT {
                          return place.part->volume ? action(place.part->volume->channels)
                                                    : AUDCLNT_E_DEVICE_INVALIDATED;
                      });
    }

    template<class Action>
    HRESULT onChannel(UINT channel, const Action& action) const
    {
        return onChannels(
            [&](const Channels& channels) -> HRESULT
            {
                if (channel >= channels.size())
                    return E_INVALIDARG;
                action(channels[channel]);
                return S_OK;
            });
    }

    template<class Action>
    HRESULT change(LPCGUID context, const Action& action)
    {
        LevelChanges changes;
        const HRESULT result = state()->withHardware(
            [&](Hardware& hardware) -> HRESULT
            {
                const ChangeablePartPlace* const place = hardware.part(name());
                if (place == nullptr || !place->part->volume)
                    return AUDCLNT_E_DEVICE_INVALIDATED;
                const LevelWatch watch(hardware, *place->part);
                const HRESULT outcome = action(place->part->volume->channels);
                changes = watch.changes(hardware);
                return outcome;
            });
        notifyLevelsChanged(state(), changes, context);
        return result;
    }
};
}

IAudioVolumeLevel* makeVolumeLevel(const std::shared_ptr<State>& state, std::string partId)
{
    return new VolumeLevelObject(state, std::move(partId));
}
}
