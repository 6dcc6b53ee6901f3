/// @file
/// The object model on a machine to which things happen.
#pragma once

#include "tests/client/model/supportanswers.h"
#include "tests/fuzz/support/steps.h"

#include <vector>

namespace fuzz
{
/// Discovers the cards, lets the events of the steps happen to them, and asks each card for its endpoints, controls and
/// selectors in between. Nothing of the machine is held afterwards but what the object model keeps on purpose.
void checkObjectModel(const sim::Machine& machine, const std::vector<Step>& steps);

/// What the object model answers about the machine.
support::Answers modelsAnswers(const sim::Machine& machine);
}
