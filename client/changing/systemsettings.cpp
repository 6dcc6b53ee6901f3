#include "client/changing/restoring.h"
#include "client/changing/savedsettings.h"
#include "client/watching/systemstate.h"

#include <memory>
#include <utility>

namespace sonavit
{
inline namespace v1
{
using watching::Watcher;

Result<Settings> System::settings() const
{
    const auto task = [](Watcher& watcher) -> Result<Settings>
    {
        const Result<Snapshot> now = watcher.refresh(Depth::noted);
        if (!now)
            return now.problem();
        const auto walk = watcher.walk("settings", now->cards());
        if (!walk)
            return walk.problem();
        return changing::savedSettings(*now, **walk);
    };
    return m_state->run<Settings>("settings", "", worker::Urgency::reading, task);
}

Result<RestoreReport> System::restore(const Settings& settings)
{
    const auto task = [settings](Watcher& watcher) -> Result<RestoreReport>
    {
        const ChangeToken token = watcher.newToken();
        changing::Restoring restoring(watcher, token);
        RestoreReport report = restoring.restore(settings);
        return Result<RestoreReport>(std::move(report), restoring.isChanged() ? token : 0);
    };
    return m_state->run<RestoreReport>("restore", "", worker::Urgency::change, task);
}
}
}
