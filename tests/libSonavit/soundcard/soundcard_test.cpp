#include "libSonavit/soundcard.h"

#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcardupdater.h"
#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

#include <algorithm>
#include <memory>

using libSonavit::AudioDeviceEnumerator;
using libSonavit::AudioDeviceEnumeratorFactory;
using qor::LoggerPriority;
using support::namesOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* registerCall = "IMMDeviceEnumerator::RegisterEndpointNotificationCallback";
constexpr const char* unregisterCall = "IMMDeviceEnumerator::UnregisterEndpointNotificationCallback";
constexpr const char* referenceLabel = "SoundCard::SoundCardDeviceUpdater::Release"; // of AddRef, too

struct SoundCardTest : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        run({});
    }

    static AudioDeviceEnumerator& shared() { return *AudioDeviceEnumeratorFactory::enumerator(); }

    static unsigned int updaterReferences(const SoundCard& card) { return comReferenceCount(card.m_updater.get()); }

    /// Labels of @p entered without those of reference counting.
    static std::vector<std::string> withoutReferences(std::vector<std::string> entered)
    {
        entered.erase(std::remove(entered.begin(), entered.end(), referenceLabel), entered.end());
        return entered;
    }

    /// A node of a graph, without a connector.
    static SoundCard::ConnectorNode node()
    {
        return {AudioComponent<IConnector>(static_cast<IConnector*>(nullptr)), {}};
    }
};

struct SoundCardConstruction : SoundCardTest
{
};
struct SoundCardCopy : SoundCardTest
{
};
struct SoundCardAssignment : SoundCardTest
{
};
struct SoundCardDestruction : SoundCardTest
{
};
struct SoundCardVolumeControllerOfTheInterface : SoundCardTest
{
};
}

TEST_F(SoundCardConstruction, MakesAllListsAndTheIdAtOnce)
{
    const SoundCard card;

    for (const SharedPointer<qor::Array<AudioDevice>>& list :
         {card.m_playbackDevices, card.m_recordDevices, card.m_internalDevices})
    {
        ASSERT_NE(nullptr, list.get());
        EXPECT_EQ(0u, list->size());
    }
    ASSERT_NE(nullptr, card.m_playbackObservers.get());
    ASSERT_NE(nullptr, card.m_recordObservers.get());
    ASSERT_NE(nullptr, card.m_deviceId.get());
    EXPECT_EQ(qor::String(), card.deviceId());
    EXPECT_EQ(0u, card.m_connectorMap.size());
}

TEST_F(SoundCardConstruction, GivesTheUpdaterItsSharesInTheirOrder)
{
    const SoundCard card;

    EXPECT_THAT(withoutReferences(log.entered(channels::soundCard)),
                ElementsAre("SoundCard::SoundCardDeviceUpdatersetRecordDeviceList",
                            "SoundCard::SoundCardDeviceUpdater::setPlaybackDeviceList",
                            "SoundCard::SoundCardDeviceUpdater::setPlaybackObserver",
                            "SoundCard::SoundCardDeviceUpdater::setRecordObserver"));
    EXPECT_EQ(card.m_recordDevices.get(), card.m_updater->m_recordDeviceList.get());
    EXPECT_EQ(card.m_playbackDevices.get(), card.m_updater->m_playbackDeviceList.get());
    EXPECT_EQ(card.m_deviceId.get(), card.m_updater->m_ownerId.get());
    EXPECT_EQ(card.m_playbackObservers.get(), card.m_updater->m_playbackObserver.get());
    EXPECT_EQ(card.m_recordObservers.get(), card.m_updater->m_recordObserver.get());
    EXPECT_THAT(log.texts(channels::soundCard), IsEmpty());
}

TEST_F(SoundCardConstruction, RegistersTheUpdaterWithTheSharedEnumerator)
{
    const SoundCard card;

    EXPECT_EQ(1u, simulation().journal().count(registerCall));
    ASSERT_EQ(1u, shared().m_notificationClients.size());
    EXPECT_EQ(card.m_updater.get(), shared().m_notificationClients[0].get());
    EXPECT_EQ(2u, updaterReferences(card)); // the card's and the enumerator's
}

TEST_F(SoundCardConstruction, BringsTheSharedEnumeratorIntoBeing)
{
    const SoundCard card;

    EXPECT_THAT(simulation().journal().entries().without("CoInitialize").operations(),
                ElementsAre("CoCreateInstance", registerCall));
}

TEST_F(SoundCardConstruction, ReportsAFailingRegistrationThroughTheEnumeratorAlone)
{
    const sim::PlannedFault fault = simulation().faults().fail(registerCall, E_OUTOFMEMORY);

    const SoundCard card;

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING),
                ElementsAre("Fail to register notification callback 2147942414"));
    EXPECT_THAT(log.texts(channels::soundCard), IsEmpty());
    EXPECT_NE(nullptr, card.m_playbackDevices.get());
    EXPECT_EQ(2u, updaterReferences(card)); // the card's and the enumerator's
}

TEST_F(SoundCardConstruction, CompletesTheCardAlsoWhereThereIsNoEnumerator)
{
    const sim::PlannedFault fault = simulation().faults().fail("CoCreateInstance");

    const SoundCard card;

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(log.texts("libSonavit.endpointDeviceEnumerator"),
                ElementsAre("CoCreateInstance returns 0x80004005", "Fail to instantiate IMMDeviceNumerator"));
    EXPECT_EQ(1u, updaterReferences(card));
}

TEST_F(SoundCardCopy, SharesUpdaterListsObserversAndId)
{
    const SoundCard card;
    const SoundCard copy(card);

    EXPECT_EQ(card.m_updater.get(), copy.m_updater.get());
    EXPECT_EQ(card.m_playbackDevices.get(), copy.m_playbackDevices.get());
    EXPECT_EQ(card.m_recordDevices.get(), copy.m_recordDevices.get());
    EXPECT_EQ(card.m_internalDevices.get(), copy.m_internalDevices.get());
    EXPECT_EQ(card.m_playbackObservers.get(), copy.m_playbackObservers.get());
    EXPECT_EQ(card.m_recordObservers.get(), copy.m_recordObservers.get());
    EXPECT_EQ(card.m_deviceId.get(), copy.m_deviceId.get());
}

TEST_F(SoundCardCopy, HasAMapOfItsOwn)
{
    SoundCard card;
    card.m_connectorMap.append(node());

    SoundCard copy(card);
    copy.m_connectorMap[0].links.append(7);
    copy.m_connectorMap.append(node());

    EXPECT_EQ(2u, copy.m_connectorMap.size());
    ASSERT_EQ(1u, card.m_connectorMap.size());
    EXPECT_EQ(0u, card.m_connectorMap[0].links.size());
}

TEST_F(SoundCardCopy, RegistersNothing)
{
    const SoundCard card;
    simulation().journal().clear();
    log.clear();

    const SoundCard copy(card);

    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
    EXPECT_EQ(1u, shared().m_notificationClients.size());
    EXPECT_EQ(3u, updaterReferences(card));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(SoundCardAssignment, TakesAllOfTheSource)
{
    SoundCard source;
    source.m_connectorMap.append(node());
    SoundCard target;

    SoundCard& result = target = source;

    EXPECT_EQ(&target, &result);
    EXPECT_EQ(source.m_updater.get(), target.m_updater.get());
    EXPECT_EQ(source.m_playbackDevices.get(), target.m_playbackDevices.get());
    EXPECT_EQ(source.m_recordDevices.get(), target.m_recordDevices.get());
    EXPECT_EQ(source.m_internalDevices.get(), target.m_internalDevices.get());
    EXPECT_EQ(source.m_playbackObservers.get(), target.m_playbackObservers.get());
    EXPECT_EQ(source.m_recordObservers.get(), target.m_recordObservers.get());
    EXPECT_EQ(source.m_deviceId.get(), target.m_deviceId.get());
    EXPECT_EQ(1u, target.m_connectorMap.size());
    EXPECT_EQ(3u, updaterReferences(source));
}

TEST_F(SoundCardAssignment, LeavesTheFormerUpdaterRegistered)
{
    const SoundCard source;
    SoundCard target;
    const COMPtr<SoundCard::SoundCardDeviceUpdater>::pointer former = target.m_updater;
    simulation().journal().clear();

    target = source;

    EXPECT_EQ(2u, comReferenceCount(former.get())); // the enumerator's and the test's
    EXPECT_EQ(2, simulation().census().clients.at("IMMNotificationClient"));
    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
}

TEST_F(SoundCardAssignment, ToItselfChangesNothing)
{
    SoundCard card;
    card.m_connectorMap.append(node());
    const SoundCard& same = card;
    const qor::Array<AudioDevice>* const list = card.m_playbackDevices.get();

    card = same;

    EXPECT_EQ(list, card.m_playbackDevices.get());
    EXPECT_EQ(2u, updaterReferences(card));
    EXPECT_EQ(1u, card.m_connectorMap.size());
}

TEST_F(SoundCardDestruction, OpensAndClosesItsScopeBeforeTheFieldsGo)
{
    auto card = std::make_unique<SoundCard>();
    log.clear();

    card.reset();

    EXPECT_THAT(log.entered(channels::soundCard), ElementsAre("SoundCard::~SoundCard()", referenceLabel));
    EXPECT_THAT(log.left(channels::soundCard), ElementsAre("SoundCard::~SoundCard()", referenceLabel));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(SoundCardDestruction, LeavesTheUpdaterRegistered)
{
    auto card = std::make_unique<SoundCard>();
    const COMPtr<SoundCard::SoundCardDeviceUpdater>::pointer updater = card->m_updater;
    simulation().journal().clear();

    card.reset();

    EXPECT_EQ(0u, simulation().journal().count(unregisterCall));
    EXPECT_EQ(1, simulation().census().clients.at("IMMNotificationClient"));
    EXPECT_EQ(2u, comReferenceCount(updater.get())); // the enumerator's and the test's
}

TEST_F(SoundCardDestruction, LeavesTheListsWithTheUpdaterWhichStillFillsThem)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    const sim::EndpointBuilder speaker = card.speaker().notInstalled();
    const sim::Machine machine = support::withoutGuids(builder.build());
    simulation().change([&](sim::Machine& present) { present = machine; });
    auto owner = std::make_unique<SoundCard>();
    *owner->m_deviceId = qor::String::fromUtf8(card.instancePath());
    const SharedPointer<qor::Array<AudioDevice>> devices = owner->m_playbackDevices;

    owner.reset();
    simulation().events().add(speaker.id());

    EXPECT_THAT(namesOf(*devices), ElementsAre("Speakers"));
}

TEST_F(SoundCardDestruction, WorksThroughTheInterface)
{
    std::unique_ptr<SoundCardInterface> card = std::make_unique<SoundCard>();
    log.clear();

    card.reset();

    EXPECT_THAT(log.entered(channels::soundCard), ElementsAre("SoundCard::~SoundCard()", referenceLabel));
}

TEST_F(SoundCardDestruction, LeavesOneClientForEveryCardThatWasDefaultConstructed)
{
    for (int i = 0; i < 3; ++i)
    {
        const SoundCard card;
        const SoundCard copy(card);
    }

    EXPECT_EQ(3u, shared().m_notificationClients.size());
    EXPECT_EQ(3, simulation().census().clients.at("IMMNotificationClient"));
}

TEST_F(SoundCardVolumeControllerOfTheInterface, FindsNothingAndLeavesItsArgumentsAlone)
{
    const SoundCard card;
    const AudioDevice device;
    qor::Array<SharedPointer<VolumeControllerInterface>> result;
    result.append(SharedPointer<VolumeControllerInterface>());
    log.clear();
    simulation().journal().clear();

    EXPECT_EQ(0u, card.volumeController(device, result));

    EXPECT_EQ(1u, result.size());
    EXPECT_THAT(log.texts(), IsEmpty());
    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
}
