#include "client/changing/controllevels.h"
#include "client/changing/volumechange.h"
#include "sonavit/text.h"

#include <string>

namespace sonavit::changing
{
Result<Done> changeControl(const Control& control, IAudioVolumeLevel& level, const LevelChange& change,
                           ChangeContext& context)
{
    const Subject subject{"setControl", control.id.text()};
    ControlLevels levels(level, subject, context);
    if (std::optional<Problem> problem = levels.apply(change))
        return *problem;
    return Done();
}

Result<Done> putBack(const Control& control, IAudioVolumeLevel& level, const FormerLevels& levels,
                     ChangeContext& context)
{
    const Subject subject{"restore", control.id.text()};
    ControlLevels present(level, subject, context);
    if (std::optional<Problem> problem = present.set(levels.channels))
        return *problem;
    return Done();
}

Result<Done> changeControlMute(const Control& control, IAudioMute& mute, bool isMuted, ChangeContext& context)
{
    BOOL now = FALSE;
    if (SUCCEEDED(mute.GetMute(&now)) && (now != FALSE) == isMuted)
        return Done();
    const HRESULT result = mute.SetMute(isMuted ? TRUE : FALSE, context.use());
    if (FAILED(result))
        return Problem::ofCall("IAudioMute::SetMute", control.id.text(), result);
    return Done();
}

Result<Done> choose(const Selector& selector, IAudioInputSelector& platform, const SelectorInput& input,
                    ChangeContext& context)
{
    if (!input.number)
        return Problem(Problem::Kind::notSupported, "select", selector.id.text(),
                       "the platform reports no number for the input " + text::quoted(input.title()));
    UINT now = 0;
    if (SUCCEEDED(platform.GetSelection(&now)) && now == *input.number)
        return Done();
    const HRESULT result = platform.SetSelection(*input.number, context.use());
    if (FAILED(result))
        return Problem::ofCall("IAudioInputSelector::SetSelection", selector.id.text(), result);
    return Done();
}
}
