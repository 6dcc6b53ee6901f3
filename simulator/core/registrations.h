/// @file
/// How a machine gets behind CoCreateInstance.
#pragma once

#include <memory>

#include "platform/coreaudio.h"

namespace sim
{
class State;

/// On Windows registers a class factory in the calling thread's apartment; elsewhere S_OK, nothing to do.
HRESULT registerApartment(const std::shared_ptr<State>& state);

/// Ends the registrations of @p state; those of other threads' apartments answer with failure from now on.
void revokeRegistrations(const State& state);
}
