/// @file
/// Names of enumerators, in JSON and for people. Not a public header.
#pragma once

#include <array>
#include <cstddef>

namespace sonavit
{
/// The names of one enumerator.
struct EnumName
{
    const char* key;   ///< in JSON
    const char* words; ///< for people
};

// For numbers that the enumeration does not name, which a driver may report.
inline constexpr const char* unknownKey = "unknown";
inline constexpr EnumName unknownName = {unknownKey, "unknown"};

/// The entry of @p value in a table of all enumerators in their order; @p unknown for a number that has none.
/// @param first the number of the first enumerator
template<class Name, std::size_t Size, class Enum>
constexpr const Name& nameOf(const std::array<Name, Size>& table, Enum value, const Name& unknown,
                             int first = 0) noexcept
{
    const auto place = static_cast<std::size_t>(static_cast<long long>(value) - first);
    return place < Size ? table[place] : unknown;
}
}
