#include "client/changing/restoring.h"

#include "sonavit/text.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace sonavit::changing
{
namespace
{
const char* const operation = "restore";

Problem notThere(const std::string& object, const std::string& sentence)
{
    return {Problem::Kind::notThere, operation, object, sentence};
}

template<class Setting>
const std::string& nameOrId(const Setting& setting)
{
    return setting.name.empty() ? setting.id : setting.name;
}

/// The only one of @p all that @p isMeant; Problem::Kind::notThere or Kind::ambiguous.
template<class T, class Question>
Result<T> onlyOne(const std::vector<T>& all, const std::string& what, const Question& isMeant)
{
    const T* found = nullptr;
    for (const T& each : all)
    {
        if (!isMeant(each))
            continue;
        if (found != nullptr)
            return Problem(Problem::Kind::ambiguous, operation, what,
                           "there are several of the name " + text::quoted(what));
        found = &each;
    }
    if (found == nullptr)
        return notThere(what, "there is no " + text::quoted(what) + " now");
    return *found;
}

/// The input with the number and the name of the setting; failing that, the one with the name. Numbers change with
/// drivers. Names change with languages: if the selector has another name, too, the number decides.
Result<SelectorInput> inputOf(const Selector& selector, const Settings::SelectorSetting& setting)
{
    const auto hasNumber = [&](const SelectorInput& input) { return input.number && input.number == setting.input; };
    const auto hasName = [&](const SelectorInput& input) { return input.title() == setting.inputName; };
    const auto both = std::find_if(selector.inputs.begin(), selector.inputs.end(),
                                   [&](const SelectorInput& input) { return hasNumber(input) && hasName(input); });
    if (both != selector.inputs.end())
        return *both;
    const std::string name = setting.inputName.empty() ? std::to_string(setting.input.value_or(0)) : setting.inputName;
    Result<SelectorInput> byName = onlyOne(selector.inputs, name, hasName);
    const bool isSameLanguage = selector.title() == setting.name;
    if (byName || (isSameLanguage && !setting.inputName.empty()))
        return byName;
    const auto byNumber = std::find_if(selector.inputs.begin(), selector.inputs.end(), hasNumber);
    return byNumber == selector.inputs.end() ? byName : Result<SelectorInput>(*byNumber);
}

bool hasLevel(const Settings::ControlSetting& setting)
{
    return std::any_of(setting.channels.begin(), setting.channels.end(),
                       [](const std::optional<Decibels>& level) { return level.has_value(); });
}

RestoredSetting::Outcome outcomeOf(const Problem& problem)
{
    switch (problem.kind())
    {
    case Problem::Kind::notThere:
    case Problem::Kind::ambiguous:
    case Problem::Kind::notSupported:
    case Problem::Kind::unreadable:
        return RestoredSetting::Outcome::notFound;
    default:
        return RestoredSetting::Outcome::failed;
    }
}
}

Restoring::Restoring(watching::Watcher& watcher, ChangeToken token)
    : m_watcher(watcher),
      m_token(token),
      m_snapshot(watcher.latest()),
      m_walk(notThere("", "the hardware was not read"))
{
}

RestoreReport Restoring::restore(const Settings& settings)
{
    m_places = placesOf(settings, m_snapshot);
    for (Place& place : m_places)
    {
        if (!place.now)
            place.now = m_watcher.orUnlisted(place.now.problem());
    }
    walkHardware();
    // The hardware comes first: where a control implements the volume of an endpoint, that volume decides. The report
    // has the order of the file nevertheless.
    std::vector<std::vector<RestoredSetting>> hardware;
    for (const Place& place : m_places)
    {
        restoreControls(place);
        restoreSelectors(place);
        hardware.push_back(std::exchange(m_report.settings, {}));
    }
    for (const CardId& card : m_changedCards)
        m_watcher.publishHardwareChange(card, m_token);
    for (std::size_t i = 0; i < m_places.size(); ++i)
    {
        restoreVolume(m_places[i]);
        std::move(hardware[i].begin(), hardware[i].end(), std::back_inserter(m_report.settings));
    }
    return std::move(m_report);
}

/// One walk through the cards whose hardware the settings concern.
void Restoring::walkHardware()
{
    std::vector<Card> cards;
    for (const Place& place : m_places)
    {
        const bool hasHardware = !place.setting->controls.empty() || !place.setting->selectors.empty();
        if (!hasHardware || !place.now)
            continue;
        const bool isThere = std::any_of(cards.begin(), cards.end(),
                                         [&](const Card& card) { return card.id() == place.now->card.id(); });
        if (!isThere)
            cards.push_back(place.now->card);
    }
    if (!cards.empty())
        m_walk = m_watcher.walk(operation, cards);
}

void Restoring::restoreVolume(const Place& place)
{
    const FormerLevels levels{place.setting->channels, place.setting->master};
    const std::optional<bool>& isMuted = place.setting->isMuted;
    if (levels.isEmpty() && !isMuted)
        return;
    const Result<reading::EndpointReading*> reading = place.now
                                                          ? m_watcher.endpoint(operation, place.now->endpoint.id())
                                                          : Result<reading::EndpointReading*>(place.now.problem());
    bool isChanged = false;
    const auto change = [&](const std::string& what, const auto& setter)
    {
        ChangeContext context = newContext();
        note(place, what, reading ? setter(**reading, context) : Result<Volume>(reading.problem()), context);
        isChanged = isChanged || context.hasChanged();
    };
    if (!levels.isEmpty())
        change("volume", [&](auto& now, ChangeContext& context) { return putBack(now, levels, context); });
    if (isMuted)
        change("mute", [&](auto& now, ChangeContext& context)
               { return changeMute(now, *isMuted ? MuteChange::on : MuteChange::off, context); });
    if (reading)
        m_watcher.publishChange(place.now->endpoint.id(), isChanged ? m_token : 0);
}

void Restoring::restoreControls(const Place& place)
{
    if (place.setting->controls.empty())
        return;
    std::vector<Control> controls;
    if (place.now && m_walk)
        controls = (*m_walk)->controls(place.now->endpoint.id());
    for (const ControlSetting& setting : place.setting->controls)
        restoreControl(place, setting, control(place, controls, setting));
}

void Restoring::restoreControl(const Place& place, const ControlSetting& setting, const Result<Control>& control)
{
    const auto change = [&](const std::string& what, const auto& open, const auto& setter)
    {
        ChangeContext context = newContext();
        const auto object = control ? open(**m_walk) : decltype(open(**m_walk))();
        const Result<Done> result =
            !control ? Result<Done>(control.problem())
            : object.get() == nullptr
                ? Result<Done>(reading::orHidingFailure(
                      **m_walk,
                      notThere(setting.id, "the control " + text::quoted(nameOrId(setting)) + " has no " + what)))
                : setter(*object, context);
        note(place, what == "mute" ? nameOrId(setting) + ", mute" : nameOrId(setting), result, context);
        if (context.hasChanged())
            m_changedCards.insert(place.now->card.id());
    };
    if (hasLevel(setting))
        change(
            "level", [&](const reading::HardwareWalk& walk) { return walk.level(control->id); },
            [&](IAudioVolumeLevel& level, ChangeContext& context) {
                return putBack(*control, level, FormerLevels{setting.channels, {}}, context);
            });
    if (setting.isMuted)
        change(
            "mute", [&](const reading::HardwareWalk& walk) { return walk.mute(control->id); },
            [&](IAudioMute& mute, ChangeContext& context)
            { return changeControlMute(*control, mute, *setting.isMuted, context); });
}

void Restoring::restoreSelectors(const Place& place)
{
    for (const SelectorSetting& setting : place.setting->selectors)
    {
        if (!setting.input && setting.inputName.empty())
            continue;
        ChangeContext context = newContext();
        const auto restored = [&]() -> Result<Done>
        {
            const Result<Selector> found = selector(place, setting);
            if (!found)
                return found.problem();
            if (setting.inputName.empty() && found->selection == setting.input)
                return Done(); // it may be the number of no input
            const Result<SelectorInput> input = inputOf(*found, setting);
            if (!input)
                return reading::orHidingFailure(**m_walk, input.problem());
            const reading::Handle<IAudioInputSelector> platform = (*m_walk)->selector(found->id);
            if (platform.get() == nullptr)
                return reading::orHidingFailure(**m_walk, notThere(setting.id, "the selector cannot be opened"));
            const Result<Done> chosen = choose(*found, *platform, *input, context);
            return chosen ? chosen : Result<Done>(reading::orHidingFailure(**m_walk, chosen.problem()));
        };
        note(place, nameOrId(setting), restored(), context);
        if (context.hasChanged())
            m_changedCards.insert(place.now->card.id());
    }
}

Result<Control> Restoring::control(const Place& place, const std::vector<Control>& controls,
                                   const ControlSetting& setting) const
{
    if (!place.now)
        return place.now.problem();
    if (!m_walk)
        return m_walk.problem();
    const ControlId id(setting.id);
    const auto found =
        std::find_if(controls.begin(), controls.end(), [&](const Control& control) { return control.id == id; });
    if (found != controls.end())
        return *found;
    Result<Control> named =
        onlyOne(controls, setting.name, [&](const Control& control) { return control.title() == setting.name; });
    return named ? named : Result<Control>(reading::orHidingFailure(**m_walk, named.problem()));
}

Result<Selector> Restoring::selector(const Place& place, const SelectorSetting& setting) const
{
    if (!place.now)
        return place.now.problem();
    if (!m_walk)
        return m_walk.problem();
    const std::vector<Selector> selectors = (*m_walk)->selectors(place.now->card.id());
    const SelectorId id(setting.id);
    const auto found =
        std::find_if(selectors.begin(), selectors.end(), [&](const Selector& selector) { return selector.id == id; });
    if (found != selectors.end())
        return *found;
    Result<Selector> named =
        onlyOne(selectors, setting.name, [&](const Selector& selector) { return selector.title() == setting.name; });
    return named ? named : Result<Selector>(m_watcher.orUnlisted(reading::orHidingFailure(**m_walk, named.problem())));
}

template<class T>
void Restoring::note(const Place& place, const std::string& what, const Result<T>& result, const ChangeContext& context)
{
    m_isChanged = m_isChanged || context.hasChanged();
    RestoredSetting setting;
    setting.what = place.name + ": " + what;
    if (result)
        setting.outcome =
            context.hasChanged() ? RestoredSetting::Outcome::restored : RestoredSetting::Outcome::unchanged;
    else
    {
        setting.outcome = outcomeOf(result.problem());
        setting.problem = result.problem();
    }
    if (place.now)
        setting.recognition = place.recognition;
    m_report.settings.push_back(std::move(setting));
}
}
