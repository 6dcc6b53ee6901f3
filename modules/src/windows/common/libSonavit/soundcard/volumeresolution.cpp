#include "libSonavit/soundcard.h"

#include "COM/identifiers.h"
#include "libSonavit/audiodevicetopology/passingtopology.h"
#include "libSonavit/audiopart/partview.h"
#include "libSonavit/soundcard/listsearch.h"
#include "libSonavit/soundcard/log.h"

#include <vector>

using libSonavit::KeptId;
using libSonavit::PartView;
using libSonavit::PassingTopology;

namespace
{
/// Whether @p parts has no part of type @p partType: SoundCard::partFromList() without a list for the parts that are
/// found. Most lists have none, and then this leaves the records of that function, which is not called.
bool lacksPart(const qor::Array<AudioPart>& parts, const GUID& partType)
{
    for (const AudioPart& part : parts)
    {
        if (PartView::subType(part) == partType)
            return false;
    }
    SONAVIT_TRACE(soundcardlog, "SoundCard::partFromList");
    return true;
}

typedef void (*Walk)(IPart& part, qor::Array<AudioPart>& list);

/// Fills the empty @p list with the parts next to @p connector on one side. A connector without an IPart leaves the
/// list empty.
void readNeighbours(const AudioComponent<IConnector>& connector, Walk walk, qor::Array<AudioPart>& list)
{
    IPart* const part = PartView::platformPart(PartView::part(connector));
    if (part != nullptr)
        walk(*part, list);
}

/// The control of the part, or nil if the part has none. A pointer along with a failure code is ignored.
/// @tparam I the interface of the control
template<class I>
typename COMPtr<I>::pointer activate(IPart& part, const IID& iid)
{
    void* object = nullptr;
    if (FAILED(part.Activate(CLSCTX_ALL, iid, &object)))
        return nullptr;
    return static_cast<I*>(object);
}

/// The nodes that a walk of a connector map visits, in the order of the visits, each once.
class VisitQueue
{
public:
    explicit VisitQueue(unsigned int numNodes) : m_isQueued(numNodes, false) { m_nodes.reserve(usualVisits); }

    unsigned int size() const noexcept { return static_cast<unsigned int>(m_nodes.size()); }
    unsigned int operator[](unsigned int position) const { return m_nodes[position]; }

    /// Appends @p node, even if it is there.
    void append(unsigned int node)
    {
        m_nodes.push_back(node);
        if (node < m_isQueued.size())
            m_isQueued[node] = true;
    }

    /// Appends @p node unless it is there. A walk ends at the first index that is outside the map, so it does not
    /// matter how often such a one is there.
    void appendOnce(unsigned int node)
    {
        if (node >= m_isQueued.size() || !m_isQueued[node])
            append(node);
    }

private:
    static constexpr unsigned int usualVisits = 16;

    std::vector<unsigned int> m_nodes;
    std::vector<bool> m_isQueued; // by node
};
}

// Required behaviour: the label names another class; readers of the log match it.
unsigned int SoundCard::volumeController(const AudioDevice& endpoint, qor::Array<VolumeController>& result) const
{
    SONAVIT_TRACE(soundcardlog, "EndpointDeviceEnumeratorCommon::volumeController(const AudioDevice& endpoint)");
    COMPtr<IDeviceTopology>::pointer handle = endpoint.deviceTopology();
    const PassingTopology<KeptId> topology(handle);
    handle = nullptr; // released by a statement of its own: if Release throws, the snapshot is released, too
    result.clear();
    VisitQueue queue(m_connectorMap.size());
    for (unsigned int position = 0; position < topology.connectors().size(); ++position)
    {
        const unsigned int index = nodeIndex(topology.connectors()[position].texts().globalId);
        // Required behaviour: the test is on the position, not on the index. A connector that is not in the map is
        // queued like the others, and the walk below raises IndexOutOfBounds for it. Callers rely on that exception for
        // an endpoint that arrived by hot plug.
        if (position == listsearch::notFound)
            SONAVIT_LOG(soundcardlog, LOG_FATAL, out.append("m_connectorMap is inconsistent. Please review initialization code"));
        else
            queue.append(index);
    }
    for (unsigned int position = 0; position < queue.size(); ++position)
    {
        const ConnectorNode& node = m_connectorMap[queue[position]];
        volumeControllerFromConnector(node.connector, result);
        const unsigned int numLinks = node.links.size();
        for (unsigned int link = 0; link < numLinks; ++link)
            queue.appendOnce(node.links[link]);
    }
    return result.size();
}

/// Required behaviour: a caller that has only the interface gets no controllers.
unsigned int SoundCard::volumeController(const AudioDeviceInterface&,
                                         qor::Array<SharedPointer<VolumeControllerInterface>>&) const
{
    return 0;
}

/// Looks among the parts that feed the connector and, only if there is no volume node among them, among those that it
/// feeds.
bool SoundCard::volumeControllerFromConnector(const AudioComponent<IConnector>& connector,
                                              qor::Array<VolumeController>& result) const
{
    qor::Array<AudioPart> incoming;
    qor::Array<AudioPart> outgoing;
    readNeighbours(connector, &PartView::readIncomingParts, incoming);
    readNeighbours(connector, &PartView::readOutgoingParts, outgoing);
    if (volumeControllerFromList(incoming, connector, result))
        return true;
    return volumeControllerFromList(outgoing, connector, result);
}

/// Appends a record for each volume node of the list that has a level.
/// @return whether the list has a volume node, even if none of them gives a level
bool SoundCard::volumeControllerFromList(const qor::Array<AudioPart>& parts,
                                         const AudioComponent<IConnector>& connector,
                                         qor::Array<VolumeController>& result) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::volumeControllerFromList");
    if (lacksPart(parts, KSNODETYPE_VOLUME))
    {
        SONAVIT_LOG(soundcardlog, LOG_INFO, out.append("Supplied part list does not have a volume controller node"));
        return false;
    }
    qor::Array<AudioPart> volumeParts;
    partFromList(parts, KSNODETYPE_VOLUME, volumeParts);
    for (unsigned int i = 0; i < volumeParts.size(); ++i)
    {
        VolumeController controller;
        IPart& volumePart = *PartView::platformPart(volumeParts[i]);
        controller.volumeLevel = activate<IAudioVolumeLevel>(volumePart, IID_IAudioVolumeLevel);
        if (controller.volumeLevel.get() == nullptr)
            continue;
        controller.ownerType = connector.subType();
        controller.ownerName = connector.name();

        qor::Array<AudioPart> incoming;
        qor::Array<AudioPart> outgoing;
        PartView::readIncomingParts(volumePart, incoming);
        PartView::readOutgoingParts(volumePart, outgoing);
        qor::Array<AudioPart> muteParts;
        if (partFromList(incoming, KSNODETYPE_MUTE, muteParts) || partFromList(outgoing, KSNODETYPE_MUTE, muteParts))
            controller.mute = activate<IAudioMute>(*PartView::platformPart(muteParts[0]),
                                                   IID_IAudioMute); // only the first of several
        result.append(controller);
    }
    return true;
}

/// Replaces @p result by the parts of type @p partType. @return whether there are any
bool SoundCard::partFromList(const qor::Array<AudioPart>& parts, const GUID& partType,
                             qor::Array<AudioPart>& result) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::partFromList");
    if (result.size() > 0) // clear() makes a new block
        result.clear();
    for (unsigned int i = 0; i < parts.size(); ++i)
    {
        if (PartView::subType(parts[i]) == partType)
            result.append(parts[i]);
    }
    return result.size() > 0;
}
