/// Clients that record their calls, for the tests of the simulated machine.
#pragma once

#include "simulator/core/utf16.h"

#include <atomic>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace bench
{
/// Base of the clients: counts its references and records its calls.
template<class I>
class Listener : public I
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }

    /// The object lives on the stack of its test, which reads the count.
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    /// The calls, in order.
    std::vector<std::string> heard() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_heard;
    }

    std::thread::id thread() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_thread;
    }

    std::atomic<ULONG> references{1};

protected:
    void hear(const std::string& event)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_heard.push_back(event);
        m_thread = std::this_thread::get_id();
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_heard;
    std::thread::id m_thread;
};

class ClientListener : public Listener<IMMNotificationClient>
{
public:
    HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR id, DWORD state) override
    {
        hear("state " + sim::utf8(id) + " " + std::to_string(state));
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR id) override
    {
        hear("added " + sim::utf8(id));
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR id) override
    {
        hear("removed " + sim::utf8(id));
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE OnDefaultDeviceChanged(EDataFlow flow, ERole role, LPCWSTR id) override
    {
        hear("default " + std::to_string(flow) + " " + std::to_string(role) + " " +
             (id == nullptr ? "null" : sim::utf8(id)));
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE OnPropertyValueChanged(LPCWSTR id, const PROPERTYKEY key) override
    {
        hear("property " + sim::utf8(id) + " " + std::to_string(key.pid));
        return S_OK;
    }
};

class VolumeListener : public Listener<IAudioEndpointVolumeCallback>
{
public:
    HRESULT STDMETHODCALLTYPE OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA* data) override
    {
        std::string event = data->bMuted ? "muted" : "heard";
        const auto* const levels =
            reinterpret_cast<const char*>(data) + offsetof(AUDIO_VOLUME_NOTIFICATION_DATA, afChannelVolumes);
        for (UINT channel = 0; channel < data->nChannels; ++channel)
        {
            float level = 0.0f;
            std::memcpy(&level, levels + channel * sizeof level, sizeof level);
            event += " " + std::to_string(static_cast<int>(level * 1000.0f + 0.5f));
        }
        hear(event + " master " + std::to_string(static_cast<int>(data->fMasterVolume * 1000.0f + 0.5f)) + " context " +
             std::to_string(data->guidEventContext.Data1));
        return S_OK;
    }
};

class ControlListener : public Listener<IControlChangeNotify>
{
public:
    HRESULT STDMETHODCALLTYPE OnNotify(DWORD, LPCGUID context) override
    {
        hear(context == nullptr ? "null" : std::to_string(context->Data1));
        return S_OK;
    }
};
}
