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
    /// What the device offers now.
    struct Offer
    {
        bool hasTopology = false;
        bool hasVolume = false;
        bool hasStream = false; ///< of the interface that is asked for
        bool hasFilter = false;
    };

    HRESULT activate(REFIID iid, void** object)
    {
        Offer offer;
        const HRESULT result =
            this->state()->withHardware([&](Hardware& hardware) { return lookUp(hardware, iid, offer); });
        if (FAILED(result))
            return result;
        *object = make(iid, offer);
        return *object == nullptr ? E_NOINTERFACE : S_OK;
    }

    HRESULT lookUp(Hardware& hardware, REFIID iid, Offer& offer) const
    {
        const Device* const device = hardware.device(this->name());
        const Endpoint* const endpoint = hardware.endpoint(this->name());
        if (device == nullptr)
            return AUDCLNT_E_DEVICE_INVALIDATED;
        offer.hasTopology = device->topology.has_value();
        offer.hasVolume = endpoint != nullptr && endpoint->volume;
        offer.hasStream = offersStream(*device, iid);
        offer.hasFilter = device->hasBaseFilter;
        if (!offer.hasStream)
            return S_OK;
        if (extends<IAudioClient3>(iid) && !hardware.serviceRuns())
            return AUDCLNT_E_SERVICE_NOT_RUNNING;
        return endpoint != nullptr && !hasStreams(*endpoint) ? AUDCLNT_E_DEVICE_INVALIDATED : S_OK;
    }

    /// Null if the device does not offer the interface.
    void* make(REFIID iid, const Offer& offer) const
    {
        if (offer.hasTopology && IsEqualGUID(iid, InterfaceTraits<IDeviceTopology>::iid()))
            return makeTopology(this->state(), this->name());
        if (offer.hasVolume && IsEqualGUID(iid, InterfaceTraits<IAudioEndpointVolume>::iid()))
            return makeEndpointVolume(this->state(), this->name());
        if (offer.hasStream && extends<IAudioClient3>(iid))
            return makeAudioClient(this->state(), this->name());
        if (offer.hasStream)
            return makeMeter(this->state(), this->name());
        if (offer.hasFilter && IsEqualGUID(iid, InterfaceTraits<IBaseFilter>::iid()))
            return makeBaseFilter(this->state(), this->name());
        return nullptr;
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
