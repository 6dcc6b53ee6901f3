#pragma once

#include "tools/sonavit/commands/commands.h"

#include <cstddef>
#include <string>

namespace sonavit::program
{
/// Ends an answer for people with a line that says how many things could not be read, if any.
/// @param where says where the reasons are
void showProblems(const Context& context, std::size_t count, const std::string& where);
}
