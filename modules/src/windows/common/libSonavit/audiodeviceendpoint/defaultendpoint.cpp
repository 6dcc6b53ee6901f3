#include "libSonavit/audiodeviceendpoint.h"

#include "COM/identifiers.h"
#include "COM/interfacequery.h"
#include "COM/resultcode.h"
#include "libSonavit/audiodeviceendpoint/log.h"

namespace
{
template<class I>
void releaseWithRecord(I*& object, const char* record)
{
    if (object == nullptr)
        return;
    object->Release();
    object = nullptr;
    SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append(record));
}

/// One question for the default endpoint of a device's flow, with what it holds meanwhile.
class DefaultEndpointInquiry
{
public:
    explicit DefaultEndpointInquiry(IMMDevice* device) : m_device(device) {}
    DefaultEndpointInquiry(const DefaultEndpointInquiry&) = delete;
    DefaultEndpointInquiry& operator=(const DefaultEndpointInquiry&) = delete;

    /// Whatever comes of it, releaseAll() is to follow.
    /// @return whether all went well and @p id holds the default endpoint's id; a failing step is logged
    bool ask(LPWSTR& id)
    {
        HRESULT result = interfacequery::createEnumerator(m_enumerator); // one of its own, apart from the shared one
        if (FAILED(result) || m_enumerator == nullptr)
            return failed("CoCreateInstance returns ", result);
        result = interfacequery::query(*m_device, m_endpoint);
        if (FAILED(result) || m_endpoint == nullptr)
            return failed("QueryInterface returns ", result);
        EDataFlow flow = eAll;
        result = m_endpoint->GetDataFlow(&flow);
        if (FAILED(result))
            return failed("GetDataFlow returns ", result);
        result = m_enumerator->GetDefaultAudioEndpoint(flow, eConsole, &m_defaultDevice);
        if (FAILED(result) || m_defaultDevice == nullptr)
            return failed("GetDefaultAudioEndpoint returns ", result);
        result = m_defaultDevice->GetId(&id);
        if (FAILED(result))
            return failed("GetId returns ", result);
        return true;
    }

    /// In this order, each with a record of its own.
    void releaseAll()
    {
        releaseWithRecord(m_enumerator, "enumerator RELEASED");
        releaseWithRecord(m_endpoint, "endpoint RELEASED");
        releaseWithRecord(m_defaultDevice, "pDefaultDevice RELEASED");
    }

private:
    static bool failed(const char* step, HRESULT result)
    {
        SONAVIT_LOG(endpointlog, LOG_ERROR, out.append(step).append(hexText(result)));
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
    DefaultEndpointInquiry inquiry(m_device.get());
    LPWSTR text = nullptr; // never freed, and meant to stay so: each answer leaves one text with the platform
    const bool answered = inquiry.ask(text);
    inquiry.releaseAll();
    if (!answered)
        return false;
    const qor::String defaultId(platform::ucs2(text));
    SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("Are these Equal: ").append(m_properties.deviceId).append(" ?= ").append(defaultId));
    return m_properties.deviceId == defaultId;
}
