#include "libSonavit/audiodeviceendpoint.h"

#include "COM/interfacequery.h"
#include "COM/resultcode.h"
#include "libSonavit/audiodeviceendpoint/log.h"
#include "libSonavit/endpointdeviceenumerator.h"

AudioDevice::AudioDevice() = default;

AudioDevice::AudioDevice(IMMDevice* device)
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::AudioDevice(IMMDevice* device)");
    initialize(device);
}

AudioDevice::AudioDevice(const qor::String& deviceId)
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::AudioDevice(qor::String const& deviceId)");
    initialize(deviceId);
}

AudioDevice::AudioDevice(const AudioDevice& other) = default;
AudioDevice& AudioDevice::operator=(const AudioDevice& other) = default;

/// The topology comes before the properties, so a message about its failure shows the names of an earlier binding or
/// none.
bool AudioDevice::initialize(IMMDevice* device)
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::initialize(IMMDevice* device)");
    m_device = device;
    if (device == nullptr)
        return false;

    LPWSTR id = nullptr;
    m_device->GetId(&id); // an id that did not come reads as the empty text
    m_properties.deviceId = platform::ucs2(id);
    CoTaskMemFree(id);
    printReferenceCount();

    if (!m_topology.isInitialized())
        m_topology = activateDeviceInterface<IDeviceTopology>();
    const bool refreshed = refreshDeviceInformation();
    if (refreshed)
        m_savedProperties = m_properties;
    createVolumeControl();
    return refreshed;
}

bool AudioDevice::initialize(const qor::String& deviceId)
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::initialize(qor::String const& deviceId)");
    const OwnedPointer<libSonavit::AudioDeviceEnumerator>& shared =
        libSonavit::AudioDeviceEnumeratorFactory::enumerator();
    BorrowedPointer<IMMDeviceEnumerator> enumerator;
    if (shared.get() != nullptr)
        enumerator = shared->deviceEnumerator();
    if (enumerator.get() == nullptr)
    {
        SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("Unable to initialize enumerator"));
        return false;
    }
    IMMDevice* device = nullptr;
    const HRESULT result = enumerator->GetDevice(platform::wide(deviceId.getUCS2Buffer()), &device);
    if (FAILED(result))
    {
        SONAVIT_LOG(endpointlog, LOG_ERROR, out.append("IMMDeviceEnumerator::GetDevice returns ").append(hexText(result)));
        return false;
    }
    return initialize(device);
}

unsigned int AudioDevice::refreshDeviceState()
{
    if (m_device.get() == nullptr)
        return m_properties.deviceState;
    DWORD state = m_properties.deviceState;
    const HRESULT result = m_device->GetState(&state);
    m_properties.deviceState = state;
    if (FAILED(result))
        SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("GetState failed ").append(hexText(result)));
    return m_properties.deviceState;
}

bool AudioDevice::isInitialized() const
{
    return m_device.get() != nullptr;
}

bool AudioDevice::isEndpoint() const
{
    IMMEndpoint* endpoint = nullptr;
    const HRESULT result = interfacequery::query(*m_device, endpoint);
    if (endpoint != nullptr)
        endpoint->Release();
    return SUCCEEDED(result);
}

bool AudioDevice::operator==(const AudioDevice& other) const
{
    return qor::String::compareNoCase(m_properties.deviceId, other.m_properties.deviceId) == 0;
}

const AudioDeviceInterface::Properties& AudioDevice::deviceProperty() const
{
    return m_properties;
}

COMPtr<IMMDevice>::pointer AudioDevice::device()
{
    return m_device;
}

/// Each copy restores by its own two formats: also a temporary, or an element that an array's growth leaves behind.
/// Without an open store there is nothing to write to, and no assertion may leave a destructor.
AudioDevice::~AudioDevice() noexcept(false)
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::~AudioDevice()");
    printReferenceCount();
    if (m_savedProperties.format != m_properties.format && m_propertyStore.get() != nullptr)
        setFormat(m_savedProperties.format);
    SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("Assigning m_propertyStore to NULL"));
    m_propertyStore = nullptr;
    SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("Assigning m_device to NULL"));
    m_device = nullptr;
}

void AudioDevice::printReferenceCount()
{
    if (m_propertyStore.get() != nullptr)
        SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("m_propertyStore has reference count "), out + comReferenceCount(m_propertyStore.get()));
    if (m_device.get() != nullptr)
        SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("m_device has reference count "), out + comReferenceCount(m_device.get()));
}
