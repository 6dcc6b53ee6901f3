/// @file
/// Name, identifier and base of each interface that the simulated machine knows. The operations of those that it
/// implements are in simulator/machine/operations.cpp too: machine files name them.
#pragma once

#include "platform/coreaudio.h"

#include <type_traits>

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
    };

/// Calls @p entry(interface, the interface that it extends) for each interface.
// clang-format off
#define SONAVIT_SIM_INTERFACES(entry)             \
    entry(IUnknown, void)                         \
    entry(IMMDeviceEnumerator, IUnknown)          \
    entry(IMMDeviceCollection, IUnknown)          \
    entry(IMMDevice, IUnknown)                    \
    entry(IMMEndpoint, IUnknown)                  \
    entry(IMMNotificationClient, IUnknown)        \
    entry(IPropertyStore, IUnknown)               \
    entry(IDeviceTopology, IUnknown)              \
    entry(IPart, IUnknown)                        \
    entry(IConnector, IUnknown)                   \
    entry(ISubunit, IUnknown)                     \
    entry(IPartsList, IUnknown)                   \
    entry(IControlInterface, IUnknown)            \
    entry(IControlChangeNotify, IUnknown)         \
    entry(IPerChannelDbLevel, IUnknown)           \
    entry(IAudioVolumeLevel, IPerChannelDbLevel)  \
    entry(IAudioMute, IUnknown)                   \
    entry(IAudioInputSelector, IUnknown)          \
    entry(IKsJackDescription, IUnknown)           \
    entry(IKsJackDescription2, IUnknown)          \
    entry(IAudioEndpointVolume, IUnknown)         \
    entry(IAudioEndpointVolumeCallback, IUnknown) \
    entry(IAudioClient, IUnknown)                 \
    entry(IAudioClient2, IAudioClient)            \
    entry(IAudioClient3, IAudioClient2)           \
    entry(IAudioRenderClient, IUnknown)           \
    entry(IAudioCaptureClient, IUnknown)          \
    entry(IAudioClock, IUnknown)                  \
    entry(IAudioClock2, IUnknown)                 \
    entry(ISimpleAudioVolume, IUnknown)           \
    entry(IAudioStreamVolume, IUnknown)           \
    entry(IChannelAudioVolume, IUnknown)          \
    entry(IAudioMeterInformation, IUnknown)       \
    entry(IPersist, IUnknown)                     \
    entry(IMediaFilter, IPersist)                 \
    entry(IBaseFilter, IMediaFilter)
// clang-format on

SONAVIT_SIM_INTERFACES(SONAVIT_SIM_INTERFACE)

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

/// The name of the interface with that identifier; null for an interface that the machine does not know.
inline const char* interfaceName(REFIID iid)
{
#define SONAVIT_SIM_NAME(I, B)                       \
    if (IsEqualGUID(iid, InterfaceTraits<I>::iid())) \
        return InterfaceTraits<I>::name;
    SONAVIT_SIM_INTERFACES(SONAVIT_SIM_NAME)
#undef SONAVIT_SIM_NAME
    return nullptr;
}
}
