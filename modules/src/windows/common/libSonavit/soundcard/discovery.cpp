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
        static_cast<void>(card.release()); // the caller's, now that the list has it
    }
}

qor::Array<SoundCard> SoundCard::enumerateSystemSoundDevices()
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::enumerateSystemSoundDevices");
    qor::OrderedHashTable<qor::String, SoundCard> deviceTable(32);
    const libSonavit::EndpointDeviceEnumerator enumerator;
    if (!enumerator.isInitialized())
    {
        SONAVIT_LOG(soundcardlog, LOG_WARNING, out.append("Faild to initialize endpoint device enumerator"));
        return qor::Array<SoundCard>();
    }
    // The record side goes first, and a card stands where its first endpoint came up: so cards with a record endpoint
    // are ahead of all others, an order that callers count on.
    for (const EDataFlow flow : {eCapture, eRender})
    {
        qor::Array<AudioDevice> devices;
        const unsigned int count = enumerator.audioDevices(flow, devices);
        for (unsigned int i = 0; i < count; ++i)
            enumerateSystemSoundDevices(devices[i], flow, deviceTable);
    }
    // Only now: the map of a card needs its endpoints of both flows.
    for (unsigned int i = 0; i < deviceTable.size(); ++i)
        deviceTable.values()[i].initializeConnectorMap();
    return deviceTable.values();
}

/// Files an endpoint under its card, which is made if it is the first of its instance path. The path is compared as it
/// is, and an empty one is a path like any other.
void SoundCard::enumerateSystemSoundDevices(const AudioDevice& audioDevice, EDataFlow dataFlow,
                                            qor::OrderedHashTable<qor::String, SoundCard>& deviceTable)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::enumerateSystemSoundDevices(const AudioDevice& audioDevice, EDataFlow "
                                "dataFlow, OrderedHashTable<String, SoundCard>& deviceTable)");
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
        // The instance id is asked for anew each time, and a card that has none warns each time: readers of the log
        // count on every one of these lines.
        qor::String parent;
        if (libOSWindows::ConfigManager::getParentDeviceInstanceId(candidate.instanceId(), parent))
            SONAVIT_LOG(soundcardlog, LOG_INFO, out.append("Parent device id = ").append(parent).append(" device id =").append(candidate.instanceId()));
        else
            SONAVIT_LOG(soundcardlog, LOG_WARNING, out.append("Unable to get parent id from the child id ").append(candidate.instanceId()));
        SONAVIT_LOG(soundcardlog, LOG_INFO, out.append(candidate.instanceId()));
        SONAVIT_LOG(soundcardlog, LOG_INFO, out.append(id));
        // A card without a parent is a candidate like the others: its parent reads as the empty text.
        if (qor::String::compareNoCase(candidate.instanceId(), id) == 0 || qor::String::compareNoCase(id, parent) == 0)
        {
            card = candidate;
            return true;
        }
    }
    return false;
}
