/// @file
/// Cards and endpoints while events are applied to them. Not a public header.
#pragma once

#include "sonavit/card.h"
#include "sonavit/matching.h"

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sonavit::drafts
{
/// Throws std::invalid_argument, with @p reason, if the events do not fit.
inline void require(bool fits, const char* reason)
{
    if (!fits)
        throw std::invalid_argument(std::string("sonavit::apply: ") + reason);
}

/// What goes to a place of a list of its own.
template<class Thing>
using Placed = std::vector<std::pair<std::size_t, Thing>>;

/// The list with @p placed in their places and @p kept, in their order, in the others.
template<class Thing>
std::vector<Thing> arranged(std::vector<Thing> kept, Placed<Thing> placed)
{
    if (placed.empty())
        return kept;
    std::vector<std::optional<Thing>> slots(kept.size() + placed.size());
    for (auto& [position, thing] : placed)
    {
        require(position < slots.size() && !slots[position], "a position is not in the list or taken twice");
        slots[position] = std::move(thing);
    }
    std::vector<Thing> result;
    result.reserve(slots.size());
    auto next = kept.begin();
    for (std::optional<Thing>& slot : slots)
        result.push_back(slot ? std::move(*slot) : std::move(*next++));
    return result;
}

/// A thing with those of its members that differ from now on.
template<class Thing>
class Draft
{
public:
    explicit Draft(Thing thing) : m_thing(std::move(thing)) {}

    const Thing& former() const { return m_thing; }
    typename Thing::Content& content()
    {
        if (!m_content)
            m_content = m_thing.content();
        return *m_content;
    }
    Thing take() { return m_content ? Thing(std::move(*m_content)) : std::move(m_thing); }

private:
    Thing m_thing;
    std::optional<typename Thing::Content> m_content;
};

/// A card while events are applied to it.
class CardDraft
{
public:
    explicit CardDraft(const Card& card) : m_card(card) {}

    const Card& former() const { return m_card.former(); }

    /// Takes an endpoint out of the list as it was before.
    Endpoint take(const matching::Key& key);
    void put(std::size_t position, Endpoint endpoint) { m_placed.emplace_back(position, std::move(endpoint)); }
    /// Whether all endpoints of the list as it was before are taken.
    bool isEmpty() const { return m_taken == former().endpoints().size(); }

    Card::Content& content() { return m_card.content(); }
    /// An endpoint of the list as it is after all were taken and put.
    Draft<Endpoint>& endpoint(const matching::Key& key);
    /// The card with all changes; the same one if there are none.
    Card finished();

private:
    void arrange();
    std::vector<std::string_view> afterIds() const;

    Draft<Card> m_card;
    std::optional<matching::Places> m_placesBefore;
    std::vector<bool> m_isTaken;
    std::size_t m_taken = 0;
    Placed<Endpoint> m_placed;
    std::optional<std::vector<Draft<Endpoint>>> m_endpoints; ///< of the list after
    std::optional<matching::Places> m_placesAfter;
};
}
