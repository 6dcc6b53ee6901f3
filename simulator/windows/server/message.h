/// @file
/// Messages to the user of a program behind the machine.
#pragma once

#include <string>

namespace sim::server
{
/// Writes a line to the program's standard error, if it has one, and to a debugger.
/// @param text UTF-8; the name of this library is put in front
void writeMessage(const std::string& text);
}
