#include "simulator/objects/partbase.h"

namespace sim
{
namespace
{
/// The connections of the machine are fixed: ConnectTo and Disconnect return E_NOTIMPL.
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
                    [&]
                    {
                        return readPeer(
                            [&](const std::optional<Peer>& peer)
                            {
                                *connected = peer ? TRUE : FALSE;
                                return S_OK;
                            });
                    });
    }

    HRESULT STDMETHODCALLTYPE GetConnectedTo(IConnector** connector) override
    {
        return call("IConnector::GetConnectedTo", outputs(connector),
                    [&]
                    {
                        return readPeer(
                            [&](const std::optional<Peer>& peer)
                            {
                                if (peer)
                                    *connector = makeConnector(state(), peer->connector);
                                return *connector == nullptr ? E_NOTFOUND : S_OK;
                            });
                    });
    }

    HRESULT STDMETHODCALLTYPE GetConnectorIdConnectedTo(LPWSTR* connectorId) override
    {
        return call("IConnector::GetConnectorIdConnectedTo", outputs(connectorId),
                    [&]
                    {
                        return readPeer(
                            [&](const std::optional<Peer>& peer)
                            {
                                if (!peer || peer->connector.empty())
                                    return E_NOTFOUND;
                                return storeText("IConnector::GetConnectorIdConnectedTo", peer->connector, connectorId);
                            });
                    });
    }

    HRESULT STDMETHODCALLTYPE GetDeviceIdConnectedTo(LPWSTR* deviceId) override
    {
        return call("IConnector::GetDeviceIdConnectedTo", outputs(deviceId),
                    [&]
                    {
                        return readPeer(
                            [&](const std::optional<Peer>& peer)
                            {
                                if (!peer)
                                    return E_NOTFOUND;
                                return storeText("IConnector::GetDeviceIdConnectedTo", peer->device, deviceId);
                            });
                    });
    }

private:
    template<class Action>
    HRESULT readConnector(const Action& action) const
    {
        return onPart(*state(), name(),
                      [&](const ChangeablePartPlace& place) -> HRESULT
                      {
                          if (place.connector == nullptr)
                              return AUDCLNT_E_DEVICE_INVALIDATED;
                          action(*place.connector);
                          return S_OK;
                      });
    }

    /// Calls @p action with the far side of the connector, outside the machine's lock.
    template<class Action>
    HRESULT readPeer(const Action& action) const
    {
        std::optional<Peer> peer;
        const HRESULT result = state()->withHardware(
            [&](const Hardware& hardware)
            {
                if (const Peer* const found = hardware.peer(name()))
                    peer = *found;
                return hardware.part(name()) == nullptr ? AUDCLNT_E_DEVICE_INVALIDATED : S_OK;
            });
        return SUCCEEDED(result) ? action(peer) : result;
    }
};

ConnectorObject* make(const std::shared_ptr<State>& state, const std::string& partId)
{
    const bool isThere = state->withHardware(
        [&](const Hardware& hardware)
        {
            const ChangeablePartPlace* const place = hardware.part(partId);
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
