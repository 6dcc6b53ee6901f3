#pragma once

#include "sonavit/card.h"

#include <map>
#include <string>
#include <vector>

namespace sonavit::program
{
/// How a list shows the id of an endpoint; printable.
struct ShortId
{
    std::string usual;   ///< the beginning of its own GUID, or the whole id if two of those are equal
    std::string compact; ///< the beginning of the usual one that no other endpoint has; empty if two are equal
};

/// Those of all endpoints of @p cards, by their whole ids.
std::map<std::string, ShortId> shortIds(const std::vector<Card>& cards);
}
