#include "libSonavit/soundcard.h"

#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcardupdater.h"
#include "tests/libSonavit/soundcard/supportcards.h"
#include "tests/support/librarytest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
typedef qor::Array<BorrowedPointer<SoundCardInterface>> Cards;

/// A machine with two cards, the second of which has two endpoints.
struct EnumerateSoundCards : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        sim::MachineBuilder builder;
        builder.card("First", "first").microphone();
        sim::CardBuilder second = builder.card("Second", "second");
        second.speaker();
        second.headphones();
        machine = builder.build();
    }

    static std::vector<std::string> idsOf(const Cards& cards)
    {
        std::vector<std::string> ids;
        for (unsigned int i = 0; i < cards.size(); ++i)
            ids.push_back(cards[i]->deviceId().toUtf8());
        return ids;
    }

    /// Deletes the cards, as the caller of enumerateSoundCards() does.
    static void deleteAll(Cards& cards)
    {
        for (unsigned int i = 0; i < cards.size(); ++i)
            delete cards[i].get();
        cards.clear();
    }

    sim::Machine machine;
};
}

TEST_F(EnumerateSoundCards, AppendsEachCardOfTheSystemInOrder)
{
    run(support::withoutGuids(machine));
    Cards cards;

    enumerateSoundCards(cards);

    EXPECT_THAT(idsOf(cards), ElementsAre("{1}.first", "{1}.second"));
    EXPECT_EQ("enumerateSoundCards", log.entered()[0]);
    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_WARNING, "libSonavit.soundcard"), IsEmpty());
    deleteAll(cards);
}

TEST_F(EnumerateSoundCards, HasTwoRunsInAListThatIsGivenTwice)
{
    run(support::withoutGuids(machine));
    Cards cards;

    enumerateSoundCards(cards);
    enumerateSoundCards(cards);

    EXPECT_THAT(idsOf(cards), ElementsAre("{1}.first", "{1}.second", "{1}.first", "{1}.second"));
    EXPECT_NE(cards[0].get(), cards[2].get());
    EXPECT_EQ(4u, libSonavit::AudioDeviceEnumeratorFactory::enumerator()->m_notificationClients.size());
    deleteAll(cards);
}

TEST_F(EnumerateSoundCards, LeavesTheHeapCopiesAsTheOnlyHoldersApartFromTheUpdaters)
{
    run(support::withoutGuids(machine));
    Cards cards;

    enumerateSoundCards(cards);

    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        const auto& card = static_cast<const SoundCard&>(*cards[i]);
        EXPECT_EQ(2, *card.m_playbackDevices.m_count);
        EXPECT_EQ(2, *card.m_deviceId.m_count);
        EXPECT_EQ(1, *card.m_internalDevices.m_count); // the updater has no share of these
        EXPECT_EQ(2u, comReferenceCount(card.m_updater.get()));
    }
    deleteAll(cards);
}

TEST_F(EnumerateSoundCards, GivesViewsThatDeleteNothing)
{
    run(support::withoutGuids(machine));
    Cards cards;
    enumerateSoundCards(cards);
    Cards views = cards;

    cards.clear();

    EXPECT_THAT(idsOf(views), ElementsAre("{1}.first", "{1}.second"));
    deleteAll(views);
}

TEST_F(EnumerateSoundCards, HoldsAllOfTheMachineThatItsCardsShow)
{
    run(machine);
    Cards cards;

    enumerateSoundCards(cards);

    const sim::Census census = simulation().census();
    EXPECT_EQ(5, census.references("IMMDevice")) << census;            // three endpoints, two adapters
    EXPECT_EQ(5, census.references("IPropertyStore")) << census;       // one for each of these
    EXPECT_EQ(3, census.references("IAudioEndpointVolume")) << census; // one for each endpoint
    EXPECT_EQ(1, census.references("IMMDeviceEnumerator")) << census;  // the shared one
    EXPECT_EQ(0, census.references("IMMDeviceCollection")) << census;
    EXPECT_EQ(0, census.references("IPartsList")) << census;
    EXPECT_EQ(6, census.taskBlocks())
        << census; // DirectSound GUIDs, read for the list and for the far side of the jack
    EXPECT_EQ(2, census.clients.at("IMMNotificationClient")) << census;
    deleteAll(cards);
    kept.directSoundTexts = 6;
}

TEST_F(EnumerateSoundCards, LeavesItsEndpointsWithTheUpdatersWhenTheCardsAreGone)
{
    run(machine);
    Cards cards;
    enumerateSoundCards(cards);

    deleteAll(cards);

    const sim::Census census = simulation().census();
    EXPECT_EQ(3, census.references("IMMDevice")) << census; // only the cards held the adapters
    EXPECT_EQ(3, census.references("IPropertyStore")) << census;
    EXPECT_EQ(3, census.references("IAudioEndpointVolume")) << census;
    EXPECT_EQ(1, census.references("IMMDeviceEnumerator")) << census;
    EXPECT_EQ(2, census.clients.at("IMMNotificationClient")) << census;

    endModule();

    EXPECT_EQ(0, simulation().census().references()) << simulation().census();
    EXPECT_TRUE(simulation().census().clients.empty());
    kept.directSoundTexts = 6;
}
