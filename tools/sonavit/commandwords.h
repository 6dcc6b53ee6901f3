/// The command line as this system passes it.
#pragma once

#include <string>
#include <vector>

namespace sonavit::program
{
/// The words after the program's name, in UTF-8. @param count of @p words, both as main() receives them
std::vector<std::string> commandLineWords(int count, char** words);
}
