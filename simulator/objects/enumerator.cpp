#include "simulator/core/simulatedobject.h"
#include "simulator/core/unregistration.h"
#include "simulator/core/utf16.h"
#include "simulator/machine/identity.h"
#include "simulator/objects/objects.h"

namespace sim
{
namespace
{
bool isRole(ERole role)
{
    return role >= eConsole && role <= eCommunications;
}

/// Lists and finds the machine's endpoints, and registers clients.
class EnumeratorObject final : public ComObject<IMMDeviceEnumerator>
{
public:
    explicit EnumeratorObject(const std::shared_ptr<State>& state) : ComObject(state, "enumerator") {}

    ~EnumeratorObject() override { state()->enumerator.forget(this); }

    HRESULT STDMETHODCALLTYPE EnumAudioEndpoints(EDataFlow flow, DWORD mask, IMMDeviceCollection** devices) override
    {
        const auto answer = [&]() -> HRESULT
        {
            if (flow < eRender || flow > eAll || mask == 0 || (mask & ~DWORD(DEVICE_STATEMASK_ALL)) != 0)
                return E_INVALIDARG;
            const std::string name = "endpoints(" + argumentText(flow) + ", " + argumentText(mask) + ")";
            *devices = makeCollection(state(), name, endpoints(flow, mask));
            return S_OK;
        };
        return call("IMMDeviceEnumerator::EnumAudioEndpoints", outputs(devices), answer, flow, mask);
    }

    HRESULT STDMETHODCALLTYPE GetDefaultAudioEndpoint(EDataFlow flow, ERole role, IMMDevice** endpoint) override
    {
        const auto answer = [&]() -> HRESULT
        {
            if ((flow != eRender && flow != eCapture) || !isRole(role))
                return E_INVALIDARG;
            const Text id =
                state()->withHardware([&](const Hardware& hardware) { return hardware.defaultEndpoint(flow, role); });
            if (!id)
                return E_NOTFOUND;
            *endpoint = makeDevice(state(), *id);
            return S_OK;
        };
        return call("IMMDeviceEnumerator::GetDefaultAudioEndpoint", outputs(endpoint), answer, flow, role);
    }

    HRESULT STDMETHODCALLTYPE GetDevice(LPCWSTR deviceId, IMMDevice** device) override
    {
        const auto answer = [&]() -> HRESULT
        {
            if (deviceId == nullptr)
                return E_POINTER;
            Text id;
            const HRESULT result = findDevice(utf8(deviceId), id);
            if (SUCCEEDED(result))
                *device = makeDevice(state(), *id);
            return result;
        };
        return call("IMMDeviceEnumerator::GetDevice", outputs(device), answer, deviceId);
    }

    HRESULT STDMETHODCALLTYPE RegisterEndpointNotificationCallback(IMMNotificationClient* client) override
    {
        const auto answer = [&]() -> HRESULT
        {
            if (client == nullptr)
                return E_POINTER;
            state()->clients.add(client);
            return S_OK;
        };
        return call("IMMDeviceEnumerator::RegisterEndpointNotificationCallback", outputs(), answer,
                    presenceText(client));
    }

    HRESULT STDMETHODCALLTYPE UnregisterEndpointNotificationCallback(IMMNotificationClient* client) override
    {
        const auto answer = [&](const WatchedCall& watched) -> HRESULT
        {
            if (client == nullptr)
                return E_POINTER;
            return unregister(*state(), state()->clients, client, watched) ? S_OK : E_NOTFOUND;
        };
        return call("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback", outputs(), answer,
                    presenceText(client));
    }

private:
    /// Stores the machine's spelling of the id @p wanted. E_NOTFOUND for a device that the machine does not open or
    /// does not have, E_INVALIDARG for what is no id of a device.
    HRESULT findDevice(const std::string& wanted, Text& id) const
    {
        return state()->withHardware(
            [&](Hardware& hardware)
            {
                if (const Device* const found = hardware.openDevice(wanted))
                {
                    id = found->id;
                    return S_OK;
                }
                return isDeviceId(wanted) || hardware.knows(wanted) ? E_NOTFOUND : E_INVALIDARG;
            });
    }

    std::vector<std::string> endpoints(EDataFlow flow, DWORD mask) const
    {
        return state()->withHardware(
            [&](const Hardware& hardware)
            {
                std::vector<std::string> ids;
                for (const Endpoint& endpoint : hardware.machine().endpoints)
                {
                    const bool isOfFlow = flow == eAll || endpoint.flow == flow;
                    if (endpoint.installed && isOfFlow && (endpoint.state & mask) != 0)
                        ids.push_back(endpoint.id);
                }
                return ids;
            });
    }
};
}

IMMDeviceEnumerator* lendEnumerator(const std::shared_ptr<State>& state)
{
    return static_cast<EnumeratorObject*>(state->enumerator.lend([&] { return new EnumeratorObject(state); }));
}

HRESULT createEnumerator(const std::shared_ptr<State>& state, REFIID iid, void** object)
{
    if (!extends<IMMDeviceEnumerator>(iid) && !IsEqualGUID(iid, InterfaceTraits<IUnknown>::iid()))
        return E_NOINTERFACE;
    *object = lendEnumerator(state);
    return S_OK;
}
}
