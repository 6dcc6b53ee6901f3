#include "libSonavit/endpointdeviceenumerator.h"

#include "COM/interfacequery.h"
#include "COM/resultcode.h"
#include "libSonavit/endpointdeviceenumerator/endpointlisting.h"
#include "libSonavit/endpointdeviceenumerator/log.h"

#include <new>

namespace libSonavit
{
namespace
{
/// The count that Release returns after an AddRef.
unsigned int releasedCount(IUnknown* object)
{
    object->AddRef();
    return static_cast<unsigned int>(object->Release());
}
}

OwnedPointer<AudioDeviceEnumerator> AudioDeviceEnumeratorFactory::m_enumerator;

OwnedPointer<AudioDeviceEnumerator>& AudioDeviceEnumeratorFactory::enumerator()
{
    if (m_enumerator.get() == nullptr)
        m_enumerator = new (std::nothrow) AudioDeviceEnumerator;
    return m_enumerator;
}

AudioDeviceEnumeratorFactory& AudioDeviceEnumeratorFactory::operator=(const AudioDeviceEnumeratorFactory&)
{
    return *this;
}

AudioDeviceEnumerator::AudioDeviceEnumerator() = default;
AudioDeviceEnumerator::AudioDeviceEnumerator(const AudioDeviceEnumerator& other) = default;
AudioDeviceEnumerator& AudioDeviceEnumerator::operator=(const AudioDeviceEnumerator& other) = default;

/// Unregisters the clients that the platform refused, too; the HRESULTs are ignored on purpose.
AudioDeviceEnumerator::~AudioDeviceEnumerator()
{
    if (m_deviceEnumerator.get() == nullptr)
        return;
    for (unsigned int i = 0; i < m_notificationClients.size(); ++i)
        m_deviceEnumerator->UnregisterEndpointNotificationCallback(m_notificationClients[i].get());
    m_notificationClients.release();
    m_deviceEnumerator = nullptr;
}

BorrowedPointer<IMMDeviceEnumerator> AudioDeviceEnumerator::deviceEnumerator()
{
    SONAVIT_TRACE(enumeratorlog, "AudioDeviceEnumerator::deviceEnumerator()");
    if (m_deviceEnumerator.get() == nullptr)
        createDeviceEnumerator();
    return m_deviceEnumerator.get();
}

bool AudioDeviceEnumerator::addNotificationClient(const COMPtr<IMMNotificationClient>::pointer& client)
{
    if (m_deviceEnumerator.get() == nullptr && deviceEnumerator().get() == nullptr)
    {
        SONAVIT_LOG(enumeratorlog, LOG_WARNING, out.append("Fail to instantiate IMMDeviceNumerator"));
        return false;
    }
    m_notificationClients.append(client); // before the registration: a client that is refused stays in the list
    const HRESULT result = m_deviceEnumerator->RegisterEndpointNotificationCallback(client.get());
    if (FAILED(result))
    {
        SONAVIT_LOG(enumeratorlog, LOG_WARNING, out.append("Fail to register notification callback ").append(decimalText(static_cast<unsigned int>(result))));
        return false;
    }
    return true;
}

unsigned int AudioDeviceEnumerator::audioDevices(EDataFlow flow, qor::Array<AudioDevice>& devices) const
{
    devices.clear();
    const COMPtr<IMMDeviceCollection>::pointer collection =
        endpointlisting::collectionOf(*m_deviceEnumerator, flow, DEVICE_STATEMASK_ALL);
    const UINT count = endpointlisting::countOf(collection);
    SONAVIT_LOG(enumeratorlog, LOG_INFO, out.append("Found ").append(decimalText(count)).append(" devices"));
    endpointlisting::append(collection, count, devices);
    return devices.size();
}

/// After a failure without an enumerator the object is unchanged, so the next call tries again.
void AudioDeviceEnumerator::createDeviceEnumerator()
{
    IMMDeviceEnumerator* created = nullptr;
    const HRESULT result = interfacequery::createEnumerator(created);
    COMPtr<IMMDeviceEnumerator>::pointer enumerator(created); // before the messages, which allocate and may throw
    if (FAILED(result))
        SONAVIT_LOG(enumeratorlog, LOG_ERROR, out.append("CoCreateInstance returns ").append(hexText(result)));
    if (enumerator.get() == nullptr)
        return;
    SONAVIT_LOG(enumeratorlog, LOG_DEBUG, out.append("IMMDeviceEnumerator refcount = "), out + releasedCount(enumerator.get()));
    m_deviceEnumerator = enumerator;
    enumerator = nullptr; // the next message counts the stored reference only
    SONAVIT_LOG(enumeratorlog, LOG_DEBUG, out.append("IMMDeviceEnumerator refcount after copy = "), out + releasedCount(m_deviceEnumerator.get()));
}
}
