#include "simulator/core/simulatedobject.h"
#include "simulator/objects/objects.h"

#include <algorithm>

namespace sim
{
namespace
{
/// Bits of KSJACK_DESCRIPTION2::JackCapabilities.
constexpr DWORD detectsPresence = 1;
constexpr DWORD changesFormat = 2;

/// Whether the states of the endpoints at the connector say that something is plugged in.
bool isPlugged(const Hardware& hardware, const std::string& connectorId)
{
    const std::vector<const Endpoint*>& endpoints = hardware.endpointsAt(connectorId);
    const auto isThere = [](const Endpoint* endpoint)
    { return endpoint->installed && endpoint->state != stateUnplugged && endpoint->state != stateNotPresent; };
    return endpoints.empty() || std::any_of(endpoints.begin(), endpoints.end(), isThere);
}

/// What both interfaces have in common.
template<class Interface>
class JackDescriptionBase : public ComObject<Interface>
{
public:
    using ComObject<Interface>::ComObject;

    HRESULT STDMETHODCALLTYPE GetJackCount(UINT* count) override
    {
        const std::string operation = std::string(InterfaceTraits<Interface>::name) + "::GetJackCount";
        return this->call(operation.c_str(), outputs(count),
                          [&]
                          {
                              return onConnector(
                                  [&](const Hardware&, const Connector& connector) -> HRESULT
                                  {
                                      *count = static_cast<UINT>(connector.jacks.size());
                                      return S_OK;
                                  });
                          });
    }

protected:
    /// Calls @p action(const Hardware&, const Jack&) under the machine's lock; E_INVALIDARG if there is no such jack.
    template<class Action>
    HRESULT onJack(UINT jack, const Action& action) const
    {
        return onConnector(
            [&](const Hardware& hardware, const Connector& connector) -> HRESULT
            {
                if (jack >= connector.jacks.size())
                    return E_INVALIDARG;
                action(hardware, connector.jacks[jack]);
                return S_OK;
            });
    }

private:
    template<class Action>
    HRESULT onConnector(const Action& action) const
    {
        return this->state()->withHardware(
            [&](const Hardware& hardware) -> HRESULT
            {
                const ChangeablePartPlace* const place = hardware.part(this->name());
                const bool isThere = place != nullptr && place->connector != nullptr;
                return isThere ? action(hardware, *place->connector) : AUDCLNT_E_DEVICE_INVALIDATED;
            });
    }
};

class JackDescriptionObject final : public JackDescriptionBase<IKsJackDescription>
{
public:
    using JackDescriptionBase::JackDescriptionBase;

    HRESULT STDMETHODCALLTYPE GetJackDescription(UINT jack, KSJACK_DESCRIPTION* description) override
    {
        const auto answer = [&]
        {
            return onJack(jack, [&](const Hardware& hardware, const Jack& found)
                          { *description = described(hardware, found); });
        };
        return call("IKsJackDescription::GetJackDescription", outputs(description), answer, jack);
    }

private:
    KSJACK_DESCRIPTION described(const Hardware& hardware, const Jack& jack) const
    {
        KSJACK_DESCRIPTION result = {};
        result.ChannelMapping = jack.channels;
        result.Color = jack.colour;
        result.ConnectionType = jack.connection;
        result.GeoLocation = jack.geometricLocation;
        result.GenLocation = jack.generalLocation;
        result.PortConnection = jack.portConnection;
        const bool isConnected = jack.connected.value_or(!jack.detectsPresence || isPlugged(hardware, name()));
        result.IsConnected = isConnected ? TRUE : FALSE;
        return result;
    }
};

class JackDescription2Object final : public JackDescriptionBase<IKsJackDescription2>
{
public:
    using JackDescriptionBase::JackDescriptionBase;

    HRESULT STDMETHODCALLTYPE GetJackDescription2(UINT jack, KSJACK_DESCRIPTION2* description) override
    {
        const auto answer = [&]
        {
            return onJack(jack,
                          [&](const Hardware&, const Jack& found)
                          {
                              *description = KSJACK_DESCRIPTION2{};
                              description->JackCapabilities = (found.detectsPresence ? detectsPresence : 0) |
                                                              (found.changesFormat ? changesFormat : 0);
                          });
        };
        return call("IKsJackDescription2::GetJackDescription2", outputs(description), answer, jack);
    }
};
}

IKsJackDescription* makeJackDescription(const std::shared_ptr<State>& state, std::string partId)
{
    return new JackDescriptionObject(state, std::move(partId));
}

IKsJackDescription2* makeJackDescription2(const std::shared_ptr<State>& state, std::string partId)
{
    return new JackDescription2Object(state, std::move(partId));
}
}
