/// @file
/// COM's count of initialisations, one for each thread.
#pragma once

#include "platform/coreaudio.h"

namespace sim::comapartment
{
/// S_OK the first time, then S_FALSE; RPC_E_CHANGED_MODE if the thread is in an apartment of the other kind.
HRESULT enter(bool multithreaded);
/// False if the thread is in no apartment.
bool leave();
/// How often this thread has entered without leaving.
unsigned depth();
}
