#include "client/watching/listeners.h"

#include "client/reading/text.h"

#include <utility>

namespace sonavit::watching
{
DeviceListener::DeviceListener(std::shared_ptr<Inbox> inbox)
    : Listener(IID_IMMNotificationClient),
      m_inbox(std::move(inbox))
{
}

HRESULT STDMETHODCALLTYPE DeviceListener::OnDeviceStateChanged(LPCWSTR deviceId, DWORD newState)
{
    const unsigned absence = newState == DEVICE_STATE_NOTPRESENT ? announcedAbsence : announcedNothing;
    m_inbox->noteEndpoint(deviceId, announcedState | absence);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE DeviceListener::OnDeviceAdded(LPCWSTR deviceId)
{
    m_inbox->noteEndpoint(deviceId, announcedArrival);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE DeviceListener::OnDeviceRemoved(LPCWSTR deviceId)
{
    m_inbox->noteEndpoint(deviceId, announcedRemoval | announcedAbsence);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE DeviceListener::OnDefaultDeviceChanged(EDataFlow flow, ERole, LPCWSTR)
{
    m_inbox->noteDefaults(flow);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE DeviceListener::OnPropertyValueChanged(LPCWSTR deviceId, const PROPERTYKEY)
{
    m_inbox->noteEndpoint(deviceId, announcedProperty);
    return S_OK;
}

VolumeListener::VolumeListener(std::shared_ptr<Inbox> inbox, const EndpointId& endpoint)
    : Listener(IID_IAudioEndpointVolumeCallback),
      m_inbox(std::move(inbox)),
      m_endpoint(reading::wide(endpoint.text()))
{
}

HRESULT STDMETHODCALLTYPE VolumeListener::OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA* data)
{
    m_inbox->noteVolume(m_endpoint.data(), data == nullptr ? nullptr : &data->guidEventContext);
    return S_OK;
}

ControlListener::ControlListener(std::shared_ptr<Inbox> inbox, std::uint32_t watch, const IID& control)
    : Listener(IID_IControlChangeNotify),
      m_inbox(std::move(inbox)),
      m_watch(watch),
      m_control(control)
{
}

HRESULT STDMETHODCALLTYPE ControlListener::OnNotify(DWORD, LPCGUID eventContext)
{
    m_inbox->noteHardware(m_watch, eventContext);
    return S_OK;
}
}
