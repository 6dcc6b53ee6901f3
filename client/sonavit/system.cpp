#include "sonavit/system.h"

#include "client/reading/hardwarewalk.h"
#include "client/watching/systemstate.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
Snapshot withoutCards(Problem problem)
{
    Snapshot::Content content;
    content.problems.push_back(std::move(problem));
    return Snapshot(std::move(content));
}

Graph graphOf(watching::Watcher& watcher, const reading::HardwareWalk& walk)
{
    Graph graph = walk.graph();
    watcher.judge(graph.problems);
    return graph;
}

template<class Value>
bool isFlawed(const Value& value)
{
    return !value.problems.empty();
}
}

System::System() : System(Options()) {}

System::System(Options options) : m_state(std::make_shared<State>(std::move(options))) {}

System::~System()
{
    // In these two cases locks may be held for ever, so what there is stays as it is.
    if (worker::isForked() || worker::isEnding())
        m_state->keptForGood = m_state;
    else
        m_state->end();
}

Snapshot System::snapshot() const
{
    const worker::Clock::Time deadline = worker::deadlineAfter(m_state->clock->now(), m_state->options.patience);
    Result<Snapshot> latest = m_state->latest("snapshot", deadline);
    return latest ? *std::move(latest) : withoutCards(latest.problem());
}

Result<Snapshot> System::refresh(Depth depth)
{
    return m_state->run<Snapshot>("refresh", "", worker::Urgency::reading,
                                  [depth](watching::Watcher& watcher) { return watcher.refresh(depth); });
}

std::optional<Endpoint> System::endpoint(const EndpointId& id) const
{
    return snapshot().endpoint(id);
}

std::optional<Endpoint> System::defaultEndpoint(Flow flow, Role role) const
{
    return snapshot().defaultEndpoint(flow, role);
}

std::vector<Match> System::find(std::string_view id) const
{
    return snapshot().find(id);
}

Result<std::vector<Control>> System::controls(const EndpointId& endpoint) const
{
    const auto task = [endpoint](watching::Watcher& watcher) -> Result<std::vector<Control>>
    {
        const std::optional<Card> card = watcher.latest().cardOf(endpoint);
        if (!card)
            return watcher.orUnlisted(Problem(Problem::Kind::notThere, "controls", endpoint.text(),
                                              "there is no endpoint " + endpoint.text()));
        const auto walk = watcher.recentWalk("controls", *card);
        if (!walk)
            return walk.problem();
        std::vector<Control> controls = (*walk)->controls(endpoint);
        if (std::any_of(controls.begin(), controls.end(), isFlawed<Control>))
            watcher.forgetWalk();
        return controls;
    };
    return m_state->run<std::vector<Control>>("controls", endpoint.text(), worker::Urgency::reading, task);
}

Result<std::vector<Selector>> System::selectors(const CardId& card) const
{
    const auto task = [card](watching::Watcher& watcher) -> Result<std::vector<Selector>>
    {
        const Result<Card> meant = watcher.card("selectors", card);
        if (!meant)
            return meant.problem();
        const auto walk = watcher.recentWalk("selectors", *meant);
        if (!walk)
            return walk.problem();
        std::vector<Selector> selectors = (*walk)->selectors(card);
        if (std::any_of(selectors.begin(), selectors.end(), isFlawed<Selector>))
            watcher.forgetWalk();
        return selectors;
    };
    return m_state->run<std::vector<Selector>>("selectors", card.text(), worker::Urgency::reading, task);
}

Result<Graph> System::graph(const CardId& card) const
{
    return graph(std::vector<CardId>{card});
}

Result<Graph> System::graph(const std::vector<CardId>& cards) const
{
    const auto task = [cards](watching::Watcher& watcher) -> Result<Graph>
    {
        std::vector<Card> meant;
        for (const CardId& id : cards)
        {
            Result<Card> card = watcher.card("graph", id);
            if (!card)
                return card.problem();
            meant.push_back(*std::move(card));
        }
        const auto walk = watcher.walk("graph", meant);
        if (!walk)
            return walk.problem();
        return graphOf(watcher, **walk);
    };
    return m_state->run<Graph>("graph", "", worker::Urgency::reading, task);
}

Result<Graph> System::graph() const
{
    const auto task = [](watching::Watcher& watcher) -> Result<Graph>
    {
        const auto walk = watcher.walk("graph", watcher.latest().cards());
        if (!walk)
            return walk.problem();
        return graphOf(watcher, **walk);
    };
    return m_state->run<Graph>("graph", "", worker::Urgency::reading, task);
}

Subscription System::subscribe(std::function<void(const Change&)> subscriber)
{
    if (subscriber == nullptr)
        throw std::invalid_argument("sonavit::System::subscribe: there is no function to call");
    auto state = std::make_shared<Subscription::State>();
    const worker::Clock::Time deadline = worker::deadlineAfter(m_state->clock->now(), m_state->options.patience);
    const Result<Snapshot> first = m_state->latest("subscribe", deadline);
    if (!first)
        state->problem = first.problem();
    if (worker::isForked())
        return Subscription(std::move(state));
    state->subscriber = m_state->hub->subscribe(std::move(subscriber), first ? *first : withoutCards(first.problem()));
    state->hub = m_state->hub;
    return Subscription(std::move(state));
}

std::size_t System::poll(std::chrono::milliseconds timeout)
{
    if (m_state->options.delivery != Delivery::poll)
        throw std::logic_error("sonavit::System::poll: the System calls its subscribers on a thread of its own");
    if (worker::isForked())
        return 0;
    return m_state->hub->poll(worker::deadlineAfter(m_state->clock->now(), timeout));
}

Result<Watch> System::watch(const CardId& card)
{
    const auto task = [card](watching::Watcher& watcher) -> Result<Watch>
    {
        auto state = std::make_shared<Watch::State>(); // nothing fails after the watch has begun
        const Result<std::uint64_t> number = watcher.watch(card);
        if (!number)
            return number.problem();
        state->watcher = watcher.weak_from_this();
        state->worker = watcher.worker();
        state->number = *number;
        return Watch(std::move(state));
    };
    return m_state->run<Watch>("watch", card.text(), worker::Urgency::reading, task);
}
}
}
