/// @file
/// Which things of one list are those of another. Not a public header.
#pragma once

#include "sonavit/snapshot.h"

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sonavit::matching
{
inline constexpr std::size_t none = static_cast<std::size_t>(-1);

/// One of several things with the same id.
struct Key
{
    std::string_view id;
    std::size_t occurrence = 0;
};

/// The places of things in a list by their ids, which must outlive it. Upper and lower case are alike.
class Places
{
public:
    explicit Places(const std::vector<std::string_view>& ids);
    Places(const std::vector<std::string_view>& ids, const std::vector<std::size_t>& occurrences);

    /// none if there is no such thing.
    std::size_t of(const Key& key) const;

private:
    struct Hash
    {
        std::size_t operator()(const Key& key) const noexcept { return hashId(key.id) * 31 + key.occurrence; }
    };
    struct Equal
    {
        bool operator()(const Key& left, const Key& right) const noexcept
        {
            return left.occurrence == right.occurrence && compareIds(left.id, right.id) == 0;
        }
    };

    std::unordered_map<Key, std::size_t, Hash, Equal> m_places;
};

/// How often the id of each thing occurs before it in the list: several may have the same id, or an empty one.
std::vector<std::size_t> occurrences(const std::vector<std::string_view>& ids);

inline const EndpointId& idOf(const Endpoint& endpoint)
{
    return endpoint.id();
}
inline const CardId& idOf(const Card& card)
{
    return card.id();
}
inline const CardId& idOf(const CardId& id)
{
    return id;
}
inline const CardId& idOf(const Hardware& hardware)
{
    return hardware.card;
}

template<class Thing>
std::vector<std::string_view> idsOf(const std::vector<Thing>& things)
{
    std::vector<std::string_view> ids;
    ids.reserve(things.size());
    for (const Thing& thing : things)
        ids.emplace_back(idOf(thing).text());
    return ids;
}

/// The things of two lists that are the same: the first with an id is the first with that id, the second the second,
/// and so on. Upper and lower case are alike. Linear but for lists whose order changed.
class Matching
{
public:
    Matching(const std::vector<std::string_view>& before, const std::vector<std::string_view>& after);

    /// The place in the other list; none for what is not in it.
    std::size_t toAfter(std::size_t before) const { return m_toAfter[before]; }
    std::size_t toBefore(std::size_t after) const { return m_toBefore[after]; }
    /// Among those with the same id in its list.
    std::size_t occurrenceBefore(std::size_t before) const { return m_occurrencesBefore[before]; }
    std::size_t occurrenceAfter(std::size_t after) const { return m_occurrencesAfter[after]; }
    /// Whether a thing of both lists must move: as few as possible are, and the others keep their order.
    bool isMoved(std::size_t after) const { return !m_isMoved.empty() && m_isMoved[after]; }

private:
    void match(const std::vector<std::string_view>& before, const Places& after);
    void findMoved();

    std::vector<std::size_t> m_occurrencesBefore;
    std::vector<std::size_t> m_occurrencesAfter;
    std::vector<std::size_t> m_toAfter;
    std::vector<std::size_t> m_toBefore;
    std::vector<bool> m_isMoved; ///< empty if none is
};
}
