/// @file
/// Rules for a machine in a file that its types cannot express.
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
    std::string expected; ///< what the rule requires
    std::string found;    ///< what the machine contains
};

/// Finds duplicate ids, references to nothing, ranges whose ends are the wrong way round and the like, in the order of
/// a machine's file. What drivers report is no problem: empty ranges, steps of 0, levels outside their range, volumes
/// without channels. A machine that is built in code need not pass: tests build machines that no file may contain.
std::vector<MachineProblem> checkMachine(const Machine& machine);
}
