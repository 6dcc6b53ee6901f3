/// @file
/// The callback objects of the client without the client layer.
#pragma once

#include "platform/coreaudio.h"

#include <atomic>
#include <string>
#include <utility>

namespace plain
{
template<class Interface>
class Listener : public Interface
{
public:
    explicit Listener(const IID& iid) : m_iid(iid) {}
    virtual ~Listener() = default;
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        if (object == nullptr)
            return E_POINTER;
        *object = nullptr;
        if (!(iid == IID_IUnknown) && !(iid == m_iid))
            return E_NOINTERFACE;
        *object = static_cast<Interface*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG left = --m_references;
        if (left == 0)
            delete this;
        return left;
    }

private:
    const IID& m_iid;
    std::atomic<ULONG> m_references{1};
};

class DeviceListener final : public Listener<IMMNotificationClient>
{
public:
    DeviceListener() : Listener(IID_IMMNotificationClient) {}

    HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR, DWORD) override { return count(); }
    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override { return count(); }
    HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR) override { return count(); }
    HRESULT STDMETHODCALLTYPE OnDefaultDeviceChanged(EDataFlow, ERole, LPCWSTR) override { return count(); }
    HRESULT STDMETHODCALLTYPE OnPropertyValueChanged(LPCWSTR, const PROPERTYKEY) override { return count(); }

private:
    HRESULT count()
    {
        ++m_events;
        return S_OK;
    }

    std::atomic<unsigned> m_events{0};
};

/// The notification does not name the endpoint, so each has a listener of its own.
class VolumeListener final : public Listener<IAudioEndpointVolumeCallback>
{
public:
    explicit VolumeListener(std::string endpoint)
        : Listener(IID_IAudioEndpointVolumeCallback),
          m_endpoint(std::move(endpoint))
    {
    }

    HRESULT STDMETHODCALLTYPE OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA*) override
    {
        ++m_events;
        return S_OK;
    }

private:
    std::string m_endpoint;
    std::atomic<unsigned> m_events{0};
};
}
