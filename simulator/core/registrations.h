/// @file
/// Makes CoCreateInstance hand out a machine's enumerator.
#pragma once

#include "platform/coreaudio.h"

#include <memory>

namespace sim
{
class State;

/// On Windows registers a class factory in the calling thread's apartment; elsewhere does nothing and returns S_OK.
HRESULT registerApartment(const std::shared_ptr<State>& state);

/// Revokes the registrations of @p state in the calling thread's apartment. Those of other apartments fail from now on
/// unless another machine is current.
void revokeRegistrations(const State& state);
}
