/// Where the running program lies.
#pragma once

#include <string>

namespace sim
{
/// The folder of the running program's file (UTF-8); empty where the system does not tell.
std::string programFolder();
}
