#include "simulator/core/simulatedobject.h"
#include "simulator/objects/lookup.h"
#include "simulator/objects/objects.h"
#include "simulator/objects/stream/onendpoint.h"

namespace sim
{
namespace
{
/// Whether the interface must be activated without parameters.
bool takesNoParameters(REFIID iid)
{
    return IsEqualGUID(iid, InterfaceTraits<IDeviceTopology>::iid()) ||
           IsEqualGUID(iid, InterfaceTraits<IAudioEndpointVolume>::iid()) ||
           IsEqualGUID(iid, InterfaceTraits<IAudioMeterInformation>::iid()) || extends<IAudioClient3>(iid);
}

/// Whether the interface belongs to the streams of the device, which need an active endpoint.
bool offersStream(const Device& device, REFIID iid)
{
    return (device.hasAudioClient && extends<IAudioClient3>(iid)) ||
           (device.hasMeter && IsEqualGUID(iid, InterfaceTraits<IAudioMeterInformation>::iid()));
}

/// IMMDevice of endpoints and adapter devices.
template<class... Interfaces>
class DeviceBase : public ComObject<Interfaces...>
{
public:
    using ComObject<Interfaces...>::ComObject;

    /// The journal records parameters as a third argument, and only if there are any.
    HRESULT STDMETHODCALLTYPE Activate(REFIID iid, DWORD context, PROPVARIANT* parameters, void** object) override
    {
        if (parameters == nullptr)
        {
            const auto answer = [&] { return activate(iid, object); };
            return this->call("IMMDevice::Activate", outputs(object), answer, iid, context);
        }
        const auto answer = [&]() -> HRESULT { return takesNoParameters(iid) ? E_INVALIDARG : activate(iid, object); };
        return this->call("IMMDevice::Activate", outputs(object), answer, iid, context, presenceText(parameters));
    }

    /// Only an administrator's program opens a store for writing.
    HRESULT STDMETHODCALLTYPE OpenPropertyStore(DWORD access, IPropertyStore** store) override
    {
        const auto answer = [&]() -> HRESULT
        {
            if (access != STGM_READ && access != STGM_WRITE && access != STGM_READWRITE)
                return E_INVALIDARG;
            const HRESULT result = this->state()->withHardware(
                [&](Hardware& hardware) -> HRESULT
                {
                    if (hardware.device(this->name()) == nullptr)
                        return AUDCLNT_E_DEVICE_INVALIDATED;
                    const bool isOrdinary = hardware.machine().account == Account::ordinary;
                    return isOrdinary && access != STGM_READ ? E_ACCESSDENIED : S_OK;
                });
            if (SUCCEEDED(result))
                *store = makePropertyStore(this->state(), this->name(), access);
            return result;
        };
        return this->call("IMMDevice::OpenPropertyStore", outputs(store), answer, access);
    }

    HRESULT STDMETHODCALLTYPE GetId(LPWSTR* deviceId) override
    {
        return this->call("IMMDevice::GetId", outputs(deviceId),
                          [&]() -> HRESULT { return this->storeText("IMMDevice::GetId", this->name(), deviceId); });
    }

    /// A device that the machine has lost is not present.
    HRESULT STDMETHODCALLTYPE GetState(DWORD* deviceState) override
    {
        return this->call("IMMDevice::GetState", outputs(deviceState),
                          [&]() -> HRESULT
                          {
                              *deviceState = DEVICE_STATE_NOTPRESENT;
                              onDevice(*this->state(), this->name(),
                                       [&](const Device& device)
                                       {
                                           *deviceState = device.state;
                                           return S_OK;
                                       });
                              return S_OK;
                          });
    }

private:
    HRESULT activate(REFIID iid, void** object)
    {
        bool hasTopology = false;
        bool hasVolume = false;
        bool hasStream = false;
        bool hasFilter = false;
        const HRESULT result = this->state()->withHardware(
            [&](Hardware& hardware) -> HRESULT
            {
                const Device* const device = hardware.device(this->name());
                const Endpoint* const endpoint = hardware.endpoint(this->name());
                if (device == nullptr)
                    return AUDCLNT_E_DEVICE_INVALIDATED;
                if (!hardware.serviceRuns() && extends<IAudioClient3>(iid))
                    return AUDCLNT_E_SERVICE_NOT_RUNNING;
                hasTopology = device->topology.has_value();
                hasVolume = endpoint != nullptr && endpoint->volume;
                hasStream = offersStream(*device, iid);
                if (hasStream && endpoint != nullptr && !hasStreams(*endpoint))
                    return AUDCLNT_E_DEVICE_INVALIDATED;
                hasFilter = device->hasBaseFilter;
                return S_OK;
            });
        if (FAILED(result))
            return result;

        if (hasTopology && IsEqualGUID(iid, InterfaceTraits<IDeviceTopology>::iid()))
            *object = makeTopology(this->state(), this->name());
        else if (hasVolume && IsEqualGUID(iid, InterfaceTraits<IAudioEndpointVolume>::iid()))
            *object = makeEndpointVolume(this->state(), this->name());
        else if (hasStream && extends<IAudioClient3>(iid))
            *object = makeAudioClient(this->state(), this->name());
        else if (hasStream)
            *object = makeMeter(this->state(), this->name());
        else if (hasFilter && IsEqualGUID(iid, InterfaceTraits<IBaseFilter>::iid()))
            *object = makeBaseFilter(this->state(), this->name());
        return *object == nullptr ? E_NOINTERFACE : S_OK;
    }
};

class AdapterObject final : public DeviceBase<IMMDevice>
{
public:
    using DeviceBase::DeviceBase;
};

class EndpointObject final : public DeviceBase<IMMDevice, IMMEndpoint>
{
public:
    EndpointObject(const std::shared_ptr<State>& state, const std::string& id, EDataFlow flow)
        : DeviceBase(state, id),
          m_flow(flow)
    {
    }

    HRESULT STDMETHODCALLTYPE GetDataFlow(EDataFlow* flow) override
    {
        return call("IMMEndpoint::GetDataFlow", outputs(flow),
                    [&]() -> HRESULT
                    {
                        *flow = m_flow;
                        return S_OK;
                    });
    }

private:
    const EDataFlow m_flow;
};
}

IMMDevice* makeDevice(const std::shared_ptr<State>& state, const std::string& deviceId)
{
    bool isThere = false;
    std::optional<EDataFlow> flow;
    state->withHardware(
        [&](Hardware& hardware)
        {
            isThere = hardware.device(deviceId) != nullptr;
            if (const Endpoint* const endpoint = hardware.endpoint(deviceId))
                flow = endpoint->flow;
        });
    if (!isThere)
        return nullptr;
    if (flow)
        return new EndpointObject(state, deviceId, *flow);
    return new AdapterObject(state, deviceId);
}
}
