#include "tests/hostile/library/usage.h"

#include "libSonavit/sysinfohelper.h"
#include "libSonavit/volumechangenotification.h"
#include "libSonavit/volumecontroller.h"
#include "qor/exception.h"
#include "simulator/machine/propertykeys.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace hostile
{
namespace
{
using RegularController = VolumeController<RegularVolumeController>;
using Endpoints = qor::Array<AudioDevice>;

/// Calls @p use with each list of endpoints of each card.
template<class Use>
void onEachList(qor::Array<SoundCard>& cards, const Use& use)
{
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        use(cards[i], *cards[i].m_playbackDevices);
        use(cards[i], *cards[i].m_recordDevices);
    }
}

/// Calls @p use with each endpoint that the platform has handed out.
template<class Use>
void onEachEndpoint(qor::Array<SoundCard>& cards, const Use& use)
{
    onEachList(cards,
               [&](SoundCard&, Endpoints& endpoints)
               {
                   for (unsigned int i = 0; i < endpoints.size(); ++i)
                   {
                       if (endpoints[i].isInitialized())
                           use(endpoints[i]);
                   }
               });
}

/// Whether the platform has given the controller of an endpoint something to control.
bool hasPlatformsVolume(const VolumeControllerInterface* volume)
{
    const auto* const controller = static_cast<const VolumeController<EndpointVolumeController>*>(volume);
    return controller != nullptr && controller->m_policy.endpointVolume.get() != nullptr;
}

void show(std::ostream& out, const Endpoints& endpoints)
{
    for (const AudioDevice& endpoint : endpoints)
    {
        const AudioDeviceInterface::Properties& properties = endpoint.deviceProperty();
        out << "  " << properties.deviceId.toUtf8() << " | " << properties.endpointType.toUtf8() << " | "
            << properties.friendlyName.toUtf8() << " | " << properties.instancePath.toUtf8() << " | "
            << properties.deviceState << " | " << properties.speakerConfig << " | "
            << properties.format.Format.nSamplesPerSec << "\n";
    }
}

/// No endpoint is twice in a card, whatever the case of its id.
void expectEachOnce(SoundCard& card)
{
    std::vector<qor::String> ids;
    for (const Endpoints* const endpoints : {card.m_playbackDevices.get(), card.m_recordDevices.get()})
    {
        for (unsigned int i = 0; i < endpoints->size(); ++i)
        {
            const qor::String& id = (*endpoints)[i].deviceProperty().deviceId;
            const auto isSame = [&](const qor::String& other) { return qor::String::compareNoCase(id, other) == 0; };
            EXPECT_TRUE(std::none_of(ids.begin(), ids.end(), isSame)) << id.toUtf8().substr(0, 100);
            ids.push_back(id);
        }
    }
}

/// Reads and sets the first channel of a control; the platform decides what it takes.
void useController(VolumeControllerInterface& controller)
{
    VolumeControllerInterface::DbVolumeRange range = {};
    controller.volumeRangeDecibel(0, range);
    const float level = controller.volumeLevelDecibel(0);
    controller.volumeLevelPercent(0);
    controller.masterVolumeLevelDecibel();
    controller.setVolumeLevelDecibel(0, level);
    controller.setVolumeLevelPercent(0, 50);
    if (controller.numChannel() > 0)
        controller.masterVolumeLevelPercent();
}

void useRecord(const SoundCard::VolumeController& record)
{
    RegularVolumeController policy;
    policy.volumeLevel = record.volumeLevel;
    policy.mute = record.mute;
    policy.ownerType = record.ownerType;
    policy.ownerName = record.ownerName;
    RegularController controller(policy);
    EXPECT_TRUE(controller.hasVolumeControl());
    useController(controller);
    if (controller.hasMuteControl())
        controller.setMute(controller.isMuted());
}

void walkFrom(const AudioComponent<IConnector>& connector)
{
    AudioPart part = connector.part();
    if (part.part().get() == nullptr)
        return;
    qor::Array<AudioPart> neighbours;
    EXPECT_EQ(part.incomingPartsList(neighbours), neighbours.size());
    qor::Array<AudioPart> fed;
    EXPECT_EQ(part.outgoingPartsList(fed), fed.size());
    connector.deviceOwner();
}
}

qor::Array<SoundCard> findCards()
{
    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        expectEachOnce(cards[i]);
        for (unsigned int j = 0; j < i; ++j)
            EXPECT_FALSE(cards[i].deviceId() == cards[j].deviceId());
    }
    return cards;
}

void askCards(qor::Array<SoundCard>& cards)
{
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        Endpoints found;
        const unsigned int count = cards[i].microphoneEndpointDevice(found) + cards[i].waveOutEndpointDevice(found) +
                                   cards[i].lineInEndpointDevice(found) + cards[i].spdifInEndpointDevice(found) +
                                   cards[i].spdifOutEndpointDevice(found) +
                                   cards[i].allPlaybackDevice(found, 0xFFFFFFFF);
        EXPECT_EQ(count, found.size());
        qor::Array<COMPtr<IAudioInputSelector>::pointer> selectors;
        EXPECT_EQ(cards[i].recordingMux(selectors), selectors.size());
        cards[i].instanceId();
    }
    onEachEndpoint(cards,
                   [](AudioDevice& endpoint)
                   {
                       endpoint.refreshDeviceState();
                       endpoint.waveLegacyDeviceID();
                       const SharedPointer<VolumeControllerInterface> volume = endpoint.volumeControl();
                       if (hasPlatformsVolume(volume.get()))
                           useController(*volume);
                   });
}

void findControls(const qor::Array<SoundCard>& cards)
{
    qor::Array<SoundCard> all(cards);
    onEachList(all,
               [](SoundCard& card, Endpoints& endpoints)
               {
                   for (unsigned int i = 0; i < endpoints.size(); ++i)
                   {
                       qor::Array<SoundCard::VolumeController> controls;
                       try
                       {
                           EXPECT_EQ(card.volumeController(endpoints[i], controls), controls.size());
                       }
                       catch (const qor::IndexOutOfBounds&)
                       {
                           continue; // a connector of the endpoint, or behind it, is not in the graph
                       }
                       for (unsigned int j = 0; j < controls.size(); ++j)
                           useRecord(controls[j]);
                   }
               });
}

void walkParts(qor::Array<SoundCard>& cards)
{
    onEachEndpoint(cards,
                   [](AudioDevice& endpoint)
                   {
                       qor::Array<AudioComponent<IConnector>> connectors;
                       EXPECT_EQ(endpoint.connector(connectors), connectors.size());
                       constexpr unsigned int some = 10;
                       for (unsigned int i = 0; i < std::min(connectors.size(), some); ++i)
                           walkFrom(connectors[i]);
                   });
}

void writeFormats(qor::Array<SoundCard>& cards)
{
    onEachEndpoint(cards,
                   [](AudioDevice& endpoint)
                   {
                       if (endpoint.m_propertyStore.get() != nullptr)
                           endpoint.setFormat(WAVEFORMATEXTENSIBLE(endpoint.deviceProperty().format));
                   });
}

void findById(qor::Array<SoundCard>& cards)
{
    CoInitialize(nullptr); // the helper takes one away
    libSonavit::SysInfoHelper helper;
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        const qor::String id = cards[i].instanceId();
        SoundCard found;
        const qor::String before = found.deviceId();
        if (!SoundCard::createSoundCard(id, found))
            EXPECT_EQ(before.toUtf8(), found.deviceId().toUtf8()); // not there, and unchanged
        helper.hasAnalogOut(id);
        helper.hasDigitalOut(id);
        helper.hasLineIn(id);
        helper.hasMicIn(id);
    }
}

void askForDefaultsAndChanges(qor::Array<SoundCard>& cards)
{
    onEachEndpoint(cards,
                   [](AudioDevice& endpoint)
                   {
                       endpoint.isDefaultEndpoint();
                       const SharedPointer<VolumeControllerInterface> volume = endpoint.volumeControl();
                       if (volume.get() == nullptr)
                           return;
                       const COMPtr<VolumeChangeNotification>::pointer notification(new VolumeChangeNotification);
                       const bool isRegistered = volume->registerVolumeChangeNotification(notification);
                       if (!hasPlatformsVolume(volume.get()))
                           EXPECT_FALSE(isRegistered);
                       else
                           useController(*volume);
                   });
}

std::string portraitOf(const qor::Array<SoundCard>& cards)
{
    std::ostringstream out;
    for (const SoundCard& card : cards)
    {
        out << card.deviceId().toUtf8() << "\n";
        show(out, *card.m_recordDevices);
        show(out, *card.m_playbackDevices);
        for (const SoundCard::ConnectorNode& node : card.m_connectorMap)
        {
            out << "  joined to";
            for (const unsigned int link : node.links)
                out << " " << link;
            out << "\n";
        }
    }
    return out.str();
}

void announceEverything(sim::Simulation& simulation)
{
    std::vector<sim::Text> ids = {std::nullopt, "", "{unknown}", std::string(0x10000, 'x')};
    for (const sim::Endpoint& endpoint : simulation.machine().endpoints)
        ids.emplace_back(endpoint.id);
    for (const sim::Text& id : ids)
    {
        simulation.events().announceAdded(id);
        simulation.events().announceState(id, 0xFFFFFFFF);
        simulation.events().announceProperty(id, sim::keys::friendlyName);
        simulation.events().announceDefault(static_cast<EDataFlow>(77), static_cast<ERole>(77), id);
        simulation.events().announceRemoved(id);
    }
}
}
