/// @file
/// Machines that no file may contain, although the simulated machine can play them.
#pragma once

#include "simulator/machine/machine.h"

#include <ostream>
#include <vector>

/// What makes a machine hostile.
struct Hostility
{
    const char* name;
    void (*apply)(sim::Machine& machine);
    bool isRepeated = true; ///< false: no machine file can answer so, and a capture of the replay finds something else
};

inline void PrintTo(const Hostility& hostility, std::ostream* out)
{
    *out << hostility.name;
}

/// All of them; each is applied to "laptop".
const std::vector<Hostility>& hostilities();
