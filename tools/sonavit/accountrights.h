/// What the account that runs the program may not do.
#pragma once

#include "tools/sonavit/commands.h"
#include "tools/sonavit/endpoint.h"

#include <vector>

namespace sonavit
{
/// Whether the system denies this account to change the properties of @p device; asks the system.
bool isChangeDenied(AudioDevice& device);

/// Says once, on standard error, of how many endpoints the system denies this account to read the properties; nothing
/// if it may read all of them.
void reportUnreadable(const Context& context, const std::vector<Card>& cards);
void reportUnreadable(const Context& context, const Endpoint& endpoint);
}
