#include "libSonavit/endpointdeviceenumerator.h"

#include "COM/interfacequery.h"
#include "COM/resultcode.h"
#include "libSonavit/endpointdeviceenumerator/endpointlisting.h"
#include "libSonavit/endpointdeviceenumerator/log.h"

namespace libSonavit
{
EndpointDeviceEnumerator::EndpointDeviceEnumerator()
{
    SONAVIT_TRACE(enumeratorlog, "EndpointDeviceEnumerator::EndpointDeviceEnumerator()");
    initialize();
}

EndpointDeviceEnumerator::EndpointDeviceEnumerator(const EndpointDeviceEnumerator& other) = default;
EndpointDeviceEnumerator& EndpointDeviceEnumerator::operator=(const EndpointDeviceEnumerator& other) = default;

/// Releases the enumerator inside the trace scope.
EndpointDeviceEnumerator::~EndpointDeviceEnumerator()
{
    SONAVIT_TRACE(enumeratorlog, "EndpointDeviceEnumerator::~EndpointDeviceEnumerator()");
    m_enumerator = nullptr;
}

bool EndpointDeviceEnumerator::isInitialized() const
{
    return m_enumerator.get() != nullptr;
}

const COMPtr<IMMDeviceEnumerator>::pointer& EndpointDeviceEnumerator::enumerator() const
{
    return m_enumerator;
}

/// Required behaviour: the message shows the state mask in the place of an index.
unsigned int EndpointDeviceEnumerator::audioDevices(EDataFlow flow, qor::Array<AudioDevice>& devices) const
{
    devices.clear();
    const COMPtr<IMMDeviceCollection>::pointer collection =
        endpointlisting::collectionOf(*m_enumerator, flow, DEVICE_STATEMASK_ALL);
    const UINT count = endpointlisting::countOf(collection);
    SONAVIT_LOG(enumeratorlog, LOG_INFO, out.append("Device state index ").append(decimalText(DEVICE_STATEMASK_ALL)).append(" found ").append(decimalText(count)).append(" devices"));
    endpointlisting::append(collection, count, devices);
    return devices.size();
}

bool EndpointDeviceEnumerator::initialize()
{
    SONAVIT_TRACE(enumeratorlog, "EndpointDeviceEnumerator::initialize()");
    m_enumerator = nullptr;
    IMMDeviceEnumerator* enumerator = nullptr;
    const HRESULT result = interfacequery::createEnumerator(enumerator);
    if (FAILED(result))
    {
        SONAVIT_LOG(enumeratorlog, LOG_ERROR, out.append("CoCreateInstance returns ").append(hexText(result)));
        return false;
    }
    m_enumerator = enumerator;
    return true;
}
}
