/// Standard output and the command line as this system has them.
#pragma once

#include <string>
#include <vector>

namespace sonavit
{
/// Makes standard output take UTF-8, unchanged.
void prepareOutput();

bool isOutputTerminal();

/// Whether standard output shows colours: on a terminal that can, unless NO_COLOR is set.
bool hasOutputColours();

/// Columns of the terminal; 0 where there is no terminal and COLUMNS does not say.
unsigned outputWidth();

/// The words behind the program's name, in UTF-8.
std::vector<std::string> commandLineWords(int count, char** words);
}
