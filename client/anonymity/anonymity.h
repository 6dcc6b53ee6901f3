/// @file
/// Takes out of a machine what identifies its owner.
#pragma once

#include "simulator/machine/machine.h"

#include <string>
#include <vector>

namespace sonavit::anonymity
{
/// Replaces serial numbers of devices, container ids, and @p names wherever they occur, in texts, ids, blobs and
/// faults, regardless of case; equal ones by equal ones of the same length and form, so that what belonged together
/// does so still.
/// @param reports further texts about the machine, in which the same is replaced
void makeAnonymous(sim::Machine& machine, const std::vector<std::string>& names,
                   const std::vector<std::string*>& reports = {});
}
