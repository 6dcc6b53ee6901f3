/// @file
/// The election of default endpoints.
#pragma once

#include "simulator/machine/machine.h"

#include <functional>

namespace sim
{
/// As Machine::defaultEndpoint(). Asks @p jackOf for the kind of the jack behind a candidate's first connector, which
/// is zero if the endpoint has none; a machine with an index answers faster than one without.
const Endpoint* electDefault(const Machine& machine, EDataFlow flow, ERole role,
                             const std::function<GUID(const Endpoint&)>& jackOf);
}
