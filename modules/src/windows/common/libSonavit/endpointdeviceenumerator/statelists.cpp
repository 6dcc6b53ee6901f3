#include "libSonavit/endpointdeviceenumerator.h"

#include "COM/interfacequery.h"
#include "COM/resultcode.h"
#include "libSonavit/endpointdeviceenumerator/endpointlisting.h"
#include "libSonavit/endpointdeviceenumerator/log.h"

EndpointDeviceEnumeratorCommon::EndpointDeviceEnumeratorCommon() : m_notificationObserver(nullptr)
{
    SONAVIT_TRACE(enumeratorlog, "EndpointDeviceEnumeratorCommon::EndpointDeviceEnumeratorCommon()");
}

EndpointDeviceEnumeratorCommon::EndpointDeviceEnumeratorCommon(EDataFlow flow) : m_notificationObserver(nullptr)
{
    SONAVIT_TRACE(enumeratorlog, "EndpointDeviceEnumeratorCommon::EndpointDeviceEnumeratorCommon(EDataFlow flow)");
    enumerate(flow);
}

EndpointDeviceEnumeratorCommon::EndpointDeviceEnumeratorCommon(const EndpointDeviceEnumeratorCommon& other) = default;

EndpointDeviceEnumeratorCommon& EndpointDeviceEnumeratorCommon::operator=(const EndpointDeviceEnumeratorCommon& other) =
    default;

EndpointDeviceEnumeratorCommon::~EndpointDeviceEnumeratorCommon()
{
    SONAVIT_TRACE(enumeratorlog, "EndpointDeviceEnumeratorCommon::~EndpointDeviceEnumeratorCommon()");
    clear(&qor::Array<AudioDevice>::release);
}

bool EndpointDeviceEnumeratorCommon::enumerate(EDataFlow flow)
{
    SONAVIT_TRACE(enumeratorlog, "EndpointDeviceEnumeratorCommon::enumerate(EDataFlow flow)");
    clear();
    IMMDeviceEnumerator* enumerator = nullptr;
    const HRESULT result = interfacequery::createEnumerator(enumerator);
    if (FAILED(result))
    {
        SONAVIT_LOG(enumeratorlog, LOG_ERROR, out.append("CoCreateInstance returns ").append(hexText(result)));
        return false;
    }
    if (enumerator == nullptr)
        return false; // success without an enumerator
    m_enumerator = enumerator;
    refresh(flow);
    return true;
}

void EndpointDeviceEnumeratorCommon::refresh(EDataFlow flow)
{
    clearDeviceList();
    const Collection collections[] = {
        {DEVICE_STATE_ACTIVE, &m_active},
        {DEVICE_STATE_DISABLED, &m_disabled},
        {DEVICE_STATE_NOTPRESENT, &m_notPresent},
        {DEVICE_STATE_UNPLUGGED, &m_unplugged},
    };
    unsigned int index = 0;
    for (const Collection& collection : collections)
        appendDevices(flow, index++, collection);
}

const qor::Array<AudioDevice>& EndpointDeviceEnumeratorCommon::activeDevice() const
{
    return m_active;
}

const qor::Array<AudioDevice>& EndpointDeviceEnumeratorCommon::notPresentDevice() const
{
    return m_notPresent;
}

const qor::Array<AudioDevice>& EndpointDeviceEnumeratorCommon::disabledDevice() const
{
    return m_disabled;
}

const qor::Array<AudioDevice>& EndpointDeviceEnumeratorCommon::unpluggedDevice() const
{
    return m_unplugged;
}

qor::Array<AudioDevice> EndpointDeviceEnumeratorCommon::activeDevice()
{
    return m_active;
}

qor::Array<AudioDevice> EndpointDeviceEnumeratorCommon::notPresentDevice()
{
    return m_notPresent;
}

qor::Array<AudioDevice> EndpointDeviceEnumeratorCommon::disabledDevice()
{
    return m_disabled;
}

qor::Array<AudioDevice> EndpointDeviceEnumeratorCommon::unpluggedDevice()
{
    return m_unplugged;
}

COMPtr<IMMDeviceEnumerator>::pointer EndpointDeviceEnumeratorCommon::enumerator() const
{
    return m_enumerator;
}

void EndpointDeviceEnumeratorCommon::registerNotificationObserver(IMMNotificationClient* observer)
{
    if (observer == nullptr)
        return;
    unregisterNotificationObserver();
    m_notificationObserver = observer;
    m_enumerator->RegisterEndpointNotificationCallback(observer);
}

/// Uses the current enumerator, which may differ from the one that the observer was registered with.
void EndpointDeviceEnumeratorCommon::unregisterNotificationObserver()
{
    if (m_notificationObserver == nullptr)
        return;
    m_enumerator->UnregisterEndpointNotificationCallback(m_notificationObserver);
    m_notificationObserver = nullptr;
}

void EndpointDeviceEnumeratorCommon::clear(Emptying empty)
{
    SONAVIT_TRACE(enumeratorlog, "EndpointDeviceEnumeratorCommon::clear()");
    m_enumerator = nullptr;
    clearDeviceList(empty);
}

void EndpointDeviceEnumeratorCommon::clearDeviceList(Emptying empty)
{
    SONAVIT_LOG(enumeratorlog, LOG_DEBUG, out.append("clearing m_unplugged"));
    (m_unplugged.*empty)();
    SONAVIT_LOG(enumeratorlog, LOG_DEBUG, out.append("crearing m_disabled"));
    (m_disabled.*empty)();
    SONAVIT_LOG(enumeratorlog, LOG_DEBUG, out.append("clearing m_notPresent"));
    (m_notPresent.*empty)();
    SONAVIT_LOG(enumeratorlog, LOG_DEBUG, out.append("clearing m_active"));
    (m_active.*empty)();
}

/// Enumerates the endpoints in the state of @p collection into its list. Required behaviour: the second message shows
/// the size before the list is filled, and has no blank after the index; readers of the log match on it.
void EndpointDeviceEnumeratorCommon::appendDevices(EDataFlow flow, unsigned int index, const Collection& collection)
{
    const COMPtr<IMMDeviceCollection>::pointer endpoints =
        endpointlisting::collectionOf(*m_enumerator, flow, collection.state);
    const UINT count = endpointlisting::countOf(endpoints);
    SONAVIT_LOG(enumeratorlog, LOG_INFO, out.append("Device state index ").append(decimalText(index)).append(" found ").append(decimalText(count)).append(" devices"));
    SONAVIT_LOG(enumeratorlog, LOG_INFO, out.append("Device state index ").append(decimalText(index)).append("currently has ").append(decimalText(collection.devices->size())).append(" devices"));
    endpointlisting::append(endpoints, count, *collection.devices);
}
