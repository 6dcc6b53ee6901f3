#include "libSonavit/soundcard.h"

#include "COM/identifiers.h"
#include "libSonavit/soundcard/listsearch.h"
#include "libSonavit/soundcard/log.h"
#include "libSonavit/soundcard/pendingreference.h"

namespace
{
typedef unsigned int (AudioPart::*Side)(qor::Array<AudioPart>& list);

/// Fills the empty @p list with the parts next to @p part on one side. An empty part, which is that of a connector
/// without an IPart, leaves the list empty.
void readNeighbours(const AudioPart& part, Side side, qor::Array<AudioPart>& list)
{
    if (part.part().get() == nullptr)
        return;
    AudioPart walked(part); // the walk stores its result in the part, too
    (walked.*side)(list);
}

/// The control of the part, or nil if the part has none. A pointer along with a failure code is ignored.
/// @tparam I the interface of the control
template<class I>
typename COMPtr<I>::pointer activate(const AudioPart& audioPart, const IID& iid)
{
    PendingReference<I> control;
    {
        const COMPtr<IPart>::pointer part = audioPart.part();
        void* object = nullptr;
        if (SUCCEEDED(part->Activate(CLSCTX_ALL, iid, &object)))
            control.adopt(static_cast<I*>(object));
    }
    return control.take();
}
}

// Required behaviour: the label names another class; readers of the log match it.
unsigned int SoundCard::volumeController(const AudioDevice& endpoint, qor::Array<VolumeController>& result) const
{
    SONAVIT_TRACE(soundcardlog, "EndpointDeviceEnumeratorCommon::volumeController(const AudioDevice& endpoint)");
    COMPtr<IDeviceTopology>::pointer handle = endpoint.deviceTopology();
    const AudioDeviceTopology topology(handle);
    handle = nullptr; // released by a statement of its own: if Release throws, the snapshot is released, too
    const qor::Array<AudioComponent<IConnector>> connectors = topology.connector();
    result.clear();
    qor::Array<unsigned int> queue; // nothing is removed from it, so it is the set of visited nodes, too
    for (unsigned int position = 0; position < connectors.size(); ++position)
    {
        const unsigned int index = nodeIndex(connectors[position]);
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
        {
            if (!queue.contains(node.links[link]))
                queue.append(node.links[link]);
        }
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
    readNeighbours(connector.part(), &AudioPart::incomingPartsList, incoming);
    readNeighbours(connector.part(), &AudioPart::outgoingPartsList, outgoing);
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
    qor::Array<AudioPart> volumeParts;
    if (!partFromList(parts, KSNODETYPE_VOLUME, volumeParts))
    {
        SONAVIT_LOG(soundcardlog, LOG_INFO, out.append("Supplied part list does not have a volume controller node"));
        return false;
    }
    for (unsigned int i = 0; i < volumeParts.size(); ++i)
    {
        VolumeController controller;
        controller.volumeLevel = activate<IAudioVolumeLevel>(volumeParts[i], IID_IAudioVolumeLevel);
        if (controller.volumeLevel.get() == nullptr)
            continue;
        controller.ownerType = connector.subType();
        controller.ownerName = connector.name();

        qor::Array<AudioPart> incoming;
        qor::Array<AudioPart> outgoing;
        volumeParts[i].incomingPartsList(incoming);
        volumeParts[i].outgoingPartsList(outgoing);
        qor::Array<AudioPart> muteParts;
        if (partFromList(incoming, KSNODETYPE_MUTE, muteParts) || partFromList(outgoing, KSNODETYPE_MUTE, muteParts))
            controller.mute = activate<IAudioMute>(muteParts[0], IID_IAudioMute); // only the first of several
        result.append(controller);
    }
    return true;
}

/// Replaces @p result by the parts of type @p partType. @return whether there are any
bool SoundCard::partFromList(const qor::Array<AudioPart>& parts, const GUID& partType,
                             qor::Array<AudioPart>& result) const
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::partFromList");
    result.clear();
    for (unsigned int i = 0; i < parts.size(); ++i)
    {
        if (parts[i].subType() == partType)
            result.append(parts[i]);
    }
    return result.size() > 0;
}
