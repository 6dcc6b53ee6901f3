/// Questions for the platform's interfaces by their types; included by the library's source files only.
#pragma once

#include "platform/coreaudio.h"

namespace interfacequery
{
/// The identifier of an interface.
template<class I>
const IID& idOf();

template<>
inline const IID& idOf<IAudioClient>()
{
    return IID_IAudioClient;
}

template<>
inline const IID& idOf<IAudioEndpointVolume>()
{
    return IID_IAudioEndpointVolume;
}

template<>
inline const IID& idOf<IBaseFilter>()
{
    return IID_IBaseFilter;
}

template<>
inline const IID& idOf<IConnector>()
{
    return IID_IConnector;
}

template<>
inline const IID& idOf<IDeviceTopology>()
{
    return IID_IDeviceTopology;
}

template<>
inline const IID& idOf<IMMDeviceEnumerator>()
{
    return IID_IMMDeviceEnumerator;
}

template<>
inline const IID& idOf<IMMEndpoint>()
{
    return IID_IMMEndpoint;
}

template<>
inline const IID& idOf<IPart>()
{
    return IID_IPart;
}

template<>
inline const IID& idOf<ISubunit>()
{
    return IID_ISubunit;
}

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
}
