#include "libSonavit/soundcardupdater.h"

#include "COM/identifiers.h"
#include "tests/libSonavit/soundcard/supportobserver.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/libSonavit/supportlogline.h"
#include "tests/libSonavit/supportthreads.h"
#include "tests/support/librarytest.h"

#include <algorithm>
#include <atomic>
#include <set>

using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
typedef SoundCard::SoundCardDeviceUpdater Updater;
typedef qor::Array<AudioDevice> Devices;
typedef qor::Array<BorrowedPointer<SoundCardObserver>> Observers;

struct SoundCardDeviceUpdater : support::LibraryTest
{
    ~SoundCardDeviceUpdater() noexcept override {} // the handle's own may throw

    COMPtr<Updater>::pointer updater = Updater::createUpdater();
};

struct SoundCardDeviceUpdaterSetters : SoundCardDeviceUpdater
{
};

struct SoundCardUpdaterWiring : support::LibraryTest
{
};

constexpr unsigned int numThreads = 4;
}

TEST_F(SoundCardDeviceUpdater, IsMadeWithOneReferenceAndWithoutShares)
{
    EXPECT_EQ(1, updater->m_refCount);
    EXPECT_EQ(nullptr, updater->m_ownerId.get());
    EXPECT_EQ(nullptr, updater->m_recordDeviceList.get());
    EXPECT_EQ(nullptr, updater->m_playbackDeviceList.get());
    EXPECT_EQ(nullptr, updater->m_playbackObserver.get());
    EXPECT_EQ(nullptr, updater->m_recordObserver.get());
    EXPECT_THAT(log.entered(), IsEmpty());
}

TEST_F(SoundCardDeviceUpdater, KnowsIUnknownAndIMMNotificationClientAndAddsAReferenceForEach)
{
    for (const IID& iid : {IID_IUnknown, IID_IMMNotificationClient})
    {
        void* object = nullptr;
        EXPECT_EQ(S_OK, updater->QueryInterface(iid, &object));
        EXPECT_EQ(updater.get(), object);
        EXPECT_EQ(2, updater->m_refCount);
        EXPECT_EQ(1u, updater->Release());
    }
}

TEST_F(SoundCardDeviceUpdater, AnswersAnyOtherIdWithENoInterfaceAndNull)
{
    for (const IID& iid : {IID_IMMDevice, IID_IAudioEndpointVolumeCallback, IID_IMMDeviceEnumerator})
    {
        void* object = this;
        EXPECT_EQ(E_NOINTERFACE, updater->QueryInterface(iid, &object));
        EXPECT_EQ(nullptr, object);
        EXPECT_EQ(1, updater->m_refCount);
    }
}

TEST_F(SoundCardDeviceUpdater, CountsItsReferencesAndSharesOneLabelForBothOperations)
{
    EXPECT_EQ(2u, updater->AddRef());
    EXPECT_EQ(1u, updater->Release());

    EXPECT_THAT(log.entered(channels::soundCard), ElementsAre("SoundCard::SoundCardDeviceUpdater::Release",
                                                              "SoundCard::SoundCardDeviceUpdater::Release"));
}

TEST_F(SoundCardDeviceUpdater, DeletesItselfWithTheLastReleaseWhichReturnsZero)
{
    const SharedPointer<Devices> list(new Devices);
    Updater* const object = new Updater;
    object->setRecordDeviceList(list);
    EXPECT_EQ(2, *list.m_count);

    EXPECT_EQ(0u, object->Release());

    EXPECT_EQ(1, *list.m_count) << "the share went with the object";
}

TEST_F(SoundCardDeviceUpdater, CountsTheReferencesOfSeveralThreads)
{
    constexpr ULONG numReferences = 100000;
    constexpr int numRounds = 10; // in a single one the threads may happen to run one after the other
    qor::LogFactory::setPriority(LoggerPriority::LOG_FATAL); // or each reference takes a record
    const auto add = [this](unsigned int)
    {
        for (ULONG i = 0; i < numReferences; ++i)
            updater->AddRef();
    };
    const auto release = [this](unsigned int)
    {
        for (ULONG i = 0; i < numReferences; ++i)
            updater->Release();
    };

    for (int round = 0; round < numRounds; ++round)
    {
        support::onThreads(numThreads, add);
        ASSERT_EQ(LONG{1 + numThreads * numReferences}, updater->m_refCount);
        support::onThreads(numThreads, release);
        ASSERT_EQ(1, updater->m_refCount);
    }
}

TEST_F(SoundCardDeviceUpdater, EndsWithOneOfSeveralThreadsThatReleaseTheLastReferences)
{
    constexpr int numRounds = 20;
    qor::LogFactory::setPriority(LoggerPriority::LOG_FATAL);
    for (int round = 0; round < numRounds; ++round)
    {
        const SharedPointer<Devices> list(new Devices);
        Updater* const object = new Updater;
        object->setRecordDeviceList(list);
        for (unsigned int i = 1; i < numThreads; ++i)
            object->AddRef();
        std::atomic<int> last{0};

        support::onThreads(numThreads,
                           [&](unsigned int)
                           {
                               for (int i = 0; i < 10000; ++i)
                               {
                                   object->AddRef();
                                   object->Release();
                               }
                               last += object->Release() == 0 ? 1 : 0;
                           });

        ASSERT_EQ(1, last);
        ASSERT_EQ(1, *list.m_count) << "the share went with the object";
    }
}

TEST_F(SoundCardDeviceUpdater, LabelsEachOperationOfThePlatform)
{
    run(sim::MachineBuilder().build());
    updater->setOwnerId(SharedPointer<qor::String>(new qor::String("nobody")));
    const qor::String id("{0.0.0.00000000}.{none}");
    const LPCWSTR text = platform::wide(id.getUCS2Buffer());
    void* object = nullptr;
    log.clear();

    updater->QueryInterface(IID_IPart, &object);
    EXPECT_EQ(S_OK, updater->OnDefaultDeviceChanged(eRender, eConsole, text));
    EXPECT_EQ(S_OK, updater->OnPropertyValueChanged(text, propertykeys::deviceFormat));
    EXPECT_EQ(S_OK, updater->OnDeviceAdded(text));
    EXPECT_EQ(S_OK, updater->OnDeviceRemoved(text));
    EXPECT_EQ(S_OK, updater->OnDeviceStateChanged(text, DEVICE_STATE_ACTIVE));

    EXPECT_THAT(
        log.entered(channels::soundCard),
        ElementsAre(
            "SoundCard::SoundCardDeviceUpdater::QueryInterface",
            "SoundCard::SoundCardDeviceUpdater::OnDefaultDeviceChanged",
            "SoundCard::SoundCardDeviceUpdaterOnPropertyValueChanged",
            "SoundCard::SoundCardDeviceUpdater::OnDeviceAdded", "SoundCard::SoundCardDeviceUpdater::selectDeviceList",
            "SoundCard::SoundCardDeviceUpdater::selectObserver", "SoundCard::SoundCardDeviceUpdater::OnDeviceRemoved",
            "SoundCard::SoundCardDeviceUpdater::selectDeviceList", "SoundCard::SoundCardDeviceUpdater::selectObserver",
            "SoundCard::SoundCardDeviceUpdater::OnDeviceStateChanged",
            "SoundCard::SoundCardDeviceUpdater::selectDeviceList",
            "SoundCard::SoundCardDeviceUpdater::selectObserver"));
}

TEST_F(SoundCardDeviceUpdaterSetters, TakeAListWithoutElements)
{
    const SharedPointer<Devices> devices(new Devices);
    const SharedPointer<Observers> observers(new Observers);

    EXPECT_TRUE(updater->setRecordDeviceList(devices));
    EXPECT_TRUE(updater->setPlaybackDeviceList(devices));
    EXPECT_TRUE(updater->setPlaybackObserver(observers));
    EXPECT_TRUE(updater->setRecordObserver(observers));

    EXPECT_EQ(devices.get(), updater->m_recordDeviceList.get());
    EXPECT_EQ(devices.get(), updater->m_playbackDeviceList.get());
    EXPECT_EQ(observers.get(), updater->m_playbackObserver.get());
    EXPECT_EQ(observers.get(), updater->m_recordObserver.get());
    EXPECT_EQ(3, *devices.m_count);
    EXPECT_EQ(3, *observers.m_count);
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(SoundCardDeviceUpdaterSetters, RefuseANilHandleWithTheirMessagesAndKeepTheShareTheyHad)
{
    const SharedPointer<Devices> devices(new Devices);
    const SharedPointer<Observers> observers(new Observers);
    updater->setRecordDeviceList(devices);
    updater->setPlaybackDeviceList(devices);
    updater->setPlaybackObserver(observers);
    updater->setRecordObserver(observers);
    log.clear();

    EXPECT_FALSE(updater->setRecordDeviceList(SharedPointer<Devices>()));
    EXPECT_FALSE(updater->setPlaybackDeviceList(SharedPointer<Devices>()));
    EXPECT_FALSE(updater->setPlaybackObserver(SharedPointer<Observers>()));
    EXPECT_FALSE(updater->setRecordObserver(SharedPointer<Observers>()));

    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING, channels::soundCard),
                ElementsAre("Cannot use an empty eCapture device list", "Cannot use an empty eRender device list",
                            "Cannot use NULL pointer", "Cannot use NULL pointer"));
    EXPECT_THAT(log.entered(channels::soundCard),
                ElementsAre("SoundCard::SoundCardDeviceUpdatersetRecordDeviceList",
                            "SoundCard::SoundCardDeviceUpdater::setPlaybackDeviceList",
                            "SoundCard::SoundCardDeviceUpdater::setPlaybackObserver",
                            "SoundCard::SoundCardDeviceUpdater::setRecordObserver"));
    EXPECT_EQ(devices.get(), updater->m_recordDeviceList.get());
    EXPECT_EQ(devices.get(), updater->m_playbackDeviceList.get());
    EXPECT_EQ(observers.get(), updater->m_playbackObserver.get());
    EXPECT_EQ(observers.get(), updater->m_recordObserver.get());
}

TEST_F(SoundCardDeviceUpdaterSetters, RefuseANilHandleEachFromItsOwnLine)
{
    updater->setRecordDeviceList(SharedPointer<Devices>());
    updater->setPlaybackDeviceList(SharedPointer<Devices>());
    updater->setPlaybackObserver(SharedPointer<Observers>());
    updater->setRecordObserver(SharedPointer<Observers>());

    const std::vector<int> lines = support::linesOf(log, "Cannot use ");
    EXPECT_EQ(4u, lines.size());
    EXPECT_EQ(4u, std::set<int>(lines.begin(), lines.end()).size());
}

TEST_F(SoundCardDeviceUpdaterSetters, TakeTheSameHandleAgainWithoutLosingIt)
{
    const SharedPointer<Devices> devices(new Devices);
    updater->setRecordDeviceList(devices);

    EXPECT_TRUE(updater->setRecordDeviceList(updater->m_recordDeviceList));

    EXPECT_EQ(devices.get(), updater->m_recordDeviceList.get());
    EXPECT_EQ(2, *devices.m_count);
}

TEST_F(SoundCardDeviceUpdaterSetters, TakeAnyOwnerIdInSilence)
{
    const SharedPointer<qor::String> id(new qor::String("id"));
    updater->setOwnerId(id);
    EXPECT_EQ(id.get(), updater->m_ownerId.get());

    updater->setOwnerId(SharedPointer<qor::String>());

    EXPECT_EQ(nullptr, updater->m_ownerId.get());
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(SoundCardUpdaterWiring, GivesTheUpdaterTheCardsSharesInOrderAndRegistersIt)
{
    sim::Simulation& machine = run(sim::MachineBuilder().build());
    log.clear();

    SoundCard card;

    std::vector<std::string> setters = log.entered(channels::soundCard);
    const auto isReference = [](const std::string& label)
    { return label == "SoundCard::SoundCardDeviceUpdater::Release"; };
    setters.erase(std::remove_if(setters.begin(), setters.end(), isReference), setters.end());
    EXPECT_THAT(setters, ElementsAre("SoundCard::SoundCardDeviceUpdatersetRecordDeviceList",
                                     "SoundCard::SoundCardDeviceUpdater::setPlaybackDeviceList",
                                     "SoundCard::SoundCardDeviceUpdater::setPlaybackObserver",
                                     "SoundCard::SoundCardDeviceUpdater::setRecordObserver"));
    EXPECT_EQ(card.m_recordDevices.get(), card.m_updater->m_recordDeviceList.get());
    EXPECT_EQ(card.m_playbackDevices.get(), card.m_updater->m_playbackDeviceList.get());
    EXPECT_EQ(card.m_deviceId.get(), card.m_updater->m_ownerId.get());
    EXPECT_EQ(card.m_playbackObservers.get(), card.m_updater->m_playbackObserver.get());
    EXPECT_EQ(card.m_recordObservers.get(), card.m_updater->m_recordObserver.get());
    EXPECT_EQ(1, machine.census().clients.at("IMMNotificationClient"));
    EXPECT_EQ(2, card.m_updater->m_refCount) << "the card, the client list";
}

TEST_F(SoundCardUpdaterWiring, SharesOneUpdaterAmongCopiesAndLeavesItRegisteredWhenAllAreGone)
{
    sim::Simulation& machine = run(sim::MachineBuilder().build());
    {
        const SoundCard card;
        const SoundCard copy(card);
        EXPECT_EQ(card.m_updater.get(), copy.m_updater.get());
        EXPECT_EQ(1u, machine.journal().count("IMMDeviceEnumerator::RegisterEndpointNotificationCallback"));
    }

    EXPECT_EQ(0u, machine.journal().count("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback"));
    EXPECT_EQ(1, machine.census().clients.at("IMMNotificationClient"));
}

TEST_F(SoundCardUpdaterWiring, ShowsTheUpdaterTheIdThatIsWrittenIntoTheCardLater)
{
    run(sim::MachineBuilder().build());
    const SoundCard card;

    *card.m_deviceId = "{1}.LATER";

    EXPECT_EQ(qor::String("{1}.LATER"), *card.m_updater->m_ownerId);
}
