#include "libSonavit/soundcard.h"

#include "OSWindows/configmanager.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcard/log.h"

#include <memory>

void enumerateSoundCards(qor::Array<BorrowedPointer<SoundCardInterface>>& cards)
{
    SONAVIT_TRACE(soundcardlog, "enumerateSoundCards");
    const qor::Array<SoundCard> found = SoundCard::enumerateSystemSoundDevices();
    for (unsigned int i = 0; i < found.size(); ++i)
    {
        auto card = std::make_unique<SoundCard>(found[i]);
        cards.append(BorrowedPointer<SoundCardInterface>(card.get()));
        static_cast<void>(card.release()); // the caller owns it, now that the list contains it
    }
}

qor::Array<SoundCard> SoundCard::enumerateSystemSoundDevices()
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::enumerateSystemSoundDevices");
    qor::Array<SoundCard> cards;
    { // Table and enumerator end before the return: compilers leak a returned value if a destructor behind it throws.
        qor::OrderedHashTable<qor::String, SoundCard> deviceTable(32);
        const libSonavit::EndpointDeviceEnumerator enumerator;
        if (!enumerator.isInitialized())
        {
            SONAVIT_LOG(soundcardlog, LOG_WARNING, out.append("Faild to initialize endpoint device enumerator"));
            return cards;
        }
        // The record side comes first, and cards keep the order of their first endpoints. Cards with a record endpoint
        // thus precede all others; callers rely on that order.
        for (const EDataFlow flow : {eCapture, eRender})
        {
            qor::Array<AudioDevice> devices;
            const unsigned int count = enumerator.audioDevices(flow, devices);
            for (unsigned int i = 0; i < count; ++i)
                enumerateSystemSoundDevices(devices[i], flow, deviceTable);
        }
        // Not earlier: the map of a card needs the endpoints of both flows.
        for (unsigned int i = 0; i < deviceTable.size(); ++i)
            deviceTable.values()[i].initializeConnectorMap();
        appendWithTheirMaps(deviceTable.values(), cards);
    }
    return cards;
}

/// Appends copies of @p cards to the empty @p result. Each copy takes the map of its original, which ends next.
void SoundCard::appendWithTheirMaps(qor::Array<SoundCard>& cards, qor::Array<SoundCard>& result)
{
    result.ensureCapacity(cards.capacity());
    for (SoundCard& card : cards)
    {
        qor::Array<ConnectorNode> map;
        map.swap(card.m_connectorMap);
        result.append(card);
        result[result.size() - 1].m_connectorMap.swap(map);
    }
}

/// Adds an endpoint to its card, and creates the card for the first endpoint of an instance path. Paths are compared
/// exactly, case included; the empty path is a path like any other.
void SoundCard::enumerateSystemSoundDevices(const AudioDevice& audioDevice, EDataFlow dataFlow,
                                            qor::OrderedHashTable<qor::String, SoundCard>& deviceTable)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::enumerateSystemSoundDevices(const AudioDevice& audioDevice, EDataFlow dataFlow, OrderedHashTable<String, SoundCard>& deviceTable)");
    const AudioDeviceInterface::Properties& properties = audioDevice.deviceProperty();
    const qor::String& path = properties.instancePath;
    if (deviceTable.contains(path))
    {
        deviceTable[path].addEndpointDevice(dataFlow, audioDevice);
        return;
    }
    SoundCard card;
    *card.m_deviceId = path;
    card.addEndpointDevice(dataFlow, audioDevice);
    if (!deviceTable.contains(path))
        deviceTable.insert(path, card);
}

bool SoundCard::createSoundCard(const qor::String& id, SoundCard& card)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::createSoundCard");
    qor::Array<SoundCard> cards = enumerateSystemSoundDevices();
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        SoundCard& candidate = cards[i];
        // Required behaviour: each use calls instanceId() again, which logs a warning each time if the card has none.
        // Readers of the log count these records.
        qor::String parent;
        if (libOSWindows::ConfigManager::getParentDeviceInstanceId(candidate.instanceId(), parent))
            SONAVIT_LOG(soundcardlog, LOG_INFO, out.append("Parent device id = ").append(parent).append(" device id =").append(candidate.instanceId()));
        else
            SONAVIT_LOG(soundcardlog, LOG_WARNING, out.append("Unable to get parent id from the child id ").append(candidate.instanceId()));
        SONAVIT_LOG(soundcardlog, LOG_INFO, out.append(candidate.instanceId()));
        SONAVIT_LOG(soundcardlog, LOG_INFO, out.append(id));
        // Required behaviour: a card without a parent is compared, too. Its parent is the empty string.
        if (qor::String::compareNoCase(candidate.instanceId(), id) == 0 || qor::String::compareNoCase(id, parent) == 0)
        {
            card = candidate;
            return true;
        }
    }
    return false;
}
