/// UCS-2 code units four at a time, as words of 64 bits. Of this module only; not installed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qor
{
/// Four adjacent code units, read from any address.
using UnitWord = std::uint64_t;

constexpr std::size_t unitsOfWord = 4;
constexpr UnitWord eachUnit = 0x0001000100010001ULL;

inline UnitWord wordAt(const unsigned short* units) noexcept
{
    UnitWord word = 0;
    std::memcpy(&word, units, sizeof(word));
    return word;
}

/// Bit 15 of each unit that is 0, and of some others: without such a bit no unit is 0.
inline UnitWord zeroCandidates(UnitWord word) noexcept
{
    return (word - eachUnit) & (0x8000 * eachUnit);
}

/// @p word with the letters A to Z replaced by a to z: bit 15 of a sum is set if its unit is at least A, or greater
/// than Z.
inline UnitWord foldedWord(UnitWord word) noexcept
{
    const UnitWord low = word & (0x7FFF * eachUnit);
    const UnitWord fromA = low + (0x8000 - 'A') * eachUnit;
    const UnitWord beyondZ = low + (0x8000 - 'Z' - 1) * eachUnit;
    const UnitWord capitals = fromA & ~beyondZ & ~word & (0x8000 * eachUnit);
    return word | (capitals >> 10); // from bit 15 to bit 5, the difference of a and A
}

/// A hash number of @p size units, each of whose words has the bits @p ignored set: units that differ in these bits
/// alone have the same number.
inline unsigned int hashOfUnits(const unsigned short* units, std::size_t size, UnitWord ignored) noexcept
{
    constexpr UnitWord multiplier = 0x9E3779B97F4A7C15ULL; // odd, with bits well spread: 2^64 over the golden ratio
    const auto mixed = [](UnitWord state, UnitWord word)
    {
        state = (state ^ word) * multiplier;
        return state ^ (state >> 32);
    };
    UnitWord state = size;
    std::size_t i = 0;
    for (; i + unitsOfWord <= size; i += unitsOfWord)
        state = mixed(state, wordAt(units + i) | ignored);
    UnitWord rest = 0;
    std::memcpy(&rest, units + i, (size - i) * sizeof(*units));
    state = mixed(state, rest | ignored);
    return static_cast<unsigned int>((state * multiplier) >> 32); // the upper half, which every unit has reached
}
}
