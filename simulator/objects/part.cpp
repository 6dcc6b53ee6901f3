#include "simulator/objects/partbase.h"

namespace sim
{
std::vector<ControlOfPart> controlsOf(const Part& part)
{
    std::vector<ControlOfPart> controls;
    const auto add = [&](auto* tag)
    {
        using Interface = std::remove_pointer_t<decltype(tag)>;
        controls.push_back({InterfaceTraits<Interface>::iid(), std::string(InterfaceTraits<Interface>::name), true});
    };
    if (part.volume)
        add(static_cast<IAudioVolumeLevel*>(nullptr));
    if (part.mute)
        add(static_cast<IAudioMute*>(nullptr));
    if (part.selector)
        add(static_cast<IAudioInputSelector*>(nullptr));
    for (const FurtherControl& control : part.furtherControls)
        controls.push_back({control.interfaceId, control.name, false});
    return controls;
}

IPart* makePart(const std::shared_ptr<State>& state, const std::string& partId)
{
    IPart* const subunit = makeSubunitAsPart(state, partId);
    return subunit != nullptr ? subunit : makeConnectorAsPart(state, partId);
}
}
