#include "simulator/core/notifications.h"
#include "simulator/core/simulatedobject.h"
#include "simulator/objects/lookup.h"
#include "simulator/objects/objects.h"

#include <algorithm>
#include <utility>

namespace sim
{
namespace
{
/// Selects one of the part's incoming neighbours by its local id.
class InputSelectorObject final : public ComObject<IAudioInputSelector>
{
public:
    InputSelectorObject(const std::shared_ptr<State>& state, std::string partId) : ComObject(state, std::move(partId))
    {
    }

    HRESULT STDMETHODCALLTYPE GetSelection(UINT* id) override
    {
        return call("IAudioInputSelector::GetSelection", outputs(id),
                    [&]
                    {
                        return onSelector(
                            [&](Hardware&, const Part& part) -> HRESULT
                            {
                                *id = part.selector->selection;
                                return S_OK;
                            });
                    });
    }

    HRESULT STDMETHODCALLTYPE SetSelection(UINT id, LPCGUID context) override
    {
        const auto answer = [&]
        {
            bool isChanged = false;
            const HRESULT result = onSelector(
                [&](Hardware& hardware, Part& part) -> HRESULT
                {
                    if (!feeds(hardware, part, id))
                        return E_INVALIDARG;
                    isChanged = std::exchange(part.selector->selection, id) != id;
                    return S_OK;
                });
            if (isChanged)
                notifyControlChanged(state(), name(), InterfaceTraits<IAudioInputSelector>::name, context);
            return result;
        };
        return call("IAudioInputSelector::SetSelection", outputs(), answer, id, context);
    }

private:
    static bool feeds(const Hardware& hardware, const Part& part, UINT localId)
    {
        return std::any_of(part.incoming.begin(), part.incoming.end(),
                           [&](const std::string& neighbour)
                           {
                               const ChangeablePartPlace* const place = hardware.part(neighbour);
                               return place != nullptr && place->part->localId == localId;
                           });
    }

    template<class Action>
    HRESULT onSelector(const Action& action) const
    {
        return state()->withHardware(
            [&](Hardware& hardware) -> HRESULT
            {
                const ChangeablePartPlace* const place = hardware.part(name());
                if (place == nullptr || !place->part->selector)
                    return AUDCLNT_E_DEVICE_INVALIDATED;
                return action(hardware, *place->part);
            });
    }
};
}

IAudioInputSelector* makeInputSelector(const std::shared_ptr<State>& state, std::string partId)
{
    return new InputSelectorObject(state, std::move(partId));
}
}
