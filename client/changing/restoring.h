/// @file
/// What System::restore() does. All of it runs on the worker.
#pragma once

#include "client/changing/changecontext.h"
#include "client/changing/settingplaces.h"
#include "client/changing/volumechange.h"
#include "client/reading/hardwarewalk.h"
#include "client/watching/watcher.h"
#include "sonavit/reference.h"
#include "sonavit/settings.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace sonavit::changing
{
/// Puts saved settings back, one after the other: none keeps another one from being restored.
class Restoring
{
public:
    /// @param token of all changes that it makes. @p watcher must outlive it.
    Restoring(watching::Watcher& watcher, ChangeToken token);

    RestoreReport restore(const Settings& settings);
    /// Whether anything was changed.
    bool isChanged() const noexcept { return m_isChanged; }

private:
    using ControlSetting = Settings::ControlSetting;
    using SelectorSetting = Settings::SelectorSetting;
    using Place = SettingPlace;
    using Walk = std::shared_ptr<reading::HardwareWalk>;

    void walkHardware();
    void restoreVolume(const Place& place);
    void restoreControls(const Place& place);
    void restoreControl(const Place& place, const ControlSetting& setting, const Result<Control>& control);
    void restoreSelectors(const Place& place);

    Result<Control> control(const Place& place, const std::vector<Control>& controls,
                            const ControlSetting& setting) const;
    Result<Selector> selector(const Place& place, const SelectorSetting& setting) const;

    template<class T>
    void note(const Place& place, const std::string& what, const Result<T>& result, const ChangeContext& context);
    ChangeContext newContext() const { return ChangeContext(m_watcher.contextOf(m_token)); }

    watching::Watcher& m_watcher;
    const ChangeToken m_token;
    const Snapshot m_snapshot;
    std::vector<Place> m_places;
    Result<Walk> m_walk;
    std::set<CardId> m_changedCards; ///< whose hardware was changed
    RestoreReport m_report;
    bool m_isChanged = false;
};
}
