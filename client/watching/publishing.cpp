#include "client/watching/watcher.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace sonavit::watching
{
namespace
{
/// So many parents of device instances are remembered.
constexpr std::size_t mostParents = 1024;

void append(std::vector<Problem>& all, const std::vector<Problem>& more)
{
    all.insert(all.end(), more.begin(), more.end());
}
}

/// Publishes what the reading has changed.
void Watcher::publishRead()
{
    const std::vector<EndpointId> changed = std::exchange(m_changed, {});
    const bool isRegrouping = std::exchange(m_isRegrouping, false);
    if (m_enumerator.get() == nullptr)
        publish(withoutService(), m_authors);
    else if (isRegrouping)
        publish(regrouped(), m_authors);
    else
        publish(patched(changed), m_authors);
    m_authors = Authors();
}

Snapshot::Content Watcher::withoutService() const
{
    Snapshot::Content content;
    content.service = m_service;
    if (m_serviceProblem)
        content.problems.push_back(*m_serviceProblem);
    return content;
}

/// All cards, put together anew from the readings.
Snapshot::Content Watcher::regrouped()
{
    m_endpoints.tell(m_defaults, m_waveIds);
    if (m_parents.size() > mostParents)
        m_parents.clear();
    Snapshot::Content content;
    content.cards = reading::groupIntoCards(m_endpoints.readings(), m_latest.cards(), m_parents);
    content.defaults = m_defaults.ids;
    content.service = m_service;
    if (m_registrationProblem)
        content.problems.push_back(*m_registrationProblem);
    append(content.problems, m_listProblems);
    append(content.problems, m_defaults.problems);
    for (const reading::WaveIds& waveIds : m_waveIds)
        append(content.problems, waveIds.problems);
    m_watches.follow(*m_enumerator, content.cards);
    content.hardware = m_watches.hardware(content.cards);
    return content;
}

// Changes and watches may come in the middle of a reading, see Worker::letChangesPass(). Therefore what they publish
// is based on the newest state and not on the reading that runs.

/// The newest state with these endpoints as they were read last. Cards without them are shared.
Snapshot::Content Watcher::patched(const std::vector<EndpointId>& changed) const
{
    Snapshot::Content content = m_latest.content();
    for (const EndpointId& id : changed)
        patch(content, id);
    if (!m_watches.isEmpty() || !content.hardware.empty())
        content.hardware = m_watches.hardware(content.cards);
    return content;
}

void Watcher::patch(Snapshot::Content& content, const EndpointId& changed) const
{
    const std::optional<std::size_t> index = m_endpoints.find(changed);
    if (!index)
        return;
    const auto isMeant = [&](const Endpoint& endpoint) { return endpoint.id() == changed; };
    for (Card& card : content.cards)
    {
        const std::vector<Endpoint>& endpoints = card.endpoints();
        const auto place = std::find_if(endpoints.begin(), endpoints.end(), isMeant);
        if (place == endpoints.end())
            continue;
        Card::Content changedCard = card.content();
        changedCard.endpoints[static_cast<std::size_t>(place - endpoints.begin())] =
            Endpoint(m_endpoints.readings()[*index].content);
        card = Card(std::move(changedCard));
        return;
    }
}

/// Publishes @p content as the next state if it differs from the newest one.
void Watcher::publish(Snapshot::Content content, const Authors& authors)
{
    judgeHardware();
    ring(); // a reading that was asked for may have found what has to be tried again, or that the service has gone
    const bool isFirst = m_latest.generation() == 0;
    content.generation = m_latest.generation() + 1;
    content.time = std::chrono::system_clock::now();
    Snapshot next(std::move(content));
    std::vector<Event> events = isFirst ? std::vector<Event>() : difference(m_latest, next);
    tellCauses(events, authors);
    if (!isFirst && events.empty())
        return;
    m_hub->publish(next, std::move(events));
    m_latest = std::move(next);
}

void Watcher::tellCauses(std::vector<Event>& events, const Authors& authors)
{
    const auto isOfService = [](const Event& event) { return event.kind == Event::Kind::serviceChanged; };
    const bool isByService = std::any_of(events.begin(), events.end(), isOfService);
    for (Event& event : events)
    {
        event.isByService = isByService;
        const auto tell = [&](const Cause& cause)
        {
            event.origin = cause.origin;
            event.tokens = cause.tokens;
        };
        if (event.kind == Event::Kind::endpointChanged && event.after)
        {
            const auto byUs = authors.endpoints.find(event.after->id());
            const auto cause = authors.volumes.find(event.after->id());
            if (byUs != authors.endpoints.end())
                tell(byUs->second);
            else if (event.field == EndpointField::volume && cause != authors.volumes.end())
                tell(cause->second);
        }
        if (event.kind == Event::Kind::hardwareChanged)
        {
            const auto cause = authors.hardware.find(event.card);
            if (cause != authors.hardware.end())
                tell(cause->second);
        }
    }
}

void Watcher::publishChange(const EndpointId& endpoint, ChangeToken token)
{
    Authors authors;
    const auto noted = m_authors.volumes.find(endpoint); // by a reading in the middle of which this comes
    if (noted != m_authors.volumes.end())
        authors.volumes.insert(*noted);
    if (token == 0)
        return publish(patched({endpoint}), authors);
    // What another program did meanwhile is in the reading as well.
    note(authors.endpoints, endpoint, Cause{Origin::own, {token}, false});
    if (m_inbox->isChangedByOther(endpoint))
        note(authors.endpoints, endpoint, Cause{Origin::other, {}, false});
    if (noted != m_authors.volumes.end())
        note(authors.endpoints, endpoint, noted->second);
    ChangeToken& published = m_publishedChanges[endpoint];
    publish(patched({endpoint}), authors);
    published = token;
}

void Watcher::publishHardwareChange(const CardId& card, ChangeToken token)
{
    const Cause cause = token == 0 ? Cause() : Cause{Origin::own, {token}, false};
    Authors authors;
    const std::vector<EndpointId> changed = readVolumesOf(card, cause, authors);
    if (const std::optional<std::uint32_t> key = m_watches.keyOf(card))
    {
        m_watches.read(*key);
        note(authors.hardware, card, cause);
        if (m_inbox->isChangedByOther(*key))
            note(authors.hardware, card, Cause{Origin::other, {}, false});
    }
    if (token != 0)
    {
        m_publishedHardwareChanges[card] = token;
        for (const EndpointId& endpoint : changed)
            m_publishedChanges[endpoint] = token;
    }
    publish(patched(changed), authors);
}
}
