#pragma once

#include <string>
#include <vector>

namespace sonavit::program
{
/// Names of the user's account and of the computer, UTF-8; without those that the system does not report.
std::vector<std::string> ownerNames();
}
