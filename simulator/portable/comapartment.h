/// @file
/// COM's count of initialisations, which every thread has for itself.
#pragma once

#include "platform/coreaudio.h"

namespace sim::comapartment
{
/// S_OK the first time, S_FALSE again, RPC_E_CHANGED_MODE when the thread is in an apartment of the other kind.
HRESULT enter(bool multithreaded);
/// False when the thread had not entered.
bool leave();
/// How often this thread has entered and not left.
unsigned depth();
}
