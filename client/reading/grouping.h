#pragma once

#include "client/reading/endpointreading.h"
#include "sonavit/card.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::reading
{
/// Parents of device instances by instance id, so that each is asked for once. No value for one that has none.
using Parents = std::map<std::string, std::optional<std::string>>;

/// Groups endpoints into cards.
///
/// The order of the cards is that of the object model: first the cards with inputs in the order in which the list of
/// inputs meets them, then those with outputs alone; the endpoints of a card begin with its outputs. A card that equals
/// one of @p former is that one, so that snapshots share it.
/// @param parents the new ones are asked of the configuration manager and added
std::vector<Card> groupIntoCards(const std::vector<EndpointReading>& readings, const std::vector<Card>& former,
                                 Parents& parents);
}
