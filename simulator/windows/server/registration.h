/// @file
/// The entry of the enumerator's class in the registry.
#pragma once

#include "platform/coreaudio.h"

namespace sim::server
{
/// Makes this library the server of the class `MMDeviceEnumerator` for all programs of the system, and keeps the name
/// and the threading model of the server that was there.
/// @return S_OK, also if it is the server already; the system's error, such as E_ACCESSDENIED, if the registry refuses
HRESULT registerServer();

/// Makes the server that was there before registerServer() the server again, as it was registered. Without one the
/// class has no server after that. Another server that has been registered without registerServer() stays.
HRESULT unregisterServer();
}
