#pragma once

#include "tools/sonavit/environment.h"

#include <string>
#include <vector>

namespace sonavit
{
/// The whole program: reads the command line, does what it asks for, and says what went wrong. May be called again and
/// again, also on threads that have COM already. @param words the command line behind the program's name
/// @return the exit code
int run(const std::vector<std::string>& words, const Environment& environment);
}
