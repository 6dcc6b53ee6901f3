/// @file
/// Tables of values and their names.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace sim
{
template<class Value>
struct Named
{
    std::string_view name;
    Value value;
};

template<class Value, std::size_t Size>
using Names = std::array<Named<Value>, Size>;

/// The value with the name @p name; no value if the table does not contain it.
template<class Value, std::size_t Size>
std::optional<Value> valueOf(const Names<Value, Size>& names, std::string_view name)
{
    for (const Named<Value>& named : names)
    {
        if (named.name == name)
            return named.value;
    }
    return std::nullopt;
}

/// Whether the table contains @p value.
template<class Value, std::size_t Size>
bool hasName(const Names<Value, Size>& names, const Value& value)
{
    for (const Named<Value>& named : names)
    {
        if (named.value == value)
            return true;
    }
    return false;
}

/// The name of @p value; empty if the table does not contain it.
template<class Value, std::size_t Size>
std::string nameOf(const Names<Value, Size>& names, const Value& value)
{
    for (const Named<Value>& named : names)
    {
        if (named.value == value)
            return std::string(named.name);
    }
    return {};
}

/// The names for a message: `"console", "multimedia" or "communications"`.
template<class Value, std::size_t Size>
std::string oneOf(const Names<Value, Size>& names)
{
    std::string result;
    for (std::size_t index = 0; index < Size; ++index)
    {
        if (index > 0)
            result += index + 1 == Size ? " or " : ", ";
        result += "\"" + std::string(names[index].name) + "\"";
    }
    return result;
}
}
