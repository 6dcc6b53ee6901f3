/// @file
/// The objects that the platform calls. They note what they are told, see Inbox, and do nothing else.
#pragma once

#include "client/watching/inbox.h"
#include "platform/coreaudio.h"
#include "sonavit/ids.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace sonavit::watching
{
/// The reference count of an object that the platform calls. The first reference belongs to the code that makes it.
template<class Interface>
class Listener : public Interface
{
public:
    explicit Listener(const IID& iid) : m_iid(iid) {}
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

    /// Makes this one of those that are kept for good, before another one. Null: there is none.
    void keepBefore(Listener* other) noexcept { m_nextKept = other; }

protected:
    virtual ~Listener() = default;

private:
    const IID& m_iid;
    std::atomic<ULONG> m_references{1};
    Listener* m_nextKept = nullptr;
};

/// Is notified of endpoints and defaults.
class DeviceListener final : public Listener<IMMNotificationClient>
{
public:
    explicit DeviceListener(std::shared_ptr<Inbox> inbox);

    HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR deviceId, DWORD newState) override;
    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR deviceId) override;
    HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR deviceId) override;
    HRESULT STDMETHODCALLTYPE OnDefaultDeviceChanged(EDataFlow flow, ERole role, LPCWSTR defaultDeviceId) override;
    HRESULT STDMETHODCALLTYPE OnPropertyValueChanged(LPCWSTR deviceId, const PROPERTYKEY key) override;

private:
    const std::shared_ptr<Inbox> m_inbox;
};

/// Is notified of the volume of one endpoint.
class VolumeListener final : public Listener<IAudioEndpointVolumeCallback>
{
public:
    VolumeListener(std::shared_ptr<Inbox> inbox, const EndpointId& endpoint);

    HRESULT STDMETHODCALLTYPE OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA* data) override;

private:
    const std::shared_ptr<Inbox> m_inbox;
    std::vector<WCHAR> m_endpoint; ///< its id, with a final zero
};

/// Is notified of one level, mute or selector of a watched card.
class ControlListener final : public Listener<IControlChangeNotify>
{
public:
    ControlListener(std::shared_ptr<Inbox> inbox, std::uint32_t watch, const IID& control);

    const IID& control() const noexcept { return m_control; } ///< the interface of the control

    HRESULT STDMETHODCALLTYPE OnNotify(DWORD senderProcessId, LPCGUID eventContext) override;

private:
    const std::shared_ptr<Inbox> m_inbox;
    const std::uint32_t m_watch;
    const IID m_control;
};
}
