/// @file
/// What is wrong with an answer of the program.
#pragma once

#include "tests/faults/engine/run.h"
#include "tests/faults/program/trial.h"

#include <vector>

namespace faults::program
{
/// Reports what of @p now no failure of these calls explains. @p clean is the answer without failures.
void judge(Run& run, const CommandLine& line, const Printed& clean, const Printed& now);

/// Reports what is left on the machine after the program, and nothing explains: the layer keeps nothing, the object
/// model what it always keeps.
void judgeLeft(Run& run);
}
