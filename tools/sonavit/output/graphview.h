#pragma once

#include "sonavit/graph.h"

#include <cstddef>
#include <set>

namespace sonavit::program
{
/// A graph with the path of one endpoint marked in it.
struct GraphView
{
    Graph graph;
    std::set<std::size_t> path; ///< the parts on it

    /// Marks the path of the sound between @p endpoint and the software.
    void markPath(const EndpointId& endpoint);

    bool isOnPath(std::size_t part) const { return path.count(part) > 0; }
    /// A device on whose parts the path runs; the endpoint's own even if it has no parts.
    bool isOnPath(const Graph::Device& device) const;
    bool isOnPath(const Graph::Edge& edge) const;

private:
    std::size_t m_endpoint = static_cast<std::size_t>(-1);
};
}
