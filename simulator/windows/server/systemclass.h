/// @file
/// The system's own class, for the libraries of the system that cannot use simulated endpoints.
#pragma once

#include "platform/coreaudio.h"

namespace sim::server
{
/// Whether the system's wave functions ask for the class: on the stack of this thread they are the first outside this
/// library and COM. A program that asks in a callback of a multimedia timer is none of them. They pass their endpoints
/// on to parts of the system that know nothing of the machine; Wine's also expect that an endpoint is always the same
/// object, and crash otherwise.
bool isCalledByWaveFunctions();

/// The class object of the system's own server.
/// @return the result of that server's DllGetClassObject; CLASS_E_CLASSNOTAVAILABLE if it cannot be loaded
HRESULT systemClassObject(REFCLSID clsid, REFIID iid, void** object);
}
