#include "simulator/core/simulatedobject.h"
#include "simulator/objects/lookup.h"
#include "simulator/objects/objects.h"

namespace sim
{
namespace
{
/// A part as an argument: its global id in the journal if it is one of the machine's.
struct PartArgument
{
    IPart* part;
    const SimulatedObject* object;
};

std::string argumentText(const PartArgument& argument)
{
    return argument.object == nullptr ? presenceText(argument.part) : argument.object->name();
}

/// The hardware graph of one device.
class TopologyObject final : public ComObject<IDeviceTopology>
{
public:
    TopologyObject(const std::shared_ptr<State>& state, std::string deviceId) : ComObject(state, std::move(deviceId)) {}

    HRESULT STDMETHODCALLTYPE GetConnectorCount(UINT* count) override
    {
        return call("IDeviceTopology::GetConnectorCount", outputs(count),
                    [&]() -> HRESULT
                    {
                        return read(
                            [&](const Topology& topology)
                            {
                                *count = static_cast<UINT>(topology.connectors.size());
                                return S_OK;
                            });
                    });
    }

    HRESULT STDMETHODCALLTYPE GetConnector(UINT index, IConnector** connector) override
    {
        const auto answer = [&]() -> HRESULT
        {
            std::string id;
            const HRESULT result = partAt(
                index, [](const Topology& topology) -> const auto& { return topology.connectors; }, id);
            if (SUCCEEDED(result))
                *connector = makeConnector(state(), id);
            return result;
        };
        return call("IDeviceTopology::GetConnector", outputs(connector), answer, index);
    }

    HRESULT STDMETHODCALLTYPE GetSubunitCount(UINT* count) override
    {
        return call("IDeviceTopology::GetSubunitCount", outputs(count),
                    [&]() -> HRESULT
                    {
                        return read(
                            [&](const Topology& topology)
                            {
                                *count = static_cast<UINT>(topology.subunits.size());
                                return S_OK;
                            });
                    });
    }

    HRESULT STDMETHODCALLTYPE GetSubunit(UINT index, ISubunit** subunit) override
    {
        const auto answer = [&]() -> HRESULT
        {
            std::string id;
            const HRESULT result = partAt(
                index, [](const Topology& topology) -> const auto& { return topology.subunits; }, id);
            if (SUCCEEDED(result))
                *subunit = makeSubunit(state(), id);
            return result;
        };
        return call("IDeviceTopology::GetSubunit", outputs(subunit), answer, index);
    }

    HRESULT STDMETHODCALLTYPE GetPartById(UINT localId, IPart** part) override
    {
        const auto answer = [&]() -> HRESULT
        {
            std::string id;
            const HRESULT result = read(
                [&](const Topology& topology)
                {
                    for (const Connector& connector : topology.connectors)
                        id = connector.localId == localId ? connector.id : id;
                    for (const Subunit& subunit : topology.subunits)
                        id = subunit.localId == localId ? subunit.id : id;
                    return id.empty() ? E_NOTFOUND : S_OK;
                });
            if (SUCCEEDED(result))
                *part = makePart(state(), id);
            return result;
        };
        return call("IDeviceTopology::GetPartById", outputs(part), answer, localId);
    }

    HRESULT STDMETHODCALLTYPE GetDeviceId(LPWSTR* deviceId) override
    {
        return call("IDeviceTopology::GetDeviceId", outputs(deviceId),
                    [&]() -> HRESULT
                    {
                        return read([&](const Topology& topology)
                                    { return storeText("IDeviceTopology::GetDeviceId", topology.deviceId, deviceId); });
                    });
    }

    /// The list contains both ends and runs against the signal: @p to is item 0, @p from the last one.
    HRESULT STDMETHODCALLTYPE GetSignalPath(IPart* from, IPart* to, BOOL rejectMixed, IPartsList** parts) override
    {
        const SimulatedObject* const first = simulatedObject(from);
        const SimulatedObject* const last = simulatedObject(to);
        const auto answer = [&]() -> HRESULT
        {
            if (from == nullptr || to == nullptr)
                return E_POINTER;
            if (first == nullptr || last == nullptr)
                return E_NOINTERFACE;
            std::vector<std::string> ids;
            const HRESULT result = state()->withHardware(
                [&](Hardware& hardware) -> HRESULT
                {
                    const Device* const device = hardware.device(name());
                    if (device == nullptr)
                        return AUDCLNT_E_DEVICE_INVALIDATED;
                    const SignalPath* const path =
                        hardware.signalPath(*device, first->name(), last->name(), rejectMixed != FALSE);
                    if (path == nullptr)
                        return E_NOTFOUND;
                    ids.push_back(last->name());
                    ids.insert(ids.end(), path->through.rbegin(), path->through.rend());
                    ids.push_back(first->name());
                    return S_OK;
                });
            if (SUCCEEDED(result))
                *parts = makePartsList(state(), first->name(), ListedParts::path, std::move(ids));
            return result;
        };
        return call("IDeviceTopology::GetSignalPath", outputs(parts), answer, PartArgument{from, first},
                    PartArgument{to, last}, rejectMixed);
    }

private:
    template<class Action>
    HRESULT read(const Action& action)
    {
        return onDevice(*state(), name(),
                        [&](const Device& device) -> HRESULT
                        { return device.topology ? action(*device.topology) : AUDCLNT_E_DEVICE_INVALIDATED; });
    }

    template<class List>
    HRESULT partAt(UINT index, const List& list, std::string& id)
    {
        return read(
            [&](const Topology& topology) -> HRESULT
            {
                if (index >= list(topology).size())
                    return E_INVALIDARG;
                id = list(topology)[index].id;
                return S_OK;
            });
    }
};
}

IDeviceTopology* makeTopology(const std::shared_ptr<State>& state, std::string deviceId)
{
    return new TopologyObject(state, std::move(deviceId));
}
}
