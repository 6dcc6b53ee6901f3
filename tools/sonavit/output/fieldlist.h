#pragma once

#include "tools/sonavit/environment.h"

#include <string>
#include <utility>
#include <vector>

namespace sonavit::program
{
/// Names and values, in the order in which they are shown; printable.
using Fields = std::vector<std::pair<std::string, std::string>>;

/// Prints the fields below a heading, a line each, the values below one another. A value that is wider than the
/// terminal goes on below its beginning; a word of it is never broken, so that an id can be copied.
void showFields(const Environment& environment, const Fields& fields);
}
