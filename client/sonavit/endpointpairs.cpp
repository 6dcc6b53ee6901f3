#include "sonavit/endpointpairs.h"

#include "sonavit/idmap.h"

#include <algorithm>
#include <utility>

namespace sonavit::matching
{
EndpointPairs::EndpointPairs(const std::vector<Card>& before, const std::vector<Card>& after, const Matching& matching)
    : m_before(before),
      m_after(after),
      m_cards(matching)
{
    pairWithinCards();
    pairAcrossCards();
}

void EndpointPairs::pairWithinCards()
{
    for (std::size_t before = 0; before < m_before.size(); ++before)
    {
        if (m_cards.toAfter(before) == none)
            pairWithinCard(before, none);
    }
    for (std::size_t after = 0; after < m_after.size(); ++after)
    {
        const std::size_t before = m_cards.toBefore(after);
        const bool isShared = before != none && &m_before[before].content() == &m_after[after].content();
        if (!isShared)
            pairWithinCard(before, after);
    }
}

/// If both lists have the same ids at the same places, as after a change of a value, only what differs is a pair.
/// @return false if they have not, or if more differ than are worth comparing with all before them
bool EndpointPairs::pairInPlace(std::size_t before, std::size_t after, const std::vector<Endpoint>& were,
                                const std::vector<Endpoint>& are)
{
    constexpr std::size_t few = 4;
    const auto isSame = [](const Endpoint& left, const Endpoint& right)
    { return &left.content() == &right.content() || left.id() == right.id(); };
    if (!std::equal(were.begin(), were.end(), are.begin(), are.end(), isSame))
        return false;
    const std::size_t kept = m_kept.size();
    for (std::size_t i = 0; i < are.size(); ++i)
    {
        if (&were[i].content() == &are[i].content())
            continue;
        if (m_kept.size() == kept + few)
        {
            m_kept.resize(kept);
            return false;
        }
        const auto end = are.begin() + static_cast<std::ptrdiff_t>(i);
        const auto isAlike = [&](const Endpoint& other) { return other.id() == are[i].id(); };
        const auto occurrence = static_cast<std::size_t>(std::count_if(are.begin(), end, isAlike));
        m_kept.push_back({{before, i}, {after, i}, occurrence, false});
    }
    return true;
}

/// Takes the places of one card in both snapshots; one of them may be none.
void EndpointPairs::pairWithinCard(std::size_t before, std::size_t after)
{
    static const auto& noEndpoints = *new std::vector<Endpoint>; // lasts: threads compare until the process ends
    const std::vector<Endpoint>& were = before == none ? noEndpoints : m_before[before].endpoints();
    const std::vector<Endpoint>& are = after == none ? noEndpoints : m_after[after].endpoints();
    if (pairInPlace(before, after, were, are))
        return;
    const Matching endpoints(idsOf(were), idsOf(are));
    for (std::size_t i = 0; i < were.size(); ++i)
    {
        if (endpoints.toAfter(i) == none)
            m_removed.push_back({{before, i}, {}, endpoints.occurrenceBefore(i), false});
    }
    for (std::size_t i = 0; i < are.size(); ++i)
    {
        const std::size_t origin = endpoints.toBefore(i);
        const EndpointPair pair = {{before, origin}, {after, i}, endpoints.occurrenceAfter(i), endpoints.isMoved(i)};
        (origin == none ? m_added : m_kept).push_back(pair);
    }
}

/// An endpoint that left one card and one with its id that is new on another are the same.
void EndpointPairs::pairAcrossCards()
{
    if (m_removed.empty() || m_added.empty())
        return;
    IdMap<std::size_t> removed; // the first of each id
    for (std::size_t i = 0; i < m_removed.size(); ++i)
    {
        if (isIdentifiable(m_removed[i]))
            removed.emplace(at(m_before, m_removed[i].before).id().text(), i);
    }
    std::vector<EndpointPair> added;
    for (EndpointPair& pair : m_added)
    {
        const auto found = removed.find(at(m_after, pair.after).id().text());
        if (found == removed.end())
        {
            added.push_back(pair);
            continue;
        }
        EndpointPair& origin = m_removed[found->second];
        pair.before = std::exchange(origin.before, EndpointPlace());
        m_transferred.push_back(pair);
        removed.erase(found);
    }
    m_added = std::move(added);
    const auto isGone = [](const EndpointPair& pair) { return pair.before.endpoint == none; };
    m_removed.erase(std::remove_if(m_removed.begin(), m_removed.end(), isGone), m_removed.end());
}

/// Whether the event of a transfer can say where the endpoint came from.
bool EndpointPairs::isIdentifiable(const EndpointPair& removed) const
{
    return !at(m_before, removed.before).id().isEmpty() && removed.occurrence == 0 &&
           m_cards.occurrenceBefore(removed.before.card) == 0;
}
}
