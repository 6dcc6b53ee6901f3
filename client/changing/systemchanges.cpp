#include "client/changing/volumechange.h"
#include "client/reading/hardwarewalk.h"
#include "client/watching/systemstate.h"
#include "sonavit/text.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace sonavit
{
inline namespace v1
{
namespace
{
using changing::ChangeContext;
using changing::MuteChange;
using reading::EndpointReading;
using reading::HardwareWalk;
using watching::Watcher;
using Walk = std::shared_ptr<HardwareWalk>;

/// @p result with the token of the change, or with none if no setter was called.
template<class T>
Result<T> told(const Result<T>& result, const ChangeContext& context, ChangeToken token)
{
    const ChangeToken told = context.isUsed() ? token : 0;
    return result ? Result<T>(*result, told) : Result<T>(result.problem(), told);
}

/// Changes the volume of an endpoint, and publishes what was read of it afterwards.
template<class Change>
Result<Volume> changeEndpoint(Watcher& watcher, const std::string& operation, const EndpointId& id,
                              const Change& change)
{
    const Result<EndpointReading*> endpoint = watcher.endpoint(operation, id);
    if (!endpoint)
        return endpoint.problem();
    const ChangeToken token = watcher.newToken();
    ChangeContext context(watcher.contextOf(token));
    const Result<Volume> volume = change(**endpoint, context);
    watcher.publishChange(id, context.isUsed() ? token : 0);
    return told(volume, context, token);
}

/// The control of @p controls with that id.
Result<Control> controlOf(const std::vector<Control>& controls, const ControlId& id, const std::string& operation)
{
    const auto found =
        std::find_if(controls.begin(), controls.end(), [&](const Control& control) { return control.id == id; });
    if (found != controls.end())
        return *found;
    return Problem(Problem::Kind::notThere, operation, id.text(), "the endpoint has no control " + id.text());
}

/// How a control is chosen among those of an endpoint.
using ChooseControl = std::function<Result<Control>(const std::vector<Control>&)>;
/// What is done to it.
using ChangeOfControl = std::function<Result<Done>(const Control&, const HardwareWalk&, ChangeContext&)>;

ChooseControl byId(const ControlId& id, const std::string& operation)
{
    return [id, operation](const std::vector<Control>& controls) { return controlOf(controls, id, operation); };
}

ChooseControl byName(std::string_view text)
{
    return [text = std::string(text)](const std::vector<Control>& controls)
    { return reading::controlNamed(controls, text); };
}

ChangeOfControl levelChange(const LevelChange& change)
{
    return [change](const Control& control, const HardwareWalk& walk, ChangeContext& context) -> Result<Done>
    {
        const reading::Handle<IAudioVolumeLevel> level = walk.level(control.id);
        if (level.get() == nullptr)
            return reading::orHidingFailure(walk, Problem(Problem::Kind::notSupported, "setControl", control.id.text(),
                                                          "the control has no level any more"));
        return changing::changeControl(control, *level, change, context);
    };
}

ChangeOfControl muteChange(bool isMuted)
{
    return [isMuted](const Control& control, const HardwareWalk& walk, ChangeContext& context) -> Result<Done>
    {
        const reading::Handle<IAudioMute> mute = walk.mute(control.id);
        if (mute.get() == nullptr)
            return reading::orHidingFailure(walk,
                                            Problem(Problem::Kind::notSupported, "setControlMute", control.id.text(),
                                                    "the control " + text::quoted(control.title()) + " has no mute"));
        return changing::changeControlMute(control, *mute, isMuted, context);
    };
}

Result<Control> changeOneControl(Watcher& watcher, const std::string& operation, const EndpointId& endpoint,
                                 const ChooseControl& choose, const ChangeOfControl& change)
{
    const Result<EndpointReading*> reading = watcher.endpoint(operation, endpoint);
    if (!reading)
        return reading.problem();
    const std::optional<Card> card = watcher.latest().cardOf(endpoint);
    const Result<Walk> walk = watcher.walk(operation, card ? std::vector<Card>{*card} : std::vector<Card>());
    if (!walk)
        return walk.problem();
    const Result<Control> control = choose((*walk)->controls(endpoint));
    if (!control)
        return reading::orHidingFailure(**walk, control.problem());
    const ChangeToken token = watcher.newToken();
    ChangeContext context(watcher.contextOf(token));
    const Result<Done> done = change(*control, **walk, context);
    if (card && context.isUsed())
        watcher.publishHardwareChange(card->id(), token);
    if (!done)
        return told(Result<Control>(done.problem()), context, token);
    return told(controlOf((*walk)->controls(endpoint), control->id, operation), context, token);
}

/// The selectors of several cards, and the card of each.
struct Selectors
{
    std::vector<Selector> selectors;
    std::vector<CardId> cards;
};

/// A selector that several cards share is there once.
Selectors selectorsOf(const HardwareWalk& walk, const std::vector<Card>& cards)
{
    Selectors all;
    for (const Card& card : cards)
    {
        for (Selector& selector : walk.selectors(card.id()))
        {
            const bool isKnown = std::any_of(all.selectors.begin(), all.selectors.end(),
                                             [&](const Selector& known) { return known.id == selector.id; });
            if (isKnown)
                continue;
            all.selectors.push_back(std::move(selector));
            all.cards.push_back(card.id());
        }
    }
    return all;
}

/// The position of @p id, which is there unless the hardware has changed meanwhile.
std::optional<std::size_t> placeOf(const Selectors& all, const SelectorId& id)
{
    for (std::size_t place = 0; place < all.selectors.size(); ++place)
    {
        if (all.selectors[place].id == id)
            return place;
    }
    return std::nullopt;
}

Result<Done> choose(const HardwareWalk& walk, const Selector& selector, std::string_view input, ChangeContext& context)
{
    const Result<SelectorInput> chosen = reading::inputNamed(selector, input);
    if (!chosen)
        return chosen.problem();
    const reading::Handle<IAudioInputSelector> platform = walk.selector(selector.id);
    if (platform.get() == nullptr)
        return Problem(Problem::Kind::notSupported, "select", selector.id.text(), "the selector cannot be opened");
    return changing::choose(selector, *platform, *chosen, context);
}

Result<Selector> selectIn(Watcher& watcher, const std::vector<Card>& cards, const std::string& name,
                          const std::string& input)
{
    const Result<Walk> walk = watcher.walk("select", cards);
    if (!walk)
        return walk.problem();
    const Selectors all = selectorsOf(**walk, cards);
    const Result<Selector> selector = reading::selectorNamed(all.selectors, name);
    if (!selector)
        return watcher.orUnlisted(reading::orHidingFailure(**walk, selector.problem()));
    const ChangeToken token = watcher.newToken();
    ChangeContext context(watcher.contextOf(token));
    const Result<Done> done = choose(**walk, *selector, input, context);
    const std::optional<std::size_t> place = placeOf(all, selector->id);
    if (place && context.isUsed())
        watcher.publishHardwareChange(all.cards[*place], token);
    if (!done)
        return told(Result<Selector>(reading::orHidingFailure(**walk, done.problem())), context, token);
    const Selectors now = selectorsOf(**walk, cards);
    const std::optional<std::size_t> placeNow = placeOf(now, selector->id);
    return told(Result<Selector>(placeNow ? now.selectors[*placeNow] : *selector), context, token);
}
}

Result<Volume> System::setVolume(const EndpointId& endpoint, LevelChange change)
{
    const auto task = [endpoint, change](Watcher& watcher)
    {
        return changeEndpoint(watcher, "setVolume", endpoint,
                              [&](EndpointReading& reading, ChangeContext& context)
                              { return changing::changeVolume(reading, change, context); });
    };
    return m_state->run<Volume>("setVolume", endpoint.text(), worker::Urgency::change, task);
}

Result<Volume> System::setMute(const EndpointId& endpoint, bool isMuted)
{
    const auto task = [endpoint, change = isMuted ? MuteChange::on : MuteChange::off](Watcher& watcher)
    {
        return changeEndpoint(watcher, "setMute", endpoint,
                              [&](EndpointReading& reading, ChangeContext& context)
                              { return changing::changeMute(reading, change, context); });
    };
    return m_state->run<Volume>("setMute", endpoint.text(), worker::Urgency::change, task);
}

Result<Volume> System::toggleMute(const EndpointId& endpoint)
{
    const auto task = [endpoint](Watcher& watcher)
    {
        return changeEndpoint(watcher, "toggleMute", endpoint,
                              [](EndpointReading& reading, ChangeContext& context)
                              { return changing::changeMute(reading, MuteChange::toggle, context); });
    };
    return m_state->run<Volume>("toggleMute", endpoint.text(), worker::Urgency::change, task);
}

Result<Control> System::setControl(const EndpointId& endpoint, std::string_view control, LevelChange change)
{
    const auto task = [endpoint, choose = byName(control), change = levelChange(change)](Watcher& watcher)
    { return changeOneControl(watcher, "setControl", endpoint, choose, change); };
    return m_state->run<Control>("setControl", endpoint.text(), worker::Urgency::change, task);
}

Result<Control> System::setControl(const EndpointId& endpoint, const ControlId& control, LevelChange change)
{
    const auto task = [endpoint, choose = byId(control, "setControl"), change = levelChange(change)](Watcher& watcher)
    { return changeOneControl(watcher, "setControl", endpoint, choose, change); };
    return m_state->run<Control>("setControl", endpoint.text(), worker::Urgency::change, task);
}

Result<Control> System::setControlMute(const EndpointId& endpoint, std::string_view control, bool isMuted)
{
    const auto task = [endpoint, choose = byName(control), change = muteChange(isMuted)](Watcher& watcher)
    { return changeOneControl(watcher, "setControlMute", endpoint, choose, change); };
    return m_state->run<Control>("setControlMute", endpoint.text(), worker::Urgency::change, task);
}

Result<Control> System::setControlMute(const EndpointId& endpoint, const ControlId& control, bool isMuted)
{
    const auto task =
        [endpoint, choose = byId(control, "setControlMute"), change = muteChange(isMuted)](Watcher& watcher)
    { return changeOneControl(watcher, "setControlMute", endpoint, choose, change); };
    return m_state->run<Control>("setControlMute", endpoint.text(), worker::Urgency::change, task);
}

Result<Selector> System::select(const CardId& card, std::string_view selector, std::string_view input)
{
    const auto task = [card, selector = std::string(selector),
                       input = std::string(input)](Watcher& watcher) -> Result<Selector>
    {
        const Result<Card> meant = watcher.card("select", card);
        if (!meant)
            return meant.problem();
        return selectIn(watcher, {*meant}, selector, input);
    };
    return m_state->run<Selector>("select", card.text(), worker::Urgency::change, task);
}

Result<Selector> System::select(std::string_view selector, std::string_view input)
{
    const auto task = [selector = std::string(selector), input = std::string(input)](Watcher& watcher)
    {
        const Snapshot snapshot = watcher.latest(); // the change publishes another one
        return selectIn(watcher, snapshot.cards(), selector, input);
    };
    return m_state->run<Selector>("select", "", worker::Urgency::change, task);
}
}
}
