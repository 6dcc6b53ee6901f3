/// @file
/// What all cards share: an enumerator, and the clients that are registered with it.
#pragma once

#include "device.h"

#include <string>
#include <vector>

namespace direct
{
/// Keeps each registered client alive and unregisters it at its own end. COM must be initialised on the thread that
/// makes and ends it; it initialises COM once more for as long as it has an enumerator.
class Client
{
public:
    Client() = default;
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client();

    /// The device with that id; an empty one if there is none.
    Device open(const std::u16string& id);

    void registerClient(ComPtr<IMMNotificationClient> client);

private:
    IMMDeviceEnumerator* enumerator();

    bool m_hasEnteredCom = false;
    ComPtr<IMMDeviceEnumerator> m_enumerator;
    std::vector<ComPtr<IMMNotificationClient>> m_clients;
};

/// The endpoints of one flow, by state.
struct StateLists
{
    std::vector<Device> active;
    std::vector<Device> disabled;
    std::vector<Device> notPresent;
    std::vector<Device> unplugged;
};

/// Empty lists if there is no enumerator.
StateLists readStateLists(EDataFlow flow);
}
