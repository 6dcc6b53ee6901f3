/// What a described machine must keep to, beyond what its types say.
#pragma once

#include "simulator/machine/machine.h"

#include <cstddef>
#include <string>
#include <vector>

namespace sim
{
/// The most channels that a volume in a machine file may have.
inline constexpr std::size_t maximumChannels = 64;

/// Something that is wrong with a machine.
struct MachineProblem
{
    std::string place;    ///< as a JSON pointer into the machine's file, such as "/endpoints/3/defaultFor/0"
    std::string expected; ///< what should stand there
    std::string found;    ///< what does
};

/// Looks for ids that are given twice, for references that lead nowhere, for levels outside of their range and the
/// like, in the order of a machine's file. Machines filled in code need not pass: tests build what no file may say,
/// such as a control without channels.
std::vector<MachineProblem> checkMachine(const Machine& machine);
}
