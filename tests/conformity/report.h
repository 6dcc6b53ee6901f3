/// @file
/// Prints what the checks found.
#pragma once

#include "tests/conformity/fact.h"

#include <ostream>
#include <string>

namespace conformity
{
/// Checks all @p facts on @p system, which is called @p name, and prints each with what is expected, what was found and
/// who says so; with @p isBrief those alone that differ. @return the number of differences
unsigned report(const std::string& name, const Facts& facts, System& system, bool isBrief, std::ostream& out);
}
