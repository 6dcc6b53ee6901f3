#include "tools/sonavit/output/tableprinter.h"

#include <string>

namespace sonavit::program
{
void printTable(const Environment& environment, const Table& table)
{
    for (const std::string& line : table.lines(environment.width, environment.hasColours))
        environment.out << line << "\n";
    for (const std::string& line : leftOutNote(table.leftOut(environment.width), environment.width))
        environment.out << painted(line, Paint::dim, environment.hasColours) << "\n";
}
}
