/// @file
/// The location of the running program.
#pragma once

#include <string>

namespace sim
{
/// The folder of the running program's file (UTF-8), on Windows of the program or DLL that contains this function;
/// empty if the system does not report it.
std::string programFolder();
}
