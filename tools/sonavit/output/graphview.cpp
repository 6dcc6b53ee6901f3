#include "tools/sonavit/output/graphview.h"

#include <algorithm>
#include <vector>

namespace sonavit::program
{
void GraphView::markPath(const EndpointId& endpoint)
{
    const std::vector<std::size_t> parts = graph.pathOf(endpoint);
    path = std::set<std::size_t>(parts.begin(), parts.end());
    for (std::size_t i = 0; i < graph.devices.size(); ++i)
    {
        if (graph.devices[i].kind == Graph::Device::Kind::endpoint && EndpointId(graph.devices[i].id) == endpoint)
            m_endpoint = i;
    }
}

/// Required behaviour of the picture: of the devices on the path only the endpoint itself has a thick frame.
bool GraphView::isOnPath(const Graph::Device& device) const
{
    return m_endpoint < graph.devices.size() && &graph.devices[m_endpoint] == &device;
}

/// Signal paths are no way of their own: they say that there is one inside a device.
bool GraphView::isOnPath(const Graph::Edge& edge) const
{
    return edge.kind != Graph::Edge::Kind::path && edge.to && isOnPath(edge.from) && isOnPath(*edge.to);
}
}
