#include "libSonavit/audiodeviceendpoint.h"

#include "COM/interfacequery.h"
#include "COM/resultcode.h"
#include "libSonavit/audiodeviceendpoint/log.h"
#include "libSonavit/precondition.h"

template<>
void AudioDevice::logInterfaceType<IDeviceTopology>()
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::logInterfaceType()");
    SONAVIT_LOG(endpointlog, LOG_INFO, out.append("IDeviceTopology"));
}

template<>
void AudioDevice::logInterfaceType<IAudioEndpointVolume>()
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::logInterfaceType()");
    SONAVIT_LOG(endpointlog, LOG_INFO, out.append("IAudioEndpointVolume"));
}

/// Activates the interface T on the device. @return nil, with messages (LOG_INFO, LOG_WARNING), if the device has none
template<class T>
typename COMPtr<T>::pointer AudioDevice::activateDeviceInterface()
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::activateDeviceInterface()");
    precondition::check(m_device.get() != nullptr, __FILE__, __LINE__, "m_device.get() != NULL");
    T* object = nullptr;
    const HRESULT result = interfacequery::activate(*m_device, object);
    if (FAILED(result))
    {
        logInterfaceType<T>();
        SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("Interface is not available for this device ").append(m_properties.endpointType).append(" ").append(m_properties.friendlyName).append(" ").append(hexText(result)));
    }
    return object; // even one along with a failure code, as in audioClient() and baseFilter()
}

template COMPtr<IDeviceTopology>::pointer AudioDevice::activateDeviceInterface<IDeviceTopology>();
template COMPtr<IAudioEndpointVolume>::pointer AudioDevice::activateDeviceInterface<IAudioEndpointVolume>();

COMPtr<IAudioClient>::pointer AudioDevice::audioClient()
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::audioClient");
    IAudioClient* client = nullptr;
    if (FAILED(interfacequery::activate(*m_device, client)))
        SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("Device ").append(m_properties.friendlyName).append(" has not audio client interface"));
    return client;
}

// Required behaviour: label and message are those of audioClient(); readers of the log match on them.
ATL::CComPtr<IBaseFilter> AudioDevice::baseFilter()
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::audioClient");
    ATL::CComPtr<IBaseFilter> filter;
    IBaseFilter* object = nullptr;
    if (FAILED(interfacequery::activate(*m_device, object)))
        SONAVIT_LOG(endpointlog, LOG_DEBUG, out.append("Device ").append(m_properties.friendlyName).append(" has not audio client interface"));
    filter.Attach(object);
    return filter;
}

COMPtr<IAudioEndpointVolume>::pointer AudioDevice::volumeController()
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::volumeController()");
    precondition::check(m_device.get() != nullptr, __FILE__, __LINE__, "m_device.get() != NULL");
    return activateDeviceInterface<IAudioEndpointVolume>();
}

/// Creates the controller from the current properties, even on an endpoint without IAudioEndpointVolume: the
/// controller's interface is nil then. An adapter device keeps the controller that it had. Required behaviour: the
/// label is that of volumeControl().
/// @return whether the device has a controller
bool AudioDevice::createVolumeControl()
{
    SONAVIT_TRACE(endpointlog, "AudioDevice::volumeControl");
    if (isEndpoint())
    {
        EndpointVolumeController policy;
        policy.endpointVolume = volumeController();
        policy.ownerName = m_properties.endpointType;
        policy.ownerType = m_properties.subType;
        VolumeControllerInterface* const controller = new VolumeController<EndpointVolumeController>(policy);
        m_volumeControl = qor::sharedOwner(controller);
    }
    else
    {
        SONAVIT_LOG(endpointlog, LOG_FATAL, out.append("Not implemented. Subunits don't always have a volume controller"));
    }
    return m_volumeControl.get() != nullptr;
}
