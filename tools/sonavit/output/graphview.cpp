#include "tools/sonavit/output/graphview.h"

#include <algorithm>
#include <vector>

namespace sonavit::program
{
void GraphView::markPath(const EndpointId& id)
{
    const std::vector<std::size_t> parts = graph.pathOf(id);
    path = std::set<std::size_t>(parts.begin(), parts.end());
    for (std::size_t i = 0; i < graph.devices.size(); ++i)
    {
        if (graph.devices[i].kind == Graph::Device::Kind::endpoint && EndpointId(graph.devices[i].id) == id)
            endpoint = i;
    }
}

bool GraphView::isOnPath(const Graph::Device& device) const
{
    return endpoint && &graph.devices[*endpoint] == &device;
}

/// Signal paths are no way of their own: they say that there is one inside a device.
bool GraphView::isOnPath(const Graph::Edge& edge) const
{
    return edge.kind != Graph::Edge::Kind::path && edge.to && isOnPath(edge.from) && isOnPath(*edge.to);
}
}
