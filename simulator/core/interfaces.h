/// @file
/// Name and identifier of each interface that the simulated machine knows, at compile time.
#pragma once

#include <type_traits>

#include "platform/coreaudio.h"

namespace sim
{
/// `name` and `iid()` of the interface I; `Base` is the interface that I extends.
template<class I>
struct InterfaceTraits;

#if defined(_WIN32)
#define SONAVIT_SIM_IID(I) __uuidof(I)
#else
#define SONAVIT_SIM_IID(I) IID_##I
#endif

#define SONAVIT_SIM_INTERFACE(I, B)                      \
    template<>                                           \
    struct InterfaceTraits<I>                            \
    {                                                    \
        using Base = B;                                  \
        static constexpr const char* name = #I;          \
        static const IID& iid()                          \
        {                                                \
            static const IID value = SONAVIT_SIM_IID(I); \
            return value;                                \
        }                                                \
    }

SONAVIT_SIM_INTERFACE(IUnknown, void);
SONAVIT_SIM_INTERFACE(IMMDeviceEnumerator, IUnknown);
SONAVIT_SIM_INTERFACE(IMMDeviceCollection, IUnknown);
SONAVIT_SIM_INTERFACE(IMMDevice, IUnknown);
SONAVIT_SIM_INTERFACE(IMMEndpoint, IUnknown);
SONAVIT_SIM_INTERFACE(IMMNotificationClient, IUnknown);
SONAVIT_SIM_INTERFACE(IPropertyStore, IUnknown);
SONAVIT_SIM_INTERFACE(IDeviceTopology, IUnknown);
SONAVIT_SIM_INTERFACE(IPart, IUnknown);
SONAVIT_SIM_INTERFACE(IConnector, IUnknown);
SONAVIT_SIM_INTERFACE(ISubunit, IUnknown);
SONAVIT_SIM_INTERFACE(IPartsList, IUnknown);
SONAVIT_SIM_INTERFACE(IControlInterface, IUnknown);
SONAVIT_SIM_INTERFACE(IControlChangeNotify, IUnknown);
SONAVIT_SIM_INTERFACE(IPerChannelDbLevel, IUnknown);
SONAVIT_SIM_INTERFACE(IAudioVolumeLevel, IPerChannelDbLevel);
SONAVIT_SIM_INTERFACE(IAudioMute, IUnknown);
SONAVIT_SIM_INTERFACE(IAudioInputSelector, IUnknown);
SONAVIT_SIM_INTERFACE(IAudioEndpointVolume, IUnknown);
SONAVIT_SIM_INTERFACE(IAudioEndpointVolumeCallback, IUnknown);
SONAVIT_SIM_INTERFACE(IAudioClient, IUnknown);
SONAVIT_SIM_INTERFACE(IPersist, IUnknown);
SONAVIT_SIM_INTERFACE(IMediaFilter, IPersist);
SONAVIT_SIM_INTERFACE(IBaseFilter, IMediaFilter);

/// Whether @p iid is I or one of the interfaces that I extends, IUnknown left out.
template<class I>
bool extends(REFIID iid)
{
    if (IsEqualGUID(iid, InterfaceTraits<I>::iid()))
        return true;
    if constexpr (std::is_same_v<typename InterfaceTraits<I>::Base, IUnknown>)
        return false;
    else
        return extends<typename InterfaceTraits<I>::Base>(iid);
}
}
