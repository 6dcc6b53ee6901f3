#include "sonavit/matching.h"

#include "sonavit/idindex.h"

#include <algorithm>
#include <array>

namespace sonavit::matching
{
namespace
{
/// In so many a comparison of each with all before takes less than a table.
constexpr std::size_t few = 16;

/// The same as occurrences().
std::vector<std::size_t> occurrencesOfFew(const std::vector<std::string_view>& ids)
{
    std::array<std::size_t, few> hashes = {};
    std::vector<std::size_t> result(ids.size(), 0);
    for (std::size_t i = 0; i < ids.size(); ++i)
    {
        hashes[i] = hashId(ids[i]);
        for (std::size_t j = 0; j < i; ++j)
            result[i] += hashes[j] == hashes[i] && compareIds(ids[j], ids[i]) == 0 ? 1 : 0;
    }
    return result;
}

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
    if (ids.size() <= few)
        return occurrencesOfFew(ids);
    const auto idAt = [&](std::size_t place) { return ids[place]; };
    IdIndex firsts(ids.size());
    std::vector<std::size_t> counts(ids.size(), 0); // of the id of the thing there, if it is the first with that id
    std::vector<std::size_t> result;
    result.reserve(ids.size());
    for (std::size_t place = 0; place < ids.size(); ++place)
        result.push_back(counts[firsts.add(place, idAt)]++);
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
