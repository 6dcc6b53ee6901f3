#pragma once

#include "sonavit/graph.h"

#include <cstddef>
#include <optional>
#include <set>

namespace sonavit::program
{
/// A graph with the path of one endpoint marked in it.
struct GraphView
{
    Graph graph;
    std::set<std::size_t> path = {};                    ///< the parts on it
    std::optional<std::size_t> endpoint = std::nullopt; ///< the device where it begins

    /// Marks the path of the sound between an endpoint and the software.
    void markPath(const EndpointId& id);

    bool isOnPath(std::size_t part) const { return path.count(part) > 0; }
    /// Whether the path begins in the device.
    bool isOnPath(const Graph::Device& device) const;
    bool isOnPath(const Graph::Edge& edge) const;
};
}
