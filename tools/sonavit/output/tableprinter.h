#pragma once

#include "tools/sonavit/environment.h"
#include "tools/sonavit/output/table.h"

namespace sonavit::program
{
/// Prints @p table as it fits the terminal, and below it which columns are left out, if any.
void printTable(const Environment& environment, const Table& table);
}
