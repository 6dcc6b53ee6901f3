/// @file
/// Which endpoints of one snapshot are those of another. Not a public header.
#pragma once

#include "sonavit/card.h"
#include "sonavit/matching.h"

#include <cstddef>
#include <vector>

namespace sonavit::matching
{
/// Where an endpoint is: the places of its card and of itself.
struct EndpointPlace
{
    std::size_t card = none;
    std::size_t endpoint = none;
};

/// An endpoint before and after. One that was removed has no place after, one that was added none before.
struct EndpointPair
{
    EndpointPlace before;
    EndpointPlace after;
    std::size_t occurrence = 0; ///< in the card after; of one that was removed, before
    bool isMoved = false;
};

inline const Endpoint& at(const std::vector<Card>& cards, const EndpointPlace& place)
{
    return cards[place.card].endpoints()[place.endpoint];
}

/// Pairs the endpoints of two snapshots, whose cards must outlive it. Endpoints of cards that both snapshots share are
/// equal and in no list.
class EndpointPairs
{
public:
    /// @param matching of the cards; must outlive it
    EndpointPairs(const std::vector<Card>& before, const std::vector<Card>& after, const Matching& matching);

    const std::vector<EndpointPair>& removed() const noexcept { return m_removed; }
    /// In the order of the snapshot after, as the next two.
    const std::vector<EndpointPair>& added() const noexcept { return m_added; }
    /// Of cards of both snapshots; some of them moved inside their cards. Some that are the same are left out.
    const std::vector<EndpointPair>& kept() const noexcept { return m_kept; }
    /// From one card to another.
    const std::vector<EndpointPair>& transferred() const noexcept { return m_transferred; }

private:
    void pairWithinCards();
    void pairWithinCard(std::size_t before, std::size_t after);
    bool pairInPlace(std::size_t before, std::size_t after, const std::vector<Endpoint>& were,
                     const std::vector<Endpoint>& are);
    void pairAcrossCards();
    bool isIdentifiable(const EndpointPair& removed) const;

    const std::vector<Card>& m_before;
    const std::vector<Card>& m_after;
    const Matching& m_cards;
    std::vector<EndpointPair> m_removed;
    std::vector<EndpointPair> m_added;
    std::vector<EndpointPair> m_kept;
    std::vector<EndpointPair> m_transferred;
};
}
