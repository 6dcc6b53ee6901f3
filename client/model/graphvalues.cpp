// What is made of the walked hardware.
#include "client/model/hardwaregraph.h"
#include "client/model/levels.h"

#include <algorithm>

namespace sonavit::model
{
namespace
{
bool isOf(const Graph::Part& part, NodeKind kind)
{
    return part.type == guidOf(kind);
}
}

Graph HardwareGraph::graph() const
{
    Graph graph = m_graph;
    for (std::size_t part = 0; part < m_parts.size(); ++part)
        readControls(graph.parts[part], m_parts[part]);
    return graph;
}

void HardwareGraph::readControls(Graph::Part& description, const AudioPart& part) const
{
    if (isOf(description, NodeKind::volume) && hasLevel(part))
        description.channels = readChannels(part);
    else if (isOf(description, NodeKind::mute) && hasMute(part))
        description.isMuted = readMute(part);
    else if (!description.isConnector && m_graph.devices[description.device].kind == Graph::Device::Kind::adapter)
        description.selection = readSelection(selectorOf(part));
}

/// The global id of a part; without one that of its device with its number there, so that it can be named nevertheless.
std::string HardwareGraph::identityOf(const Graph::Part& part) const
{
    if (!part.id.empty())
        return part.id;
    return m_graph.devices[part.device].id + "#" + (part.number ? std::to_string(*part.number) : std::string());
}

std::vector<std::size_t> HardwareGraph::selectorParts() const
{
    std::vector<std::size_t> result;
    for (const Graph::Device& device : m_graph.devices)
    {
        const bool isOfCard = device.kind == Graph::Device::Kind::endpoint && device.isListed;
        if (isOfCard || device.kind == Graph::Device::Kind::closed)
            continue;
        const auto isSelector = [&](std::size_t part)
        { return !m_graph.parts[part].isConnector && selectorOf(m_parts[part]).get() != nullptr; };
        std::copy_if(device.parts.begin(), device.parts.end(), std::back_inserter(result), isSelector);
    }
    return result;
}

Selector HardwareGraph::describeSelector(std::size_t part) const
{
    const Graph::Part& description = m_graph.parts[part];
    const Graph::Device& device = m_graph.devices[description.device];
    Selector selector;
    selector.id = SelectorId(identityOf(description));
    selector.name = description.name;
    selector.deviceId = device.id;
    selector.deviceName = device.name;
    for (const std::size_t source : m_graph.sourcesOf(part))
    {
        const Graph::Part& feeding = m_graph.parts[source];
        SelectorInput input;
        input.number = feeding.number;
        input.name = feeding.name;
        const std::size_t connector = sourceConnector(source);
        if (connector != none)
        {
            input.connectorName = m_graph.parts[connector].name;
            input.connectorType = m_graph.parts[connector].type;
        }
        selector.inputs.push_back(std::move(input));
    }
    return selector;
}

/// The nearest connector upstream of a part.
std::size_t HardwareGraph::sourceConnector(std::size_t part) const
{
    std::vector<std::size_t> reached = {part};
    for (std::size_t i = 0; i < reached.size(); ++i)
    {
        if (m_graph.parts[reached[i]].isConnector)
            return reached[i];
        for (const std::size_t source : m_graph.sourcesOf(reached[i]))
        {
            if (std::find(reached.begin(), reached.end(), source) == reached.end())
                reached.push_back(source);
        }
    }
    return none;
}
}
