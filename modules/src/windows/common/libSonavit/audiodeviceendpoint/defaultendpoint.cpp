#include "libSonavit/audiodeviceendpoint.h"

#include "COM/identifiers.h"
#include "COM/interfacequery.h"
#include "COM/resultcode.h"
#include "libSonavit/audiodeviceendpoint/log.h"

#include <utility>

namespace
{
/// Releases @p object and sets it to null. @return whether there was one
template<class I>
bool release(I*& object)
{
    if (object == nullptr)
        return false;
    std::exchange(object, nullptr)->Release();
    return true;
}

/// One search for the default endpoint of a device's flow, with the interfaces that it holds meanwhile. They are raw
/// pointers on purpose: each release has its place and its record, even that of a pointer that came along with a
/// failure code. Each step logs with a statement of its own, because a record shows the line of its statement.
class DefaultEndpointSearch
{
public:
    explicit DefaultEndpointSearch(IMMDevice* device) : m_device(device) {}
    DefaultEndpointSearch(const DefaultEndpointSearch&) = delete;
    DefaultEndpointSearch& operator=(const DefaultEndpointSearch&) = delete;

    /// Releases, without a record, what an exception has left; releaseAll() leaves nothing. A Release that throws as
    /// well ends the process, as two exceptions cannot be on their way.
    ~DefaultEndpointSearch()
    {
        release(m_enumerator);
        release(m_endpoint);
        release(m_defaultDevice);
    }

    /// The caller calls releaseAll() afterwards, even after a failure.
    /// @return whether @p id holds the default endpoint's id; a failing step is logged
    bool findId(LPWSTR& id) { return createEnumerator() && queryEndpoint() && findDefaultDevice() && readId(id); }

    /// In this order, each with its own record.
    void releaseAll()
    {
        if (release(m_enumerator))
            SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("enumerator RELEASED"));
        if (release(m_endpoint))
            SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("endpoint RELEASED"));
        if (release(m_defaultDevice))
            SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("pDefaultDevice RELEASED"));
    }

private:
    /// Its own enumerator on purpose, not the shared one.
    bool createEnumerator()
    {
        const HRESULT result = interfacequery::createEnumerator(m_enumerator);
        if (SUCCEEDED(result) && m_enumerator != nullptr)
            return true;
        SONAVIT_LOG(endpointlog, LOG_ERROR, out.append("CoCreateInstance returns ").append(hexText(result)));
        return false;
    }

    bool queryEndpoint()
    {
        const HRESULT result = interfacequery::query(*m_device, m_endpoint);
        if (SUCCEEDED(result) && m_endpoint != nullptr)
            return true;
        SONAVIT_LOG(endpointlog, LOG_ERROR, out.append("QueryInterface returns ").append(hexText(result)));
        return false;
    }

    bool findDefaultDevice()
    {
        EDataFlow flow = eAll;
        HRESULT result = m_endpoint->GetDataFlow(&flow);
        if (FAILED(result))
        {
            SONAVIT_LOG(endpointlog, LOG_ERROR, out.append("GetDataFlow returns ").append(hexText(result)));
            return false;
        }
        result = m_enumerator->GetDefaultAudioEndpoint(flow, eConsole, &m_defaultDevice);
        if (SUCCEEDED(result) && m_defaultDevice != nullptr)
            return true;
        SONAVIT_LOG(endpointlog, LOG_ERROR, out.append("GetDefaultAudioEndpoint returns ").append(hexText(result)));
        return false;
    }

    bool readId(LPWSTR& id)
    {
        const HRESULT result = m_defaultDevice->GetId(&id);
        if (SUCCEEDED(result))
            return true;
        SONAVIT_LOG(endpointlog, LOG_ERROR, out.append("GetId returns ").append(hexText(result)));
        return false;
    }

    IMMDevice* m_device;
    IMMDeviceEnumerator* m_enumerator = nullptr;
    IMMEndpoint* m_endpoint = nullptr;
    IMMDevice* m_defaultDevice = nullptr;
};
}

bool AudioDevice::dataFlow(EDataFlow& flow) const
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::dataFlow");
    if (m_device.get() == nullptr)
        return false;
    IMMEndpoint* endpoint = nullptr;
    if (FAILED(interfacequery::query(*m_device, endpoint)) || endpoint == nullptr)
        return false;
    endpoint->GetDataFlow(&flow);
    endpoint->Release();
    return true;
}

bool AudioDevice::isDefaultEndpoint() const
{
    DefaultEndpointSearch search(m_device.get());
    LPWSTR text = nullptr; // required behaviour: never freed, each answer leaves one string allocated
    const bool answered = search.findId(text);
    search.releaseAll();
    if (!answered)
        return false;
    const qor::String defaultId(platform::ucs2(text));
    SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("Are these Equal: ").append(m_properties.deviceId).append(" ?= ").append(defaultId));
    return m_properties.deviceId == defaultId;
}
