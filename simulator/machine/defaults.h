/// @file
/// The election of default endpoints.
#pragma once

#include "simulator/machine/machine.h"

#include <functional>

namespace sim
{
/// The default endpoint of the flow of @p named in @p role, where @p named is the first endpoint that is named so; see
/// Machine::defaultEndpoint(). Asks @p jackOf for the kind of the jack behind a candidate's first connector, which is
/// zero if the endpoint has none: who has an index of the machine's parts finds it faster.
const Endpoint* electDefault(const Machine& machine, const Endpoint& named, ERole role,
                             const std::function<GUID(const Endpoint&)>& jackOf);
}
