// The order in which a card is constructed and destroyed.
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcard.h"
#include "libSonavit/soundcardupdater.h"
#include "tests/libSonavit/soundcard/supportgraphs.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

#include <algorithm>
#include <memory>

using libSonavit::AudioDeviceEnumeratorFactory;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{
constexpr const char* registerCall = "IMMDeviceEnumerator::RegisterEndpointNotificationCallback";
constexpr const char* referenceLabel = "SoundCard::SoundCardDeviceUpdater::Release"; // of AddRef, too

struct SoundCardOrder : support::LibraryTest
{
    /// The records of the card, and the message about COM when the shared enumerator is created.
    std::vector<std::string> steps() const
    {
        std::vector<std::string> found;
        for (const support::LogCapture::Record& record : log.records())
        {
            const bool isEntered = record.kind == qor::LogRecord::Kind::enter && record.channel == channels::soundCard;
            const bool isOfCom = record.kind == qor::LogRecord::Kind::message && record.channel == "comptr";
            if (isEntered || isOfCom)
                found.push_back(record.text);
        }
        return found;
    }

    /// The only client that the shared enumerator has.
    static const SoundCard::SoundCardDeviceUpdater& client()
    {
        return static_cast<const SoundCard::SoundCardDeviceUpdater&>(
            *AudioDeviceEnumeratorFactory::m_enumerator->m_notificationClients[0]);
    }
};
}

TEST_F(SoundCardOrder, OfItsMakingIsSharesThenTheClientThenTheEnumeratorThenTheRegistration)
{
    run({});
    std::vector<std::string> before;
    simulation().faults().run(registerCall, [&] { before = steps(); });

    const SoundCard card;

    EXPECT_THAT(before, ElementsAre(referenceLabel, referenceLabel, // the new updater changes hands
                                    "SoundCard::SoundCardDeviceUpdatersetRecordDeviceList",
                                    "SoundCard::SoundCardDeviceUpdater::setPlaybackDeviceList",
                                    "SoundCard::SoundCardDeviceUpdater::setPlaybackObserver",
                                    "SoundCard::SoundCardDeviceUpdater::setRecordObserver",
                                    referenceLabel, // the handle on the client
                                    StartsWith("CoInitialize returns"),
                                    referenceLabel)); // the enumerator's
}

TEST_F(SoundCardOrder, HasAllSharesWithTheUpdaterBeforeThePlatformKnowsIt)
{
    run({});
    const sim::PlannedFault registration =
        simulation().faults().run(registerCall,
                                  []
                                  {
                                      EXPECT_NE(nullptr, client().m_ownerId.get());
                                      EXPECT_NE(nullptr, client().m_recordDeviceList.get());
                                      EXPECT_NE(nullptr, client().m_playbackDeviceList.get());
                                      EXPECT_NE(nullptr, client().m_playbackObserver.get());
                                      EXPECT_NE(nullptr, client().m_recordObserver.get());
                                  });

    const SoundCard card;

    EXPECT_EQ(1u, registration.fired());
}

TEST_F(SoundCardOrder, OfItsEndIsThatOfTheFieldsBackwardsFromTheGraphToTheUpdater)
{
    support::GraphMachine graph;
    graph.endpoint("out");
    run(graph.machine);
    auto card = std::make_unique<SoundCard>(SoundCard::enumerateSystemSoundDevices()[0]);
    std::vector<std::vector<std::string>> whenANodeGoes;
    simulation().journal().recordReferences(true);
    simulation().faults().run("IConnector::Release",
                              [&] { whenANodeGoes.push_back(log.entered(channels::soundCard)); });
    log.clear();

    card.reset();

    simulation().faults().clear();
    EXPECT_THAT(whenANodeGoes, Not(IsEmpty()));
    EXPECT_THAT(whenANodeGoes, Each(ElementsAre("SoundCard::~SoundCard()")));
    EXPECT_THAT(log.entered(channels::soundCard), ElementsAre("SoundCard::~SoundCard()", referenceLabel));
}
