/// @file
/// Single steps, each in a process of its own under an instrument.
#pragma once

#include <cstddef>
#include <string>

namespace bench
{
/// Performs a step:
///
///     snapshot MACHINE                first snapshot of a System
///     plain MACHINE                   the same without the layer
///     refresh MACHINE SUBSCRIBERS     after the change of one volume
///     volume - NOTED                  notification of a volume, when that many endpoints have been noted and not read
///     property - NOTED                the same of a property
///
/// @return false for a name that is none of these
bool performStep(const std::string& name, const std::string& machine, std::size_t count);
}
