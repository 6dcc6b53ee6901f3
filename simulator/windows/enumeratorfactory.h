/// @file
/// The class of the machine's enumerator, as COM sees it.
#pragma once

#include "platform/coreaudio.h"

namespace sim
{
/// Creates the enumerator of the machine that is current at the time of the call. Journal and fault plan see it as
/// CoCreateInstance, which is what users call.
/// @return CO_E_NOTINITIALIZED on a thread without COM; REGDB_E_CLASSNOTREG if there is no machine, or the context
/// excludes objects of this process; CLASS_E_NOAGGREGATION if there is an @p outer object; else the result of the
/// object's QueryInterface
HRESULT createCurrentEnumerator(IUnknown* outer, DWORD context, REFIID iid, void** object);

/// Whether COM is initialised on this thread, or by another thread for all threads without an apartment of their own.
bool threadHasCom();

/// The class object that calls createCurrentEnumerator(). One object serves all apartments; it is never destroyed, so
/// its references are not counted.
IClassFactory& enumeratorFactory();

/// Says that a library of this class serves all apartments of the process, as the registry directs COM to it: from now
/// on no apartment is registered.
void serveAllApartments();
/// Whether serveAllApartments() was called.
bool servesAllApartments();
}
