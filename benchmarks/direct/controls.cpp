// The walk from an endpoint to the hardware controls that act on it.
#include "card.h"

namespace direct
{
namespace
{
template<class I>
ComPtr<I> activate(const Part& part)
{
    ComPtr<I> control;
    void* object = nullptr;
    if (SUCCEEDED(part.part->Activate(CLSCTX_ALL, iidOf<I>(), &object)))
        control = ComPtr<I>::adopt(static_cast<I*>(object));
    return control;
}

const Part* findPart(const std::vector<Part>& parts, const GUID& type)
{
    for (const Part& part : parts)
    {
        if (part.subType == type)
            return &part;
    }
    return nullptr;
}

ComPtr<IAudioMute> findMute(const Part& volume)
{
    const std::vector<Part> incoming = readNeighbours(volume, &IPart::EnumPartsIncoming);
    const std::vector<Part> outgoing = readNeighbours(volume, &IPart::EnumPartsOutgoing);
    const Part* mute = findPart(incoming, KSNODETYPE_MUTE);
    if (mute == nullptr)
        mute = findPart(outgoing, KSNODETYPE_MUTE);
    return mute == nullptr ? ComPtr<IAudioMute>() : activate<IAudioMute>(*mute);
}

/// Adds the control of each volume among the parts. @return whether there is a volume, even one without a level
bool addControls(const std::vector<Part>& parts, const Part& owner, std::vector<Control>& controls)
{
    bool hasVolume = false;
    for (const Part& part : parts)
    {
        if (part.subType != KSNODETYPE_VOLUME)
            continue;
        hasVolume = true;
        ComPtr<IAudioVolumeLevel> level = activate<IAudioVolumeLevel>(part);
        if (level)
            controls.push_back({std::move(level), findMute(part), owner.subType, owner.name});
    }
    return hasVolume;
}

/// Those next to a connector: before it, otherwise behind it.
void addControlsNextTo(const Part& connector, std::vector<Control>& controls)
{
    const std::vector<Part> incoming = readNeighbours(connector, &IPart::EnumPartsIncoming);
    const std::vector<Part> outgoing = readNeighbours(connector, &IPart::EnumPartsOutgoing);
    if (!addControls(incoming, connector, controls))
        addControls(outgoing, connector, controls);
}

/// The nodes of a graph to visit, each once.
class Route
{
public:
    explicit Route(std::size_t nodes) : m_isQueued(nodes) {}

    void add(unsigned int index)
    {
        if (index < m_isQueued.size() && m_isQueued[index])
            return;
        if (index < m_isQueued.size())
            m_isQueued[index] = true;
        m_queue.push_back(index);
    }

    std::size_t size() const { return m_queue.size(); }
    unsigned int operator[](std::size_t position) const { return m_queue[position]; }

private:
    std::vector<bool> m_isQueued;
    std::vector<unsigned int> m_queue;
};
}

std::vector<Control> Card::controlsOf(const Device& endpoint) const
{
    const Topology topology = readTopology(endpoint.topology.topology);
    std::vector<Control> controls;
    Route route(m_graph.size());
    for (const Component<IConnector>& connector : topology.connectors)
        route.add(indexOf(connector.part.globalId));
    for (std::size_t position = 0; position < route.size(); ++position)
    {
        const Node& node = m_graph.at(route[position]);
        addControlsNextTo(node.connector.part, controls);
        for (const unsigned int link : node.links)
            route.add(link);
    }
    return controls;
}
}
