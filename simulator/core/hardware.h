/// @file
/// The machine as it stands at this moment, with quick ways to its devices and parts.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "simulator/machine/machine.h"

namespace sim
{
/// Where a part stands. Good until the machine is indexed anew.
struct PartInPlace
{
    Device* device = nullptr;
    Part* part = nullptr;
    Connector* connector = nullptr; ///< the same part where it is a connector, otherwise null
};

/// A machine and its indexes. Not safe for several threads: State guards it.
class Hardware
{
public:
    explicit Hardware(Machine machine);

    /// The machine. Whoever adds or removes list elements, or changes an id, a join or a path, calls reindex().
    Machine& machine();
    const Machine& machine() const;
    void reindex();

    /// By exact id; null where there is none.
    Device* device(const std::string& id);
    Endpoint* endpoint(const std::string& id);
    /// As Machine::openDevice().
    Device* openDevice(const std::string& id);
    const PartInPlace* part(const std::string& id) const;
    std::optional<Peer> peer(const std::string& connectorId) const;

    /// A path from one part to another within the topology of @p device, other than a mixed one where those are
    /// rejected; null where there is none.
    const SignalPath* signalPath(const Device& device, const std::string& from, const std::string& to,
                                 bool rejectMixed) const;

private:
    void indexParts(Device& device);
    void indexJoins();

    Machine m_machine;
    std::unordered_map<std::string, Endpoint*> m_endpoints;
    std::unordered_map<std::string, Device*> m_devices;
    std::unordered_map<std::string, std::vector<Device*>> m_devicesNoCase;
    std::unordered_map<std::string, PartInPlace> m_parts;
    std::unordered_map<std::string, Peer> m_peers;
    std::unordered_map<std::string, std::vector<const SignalPath*>> m_pathsFrom;
};
}
