#include "libSonavit/audiodeviceendpoint.h"

#include "COM/interfacequery.h"
#include "COM/resultcode.h"
#include "COM/tasktext.h"
#include "libSonavit/audiodeviceendpoint/inpassing.h"
#include "libSonavit/audiodeviceendpoint/log.h"
#include "libSonavit/audiodevicetopology/topologyview.h"
#include "libSonavit/endpointdeviceenumerator.h"

#include <exception>

AudioDevice::AudioDevice() = default;

/// Adopts the reference before all else: the construction of the other members allocates and may throw.
AudioDevice::AudioDevice(IMMDevice* device) : m_device(device)
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::AudioDevice(IMMDevice* device)");
    initializeAdopted();
}

AudioDevice::AudioDevice(const qor::String& deviceId)
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::AudioDevice(qor::String const& deviceId)");
    initialize(deviceId);
}

AudioDevice::AudioDevice(const qor::String& deviceId, InPassing& passing)
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::AudioDevice(qor::String const& deviceId)");
    initialize(deviceId, &passing);
}

AudioDevice::AudioDevice(const LastUse& source)
    : AudioDeviceInterface(source.device()),
      m_device(source.device().m_device),
      m_propertyStore(source.device().m_propertyStore),
      m_volumeControl(source.device().m_volumeControl),
      m_topology(LastUse::takesTopologies(&source.device(), 1)
                     ? libSonavit::TopologyView::take(source.device().m_topology)
                     : AudioDeviceTopology(source.device().m_topology)),
      m_properties(source.device().m_properties),
      m_savedProperties(source.device().m_savedProperties)
{
}

bool AudioDevice::LastUse::takesTopologies(const AudioDevice* devices, unsigned int count) noexcept
{
    for (unsigned int i = 0; i < count; ++i)
    {
        if (devices[i].m_savedProperties.format != devices[i].m_properties.format)
            return false;
    }
    return true;
}

AudioDevice::AudioDevice(const AudioDevice& other) = default;
AudioDevice& AudioDevice::operator=(const AudioDevice& other) = default;

bool AudioDevice::initialize(IMMDevice* device)
{
    return initialize(device, nullptr);
}

bool AudioDevice::initialize(const qor::String& deviceId)
{
    return initialize(deviceId, nullptr);
}

bool AudioDevice::initialize(IMMDevice* device, InPassing* passing)
{
    COMPtr<IMMDevice>::pointer owned(device); // before the trace record, which allocates and may throw
    SONAVIT_TRACE(endpointlog, "AudioDevice::initialize(IMMDevice* device)");
    m_device = owned;
    owned = nullptr; // so that it does not raise the reference count that readDevice() logs
    return readDevice(passing);
}

bool AudioDevice::initialize(const qor::String& deviceId, InPassing* passing)
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
    return initialize(device, passing);
}

/// As initialize(IMMDevice*), for the device that the constructor has adopted.
void AudioDevice::initializeAdopted()
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::initialize(IMMDevice* device)");
    readDevice(nullptr);
}

/// Reads everything from the device that m_device holds.
///
/// The topology precedes the properties, so a message about a failing activation shows the names that an earlier
/// initialize() read, or empty ones.
/// @return as initialize(IMMDevice*)
bool AudioDevice::readDevice(InPassing* passing)
{
    if (m_device.get() == nullptr)
        return false;
    {
        TaskText id;
        m_device->GetId(id.put()); // the HRESULT is ignored on purpose: a null pointer reads as the empty string
        m_properties.deviceId = platform::ucs2(id.get());
    }
    printReferenceCount();

    if (passing != nullptr)
        passing->topology().read(activateDeviceInterface<IDeviceTopology>());
    else if (!m_topology.isInitialized())
        m_topology = activateDeviceInterface<IDeviceTopology>();
    const bool refreshed = passing != nullptr ? readInformation(passing) : refreshDeviceInformation();
    if (refreshed)
        m_savedProperties = m_properties;
    createVolumeControl();
    return refreshed;
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
        endpoint->Release(); // even one along with a failure code
    return SUCCEEDED(result);
}

bool AudioDevice::operator==(const AudioDevice& other) const
{
    return qor::String::equalNoCase(m_properties.deviceId, other.m_properties.deviceId);
}

const AudioDeviceInterface::Properties& AudioDevice::deviceProperty() const
{
    return m_properties;
}

COMPtr<IMMDevice>::pointer AudioDevice::device()
{
    return m_device;
}

COMPtr<IDeviceTopology>::pointer AudioDevice::deviceTopology() const
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::deviceTopology()");
    return m_topology.topology();
}

void AudioDevice::deviceTopology(AudioDeviceTopology& topo) const
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::deviceTopology(AudioDeviceTopology& topo)");
    topo = m_topology;
}

unsigned int AudioDevice::connector(qor::Array<AudioComponent<IConnector>>& connectorList)
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::connector(qor::Array<AudioConnector>& connectorList)");
    qor::Array<AudioComponent<IConnector>> connectors = m_topology.connector();
    connectorList.swap(connectors);
    return connectorList.size();
}

SharedPointer<VolumeControllerInterface> AudioDevice::volumeControl()
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::volumeControl");
    return m_volumeControl;
}

/// Each copy compares its own two formats, even a temporary or an element that an array destroys as it grows. Without
/// an open store there is nothing to write to, and setFormat()'s assertion must not leave a destructor.
AudioDevice::~AudioDevice() noexcept(false)
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::~AudioDevice()");
    printReferenceCount();
    if (m_savedProperties.format != m_properties.format && m_propertyStore.get() != nullptr)
        restoreFormat();
    SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("Assigning m_propertyStore to NULL"));
    m_propertyStore = nullptr;
    SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("Assigning m_device to NULL"));
    m_device = nullptr;
}

/// To read the properties again, as setFormat() does, needs memory. While an exception is on its way another one would
/// end the process, so the format is only written then.
void AudioDevice::restoreFormat()
{
    if (std::uncaught_exceptions() == 0)
        setFormat(m_savedProperties.format);
    else
        writeFormat(m_savedProperties.format);
}

void AudioDevice::printReferenceCount()
{
    if (m_propertyStore.get() != nullptr)
        SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("m_propertyStore has reference count "), out + comReferenceCount(m_propertyStore.get()));
    if (m_device.get() != nullptr)
        SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("m_device has reference count "), out + comReferenceCount(m_device.get()));
}
