#include "simulator/core/notifications.h"
#include "simulator/core/simulatedobject.h"
#include "simulator/objects/lookup.h"
#include "simulator/objects/objects.h"

#include <utility>

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
            bool wasMuted = false;
            const HRESULT result =
                onMute([&](MuteControl& control) { wasMuted = std::exchange(control.muted, mute != FALSE); });
            if (SUCCEEDED(result) && wasMuted != (mute != FALSE))
                notifyControlChanged(state(), name(), InterfaceTraits<IAudioMute>::name, context);
            return result;
        };
        return call("IAudioMute::SetMute", outputs(), answer, mute, context);
    }

    HRESULT STDMETHODCALLTYPE GetMute(BOOL* mute) override
    {
        return call("IAudioMute::GetMute", outputs(mute),
                    [&] { return onMute([&](const MuteControl& control) { *mute = control.muted ? TRUE : FALSE; }); });
    }

private:
    template<class Action>
    HRESULT onMute(const Action& action) const
    {
        return onPart(*state(), name(),
                      [&](const ChangeablePartPlace& place) -> HRESULT
                      {
                          if (!place.part->mute)
                              return AUDCLNT_E_DEVICE_INVALIDATED;
                          action(*place.part->mute);
                          return S_OK;
                      });
    }
};
}

IAudioMute* makeMute(const std::shared_ptr<State>& state, std::string partId)
{
    return new MuteObject(state, std::move(partId));
}
}
