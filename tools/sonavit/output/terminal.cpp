#include "tools/sonavit/output/terminal.h"

#include <cstdlib>
#include <string>

namespace sonavit::program
{
namespace
{
std::string variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}
}

bool areColoursWanted()
{
    return variable("NO_COLOR").empty();
}

unsigned statedColumns()
{
    constexpr unsigned long most = 10000;
    const std::string text = variable("COLUMNS");
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos)
        return 0;
    const unsigned long columns = std::strtoul(text.c_str(), nullptr, 10);
    return columns <= most ? static_cast<unsigned>(columns) : 0;
}
}
