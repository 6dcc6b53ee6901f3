/// @file
/// The hardware behind endpoints, walked with the object model's topology operations.
#pragma once

#include "client/model/endpoints.h"
#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/audiodevicetopology.h"
#include "libSonavit/audiopart.h"
#include "sonavit/control.h"
#include "sonavit/graph.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::model
{
/// A Graph that is being read, with the object model's parts.
///
/// It starts at the endpoints; each connector leads to the device on its far side. Devices are in the order in which
/// that walk meets them, the order of the object model's own walk. A connector, subunit or neighbour that the platform
/// reports without an object is left out.
class HardwareGraph
{
public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    /// Walks at once.
    explicit HardwareGraph(const std::vector<ModelEndpoint>& endpoints);

    /// With the levels, mutes and selections that the parts have now.
    Graph graph() const;

    /// The subunits that are selectors, in the order in which the object model finds them: those of all devices but the
    /// endpoints of the cards.
    std::vector<std::size_t> selectorParts() const;

    /// Describes the selector that the part @p part is.
    Selector describeSelector(std::size_t part) const;

private:
    void addDevice(const AudioDevice& device, Graph::Device description);
    std::size_t addPart(const AudioPart& part, std::size_t device);
    std::size_t addConnector(const AudioComponent<IConnector>& connector, std::size_t device);
    void followConnector(std::size_t index);
    std::size_t deviceIndex(const std::string& id);
    std::size_t peerIndex(const AudioComponent<IConnector>& peer, std::size_t farDevice);
    void addWires(std::size_t index);
    void addPaths(std::size_t device);
    void addEdge(Graph::Edge::Kind kind, std::size_t from, std::size_t to);
    void readControls(Graph::Part& description, const AudioPart& part) const;
    std::size_t sourceConnector(std::size_t part) const;
    std::string keyOf(const AudioPart& part) const;
    std::string identityOf(const Graph::Part& part) const;

    Graph m_graph;                                 ///< without what graph() reads
    std::vector<AudioPart> m_parts;                ///< one for each part of the graph
    std::vector<AudioDeviceTopology> m_topologies; ///< one for each device
    std::map<std::string, std::size_t> m_partIndexes;
    std::map<std::string, std::size_t> m_deviceIndexes;
};
}
