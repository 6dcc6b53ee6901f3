/// @file
/// Cards as the object model groups them.
#pragma once

#include "client/model/endpoints.h"
#include "libSonavit/soundcard.h"
#include "sonavit/card.h"
#include "sonavit/problem.h"

#include <vector>

namespace sonavit::model
{
/// A card of the object model with its endpoints, and the value that was read from it.
struct ModelCard
{
    ::SoundCard card;
    std::vector<ModelEndpoint> endpoints; ///< outputs first
    Card value;
};

/// The cards of the system. The object model puts all endpoints without an instance path into one card, whose id is
/// empty.
/// @param endpoints all of them
/// @param problems receives one for each endpoint to which the object model finds no card
std::vector<ModelCard> listCards(const std::vector<ModelEndpoint>& endpoints, std::vector<Problem>& problems);
}
