#include "tools/sonavit/monitorlisteners.h"

#include "tools/sonavit/monitor.h"

#include <mutex>
#include <utility>
#include <vector>

namespace sonavit::program
{
namespace
{
template<class Listener>
Listener& keepUntilProcessEnds(std::unique_ptr<Listener> listener)
{
    static std::mutex mutex;
    static auto* const all = new std::vector<std::unique_ptr<Listener>>;
    const std::lock_guard<std::mutex> lock(mutex);
    all->push_back(std::move(listener));
    return *all->back();
}

class CardListener final : public SoundCardObserver
{
public:
    CardListener(std::weak_ptr<Monitor> monitor, std::size_t card, EDataFlow flow)
        : m_monitor(std::move(monitor)),
          m_card(card),
          m_flow(flow)
    {
    }

    void onDeviceStateChanged() override { pass(); }
    void onDeviceAdded() override { pass(); }
    void onDeviceRemoved() override { pass(); }

private:
    void pass()
    {
        if (const std::shared_ptr<Monitor> monitor = m_monitor.lock())
            monitor->endpointsChanged(m_card, m_flow);
    }

    std::weak_ptr<Monitor> m_monitor;
    std::size_t m_card;
    EDataFlow m_flow;
};

// Platform interfaces have virtual functions and no virtual destructor: this object is never destroyed.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Never destroyed, so its references are not counted.
class SystemListener final : public IMMNotificationClient
{
public:
    explicit SystemListener(std::weak_ptr<Monitor> monitor) : m_monitor(std::move(monitor)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        const bool isKnown = iid == IID_IUnknown || iid == IID_IMMNotificationClient;
        *object = isKnown ? this : nullptr;
        return isKnown ? S_OK : E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR, DWORD) override { return pass(); }
    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override { return pass(); }
    HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR) override { return pass(); }

    HRESULT STDMETHODCALLTYPE OnDefaultDeviceChanged(EDataFlow flow, ERole role, LPCWSTR id) override
    {
        if (const std::shared_ptr<Monitor> monitor = m_monitor.lock())
            monitor->defaultChanged(flow, role, qor::String(platform::ucs2(id)).toUtf8());
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE OnPropertyValueChanged(LPCWSTR, const PROPERTYKEY) override { return S_OK; }

private:
    HRESULT pass()
    {
        if (const std::shared_ptr<Monitor> monitor = m_monitor.lock())
            monitor->systemChanged();
        return S_OK;
    }

    std::weak_ptr<Monitor> m_monitor;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
}

SoundCardObserver& makeCardListener(const std::weak_ptr<Monitor>& monitor, std::size_t card, EDataFlow flow)
{
    return keepUntilProcessEnds(std::make_unique<CardListener>(monitor, card, flow));
}

void VolumeListener::pass(void* listener)
{
    const VolumeListener& self = *static_cast<VolumeListener*>(listener);
    if (const std::shared_ptr<Monitor> monitor = self.monitor.lock())
        monitor->volumeChanged(self.watch);
}

VolumeListener& makeVolumeListener(const std::weak_ptr<Monitor>& monitor, std::size_t watch)
{
    return keepUntilProcessEnds(std::make_unique<VolumeListener>(VolumeListener{monitor, watch}));
}

IMMNotificationClient& makeSystemListener(const std::weak_ptr<Monitor>& monitor)
{
    return keepUntilProcessEnds(std::make_unique<SystemListener>(monitor));
}
}
