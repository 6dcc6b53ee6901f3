/// @file
/// The SDK's devicetopology.h under the SDK's names.
///
/// mingw-w64 10 writes ISubUnit and GetTopologyObjects where the SDK has ISubunit and GetTopologyObject. Slots and
/// identifiers are the same, so it is enough to rename the words while the header is read. With another SDK the words
/// do not occur and nothing is renamed.
#pragma once

#if defined(__ISubUnit_INTERFACE_DEFINED__)
#error "Include platform/coreaudio.h before <devicetopology.h>, or instead of it."
#endif

#if defined(__MINGW32__)
#define ISubUnit ISubunit
#define ISubUnitVtbl ISubunitVtbl
#define IID_ISubUnit IID_ISubunit
#define GetTopologyObjects GetTopologyObject
#endif

#include <devicetopology.h>

#if defined(__MINGW32__)
#undef ISubUnit
#undef ISubUnitVtbl
#undef IID_ISubUnit
#undef GetTopologyObjects
#endif
