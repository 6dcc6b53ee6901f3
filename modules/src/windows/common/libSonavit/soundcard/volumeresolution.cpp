#include "libSonavit/soundcard.h"

#include "COM/identifiers.h"
#include "libSonavit/soundcard/listsearch.h"
#include "libSonavit/soundcard/log.h"

namespace
{
typedef unsigned int (AudioPart::*Side)(qor::Array<AudioPart>& list);

/// The parts next to @p part on one side. An empty part, as of a connector that is none, has no neighbours.
qor::Array<AudioPart> neighbours(const AudioPart& part, Side side)
{
    qor::Array<AudioPart> list;
    if (part.part().get() == nullptr)
        return list;
    AudioPart walked(part); // a walk writes down in its part what it finds
    (walked.*side)(list);
    return list;
}

/// The mute of the part, or nil if it gives none.
COMPtr<IAudioMute>::pointer activateMute(const AudioPart& part)
{
    void* mute = nullptr;
    if (FAILED(part.part()->Activate(CLSCTX_ALL, IID_IAudioMute, &mute)))
        return nullptr;
    return static_cast<IAudioMute*>(mute);
}
}

// The label names another class; readers of the log know it as it is.
unsigned int SoundCard::volumeController(const AudioDevice& endpoint, qor::Array<VolumeController>& result) const
{
    SONAVIT_TRACE(soundcardlog, "EndpointDeviceEnumeratorCommon::volumeController(const AudioDevice& endpoint)");
    const AudioDeviceTopology topology(endpoint.deviceTopology());
    const qor::Array<AudioComponent<IConnector>> connectors = topology.connector();
    result.clear();
    qor::Array<unsigned int> queue; // nothing is taken out, so it is the set of visited nodes as well
    for (unsigned int position = 0; position < connectors.size(); ++position)
    {
        const unsigned int index = nodeIndex(connectors[position]);
        // It is the position that is tested, not the index. So a connector that is not in the map is queued as well,
        // and the walk below raises IndexOutOfBounds for it, which is what callers expect of an endpoint that came by
        // hot plug.
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

/// A caller that holds only the interface gets no controllers from it.
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
    const qor::Array<AudioPart> incoming = neighbours(connector.part(), &AudioPart::incomingPartsList);
    const qor::Array<AudioPart> outgoing = neighbours(connector.part(), &AudioPart::outgoingPartsList);
    if (volumeControllerFromList(incoming, connector, result))
        return true;
    return volumeControllerFromList(outgoing, connector, result);
}

/// @return whether the list has a volume node, whether or not a control came of it
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
        VolumeController controller; // before the activation, so that nothing stands between that and the handle
        void* level = nullptr;
        if (FAILED(volumeParts[i].part()->Activate(CLSCTX_ALL, IID_IAudioVolumeLevel, &level)))
            continue;
        controller.volumeLevel = static_cast<IAudioVolumeLevel*>(level);
        controller.ownerType = connector.subType();
        controller.ownerName = connector.name();

        qor::Array<AudioPart> incoming;
        qor::Array<AudioPart> outgoing;
        volumeParts[i].incomingPartsList(incoming);
        volumeParts[i].outgoingPartsList(outgoing);
        qor::Array<AudioPart> muteParts;
        if (partFromList(incoming, KSNODETYPE_MUTE, muteParts) || partFromList(outgoing, KSNODETYPE_MUTE, muteParts))
            controller.mute = activateMute(muteParts[0]); // of several, the first one counts
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
