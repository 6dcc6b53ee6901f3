/// @file
/// The hardware behind endpoints as a walk finds it: the platform's objects, and what of them does not change. Levels,
/// mutes and selections are read later.
#pragma once

#include "client/reading/handle.h"
#include "platform/coreaudio.h"
#include "sonavit/card.h"
#include "sonavit/control.h"
#include "sonavit/graph.h"
#include "sonavit/ids.h"
#include "sonavit/problem.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace sonavit::reading
{
/// Identifies a part, whatever the case of its id.
using PartId = Id<struct PartKind>;

/// An interface of a part, activated when it is needed for the first time; nil if the part has none.
template<class I>
struct Activation
{
    bool isAsked = false;
    Handle<I> object;
};

/// A connector or a subunit. Other parts are named by their positions in HardwareMap::parts.
struct HardwarePart
{
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    /// The parts on one side of this one, in the platform's order.
    struct Side
    {
        bool isRead = false;
        std::vector<std::size_t> parts;
    };

    std::size_t device = 0;
    std::string id; ///< global id; empty if the platform reports none
    std::optional<std::uint32_t> number;
    std::optional<std::string> name;
    std::optional<Guid> type;
    bool isConnector = false;
    std::optional<Graph::Direction> direction;
    std::optional<bool> isJoined;
    std::size_t peer = none;     ///< of a connector: that on the far side
    std::size_t position = none; ///< of a connector: among those of its device
    /// Its position in the graph. None for a part that only the controls need: one that its device does not list and
    /// that no other part feeds, or one behind a connector that cannot be opened.
    std::size_t graphPosition = none;
    Side incoming;
    Side outgoing;
    std::vector<std::size_t> sources; ///< the parts from which a wire of the graph leads here
    Handle<IPart> part;
    Handle<IConnector> connector; ///< nil for a subunit
    Activation<IAudioVolumeLevel> level;
    Activation<IAudioMute> mute;
    Activation<IAudioInputSelector> selector;
    std::vector<Problem> problems;
};

/// An endpoint or an adapter.
struct HardwareDevice
{
    Graph::Device facts; ///< its parts are those of the graph, by their positions in HardwareMap::parts
    Handle<IDeviceTopology> topology;
    std::vector<std::size_t> parts;      ///< all of them, in the order in which the walk meets them
    std::vector<std::size_t> connectors; ///< in the platform's order
    std::vector<std::size_t> subunits;   ///< in the platform's order
    std::vector<std::size_t> leadsTo;    ///< the devices behind its connectors
    std::size_t island = 0;              ///< equal for devices that joins connect, directly or not
    std::vector<signed char> paths;      ///< whether two connectors are linked, see HardwareMap::areLinked()
    std::vector<Problem> problems;       ///< with the device, and with parts that are not known
};

/// The walked hardware. Its operations make platform calls; their failures become problems of the part or device.
class HardwareMap
{
public:
    std::deque<HardwareDevice> devices; ///< in the order in which the walk meets them
    std::deque<HardwarePart> parts;
    std::vector<std::size_t> graphParts; ///< the parts of the graph, in its order
    std::vector<Graph::Edge> edges;      ///< joins and wires; the parts are positions in HardwareMap::parts
    std::vector<bool> hasVolumes; ///< of an island: whether a volume node is next to a connector, or between connectors
    std::unordered_map<EndpointId, std::size_t> deviceIndexes;
    std::unordered_map<PartId, std::size_t> partIndexes; ///< by partId()

    /// The part with that id; HardwarePart::none if there is none.
    std::size_t find(const PartId& id) const;
    /// Its global id; without one that of its device with its number there, so that it can be named nevertheless.
    PartId partId(std::size_t part) const;
    /// What problems with the part call it: its id, or that of its device.
    const std::string& objectOf(std::size_t part) const;

    IAudioVolumeLevel* level(std::size_t part);
    IAudioMute* mute(std::size_t part);
    IAudioInputSelector* selector(std::size_t part);

    /// Whether a signal path leads from one of two connectors of a device, given by their positions in
    /// HardwareDevice::connectors, to the other. The platform is asked once.
    bool areLinked(std::size_t device, std::size_t first, std::size_t second);

private:
    template<class I>
    I* activated(std::size_t part, Activation<I> HardwarePart::*activation, const IID& iid, const char* name);
    bool hasPath(HardwareDevice& device, std::size_t from, std::size_t to);
};

/// Walks through the hardware of the endpoints of @p cards.
HardwareMap walkHardware(IMMDeviceEnumerator& enumerator, const std::vector<Card>& cards);

bool isOfType(const HardwarePart& part, const GUID& type);
}
