#pragma once

#include "tools/sonavit/environment.h"

#include <string>
#include <vector>

namespace sonavit::program
{
/// The whole program: reads the command line, runs the command, and prints the answer or what went wrong. It may be
/// called any number of times, one call at a time, also on threads that have initialised COM.
///
/// During the call it sets the terminate handler: if the language ends the process, the program still prints one
/// sentence and exits with code 1.
/// @param words the command line after the program's name
/// @return the exit code
int run(const std::vector<std::string>& words, const Environment& environment);
}
