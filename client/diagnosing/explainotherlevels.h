/// @file
/// Why levels of a card are no controls of an endpoint.
#pragma once

#include "client/diagnosing/explain.h"
#include "client/diagnosing/explainfacts.h"

namespace sonavit::diagnosing
{
/// Adds a fact for each reason for which levels of the card are not on @p road.
void addOtherLevels(FactList& facts, const Subject& subject, const Wiring& wiring, const Road& road);
}
