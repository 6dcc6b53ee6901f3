#include "sonavit/carddraft.h"
#include "sonavit/change.h"
#include "sonavit/contentfields.h"
#include "sonavit/matching.h"

#include <optional>
#include <stdexcept>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
using drafts::arranged;
using drafts::CardDraft;
using drafts::Draft;
using drafts::Placed;
using drafts::require;
using matching::idsOf;
using matching::none;
using matching::Places;

/// A member of an event, which its kind must have.
template<class T>
const T& memberOf(const std::optional<T>& member)
{
    require(member.has_value(), "an event has no value for a member that its kind must have");
    return *member;
}

/// Applies events. What is removed, or moves, is named by where it was; all else by where it is at the end: so the
/// lists are arranged first.
class Application
{
public:
    explicit Application(const Snapshot& before) : m_content(before.content()), m_before(idsOf(m_content.cards))
    {
        m_drafts.reserve(m_content.cards.size());
        for (const Card& card : m_content.cards)
            m_drafts.emplace_back(card);
    }

    Snapshot after(const std::vector<Event>& events)
    {
        arrangeCards(events);
        for (const Event& event : events)
            arrangeEndpoints(event);
        requireEmptyCards();
        arrangeHardware(events);
        for (const Event& event : events)
            change(event);
        m_content.cards.clear();
        for (const std::size_t card : m_order)
            m_content.cards.push_back(m_drafts[card].finished());
        return Snapshot(std::move(m_content));
    }

private:
    void arrangeCards(const std::vector<Event>& events);
    void arrangeEndpoints(const Event& event);
    void requireEmptyCards() const;
    void arrangeHardware(const std::vector<Event>& events);
    void change(const Event& event);
    void changeDefault(const Event& event);
    void changeHardware(const Event& event);
    std::size_t cardBefore(const Event& event) const;
    CardDraft& cardAfter(const Event& event);
    Draft<Endpoint>& endpointAfter(const Event& event);

    Snapshot::Content m_content;
    Places m_before;
    std::vector<CardDraft> m_drafts;  ///< of the cards before, followed by the new ones
    std::vector<bool> m_isRemoved;    ///< of the cards before
    std::vector<std::size_t> m_order; ///< the places of the cards after in the drafts
    std::optional<Places> m_after;
    std::vector<CardId> m_hardwareIds; ///< after
    std::optional<Places> m_hardware;
};

void Application::arrangeCards(const std::vector<Event>& events)
{
    m_isRemoved.assign(m_drafts.size(), false);
    std::vector<bool> isMoved = m_isRemoved;
    Placed<std::size_t> placed;
    for (const Event& event : events)
    {
        if (event.kind == Event::Kind::cardRemoved || event.kind == Event::Kind::cardMoved)
        {
            const std::size_t card = cardBefore(event);
            require(!m_isRemoved[card] && !isMoved[card], "a card is removed or moved twice");
            (event.kind == Event::Kind::cardRemoved ? m_isRemoved : isMoved)[card] = true;
            if (isMoved[card])
                placed.emplace_back(memberOf(event.position), card);
        }
        else if (event.kind == Event::Kind::cardAdded)
        {
            placed.emplace_back(memberOf(event.position), m_drafts.size());
            m_drafts.emplace_back(memberOf(event.cardAfter));
        }
    }
    std::vector<std::size_t> kept;
    for (std::size_t card = 0; card < m_isRemoved.size(); ++card)
    {
        if (!m_isRemoved[card] && !isMoved[card])
            kept.push_back(card);
    }
    m_order = arranged(std::move(kept), std::move(placed));
    std::vector<std::string_view> ids;
    for (const std::size_t card : m_order)
        ids.emplace_back(m_drafts[card].former().id().text());
    m_after.emplace(ids);
}

void Application::arrangeEndpoints(const Event& event)
{
    switch (event.kind)
    {
    case Event::Kind::endpointRemoved:
        m_drafts[cardBefore(event)].take({memberOf(event.before).id().text(), event.occurrence});
        break;
    case Event::Kind::endpointAdded:
        cardAfter(event).put(memberOf(event.position), memberOf(event.after));
        break;
    case Event::Kind::endpointMoved:
    {
        CardDraft& target = cardAfter(event);
        const std::string& id = memberOf(event.after).id().text();
        const std::size_t origin = event.formerCard ? m_before.of({event.formerCard->text(), 0}) : none;
        require(!event.formerCard || origin != none, "a card is not there");
        target.put(memberOf(event.position),
                   event.formerCard ? m_drafts[origin].take({id, 0}) : target.take({id, event.occurrence}));
        break;
    }
    default:
        break;
    }
}

void Application::requireEmptyCards() const
{
    for (std::size_t card = 0; card < m_isRemoved.size(); ++card)
        require(!m_isRemoved[card] || m_drafts[card].isEmpty(), "a card is removed, but not all of its endpoints");
}

void Application::arrangeHardware(const std::vector<Event>& events)
{
    const Places before(idsOf(m_content.hardware));
    std::vector<bool> isRemoved(m_content.hardware.size(), false);
    Placed<Hardware> placed;
    for (const Event& event : events)
    {
        if (event.kind != Event::Kind::hardwareChanged)
            continue;
        require(event.hardwareBefore || event.hardwareAfter, "hardware has neither a state before nor one after");
        if (!event.hardwareBefore)
            placed.emplace_back(memberOf(event.position), *event.hardwareAfter);
        if (event.hardwareAfter)
            continue;
        const std::size_t place = before.of({event.card.text(), event.cardOccurrence});
        require(place != none && !isRemoved[place], "the hardware of a card is not there");
        isRemoved[place] = true;
    }
    std::vector<Hardware> kept;
    for (std::size_t i = 0; i < isRemoved.size(); ++i)
    {
        if (!isRemoved[i])
            kept.push_back(std::move(m_content.hardware[i]));
    }
    m_content.hardware = arranged(std::move(kept), std::move(placed));
    for (const Hardware& hardware : m_content.hardware)
        m_hardwareIds.push_back(hardware.card);
    m_hardware.emplace(idsOf(m_hardwareIds));
}

void Application::change(const Event& event)
{
    switch (event.kind)
    {
    case Event::Kind::endpointReappeared:
        copyField(endpointAfter(event).content(), memberOf(event.after).content(), EndpointField::incarnation);
        break;
    case Event::Kind::endpointChanged:
        copyField(endpointAfter(event).content(), memberOf(event.after).content(), memberOf(event.field));
        break;
    case Event::Kind::cardChanged:
        copyField(cardAfter(event).content(), memberOf(event.cardAfter).content(), memberOf(event.cardField));
        break;
    case Event::Kind::defaultChanged:
        changeDefault(event);
        break;
    case Event::Kind::hardwareChanged:
        changeHardware(event);
        break;
    case Event::Kind::serviceChanged:
        m_content.service = memberOf(event.service);
        break;
    case Event::Kind::problemsChanged:
        m_content.problems = event.problems;
        break;
    default:
        break;
    }
}

void Application::changeDefault(const Event& event)
{
    const auto flow = static_cast<unsigned>(memberOf(event.flow));
    const auto role = static_cast<unsigned>(memberOf(event.role));
    require(flow < allFlows.size() && role < allRoles.size(), "a flow or a role has no name");
    m_content.defaults[flow][role] = event.after ? event.after->id() : EndpointId();
}

void Application::changeHardware(const Event& event)
{
    if (!event.hardwareBefore || !event.hardwareAfter)
        return;
    const std::size_t place = m_hardware->of({event.card.text(), event.cardOccurrence});
    require(place != none, "the hardware of a card is not there");
    m_content.hardware[place] = *event.hardwareAfter;
}

std::size_t Application::cardBefore(const Event& event) const
{
    const std::size_t card = m_before.of({event.card.text(), event.cardOccurrence});
    require(card != none, "a card is not there");
    return card;
}

CardDraft& Application::cardAfter(const Event& event)
{
    const std::size_t place = m_after->of({event.card.text(), event.cardOccurrence});
    require(place != none, "a card is not there");
    return m_drafts[m_order[place]];
}

Draft<Endpoint>& Application::endpointAfter(const Event& event)
{
    return cardAfter(event).endpoint({memberOf(event.after).id().text(), event.occurrence});
}
}

Snapshot apply(const Snapshot& before, const std::vector<Event>& events)
{
    return Application(before).after(events);
}
}
}
