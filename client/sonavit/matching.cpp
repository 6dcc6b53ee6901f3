#include "sonavit/matching.h"

#include "sonavit/idmap.h"

#include <algorithm>

namespace sonavit::matching
{
namespace
{
/// The members of one of the longest rising subsequences of @p numbers.
std::vector<bool> risingMembers(const std::vector<std::size_t>& numbers)
{
    std::vector<std::size_t> ends; // of the subsequences of each length so far, the one with the smallest last number
    std::vector<std::size_t> former(numbers.size(), none);
    for (std::size_t i = 0; i < numbers.size(); ++i)
    {
        const auto isSmaller = [&](std::size_t end, std::size_t number) { return numbers[end] < number; };
        const auto place = std::lower_bound(ends.begin(), ends.end(), numbers[i], isSmaller);
        if (place != ends.begin())
            former[i] = *(place - 1);
        if (place == ends.end())
            ends.push_back(i);
        else
            *place = i;
    }
    std::vector<bool> isMember(numbers.size(), false);
    for (std::size_t i = ends.empty() ? none : ends.back(); i != none; i = former[i])
        isMember[i] = true;
    return isMember;
}
}

Places::Places(const std::vector<std::string_view>& ids) : Places(ids, occurrences(ids)) {}

Places::Places(const std::vector<std::string_view>& ids, const std::vector<std::size_t>& occurrences)
{
    m_places.reserve(ids.size());
    for (std::size_t i = 0; i < ids.size(); ++i)
        m_places.emplace(Key{ids[i], occurrences[i]}, i);
}

std::size_t Places::of(const Key& key) const
{
    const auto found = m_places.find(key);
    return found == m_places.end() ? none : found->second;
}

std::vector<std::size_t> occurrences(const std::vector<std::string_view>& ids)
{
    std::vector<std::size_t> result;
    result.reserve(ids.size());
    IdMap<std::size_t> counts;
    counts.reserve(ids.size());
    for (const std::string_view id : ids)
        result.push_back(counts[id]++);
    return result;
}

Matching::Matching(const std::vector<std::string_view>& before, const std::vector<std::string_view>& after)
    : m_occurrencesBefore(occurrences(before)),
      m_toAfter(before.size(), none),
      m_toBefore(after.size(), none)
{
    const auto isSame = [](std::string_view left, std::string_view right) { return compareIds(left, right) == 0; };
    if (std::equal(before.begin(), before.end(), after.begin(), after.end(), isSame))
    {
        m_occurrencesAfter = m_occurrencesBefore;
        for (std::size_t i = 0; i < before.size(); ++i)
            m_toAfter[i] = m_toBefore[i] = i;
        return;
    }
    m_occurrencesAfter = occurrences(after);
    match(before, Places(after, m_occurrencesAfter));
    findMoved();
}

void Matching::match(const std::vector<std::string_view>& before, const Places& after)
{
    for (std::size_t i = 0; i < before.size(); ++i)
    {
        const std::size_t place = after.of({before[i], m_occurrencesBefore[i]});
        m_toAfter[i] = place;
        if (place != none)
            m_toBefore[place] = i;
    }
}

void Matching::findMoved()
{
    std::vector<std::size_t> places; // after
    std::vector<std::size_t> origins;
    for (std::size_t i = 0; i < m_toBefore.size(); ++i)
    {
        if (m_toBefore[i] == none)
            continue;
        places.push_back(i);
        origins.push_back(m_toBefore[i]);
    }
    if (std::is_sorted(origins.begin(), origins.end()))
        return;
    const std::vector<bool> stays = risingMembers(origins);
    m_isMoved.assign(m_toBefore.size(), false);
    for (std::size_t i = 0; i < places.size(); ++i)
        m_isMoved[places[i]] = !stays[i];
}
}
