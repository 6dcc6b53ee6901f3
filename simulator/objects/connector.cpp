#include "simulator/objects/partbase.h"

namespace sim
{
namespace
{
/// The wires of the machine are fixed: ConnectTo and Disconnect are not implemented.
class ConnectorObject final : public PartBase<IConnector>
{
public:
    using PartBase::PartBase;

    HRESULT STDMETHODCALLTYPE GetType(ConnectorType* type) override
    {
        return call("IConnector::GetType", outputs(type),
                    [&] { return readConnector([&](const Connector& connector) { *type = connector.type; }); });
    }

    HRESULT STDMETHODCALLTYPE GetDataFlow(DataFlow* flow) override
    {
        return call("IConnector::GetDataFlow", outputs(flow),
                    [&] { return readConnector([&](const Connector& connector) { *flow = connector.direction; }); });
    }

    HRESULT STDMETHODCALLTYPE ConnectTo(IConnector* connector) override
    {
        return call(
            "IConnector::ConnectTo", outputs(), [] { return E_NOTIMPL; }, presenceText(connector));
    }

    HRESULT STDMETHODCALLTYPE Disconnect() override
    {
        return call("IConnector::Disconnect", outputs(), [] { return E_NOTIMPL; });
    }

    HRESULT STDMETHODCALLTYPE IsConnected(BOOL* connected) override
    {
        return call("IConnector::IsConnected", outputs(connected),
                    [&]() -> HRESULT
                    {
                        *connected = peer().has_value() ? TRUE : FALSE;
                        return S_OK;
                    });
    }

    HRESULT STDMETHODCALLTYPE GetConnectedTo(IConnector** connector) override
    {
        return call("IConnector::GetConnectedTo", outputs(connector),
                    [&]() -> HRESULT
                    {
                        const std::optional<Peer> found = peer();
                        if (found)
                            *connector = makeConnector(state(), found->connector);
                        return *connector == nullptr ? E_NOTFOUND : S_OK;
                    });
    }

    HRESULT STDMETHODCALLTYPE GetConnectorIdConnectedTo(LPWSTR* connectorId) override
    {
        return call("IConnector::GetConnectorIdConnectedTo", outputs(connectorId),
                    [&]() -> HRESULT
                    {
                        const std::optional<Peer> found = peer();
                        if (!found || found->connector.empty())
                            return E_NOTFOUND;
                        return storeText("IConnector::GetConnectorIdConnectedTo", found->connector, connectorId);
                    });
    }

    HRESULT STDMETHODCALLTYPE GetDeviceIdConnectedTo(LPWSTR* deviceId) override
    {
        return call("IConnector::GetDeviceIdConnectedTo", outputs(deviceId),
                    [&]() -> HRESULT
                    {
                        const std::optional<Peer> found = peer();
                        if (!found)
                            return E_NOTFOUND;
                        return storeText("IConnector::GetDeviceIdConnectedTo", found->device, deviceId);
                    });
    }

private:
    template<class Action>
    HRESULT readConnector(const Action& action) const
    {
        return onPart(*state(), name(),
                      [&](const PartInPlace& place) -> HRESULT
                      {
                          if (place.connector == nullptr)
                              return AUDCLNT_E_DEVICE_INVALIDATED;
                          action(*place.connector);
                          return S_OK;
                      });
    }

    std::optional<Peer> peer() const
    {
        return state()->withHardware([&](const Hardware& hardware) { return hardware.peer(name()); });
    }
};

ConnectorObject* make(const std::shared_ptr<State>& state, const std::string& partId)
{
    const bool isThere = state->withHardware(
        [&](const Hardware& hardware)
        {
            const PartInPlace* const place = hardware.part(partId);
            return place != nullptr && place->connector != nullptr;
        });
    return isThere ? new ConnectorObject(state, partId) : nullptr;
}
}

IConnector* makeConnector(const std::shared_ptr<State>& state, const std::string& partId)
{
    return make(state, partId);
}

IPart* makeConnectorAsPart(const std::shared_ptr<State>& state, const std::string& partId)
{
    return make(state, partId);
}
}
