#include "updater.h"

#include <algorithm>
#include <atomic>

// The base has no virtual destructor: its objects delete themselves.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

namespace direct
{
class Updater final : public IMMNotificationClient
{
public:
    Updater(Client& client, std::shared_ptr<SharedData> data) : m_client(client), m_data(std::move(data)) {}
    Updater(const Updater&) = delete;
    Updater& operator=(const Updater&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR id, DWORD state) override;
    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR id) override;
    HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR id) override;
    HRESULT STDMETHODCALLTYPE OnDefaultDeviceChanged(EDataFlow, ERole, LPCWSTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnPropertyValueChanged(LPCWSTR, const PROPERTYKEY) override { return S_OK; }

private:
    ~Updater() = default;

    Side* sideOf(const Device& device) const;

    std::atomic<ULONG> m_references{1};
    Client& m_client;
    std::shared_ptr<SharedData> m_data;
};
}

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

namespace direct
{
namespace
{
std::vector<Device>::iterator find(std::vector<Device>& devices, const Device& device)
{
    return std::find_if(devices.begin(), devices.end(),
                        [&](const Device& other)
                        { return FoldedEqual()(other.properties.deviceId, device.properties.deviceId); });
}

std::vector<Device>* devicesOf(Side* side)
{
    return side == nullptr ? nullptr : &side->devices;
}

void notify(const Side* side, void (Observer::*event)())
{
    if (side == nullptr)
        return;
    for (std::size_t index = 0; index < side->observers.size(); ++index) // an observer may add others
        (side->observers[index]->*event)();
}
}

ComPtr<IMMNotificationClient> makeUpdater(Client& client, std::shared_ptr<SharedData> data)
{
    return ComPtr<IMMNotificationClient>::adopt(new Updater(client, std::move(data)));
}

HRESULT Updater::QueryInterface(REFIID iid, void** object)
{
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IMMNotificationClient)
        return E_NOINTERFACE;
    AddRef();
    *object = static_cast<IMMNotificationClient*>(this);
    return S_OK;
}

ULONG Updater::Release()
{
    const ULONG references = --m_references;
    if (references == 0)
        delete this;
    return references;
}

HRESULT Updater::OnDeviceStateChanged(LPCWSTR id, DWORD)
{
    const Device device = m_client.open(copyOf(id));
    std::vector<Device>* const devices = devicesOf(sideOf(device));
    const Side* const observed = sideOf(device);
    if (devices == nullptr)
        return S_OK;
    const auto found = find(*devices, device);
    if (found == devices->end())
        return E_FAIL;
    refreshState(*found); // the state in the event may be out of date
    notify(observed, &Observer::onDeviceStateChanged);
    return S_OK;
}

HRESULT Updater::OnDeviceAdded(LPCWSTR id)
{
    Device device = m_client.open(copyOf(id));
    std::vector<Device>* const devices = devicesOf(sideOf(device));
    const Side* const observed = sideOf(device);
    if (devices != nullptr)
        devices->push_back(std::move(device));
    notify(observed, &Observer::onDeviceAdded);
    return S_OK;
}

HRESULT Updater::OnDeviceRemoved(LPCWSTR id)
{
    const Device device = m_client.open(copyOf(id));
    std::vector<Device>* const devices = devicesOf(sideOf(device));
    const Side* const observed = sideOf(device);
    if (devices != nullptr)
    {
        const auto found = find(*devices, device);
        if (found == devices->end())
            return E_FAIL;
        devices->erase(found);
    }
    notify(observed, &Observer::onDeviceRemoved);
    return S_OK;
}

/// The side of the card that @p device belongs to; null for the device of another card. It asks the platform each time:
/// once for the list, and once for the observers.
Side* Updater::sideOf(const Device& device) const
{
    if (device.properties.instancePath != m_data->instancePath)
        return nullptr;
    return flowOf(device) == eRender ? &m_data->playback : &m_data->record;
}
}
