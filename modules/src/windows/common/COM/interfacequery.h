/// Questions for the platform's interfaces by their types; included by the library's source files only.
#pragma once

#include "platform/coreaudio.h"

namespace interfacequery
{
/// The identifier of an interface.
template<class I>
const IID& idOf();

#define SONAVIT_INTERFACE_ID(I) \
    template<>                  \
    inline const IID& idOf<I>() \
    {                           \
        return IID_##I;         \
    }
SONAVIT_INTERFACE_ID(IAudioClient)
SONAVIT_INTERFACE_ID(IAudioEndpointVolume)
SONAVIT_INTERFACE_ID(IBaseFilter)
SONAVIT_INTERFACE_ID(IConnector)
SONAVIT_INTERFACE_ID(IDeviceTopology)
SONAVIT_INTERFACE_ID(IMMEndpoint)
SONAVIT_INTERFACE_ID(IPart)
SONAVIT_INTERFACE_ID(ISubunit)
#undef SONAVIT_INTERFACE_ID

/// Asks @p object for the interface of @p answer, which takes what the platform left in its place, null or not, also
/// beside a failure. A reference that came with it is the caller's.
template<class I>
HRESULT query(IUnknown& object, I*& answer)
{
    void* place = nullptr;
    const HRESULT result = object.QueryInterface(idOf<I>(), &place);
    answer = static_cast<I*>(place);
    return result;
}

/// As query(), for what @p device activates in any context, without parameters.
template<class I>
HRESULT activate(IMMDevice& device, I*& answer)
{
    void* place = nullptr;
    const HRESULT result = device.Activate(idOf<I>(), CLSCTX_ALL, nullptr, &place);
    answer = static_cast<I*>(place);
    return result;
}

/// As query(), for a new enumerator of the system's endpoints. Each caller logs a failure itself.
inline HRESULT createEnumerator(IMMDeviceEnumerator*& enumerator)
{
    void* place = nullptr;
    const HRESULT result =
        CoCreateInstance(CLSID_MMDeviceEnumerator, nullptr, CLSCTX_INPROC_SERVER, IID_IMMDeviceEnumerator, &place);
    enumerator = static_cast<IMMDeviceEnumerator*>(place);
    return result;
}
}
