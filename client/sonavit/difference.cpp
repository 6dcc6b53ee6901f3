#include "sonavit/change.h"
#include "sonavit/contentfields.h"
#include "sonavit/endpointpairs.h"
#include "sonavit/matching.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
using matching::at;
using matching::EndpointPair;
using matching::EndpointPairs;
using matching::idsOf;
using matching::Matching;
using matching::none;

/// The card at a moment; its endpoints are listed by events of their own.
Card withoutEndpoints(const Card& card)
{
    Card::Content content = card.content();
    content.endpoints.clear();
    return Card(std::move(content));
}

/// The endpoint with that id, or one of which only the id is known; no value for the id of nothing.
std::optional<Endpoint> endpointOrId(const std::vector<Card>& cards, const EndpointId& id, Flow flow)
{
    if (id.isEmpty())
        return std::nullopt;
    for (const Card& card : cards)
    {
        for (const Endpoint& endpoint : card.endpoints())
        {
            if (endpoint.id() == id)
                return endpoint;
        }
    }
    Endpoint::Content content;
    content.id = id;
    content.flow = flow;
    return Endpoint(std::move(content));
}

/// Finds what lies between two snapshots.
class Comparison
{
public:
    Comparison(const Snapshot& before, const Snapshot& after)
        : m_before(before.content()),
          m_after(after.content()),
          m_cards(idsOf(m_before.cards), idsOf(m_after.cards)),
          m_endpoints(m_before.cards, m_after.cards, m_cards)
    {
    }

    std::vector<Event> events()
    {
        addRemovals();
        addAdditions();
        addMoves();
        addCardChanges();
        addEndpointChanges();
        addDefaults();
        addHardware();
        addTheRest();
        return std::move(m_events);
    }

private:
    void addRemovals();
    void addAdditions();
    void addMoves();
    void addCardChanges();
    void addEndpointChanges();
    void addEndpointChanges(const EndpointPair& pair);
    void addDefaults();
    void addDefault(Flow flow, Role role);
    void addHardware();
    void addTheRest();

    Event& add(Event::Kind kind);
    Event& addOfCard(Event::Kind kind, std::size_t before, std::size_t after);
    Event& addOfEndpoint(Event::Kind kind, const EndpointPair& pair);
    const Endpoint& endpointBefore(const EndpointPair& pair) const { return at(m_before.cards, pair.before); }
    const Endpoint& endpointAfter(const EndpointPair& pair) const { return at(m_after.cards, pair.after); }

    const Snapshot::Content& m_before;
    const Snapshot::Content& m_after;
    Matching m_cards;
    EndpointPairs m_endpoints;
    std::vector<Event> m_events;
};

void Comparison::addRemovals()
{
    for (const EndpointPair& pair : m_endpoints.removed())
        addOfEndpoint(Event::Kind::endpointRemoved, pair).before = endpointBefore(pair);
    for (std::size_t before = 0; before < m_before.cards.size(); ++before)
    {
        if (m_cards.toAfter(before) == none)
            addOfCard(Event::Kind::cardRemoved, before, none).cardBefore = m_before.cards[before];
    }
}

void Comparison::addAdditions()
{
    for (std::size_t after = 0; after < m_after.cards.size(); ++after)
    {
        if (m_cards.toBefore(after) != none)
            continue;
        Event& event = addOfCard(Event::Kind::cardAdded, none, after);
        event.cardAfter = withoutEndpoints(m_after.cards[after]);
        event.position = after;
    }
    for (const EndpointPair& pair : m_endpoints.added())
    {
        Event& event = addOfEndpoint(Event::Kind::endpointAdded, pair);
        event.after = endpointAfter(pair);
        event.position = pair.after.endpoint;
    }
}

void Comparison::addMoves()
{
    for (std::size_t after = 0; after < m_after.cards.size(); ++after)
    {
        if (!m_cards.isMoved(after))
            continue;
        Event& event = addOfCard(Event::Kind::cardMoved, m_cards.toBefore(after), after);
        event.cardAfter = m_after.cards[after];
        event.position = after;
    }
    for (const EndpointPair& pair : m_endpoints.kept())
    {
        if (!pair.isMoved)
            continue;
        Event& event = addOfEndpoint(Event::Kind::endpointMoved, pair);
        event.after = endpointAfter(pair);
        event.position = pair.after.endpoint;
    }
    for (const EndpointPair& pair : m_endpoints.transferred())
    {
        Event& event = addOfEndpoint(Event::Kind::endpointMoved, pair);
        event.after = endpointAfter(pair);
        event.position = pair.after.endpoint;
        event.formerCard = m_before.cards[pair.before.card].id();
    }
}

void Comparison::addCardChanges()
{
    for (std::size_t after = 0; after < m_after.cards.size(); ++after)
    {
        const std::size_t before = m_cards.toBefore(after);
        if (before == none)
            continue;
        const Card& was = m_before.cards[before];
        const Card& is = m_after.cards[after];
        if (&was.content() == &is.content())
            continue;
        for (const CardField field : allCardFields)
        {
            if (hasSameField(was.content(), is.content(), field))
                continue;
            Event& event = addOfCard(Event::Kind::cardChanged, before, after);
            event.cardBefore = was;
            event.cardAfter = is;
            event.cardField = field;
        }
    }
}

void Comparison::addEndpointChanges()
{
    const auto firstReappeared = [&](const EndpointPair& pair)
    {
        if (endpointBefore(pair).incarnation() >= endpointAfter(pair).incarnation())
            return;
        Event& event = addOfEndpoint(Event::Kind::endpointReappeared, pair);
        event.before = endpointBefore(pair);
        event.after = endpointAfter(pair);
    };
    for (const std::vector<EndpointPair>* pairs : {&m_endpoints.kept(), &m_endpoints.transferred()})
        std::for_each(pairs->begin(), pairs->end(), firstReappeared);
    for (const std::vector<EndpointPair>* pairs : {&m_endpoints.kept(), &m_endpoints.transferred()})
    {
        for (const EndpointPair& pair : *pairs)
            addEndpointChanges(pair);
    }
}

void Comparison::addEndpointChanges(const EndpointPair& pair)
{
    const Endpoint& was = endpointBefore(pair);
    const Endpoint& is = endpointAfter(pair);
    if (&was.content() == &is.content())
        return;
    for (const EndpointField field : allEndpointFields)
    {
        const bool isReported = field == EndpointField::incarnation && was.incarnation() < is.incarnation();
        if (isReported || hasSameField(was.content(), is.content(), field))
            continue;
        Event& event = addOfEndpoint(Event::Kind::endpointChanged, pair);
        event.before = was;
        event.after = is;
        event.field = field;
    }
}

void Comparison::addDefaults()
{
    for (const Flow flow : allFlows)
    {
        for (const Role role : allRoles)
            addDefault(flow, role);
    }
}

void Comparison::addDefault(Flow flow, Role role)
{
    const EndpointId& was = m_before.defaults[static_cast<std::size_t>(flow)][static_cast<std::size_t>(role)];
    const EndpointId& is = m_after.defaults[static_cast<std::size_t>(flow)][static_cast<std::size_t>(role)];
    if (was == is)
        return;
    Event& event = add(Event::Kind::defaultChanged);
    event.flow = flow;
    event.role = role;
    event.before = endpointOrId(m_before.cards, was, flow);
    event.after = endpointOrId(m_after.cards, is, flow);
}

/// The hardware of a card whose place in the list changed ends and begins anew.
void Comparison::addHardware()
{
    const Matching list(idsOf(m_before.hardware), idsOf(m_after.hardware));
    const auto addOne = [&](std::size_t before, std::size_t after)
    {
        const Hardware& named = after == none ? m_before.hardware[before] : m_after.hardware[after];
        Event& event = add(Event::Kind::hardwareChanged);
        event.card = named.card;
        event.cardOccurrence = after == none ? list.occurrenceBefore(before) : list.occurrenceAfter(after);
        if (before != none)
            event.hardwareBefore = m_before.hardware[before];
        if (after != none)
            event.hardwareAfter = m_after.hardware[after];
        if (before == none)
            event.position = after;
    };
    for (std::size_t before = 0; before < m_before.hardware.size(); ++before)
    {
        if (list.toAfter(before) == none || list.isMoved(list.toAfter(before)))
            addOne(before, none);
    }
    for (std::size_t after = 0; after < m_after.hardware.size(); ++after)
    {
        const std::size_t before = list.isMoved(after) ? none : list.toBefore(after);
        if (before == none || m_before.hardware[before] != m_after.hardware[after])
            addOne(before, after);
    }
}

void Comparison::addTheRest()
{
    if (m_before.service != m_after.service)
        add(Event::Kind::serviceChanged).service = m_after.service;
    if (m_before.problems != m_after.problems)
        add(Event::Kind::problemsChanged).problems = m_after.problems;
    for (Event& event : m_events)
        event.isByService = m_before.service != m_after.service;
}

Event& Comparison::add(Event::Kind kind)
{
    Event& event = m_events.emplace_back();
    event.kind = kind;
    return event;
}

/// Takes the places of one card in both snapshots; one of them may be none.
Event& Comparison::addOfCard(Event::Kind kind, std::size_t before, std::size_t after)
{
    Event& event = add(kind);
    event.card = after == none ? m_before.cards[before].id() : m_after.cards[after].id();
    event.cardOccurrence = after == none ? m_cards.occurrenceBefore(before) : m_cards.occurrenceAfter(after);
    return event;
}

Event& Comparison::addOfEndpoint(Event::Kind kind, const EndpointPair& pair)
{
    const bool isThere = pair.after.card != none;
    Event& event = addOfCard(kind, isThere ? none : pair.before.card, isThere ? pair.after.card : none);
    event.occurrence = pair.occurrence;
    return event;
}
}

std::vector<Event> difference(const Snapshot& before, const Snapshot& after)
{
    if (&before.content() == &after.content())
        return {};
    return Comparison(before, after).events();
}
}
}
