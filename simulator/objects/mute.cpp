#include "simulator/core/notifications.h"
#include "simulator/core/simulatedobject.h"
#include "simulator/objects/lookup.h"
#include "simulator/objects/objects.h"

namespace sim
{
namespace
{
/// The mute of a hardware node.
class MuteObject final : public ComObject<IAudioMute>
{
public:
    MuteObject(const std::shared_ptr<State>& state, std::string partId) : ComObject(state, std::move(partId)) {}

    HRESULT STDMETHODCALLTYPE SetMute(BOOL mute, LPCGUID context) override
    {
        const auto answer = [&]
        {
            LevelChanges changes;
            const HRESULT result = state()->withHardware(
                [&](Hardware& hardware) -> HRESULT
                {
                    const ChangeablePartPlace* const place = hardware.part(name());
                    if (place == nullptr || !place->part->mute)
                        return AUDCLNT_E_DEVICE_INVALIDATED;
                    const LevelWatch watch(hardware, *place->part);
                    place->part->mute->muted = mute != FALSE;
                    changes = watch.changes(hardware);
                    return S_OK;
                });
            notifyLevelsChanged(state(), changes, context);
            return result;
        };
        return call("IAudioMute::SetMute", outputs(), answer, mute, context);
    }

    HRESULT STDMETHODCALLTYPE GetMute(BOOL* mute) override
    {
        const auto answer = [&]
        {
            return onPart(*state(), name(),
                          [&](const ChangeablePartPlace& place) -> HRESULT
                          {
                              if (!place.part->mute)
                                  return AUDCLNT_E_DEVICE_INVALIDATED;
                              *mute = place.part->mute->muted ? TRUE : FALSE;
                              return S_OK;
                          });
        };
        return call("IAudioMute::GetMute", outputs(mute), answer);
    }
};
}

IAudioMute* makeMute(const std::shared_ptr<State>& state, std::string partId)
{
    return new MuteObject(state, std::move(partId));
}
}
