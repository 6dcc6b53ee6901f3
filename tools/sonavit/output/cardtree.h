#pragma once

#include "sonavit/card.h"
#include "tools/sonavit/environment.h"
#include "tools/sonavit/output/shortids.h"

#include <map>
#include <string>
#include <vector>

namespace sonavit::program
{
/// Prints @p cards as a tree of lines: a header, for each card its name and its endpoints, and a line that counts them
/// and explains the marks. There must be a card.
/// @param ids of the endpoints of all cards of the machine, so that one that is shown names no endpoint that is not
void showCardTree(const Environment& environment, const std::vector<Card>& cards,
                  const std::map<std::string, ShortId>& ids);
}
