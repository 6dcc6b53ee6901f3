/// @file
/// The hardware of cards as a graph.
#pragma once

#include "sonavit/control.h"
#include "sonavit/endpoint.h"
#include "sonavit/export.h"
#include "sonavit/ids.h"
#include "sonavit/problem.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace sonavit
{
inline namespace v1
{
/// The hardware of cards: devices, their parts, and how the sound flows between them.
///
/// Devices are in the order in which a walk from the endpoints meets them; parts and devices are named by their
/// positions in the lists, counted from 0. A value that stays as it was read; any thread may use it. The platform's
/// device topologies are behind it: IDeviceTopology, IConnector, ISubunit and IPart.
struct Graph
{
    enum class Direction : int
    {
        in, ///< sound enters the device here
        out
    };

    /// A connector or a node of a device.
    struct Part
    {
        std::size_t device = 0;              ///< its position in the list of devices
        std::string id;                      ///< global id; empty if the platform reports none
        std::optional<std::uint32_t> number; ///< inside its device
        bool isConnector = false;
        std::optional<std::string> name;
        std::optional<Guid> type;           ///< see kindOf()
        std::optional<Direction> direction; ///< of a connector
        std::optional<bool> isJoined;       ///< of a connector: whether it leads to another one
        /// The level of a volume node, channel by channel.
        std::optional<std::vector<ControlChannel>> channels;
        std::optional<bool> isMuted;            ///< of a mute node
        std::optional<std::uint32_t> selection; ///< of a selector: the number of the chosen input
    };

    /// An endpoint, or the device of a driver.
    struct Device
    {
        enum class Kind : int
        {
            endpoint,
            adapter,
            closed ///< a connector leads to it, but it cannot be opened
        };

        Kind kind = Kind::adapter;
        std::string id;             ///< empty for an endpoint that does not report its id
        std::string name;           ///< for a person, never empty
        std::optional<Flow> flow;   ///< of an endpoint
        std::optional<State> state; ///< of an endpoint
        /// Whether the endpoint belongs to the cards that the graph was asked for; true for adapters.
        bool isListed = true;
        bool hasTopology = true;        ///< false if the platform says that it has none
        std::vector<std::size_t> parts; ///< their positions in the list of parts
    };

    /// A connection between two parts. The sound flows from the first one to the second, as far as it is known.
    struct Edge
    {
        enum class Kind : int
        {
            wire, ///< from a part to the one that it feeds, within a device
            path, ///< between two connectors of a device with a signal path between them
            join  ///< between connectors of two devices
        };

        Kind kind = Kind::wire;
        std::size_t from = 0;                ///< a part
        std::optional<std::size_t> to;       ///< no value for a join to a part that the far device does not report
        std::optional<std::size_t> toDevice; ///< of such a join
    };

    std::vector<Device> devices;
    std::vector<Part> parts;
    std::vector<Edge> edges;
    std::vector<Problem> problems; ///< all that could not be read

    /// The parts that feed @p part inside its device; empty for a position that is not in the list.
    SONAVIT_CLIENT_API std::vector<std::size_t> sourcesOf(std::size_t part) const;
    /// The parts on the path of the sound between @p endpoint and the software, the endpoint's own first; empty for an
    /// endpoint that the graph does not contain.
    SONAVIT_CLIENT_API std::vector<std::size_t> pathOf(const EndpointId& endpoint) const;
    /// The devices and parts on that path, and the edges between them, signal paths excepted, as a graph of their own
    /// with positions of its own. It has all problems, as these do not say to which part they belong.
    SONAVIT_CLIENT_API Graph restrictedTo(const EndpointId& endpoint) const;
};

SONAVIT_CLIENT_API bool operator==(const Graph::Part& left, const Graph::Part& right);
SONAVIT_CLIENT_API bool operator==(const Graph::Device& left, const Graph::Device& right);
SONAVIT_CLIENT_API bool operator==(const Graph::Edge& left, const Graph::Edge& right) noexcept;
SONAVIT_CLIENT_API bool operator==(const Graph& left, const Graph& right);
inline bool operator!=(const Graph::Part& left, const Graph::Part& right)
{
    return !(left == right);
}
inline bool operator!=(const Graph::Device& left, const Graph::Device& right)
{
    return !(left == right);
}
inline bool operator!=(const Graph::Edge& left, const Graph::Edge& right) noexcept
{
    return !(left == right);
}
inline bool operator!=(const Graph& left, const Graph& right)
{
    return !(left == right);
}
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Graph::Part& part);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Graph::Device& device);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Graph::Edge& edge);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Graph& graph);

/// "adapter", "signalPath", "in": as in JSON. Streams write these.
SONAVIT_CLIENT_API const char* keyOf(Graph::Device::Kind kind) noexcept;
SONAVIT_CLIENT_API const char* keyOf(Graph::Edge::Kind kind) noexcept;
SONAVIT_CLIENT_API const char* keyOf(Graph::Direction direction) noexcept;
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, Graph::Device::Kind kind);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, Graph::Edge::Kind kind);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, Graph::Direction direction);
}
}
