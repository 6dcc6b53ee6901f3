#include "plainclient.h"

#include "OSWindows/configmanager.h"
#include "plainlisteners.h"
#include "plaintext.h"
#include "qor/string.h"

#include <algorithm>
#include <utility>

namespace plain
{
Client::Client() = default;

Client::~Client()
{
    for (Source& source : m_sources)
    {
        if (source.listener.get() != nullptr)
            source.volume->UnregisterControlChangeNotify(source.listener.get());
    }
    if (m_listener.get() != nullptr)
        m_enumerator->UnregisterEndpointNotificationCallback(m_listener.get());
}

void Client::read()
{
    HRESULT result = CoCreateInstance(CLSID_MMDeviceEnumerator, nullptr, CLSCTX_INPROC_SERVER, IID_IMMDeviceEnumerator,
                                      m_enumerator.putVoid());
    if (FAILED(result))
    {
        m_problems.push_back({"CoCreateInstance", "", result});
        return;
    }
    *m_listener.put() = new DeviceListener;
    result = m_enumerator->RegisterEndpointNotificationCallback(m_listener.get());
    if (FAILED(result))
    {
        m_problems.push_back({"IMMDeviceEnumerator::RegisterEndpointNotificationCallback", "", result});
        m_listener = Com<DeviceListener>();
    }
    list(eRender);
    list(eCapture);
    for (std::size_t index = 0; index < m_endpoints.size(); ++index)
        readEndpoint(m_endpoints[index], m_sources[index]);
    readDefaults();
    readWaveIds(eRender);
    readWaveIds(eCapture);
    group();
}

void Client::list(EDataFlow flow)
{
    Com<IMMDeviceCollection> collection;
    HRESULT result = m_enumerator->EnumAudioEndpoints(flow, DEVICE_STATEMASK_ALL, collection.put());
    if (FAILED(result))
    {
        m_problems.push_back({"IMMDeviceEnumerator::EnumAudioEndpoints", "", result});
        return;
    }
    UINT count = 0;
    result = collection->GetCount(&count);
    if (FAILED(result))
        m_problems.push_back({"IMMDeviceCollection::GetCount", "", result});
    m_endpoints.reserve(m_endpoints.size() + count);
    m_sources.reserve(m_sources.size() + count);
    for (UINT index = 0; index < count; ++index)
    {
        Source source;
        result = collection->Item(index, source.device.put());
        if (FAILED(result))
        {
            m_problems.push_back({"IMMDeviceCollection::Item", "", result});
            continue;
        }
        TaskString id;
        result = source.device->GetId(id.put());
        if (FAILED(result))
        {
            m_problems.push_back({"IMMDevice::GetId", "", result});
            continue;
        }
        Endpoint endpoint;
        endpoint.id = utf8(id.get());
        endpoint.flow = flow;
        m_places.emplace(lowerCase(endpoint.id), m_endpoints.size());
        m_endpoints.push_back(std::move(endpoint));
        m_sources.push_back(std::move(source));
    }
}

void Client::readDefaults()
{
    const auto read = [this](EDataFlow flow, ERole role)
    {
        Com<IMMDevice> device;
        HRESULT result = m_enumerator->GetDefaultAudioEndpoint(flow, role, device.put());
        if (FAILED(result))
        {
            if (result != E_NOTFOUND)
                m_problems.push_back({"IMMDeviceEnumerator::GetDefaultAudioEndpoint", "", result});
            return;
        }
        TaskString id;
        result = device->GetId(id.put());
        if (FAILED(result))
        {
            m_problems.push_back({"IMMDevice::GetId", "", result});
            return;
        }
        m_defaults[flow][role] = utf8(id.get());
        if (Endpoint* const endpoint = find(m_defaults[flow][role], flow))
            endpoint->roles |= 1u << role;
    };
    for (const EDataFlow flow : {eRender, eCapture})
    {
        for (const ERole role : {eConsole, eMultimedia, eCommunications})
            read(flow, role);
    }
}

void Client::readWaveIds(EDataFlow flow)
{
    const UINT count = flow == eRender ? waveOutGetNumDevs() : waveInGetNumDevs();
    for (UINT number = 0; number < count; ++number)
    {
        const auto send = [&](UINT message, void* place, DWORD_PTR size)
        {
            const auto handle = static_cast<DWORD_PTR>(number);
            const auto first = reinterpret_cast<DWORD_PTR>(place);
            const MMRESULT result = flow == eRender
                                        ? waveOutMessage(reinterpret_cast<HWAVEOUT>(handle), message, first, size)
                                        : waveInMessage(reinterpret_cast<HWAVEIN>(handle), message, first, size);
            if (result != MMSYSERR_NOERROR)
                m_problems.push_back(
                    {flow == eRender ? "waveOutMessage" : "waveInMessage", "", static_cast<HRESULT>(result)});
            return result == MMSYSERR_NOERROR;
        };
        DWORD_PTR size = 0;
        if (!send(DRV_QUERYFUNCTIONINSTANCEIDSIZE, &size, 0))
            continue;
        std::vector<WCHAR> text(size / sizeof(WCHAR) + 1);
        if (!send(DRV_QUERYFUNCTIONINSTANCEID, text.data(), size))
            continue;
        Endpoint* const endpoint = find(utf8(text.data()), flow);
        if (endpoint != nullptr && !endpoint->waveId)
            endpoint->waveId = number;
    }
}

Endpoint* Client::find(const std::string& id, EDataFlow flow)
{
    const auto place = m_places.find(lowerCase(id));
    if (place == m_places.end() || m_endpoints[place->second].flow != flow)
        return nullptr;
    return &m_endpoints[place->second];
}
}
