/// @file
/// The current state of the machine, with indexes over its devices and parts.
#pragma once

#include "simulator/machine/machine.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace sim
{
/// Sets the property to @p value; VT_EMPTY removes it, or suppresses it if the platform composes it. An unlisted
/// property stays unlisted.
void changeProperty(Device& device, const PROPERTYKEY& key, const PropertyValue& value);

/// A machine and its indexes. Not thread-safe: State locks it.
class Hardware
{
public:
    explicit Hardware(Machine machine);
    Hardware(const Hardware&) = delete; // the indexes refer to the machine
    Hardware& operator=(const Hardware&) = delete;

    /// The machine. After adding or removing list elements, or changing an id, a join, a path, a flow, a default or
    /// which part is an endpoint's volume in hardware, call reindex() before anything else: the indexes refer to the
    /// machine's texts.
    Machine& machine();
    const Machine& machine() const;
    void reindex();

    /// By exact id; null if there is none, or if it has been removed and is unknown; see RemovedEndpoints.
    Device* device(const std::string& id);
    Endpoint* endpoint(const std::string& id);
    /// As endpoint(), for an endpoint in any condition.
    Endpoint* anyEndpoint(const std::string& id);
    /// Whether @p device, which is one of the machine's, is an endpoint and not unknown.
    bool isEndpoint(const Device& device) const;
    /// Whether the machine has a device with exactly that id, or regardless of case, in any condition.
    bool hasDevice(const std::string& id) const;
    bool knows(const std::string& id) const;
    /// As Machine::openDevice().
    Device* openDevice(const std::string& id);
    /// The id of the default endpoint, see Machine::defaultEndpoint(); no value if there is none, as while the audio
    /// service is stopped.
    Text defaultEndpoint(EDataFlow flow, ERole role) const;
    /// Makes @p endpoint the only named default of its flow in @p role.
    void nameDefault(Endpoint& endpoint, ERole role);
    /// Removes the named default.
    void removeDefault(EDataFlow flow, ERole role);
    /// The endpoints of the same device, those with exactly its instance path, in the machine's order; the endpoint
    /// alone if it has no path. Empty if there is no such endpoint.
    std::vector<Endpoint*> endpointsOfDevice(const std::string& endpointId);

    /// The endpoints whose volume or mute the part @p partId implements, in the machine's order. Valid until the next
    /// reindex().
    const std::vector<Endpoint*>& endpointsInHardware(const std::string& partId) const;

    /// The endpoint becomes not present, or takes the state again that it had before; active if it had none.
    void leave(Endpoint& endpoint);
    void comeBack(Endpoint& endpoint);

    /// Whether the Windows audio service runs, as it does in the beginning.
    bool serviceRuns() const;
    void runService(bool on);

    /// A number that changes when the open property stores of a device become stale.
    std::uint64_t storeAge(const std::string& deviceId) const;
    void makeStoresStale();
    void makeStoresStale(const std::string& deviceId);

    /// As Machine::deviceInstance().
    const DeviceInstance* deviceInstance(const std::string& id) const;

    /// Valid until the next reindex(); null if there is no such part, or if its endpoint is unknown.
    const ChangeablePartPlace* part(const std::string& id) const;
    /// The device with the id @p id, or that has the part with that id, in any condition; @p id itself if there is
    /// none.
    const std::string& deviceOf(const std::string& id) const;
    /// As Machine::peer(). Valid until the next reindex(); null if there is none.
    const Peer* peer(const std::string& connectorId) const;
    /// The endpoints whose first connector reports @p connectorId as its peer, in the machine's order, in any
    /// condition. Valid until the next reindex().
    const std::vector<const Endpoint*>& endpointsAt(const std::string& connectorId) const;

    /// A path from one part to another within the topology of @p device; null if there is none. With @p rejectMixed
    /// mixed paths do not count.
    const SignalPath* signalPath(const Device& device, const std::string& from, const std::string& to,
                                 bool rejectMixed) const;

private:
    /// Regardless of the case of A to Z.
    struct HashNoCase
    {
        std::size_t operator()(std::string_view text) const;
    };
    struct EqualNoCase
    {
        bool operator()(std::string_view left, std::string_view right) const;
    };

    /// Texts of the machine, or of m_peers, are the keys: an index costs no copies.
    template<class Value>
    using Index = std::unordered_map<std::string_view, Value>;
    template<class Value>
    using IndexNoCase = std::unordered_map<std::string_view, Value, HashNoCase, EqualNoCase>;

    bool isGone(const Device& device) const;
    void clearIndexes();
    void indexDevices();
    void indexDevice(Device& device);
    void indexParts(Device& device);
    void indexJoins();
    void indexEndpointsAtConnectors();
    void indexDefaults();
    void indexVolumesInHardware();
    GUID jackOf(const Endpoint& endpoint) const;

    Machine m_machine;
    Index<Endpoint*> m_endpoints;
    std::unordered_map<const Device*, const Endpoint*> m_endpointOf;
    Index<Device*> m_devices;
    IndexNoCase<std::vector<Device*>> m_devicesNoCase;
    IndexNoCase<const DeviceInstance*> m_deviceInstances;
    Index<ChangeablePartPlace> m_parts;
    Index<Peer> m_peers;
    Index<std::vector<const Endpoint*>> m_endpointsAt;
    Index<std::vector<Endpoint*>> m_endpointsInHardware;
    std::map<std::pair<EDataFlow, ERole>, std::vector<Endpoint*>> m_namedDefaults; ///< in the machine's order
    Index<std::vector<const SignalPath*>> m_pathsFrom;
    std::unordered_map<std::string, std::uint32_t> m_statesBefore;
    std::unordered_map<std::string, std::uint64_t> m_storeAges;
    std::uint64_t m_allStoresAge = 0;
    bool m_serviceRuns = true;
};
}
