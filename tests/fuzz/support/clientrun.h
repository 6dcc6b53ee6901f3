/// @file
/// The client layer on a machine to which things happen.
#pragma once

#include "tests/client/model/supportanswers.h"
#include "tests/fuzz/support/steps.h"

#include <vector>

namespace fuzz
{
/// Runs the steps and checks that the layer has told every change and ends with the truth: with the snapshot that
/// another System reads. Nothing of the machine is held afterwards.
/// @return the machine as it is then
sim::Machine checkClient(const sim::Machine& machine, const std::vector<Step>& steps);

/// What the client layer answers about the machine.
support::Answers clientsAnswers(const sim::Machine& machine);
}
