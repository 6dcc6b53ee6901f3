#include "libSonavit/soundcard.h"

#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcardupdater.h"
#include "tests/libSonavit/soundcard/supportcards.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

using qor::LoggerPriority;
using support::namesOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
struct CreateSoundCard : support::LibraryTest
{
    /// Adds a card of that instance id with one speaker of that name.
    void addCard(const std::string& name, const std::string& instanceId)
    {
        builder.card(name, instanceId).speaker(name);
    }

    void addParent(const std::string& instanceId, const std::string& parent)
    {
        builder.machine().deviceInstances.push_back({instanceId, parent});
    }

    /// Starts the machine and creates a card as the target of the assignment; the log begins after that.
    SoundCard runAndMakeTarget()
    {
        run(support::withoutGuids(builder.build()));
        SoundCard target;
        log.clear();
        return target;
    }

    static std::size_t clients()
    {
        return libSonavit::AudioDeviceEnumeratorFactory::enumerator()->m_notificationClients.size();
    }

    sim::MachineBuilder builder;
};
}

TEST_F(CreateSoundCard, FindsACardByItsInstanceIdWithoutRegardToCase)
{
    addCard("First", "USB\\VID_0001\\1");
    addCard("Second", "USB\\VID_0002\\2");
    SoundCard card = runAndMakeTarget();

    EXPECT_TRUE(SoundCard::createSoundCard("usb\\vid_0002\\2", card));

    EXPECT_EQ(qor::String("{1}.USB\\VID_0002\\2"), card.deviceId());
    EXPECT_THAT(namesOf(*card.m_playbackDevices), ElementsAre("Second"));
    EXPECT_EQ("SoundCard::createSoundCard", log.entered(channels::soundCard)[0]);
}

TEST_F(CreateSoundCard, HandsOutACardWithItsMap)
{
    addCard("Codec", "USB");
    SoundCard card = runAndMakeTarget();

    EXPECT_TRUE(SoundCard::createSoundCard("USB", card));

    EXPECT_EQ(3u, card.m_connectorMap.size());
    EXPECT_EQ(1u, card.m_internalDevices->size());
}

TEST_F(CreateSoundCard, TakesTheFirstOfTwoCardsOfOneInstanceId)
{
    addCard("First", "USB");
    builder.card("Second", "USB2")
        .speaker("Second")
        .property(sim::keys::instancePath, sim::PropertyValue::ofText("{2}.USB"));
    SoundCard card = runAndMakeTarget();

    EXPECT_TRUE(SoundCard::createSoundCard("USB", card));

    EXPECT_EQ(qor::String("{1}.USB"), card.deviceId());
}

TEST_F(CreateSoundCard, LeavesTheCardAloneForAnUnknownIdAndHasAddedItsClientsAllTheSame)
{
    addCard("First", "USB1");
    addCard("Second", "USB2");
    SoundCard card = runAndMakeTarget();
    const COMPtr<SoundCard::SoundCardDeviceUpdater>::pointer updater = card.m_updater;

    EXPECT_FALSE(SoundCard::createSoundCard("USB3", card));

    EXPECT_EQ(updater.get(), card.m_updater.get());
    EXPECT_EQ(qor::String(), card.deviceId());
    EXPECT_EQ(3u, clients()); // one of the card itself, and one of each card that was enumerated
    EXPECT_EQ(3, simulation().census().clients.at("IMMNotificationClient"));
}

TEST_F(CreateSoundCard, BuildsAllCardsAnewAtEachCall)
{
    addCard("First", "USB1");
    addCard("Second", "USB2");
    SoundCard card = runAndMakeTarget();

    SoundCard::createSoundCard("USB1", card);
    SoundCard::createSoundCard("USB1", card);

    EXPECT_EQ(5u, clients());
}

TEST_F(CreateSoundCard, MatchesAnEmptyIdWithACardWithoutAnInstanceId)
{
    addCard("First", "USB1");
    builder.card("Second", "USB2").speaker("Second").withoutProperty(sim::keys::instancePath);
    addParent("USB1", "HUB");
    SoundCard card = runAndMakeTarget();

    EXPECT_TRUE(SoundCard::createSoundCard("", card));

#if !defined(_WIN32) // where the first card has no parent, which reads as empty
    EXPECT_THAT(namesOf(*card.m_playbackDevices), ElementsAre("Second"));
#endif
}

TEST_F(CreateSoundCard, MatchesAnEmptyIdWithACardWithoutAParent)
{
    addCard("Orphan", "NOWHERE\\ORPHAN\\1");
    SoundCard card = runAndMakeTarget();

    EXPECT_TRUE(SoundCard::createSoundCard("", card));

    EXPECT_EQ(qor::String("{1}.NOWHERE\\ORPHAN\\1"), card.deviceId());
}

TEST_F(CreateSoundCard, ReportsACardWithoutAParentAndTestsItAllTheSame)
{
    addCard("Orphan", "NOWHERE\\ORPHAN\\1");
    SoundCard card = runAndMakeTarget();

    EXPECT_TRUE(SoundCard::createSoundCard("nowhere\\orphan\\1", card));

    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING, channels::soundCard),
                ElementsAre("Unable to get parent id from the child id NOWHERE\\ORPHAN\\1"));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channels::soundCard),
                ElementsAre("NOWHERE\\ORPHAN\\1", "nowhere\\orphan\\1"));
}

TEST_F(CreateSoundCard, StopsAtTheMatch)
{
    addCard("First", "NOWHERE\\1");
    addCard("Second", "NOWHERE\\2");
    SoundCard card = runAndMakeTarget();

    EXPECT_TRUE(SoundCard::createSoundCard("NOWHERE\\1", card));

    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING, channels::soundCard),
                ElementsAre("Unable to get parent id from the child id NOWHERE\\1"));
}

TEST_F(CreateSoundCard, AsksForTheInstanceIdAnewAtEachUse)
{
    builder.card("Codec", "USB").speaker().withoutProperty(sim::keys::instancePath);
    SoundCard card = runAndMakeTarget();

    EXPECT_FALSE(SoundCard::createSoundCard("USB", card));

    const char* const unrecognized = "Unrecognized device id format ";
    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING, channels::soundCard),
                ElementsAre(unrecognized,                                 // for the question for the parent
                            unrecognized,                                 // for the text that says it has none
                            "Unable to get parent id from the child id ", //
                            unrecognized,                                 // for the text of the id alone
                            unrecognized));                               // for the comparison
}

#if !defined(_WIN32) // there the system's own device tree is asked, which knows nothing of the machine

TEST_F(CreateSoundCard, FindsACardByItsParentWithoutRegardToCase)
{
    addCard("First", "USB1");
    addCard("Second", "USB2");
    addParent("USB1", "HUB1");
    addParent("USB2", "HUB2");
    SoundCard card = runAndMakeTarget();

    EXPECT_TRUE(SoundCard::createSoundCard("hub2", card));

    EXPECT_EQ(qor::String("{1}.USB2"), card.deviceId());
}

TEST_F(CreateSoundCard, TakesTheFirstOfTwoCardsOfOneParent)
{
    addCard("First", "USB1");
    addCard("Second", "USB2");
    addParent("USB1", "HUB");
    addParent("USB2", "HUB");
    SoundCard card = runAndMakeTarget();

    EXPECT_TRUE(SoundCard::createSoundCard("HUB", card));

    EXPECT_EQ(qor::String("{1}.USB1"), card.deviceId());
}

TEST_F(CreateSoundCard, LogsParentAndInstanceIdOfEachCardItLooksAt)
{
    addCard("First", "USB1");
    addCard("Second", "USB2");
    addParent("USB1", "HUB1");
    addParent("USB2", "HUB2");
    SoundCard card = runAndMakeTarget();

    EXPECT_FALSE(SoundCard::createSoundCard("USB3", card));

    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channels::soundCard),
                ElementsAre("Parent device id = HUB1 device id =USB1", "USB1", "USB3",
                            "Parent device id = HUB2 device id =USB2", "USB2", "USB3"));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING, channels::soundCard), IsEmpty());
}

TEST_F(CreateSoundCard, AsksForTheParentOfEachInstanceIdOnce)
{
    addCard("First", "USB1");
    addCard("Second", "USB2");
    SoundCard card = runAndMakeTarget();

    SoundCard::createSoundCard("USB3", card);

    EXPECT_THAT(simulation().journal().of("getParentDeviceInstanceId").calls(),
                ElementsAre("getParentDeviceInstanceId(USB1)", "getParentDeviceInstanceId(USB2)"));
}

TEST_F(CreateSoundCard, DoesNotTakeTheParentOfOneCardForThatOfTheNext)
{
    addCard("First", "USB1");
    addCard("Second", "USB2");
    addParent("USB1", "HUB");
    SoundCard card = runAndMakeTarget();

    EXPECT_TRUE(SoundCard::createSoundCard("", card)); // the second card's parent reads as empty

    EXPECT_EQ(qor::String("{1}.USB2"), card.deviceId());
}

#endif
