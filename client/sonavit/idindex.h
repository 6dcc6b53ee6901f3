/// @file
/// Positions by id, for lists that hold the ids. Not a public header.
#pragma once

#include "sonavit/ids.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace sonavit
{
/// Finds the position of an id in a list: a hash table with open addresses that holds positions and copies no id.
///
/// Each operation takes @p idAt, which gives the id at a position of the list as a std::string_view. The list may
/// replace what it has at a position that was added by something with the same id. Upper and lower case are alike.
class IdIndex
{
public:
    /// Takes the memory for @p size positions at once; more are possible.
    explicit IdIndex(std::size_t size = 0)
    {
        std::size_t count = size == 0 ? 0 : fewest;
        while (count < 2 * size)
            count *= 2;
        m_slots.resize(count);
    }

    /// @return the position of the id: @p position, or an earlier one that was added with the same id, and nothing
    /// changes
    template<class IdAt>
    std::size_t add(std::size_t position, const IdAt& idAt)
    {
        if (2 * (m_count + 1) > m_slots.size())
            grow();
        const std::string_view id = idAt(position);
        const Slot slot{hashId(id), position};
        Slot& place = m_slots[placeOf(slot.hash, id, idAt)];
        if (place.position != none)
            return place.position;
        place = slot;
        ++m_count;
        return position;
    }

    template<class IdAt>
    std::optional<std::size_t> find(std::string_view id, const IdAt& idAt) const noexcept
    {
        if (m_count == 0)
            return std::nullopt;
        const std::size_t position = m_slots[placeOf(hashId(id), id, idAt)].position;
        return position == none ? std::nullopt : std::optional<std::size_t>(position);
    }

private:
    static constexpr std::size_t fewest = 16; ///< slots; their number is a power of two
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    struct Slot
    {
        std::size_t hash = 0;
        std::size_t position = none;
    };

    /// Where the id is, or the empty slot where it belongs. At least half of the slots are empty.
    template<class IdAt>
    std::size_t placeOf(std::size_t hash, std::string_view id, const IdAt& idAt) const noexcept
    {
        const std::size_t mask = m_slots.size() - 1;
        std::size_t place = hash & mask;
        while (m_slots[place].position != none &&
               (m_slots[place].hash != hash || compareIds(idAt(m_slots[place].position), id) != 0))
            place = (place + 1) & mask;
        return place;
    }

    void grow()
    {
        std::vector<Slot> slots(m_slots.empty() ? fewest : 2 * m_slots.size());
        const std::size_t mask = slots.size() - 1;
        for (const Slot& slot : m_slots)
        {
            if (slot.position == none)
                continue;
            std::size_t place = slot.hash & mask;
            while (slots[place].position != none)
                place = (place + 1) & mask;
            slots[place] = slot;
        }
        m_slots = std::move(slots);
    }

    std::vector<Slot> m_slots;
    std::size_t m_count = 0;
};
}
