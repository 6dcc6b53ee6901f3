#include "client.h"

#include "text.h"

namespace direct
{
Client::~Client()
{
    for (const ComPtr<IMMNotificationClient>& client : m_clients)
        m_enumerator->UnregisterEndpointNotificationCallback(client.get());
    m_clients.clear();
    m_enumerator.reset();
    if (m_hasEnteredCom)
        CoUninitialize();
}

IMMDeviceEnumerator* Client::enumerator()
{
    if (!m_hasEnteredCom)
        CoInitialize(nullptr);
    m_hasEnteredCom = true;
    if (!m_enumerator)
        m_enumerator = createEnumerator();
    return m_enumerator.get();
}

Device Client::open(const std::u16string& id)
{
    IMMDeviceEnumerator* const devices = enumerator();
    ComPtr<IMMDevice> device;
    if (devices == nullptr || FAILED(devices->GetDevice(wide(id), device.put())))
        return {};
    return readDevice(std::move(device));
}

void Client::registerClient(ComPtr<IMMNotificationClient> client)
{
    IMMDeviceEnumerator* const registry = enumerator();
    if (registry == nullptr)
        return;
    m_clients.push_back(std::move(client));
    registry->RegisterEndpointNotificationCallback(m_clients.back().get());
}

StateLists readStateLists(EDataFlow flow)
{
    StateLists result;
    const ComPtr<IMMDeviceEnumerator> enumerator = createEnumerator();
    if (!enumerator)
        return result;
    result.active = readEndpoints(*enumerator.get(), flow, DEVICE_STATE_ACTIVE);
    result.disabled = readEndpoints(*enumerator.get(), flow, DEVICE_STATE_DISABLED);
    result.notPresent = readEndpoints(*enumerator.get(), flow, DEVICE_STATE_NOTPRESENT);
    result.unplugged = readEndpoints(*enumerator.get(), flow, DEVICE_STATE_UNPLUGGED);
    return result;
}
}
