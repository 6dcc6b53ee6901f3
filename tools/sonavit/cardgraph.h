#pragma once

#include "libSonavit/audiodevicetopology.h"
#include "tools/sonavit/endpoint.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::program
{
/// The hardware of cards as a graph: devices, their parts, and how the sound flows between them.
///
/// It is read with the library's topology operations, starting at the endpoints; each connector leads to the device on
/// its far side. Devices are in the order in which that walk meets them, the order of the library's own walk. A
/// connector, subunit or neighbour that the platform reports without an object is left out.
class CardGraph
{
public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    struct Part
    {
        AudioPart part;
        std::size_t device = none;
        bool isConnector = false;
        std::optional<std::string> name;
        std::optional<GUID> type;
        std::optional<DataFlow> direction; ///< of a connector, as seen from its device
        bool isOnPath = false;
    };

    struct Device
    {
        enum class Kind
        {
            endpoint,
            adapter,
            closed ///< named by a connector, but cannot be opened
        };

        Kind kind = Kind::adapter;
        std::string id; ///< empty for a listed endpoint that does not report its id
        std::string name;
        std::optional<EDataFlow> flow; ///< of an endpoint
        std::vector<std::size_t> parts;
        bool isOnPath = false;
        bool hasTopology = true; ///< false if the system says that it has none
    };

    /// An edge between two parts, by their indexes.
    struct Edge
    {
        enum class Kind
        {
            wire, ///< from a part to the one that it feeds, within a device
            path, ///< between two connectors of a device with a signal path between them
            join  ///< between connectors of two devices
        };

        Kind kind;
        std::size_t from;
        std::size_t to;                         ///< none for a join to a part that the far device does not report
        std::size_t toDevice = CardGraph::none; ///< of such a join
        bool isOnPath = false;
    };

    explicit CardGraph(const std::vector<Card>& cards);

    /// Marks the path of the sound between @p endpoint and the software.
    void showPath(const Endpoint& endpoint);

    const std::vector<Device>& devices() const;
    const std::vector<Part>& parts() const;
    const std::vector<Edge>& edges() const;

    /// The index of @p part; none if the graph does not contain it.
    std::size_t indexOf(const AudioPart& part) const;

    /// The indexes of the parts that feed part @p index.
    std::vector<std::size_t> sourcesOf(std::size_t index) const;

private:
    void addEndpoint(const Endpoint& endpoint);
    void addDevice(const AudioDevice& device, Device description);
    std::size_t addPart(const AudioPart& part, std::size_t device);
    std::size_t addConnector(const AudioComponent<IConnector>& connector, std::size_t device);
    void followConnector(std::size_t index);
    std::size_t deviceIndex(const std::string& id);
    std::size_t peerIndex(const AudioComponent<IConnector>& peer, std::size_t farDevice);
    void addWires(std::size_t index);
    void addPaths(std::size_t device, const AudioDeviceTopology& topology);
    void addEdge(Edge::Kind kind, std::size_t from, std::size_t to);
    std::vector<std::size_t> nextOnPath(std::size_t index, EDataFlow flow, std::size_t start) const;
    std::string keyOf(const AudioPart& part) const;

    std::vector<Device> m_devices;
    std::vector<AudioDeviceTopology> m_topologies; ///< one for each device
    std::vector<Part> m_parts;
    std::vector<Edge> m_edges;
    std::map<std::string, std::size_t> m_partIndexes;
    std::map<std::string, std::size_t> m_deviceIndexes;
};
}
