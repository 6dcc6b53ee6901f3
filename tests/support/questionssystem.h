/// @file
/// What the examiner asks the system's functions.
#pragma once

#include "tests/support/questionsnotes.h"

#include <set>
#include <string>

namespace support
{
/// Asks the wave functions for each number and one more.
void askWaveDevices(Notes& notes);
/// Asks for the parents of the device instances, for theirs, and of an instance that there is not.
void askInstances(Notes& notes, const std::set<std::string>& instances);
}
