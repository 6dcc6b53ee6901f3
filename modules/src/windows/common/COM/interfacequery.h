/// Typed requests for the platform's interfaces; included by the library's source files only.
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

/// Queries @p object for the interface I. @p answer receives whatever pointer the platform stored, null or not, even
/// along with a failure code.
///
/// What the library does with a pointer that comes along with a failure code, here and at all calls that store one: an
/// operation that ends, or passes over the item, at the failure ignores the pointer and releases nothing, because the
/// platform promises no reference. An operation that goes on with whatever was stored, or that releases whatever is not
/// null, treats it like any other and owns a reference. Each place of the second kind says so.
template<class I>
HRESULT query(IUnknown& object, I*& answer)
{
    void* place = nullptr;
    const HRESULT result = object.QueryInterface(idOf<I>(), &place);
    answer = static_cast<I*>(place);
    return result;
}

/// As query(), with IMMDevice::Activate: any context, no activation parameters.
template<class I>
HRESULT activate(IMMDevice& device, I*& answer)
{
    void* place = nullptr;
    const HRESULT result = device.Activate(idOf<I>(), CLSCTX_ALL, nullptr, &place);
    answer = static_cast<I*>(place);
    return result;
}

/// As query(), with CoCreateInstance for a new endpoint enumerator. Each caller logs a failure itself.
inline HRESULT createEnumerator(IMMDeviceEnumerator*& enumerator)
{
    void* place = nullptr;
    const HRESULT result =
        CoCreateInstance(CLSID_MMDeviceEnumerator, nullptr, CLSCTX_INPROC_SERVER, IID_IMMDeviceEnumerator, &place);
    enumerator = static_cast<IMMDeviceEnumerator*>(place);
    return result;
}
}
