/// @file
/// Hash tables with ids as their keys. Not a public header.
#pragma once

#include "sonavit/ids.h"

#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace sonavit
{
struct IdHash
{
    std::size_t operator()(std::string_view id) const noexcept { return hashId(id); }
};

struct IdEqual
{
    bool operator()(std::string_view left, std::string_view right) const noexcept
    {
        return compareIds(left, right) == 0;
    }
};

/// The keys belong to others, which must outlive the table. Upper and lower case are alike.
template<class Value>
using IdMap = std::unordered_map<std::string_view, Value, IdHash, IdEqual>;
}
