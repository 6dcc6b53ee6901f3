#include "libSonavit/soundcard.h"

#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcardupdater.h"
#include "tests/libSonavit/soundcard/supportcards.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

#include <memory>
#include <thread>

using libSonavit::AudioDeviceEnumeratorFactory;
using qor::LoggerPriority;
using support::namesOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* filingLabel =
    "SoundCard::enumerateSystemSoundDevices(const AudioDevice& audioDevice, EDataFlow dataFlow, "
    "OrderedHashTable<String, SoundCard>& deviceTable)";

struct SoundCardDiscovery : support::LibraryTest
{
    /// Starts the machine, without the strings that the library would not free.
    void runBuilt() { run(support::withoutGuids(builder.build())); }

    static std::vector<std::string> idsOf(const qor::Array<SoundCard>& cards)
    {
        std::vector<std::string> ids;
        for (unsigned int i = 0; i < cards.size(); ++i)
            ids.push_back(cards[i].deviceId().toUtf8());
        return ids;
    }

    sim::MachineBuilder builder;
};
}

TEST_F(SoundCardDiscovery, FindsNothingAndRegistersNothingOnAMachineWithoutEndpoints)
{
    run({});

    EXPECT_EQ(0u, SoundCard::enumerateSystemSoundDevices().size());

    EXPECT_EQ(nullptr, AudioDeviceEnumeratorFactory::m_enumerator.get());
    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING), IsEmpty());
    EXPECT_THAT(log.entered(channels::soundCard), ElementsAre("SoundCard::enumerateSystemSoundDevices"));
}

TEST_F(SoundCardDiscovery, GathersTheEndpointsOfOneInstancePathInOneCard)
{
    builder.card("First").microphone("First microphone");
    sim::CardBuilder second = builder.card("Second");
    second.speaker("Second speaker");
    second.microphone("Second microphone");
    runBuilt();

    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    ASSERT_EQ(2u, cards.size());
    EXPECT_EQ(second.instancePath(), cards[1].deviceId().toUtf8()); // its microphone comes before it
    EXPECT_THAT(namesOf(*cards[1].m_playbackDevices), ElementsAre("Second speaker"));
    EXPECT_THAT(namesOf(*cards[1].m_recordDevices), ElementsAre("Second microphone"));
    EXPECT_THAT(namesOf(*cards[0].m_playbackDevices), IsEmpty());
    EXPECT_THAT(namesOf(*cards[0].m_recordDevices), ElementsAre("First microphone"));
}

TEST_F(SoundCardDiscovery, PutsCardsWithRecordEndpointsFirst)
{
    const sim::CardBuilder playback = builder.card("Playback only");
    sim::CardBuilder(playback).speaker();
    const sim::CardBuilder record = builder.card("Record only");
    sim::CardBuilder(record).microphone();
    runBuilt();

    EXPECT_THAT(idsOf(SoundCard::enumerateSystemSoundDevices()),
                ElementsAre(record.instancePath(), playback.instancePath()));
}

TEST_F(SoundCardDiscovery, KeepsTheSystemsOrderWithinEachGroup)
{
    builder.card("P1", "p1").speaker();
    builder.card("R1", "r1").microphone();
    builder.card("P2", "p2").speaker();
    builder.card("R2", "r2").lineIn();
    runBuilt();

    EXPECT_THAT(idsOf(SoundCard::enumerateSystemSoundDevices()), ElementsAre("{1}.r1", "{1}.r2", "{1}.p1", "{1}.p2"));
}

TEST_F(SoundCardDiscovery, TakesEndpointsOfEveryState)
{
    sim::CardBuilder card = builder.card("Codec");
    card.speaker("Disabled").disabled();
    card.lineOut("Unplugged").unplugged();
    card.spdifOut("Not present").notPresent();
    runBuilt();

    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    ASSERT_EQ(1u, cards.size());
    EXPECT_THAT(namesOf(*cards[0].m_playbackDevices), ElementsAre("Disabled", "Unplugged", "Not present"));
}

TEST_F(SoundCardDiscovery, MakesTwoCardsOfPathsThatDifferInCase)
{
    builder.card("Upper", "USB").speaker();
    builder.card("Lower", "usb").speaker();
    runBuilt();

    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    ASSERT_EQ(2u, cards.size());
    EXPECT_TRUE(cards[0].operator==(static_cast<const SoundCard&>(cards[1])));
    EXPECT_FALSE(cards[0].operator==(static_cast<const SoundCardInterface&>(cards[1])));
}

TEST_F(SoundCardDiscovery, MakesTwoCardsOfPathsThatDifferInFrontOfTheDot)
{
    builder.card("First", "USB").speaker("First");
    builder.card("Second", "USB2")
        .speaker("Second")
        .property(sim::keys::instancePath, sim::PropertyValue::ofText("{2}.USB"));
    runBuilt();

    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    ASSERT_EQ(2u, cards.size());
    EXPECT_EQ(qor::String("USB"), cards[0].instanceId());
    EXPECT_EQ(qor::String("USB"), cards[1].instanceId());
}

TEST_F(SoundCardDiscovery, GathersEndpointsWithoutAPathInOneCardWithAnEmptyId)
{
    builder.card("First").speaker("First").withoutProperty(sim::keys::instancePath);
    builder.card("Second").microphone("Second").withoutProperty(sim::keys::instancePath);
    runBuilt();

    qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    ASSERT_EQ(1u, cards.size());
    EXPECT_THAT(namesOf(*cards[0].m_playbackDevices), ElementsAre("First"));
    EXPECT_THAT(namesOf(*cards[0].m_recordDevices), ElementsAre("Second"));
    EXPECT_EQ(qor::String(), cards[0].deviceId());
    log.clear();
    EXPECT_EQ(qor::String(), cards[0].instanceId());
    EXPECT_THAT(log.texts(channels::soundCard), ElementsAre("Unrecognized device id format "));
}

TEST_F(SoundCardDiscovery, FilesAnEndpointThatCannotBeHadUnderTheEmptyPath)
{
    builder.card("Codec").microphone();
    runBuilt();
    const sim::PlannedFault fault = simulation().faults().fail("IMMDeviceCollection::Item");

    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    EXPECT_EQ(1u, fault.fired());
    ASSERT_EQ(1u, cards.size());
    EXPECT_EQ(qor::String(), cards[0].deviceId());
    ASSERT_EQ(1u, cards[0].m_recordDevices->size());
    EXPECT_FALSE((*cards[0].m_recordDevices)[0].isInitialized());
}

TEST_F(SoundCardDiscovery, RefusesASecondEndpointOfOneId)
{
    sim::CardBuilder card = builder.card("Codec");
    const sim::EndpointBuilder speaker = card.speaker("Speakers");
    sim::Endpoint duplicate = speaker.endpoint();
    duplicate.id = "{0.0.0.00000000}.TWIN";
    duplicate.topology.reset();
    builder.machine().endpoints.push_back(duplicate);
    duplicate.id = "{0.0.0.00000000}.twin";
    builder.machine().endpoints.push_back(duplicate);
    runBuilt();

    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    ASSERT_EQ(1u, cards.size());
    EXPECT_THAT(support::idsOf(*cards[0].m_playbackDevices), ElementsAre(speaker.id(), "{0.0.0.00000000}.TWIN"));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_ERROR, channels::soundCard),
                ElementsAre("Cannot add duplicate device {0.0.0.00000000}.twin"));
}

TEST_F(SoundCardDiscovery, BuildsTheMapsOnlyWhenAllEndpointsAreFiled)
{
    sim::CardBuilder card = builder.card("Codec");
    card.speaker();
    card.microphone();
    builder.usbCard("Headset").headphones();
    runBuilt();

    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    std::vector<std::string> steps;
    for (const std::string& label : log.entered(channels::soundCard))
    {
        if (label == filingLabel || label == "SoundCard::initializeConnectorMap")
            steps.push_back(label);
    }
    EXPECT_THAT(steps, ElementsAre(filingLabel, filingLabel, filingLabel, "SoundCard::initializeConnectorMap",
                                   "SoundCard::initializeConnectorMap"));
    EXPECT_EQ(6u, cards[0].m_connectorMap.size()); // of the card that the caller gets
    EXPECT_EQ(3u, cards[1].m_connectorMap.size());
    EXPECT_EQ(1u, cards[0].m_internalDevices->size());
}

TEST_F(SoundCardDiscovery, RegistersOneClientForEachCard)
{
    builder.card("First").speaker();
    sim::CardBuilder second = builder.card("Second");
    second.speaker();
    second.microphone();
    runBuilt();

    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    EXPECT_EQ(2, simulation().census().clients.at("IMMNotificationClient"));
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        EXPECT_EQ(2u, comReferenceCount(cards[i].m_updater.get())); // the card's and the enumerator's
        EXPECT_EQ(cards[i].m_deviceId.get(), cards[i].m_updater->m_ownerId.get());
    }
}

TEST_F(SoundCardDiscovery, RaisesWhereTheTableOfCardsIsInconsistent)
{
    run({});
    qor::OrderedHashTable<qor::String, SoundCard> table(32);
    table.m_index.insert("", 5u); // an index without a card
    const AudioDevice endpoint;

    EXPECT_THROW(SoundCard::enumerateSystemSoundDevices(endpoint, eRender, table), qor::IndexOutOfBounds);

    EXPECT_EQ(0u, table.values().size());
}

TEST_F(SoundCardDiscovery, ReportsThatThereIsNoEnumerator)
{
    builder.card("Codec").speaker();
    runBuilt();
    const sim::PlannedFault fault = simulation().faults().fail("CoCreateInstance");
    qor::Array<BorrowedPointer<SoundCardInterface>> cards;
    SoundCard card;
    log.clear();
    const std::uint32_t before = fault.fired();

    EXPECT_EQ(0u, SoundCard::enumerateSystemSoundDevices().size());
    enumerateSoundCards(cards);
    EXPECT_EQ(0u, cards.size());
    EXPECT_FALSE(SoundCard::createSoundCard("USB", card));

    EXPECT_EQ(before + 3, fault.fired());
    const char* const text = "Faild to initialize endpoint device enumerator";
    EXPECT_THAT(log.texts(channels::soundCard), ElementsAre(text, text, text));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING, channels::soundCard), ElementsAre(text, text, text));
}

TEST_F(SoundCardDiscovery, FindsNothingOnAThreadWithoutCom)
{
    builder.card("Codec").speaker();
    runBuilt();
    unsigned int found = 1;

    std::thread([&] { found = SoundCard::enumerateSystemSoundDevices().size(); }).join();

    EXPECT_EQ(0u, found);
    EXPECT_THAT(log.texts(channels::soundCard), ElementsAre("Faild to initialize endpoint device enumerator"));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_ERROR), ElementsAre("CoCreateInstance returns 0x800401F0"));
    EXPECT_EQ(nullptr, AudioDeviceEnumeratorFactory::m_enumerator.get()); // which would have initialised COM
}

#if !defined(_WIN32) // there an apartment's enumerator is not another one's
TEST_F(SoundCardDiscovery, FindsTheCardsOnAThreadThatTheSharedEnumeratorHasGivenCom)
{
    builder.card("Codec").speaker();
    runBuilt();
    unsigned int found = 0;

    std::thread(
        [&]
        {
            AudioDeviceEnumeratorFactory::enumerator();
            found = SoundCard::enumerateSystemSoundDevices().size();
            endModule();
        })
        .join();

    EXPECT_EQ(1u, found);
}
#endif

TEST_F(SoundCardDiscovery, ShowsAnArrivalToEarlierCopiesButNotInTheirMaps)
{
    sim::CardBuilder card = builder.card("Codec");
    card.speaker("Speakers");
    const sim::EndpointBuilder later = card.headphones("Headphones").notInstalled();
    runBuilt();
    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    const SoundCard copy(cards[0]);
    const unsigned int nodes = copy.m_connectorMap.size();

    simulation().events().add(later.id());

    EXPECT_THAT(namesOf(*copy.m_playbackDevices), ElementsAre("Speakers", "Headphones"));
    EXPECT_EQ(nodes, copy.m_connectorMap.size());
    EXPECT_EQ(nodes, cards[0].m_connectorMap.size());
}
