// What is left when memory runs out, apart from the containers themselves. On Windows a DLL has allocation operators of
// its own, which a test cannot make fail.
#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcard.h"
#include "libSonavit/soundcardupdater.h"
#include "libSonavit/sysinfohelper.h"
#include "qor/exception.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/portable/comapartment.h"
#include "tests/foundation/supportallocations.h"
#include "tests/libSonavit/endpointdeviceenumerator/supportcountedclient.h"
#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "tests/support/librarytest.h"

#include <exception>
#include <list>
#include <new>
#include <utility>

using libSonavit::AudioDeviceEnumeratorFactory;
using qor::LoggerPriority;
using support::AllocationProbe;
using support::CallList;
using support::CountedClient;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace
{
typedef qor::Array<BorrowedPointer<SoundCardInterface>> Cards;

struct ExhaustedMemory : support::LibraryTest
{
    /// A machine with @p count cards of one endpoint each. Log and journal are off, so they allocate nothing.
    void runCards(unsigned int count)
    {
        sim::MachineBuilder builder;
        for (unsigned int i = 0; i < count; ++i)
            builder.card("Card", "card" + std::to_string(i)).speaker().withoutTopology();
        run(support::withoutGuids(builder.build()));
        simulation().journal().record(false);
        qor::LogFactory::setSink([](const qor::LogRecord&) {});
        qor::LogFactory::setPriority(LoggerPriority::LOG_FATAL);
    }

    /// Calls @p action with fewer and fewer successful std::nothrow allocations, until it throws: then its last such
    /// allocation has failed. @p action calls probe.succeed() once the rest must not fail.
    /// @return the message of the exception
    template<class Action>
    static std::string failingAtTheLastAllocation(const Action& action)
    {
        constexpr unsigned int plenty = 600;
        AudioDeviceEnumeratorFactory::enumerator()->m_notificationClients.ensureCapacity(100000); // grows no more
        for (unsigned int room = plenty; room > 0; --room)
        {
            AllocationProbe probe;
            probe.failNothrow(room);
            try
            {
                action(probe);
            }
            catch (const qor::NullPointer& exception)
            {
                probe.succeed();
                return room == plenty ? "not enough to begin with" : exception.message().toUtf8();
            }
        }
        return "nothing fails";
    }
};
}

TEST_F(ExhaustedMemory, LeavesCreatingTheSharedEnumeratorToTheNextCall)
{
    run({});
    {
        AllocationProbe probe;
        probe.failNothrow();

        EXPECT_EQ(nullptr, AudioDeviceEnumeratorFactory::enumerator().get());
    }
    EXPECT_THAT(log.records(), IsEmpty());

    EXPECT_NE(nullptr, AudioDeviceEnumeratorFactory::enumerator().get());
}

TEST_F(ExhaustedMemory, PassesOutOfCreatingTheSharedEnumeratorWithoutMemoryForItsListOfClients)
{
    run({});
    {
        AllocationProbe probe;
        probe.failNothrow(1); // the instance itself has its memory

        EXPECT_THROW(AudioDeviceEnumeratorFactory::enumerator(), qor::NullPointer);

        EXPECT_EQ(0, probe.balance());
    }
    EXPECT_THAT(simulation().journal().operations(), IsEmpty()); // no count of COM is left behind
    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_EQ(nullptr, AudioDeviceEnumeratorFactory::m_enumerator.get());

    EXPECT_NE(nullptr, AudioDeviceEnumeratorFactory::enumerator().get());
}

TEST_F(ExhaustedMemory, MakesADeviceLogThatThereIsNoSharedEnumerator)
{
    run({});
    AudioDevice device;
    const qor::String id = "anything";
    bool initialized = true;
    log.clear();
    {
        AllocationProbe probe;
        probe.failNothrow();

        initialized = device.initialize(id);
    }

    EXPECT_FALSE(initialized);
    EXPECT_FALSE(device.isInitialized());
    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING), ElementsAre("Unable to initialize enumerator"));
}

TEST_F(ExhaustedMemory, LeavesACardWithoutASharedEnumeratorCompleteAndUnregistered)
{
    run({});
    // The blocks of five lists and of the map, and the counts and destroyers of six shares.
    constexpr unsigned int ownAllocations = 6 + 2 * 6;
    {
        AllocationProbe probe;
        probe.failNothrow(ownAllocations);

        const SoundCard card;

        probe.succeed();
        EXPECT_EQ(0u, card.m_playbackDevices->size());
        EXPECT_EQ(1u, comReferenceCount(card.m_updater.get()));
    }

    EXPECT_EQ(nullptr, AudioDeviceEnumeratorFactory::m_enumerator.get());
    EXPECT_TRUE(simulation().census().clients.empty());
    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING), IsEmpty());
}

TEST_F(ExhaustedMemory, LeavesAClientUnregisteredWhenTheListOfClientsCannotGrow)
{
    run({});
    CallList calls;
    std::list<CountedClient> clients;
    libSonavit::AudioDeviceEnumerator& shared = *AudioDeviceEnumeratorFactory::enumerator();
    for (int i = 0; i < 8; ++i)
        shared.addNotificationClient(clients.emplace_back(calls, "client").handle());
    const COMPtr<IMMNotificationClient>::pointer ninth = clients.emplace_back(calls, "ninth").handle();
    std::string message;
    {
        AllocationProbe probe;
        probe.failNothrow();
        try
        {
            shared.addNotificationClient(ninth);
        }
        catch (const qor::NullPointer& exception)
        {
            probe.succeed();
            message = exception.message().toUtf8();
        }
    }

    EXPECT_EQ("Asked for array of size: 9", message);
    EXPECT_EQ(8u, shared.m_notificationClients.size());
    EXPECT_EQ(8u, simulation().journal().count("IMMDeviceEnumerator::RegisterEndpointNotificationCallback"));
    endModule(); // while the clients are still there
}

TEST_F(ExhaustedMemory, PassesOutOfTheStateLists)
{
    runCards(9);
    EndpointDeviceEnumeratorCommon lists; // its destructor allocates
    const auto enumerate = [&](AllocationProbe& probe)
    {
        lists.enumerate(eRender);
        probe.succeed();
        EXPECT_EQ(9u, std::as_const(lists).activeDevice().size());
    };

    EXPECT_THAT(failingAtTheLastAllocation(enumerate), StartsWith("Asked for array of size: "));
}

TEST_F(ExhaustedMemory, PassesOutOfBothFlatLists)
{
    runCards(9);
    AudioDeviceEnumeratorFactory::enumerator()->deviceEnumerator();
    const auto listHere = [](AllocationProbe& probe)
    {
        const libSonavit::EndpointDeviceEnumerator enumerator;
        qor::Array<AudioDevice> devices;
        enumerator.audioDevices(eRender, devices);
        probe.succeed();
        EXPECT_EQ(9u, devices.size());
    };
    const auto listThere = [](AllocationProbe& probe)
    {
        qor::Array<AudioDevice> devices;
        AudioDeviceEnumeratorFactory::enumerator()->audioDevices(eRender, devices);
        probe.succeed();
        EXPECT_EQ(9u, devices.size());
    };

    EXPECT_THAT(failingAtTheLastAllocation(listHere), StartsWith("Asked for array of size: "));
    EXPECT_THAT(failingAtTheLastAllocation(listThere), StartsWith("Asked for array of size: "));
}

TEST_F(ExhaustedMemory, PassesOutOfTheFacadeWhenItsListCannotGrow)
{
    runCards(9); // one more than the list's first capacity
    const auto construct = [](AllocationProbe& probe)
    {
        CoInitialize(nullptr); // balances the object's CoUninitialize; unbalanced if its constructor throws
        const libSonavit::SysInfoHelper helper;
        probe.succeed();
        EXPECT_EQ(9u, helper.m_soundCards.size());
    };

    EXPECT_EQ("Asked for array of size: 9", failingAtTheLastAllocation(construct));

    CoUninitialize();
}

TEST_F(ExhaustedMemory, PassesOutOfEnumerateSoundCardsAndLeavesNoCardBehind)
{
    runCards(1);
    Cards cards;
    const auto enumerate = [&](AllocationProbe& probe)
    {
        cards.clear();
        for (int i = 0; i < 8; ++i)
            cards.append(BorrowedPointer<SoundCardInterface>());
        enumerateSoundCards(cards);
        probe.succeed();
        ASSERT_EQ(9u, cards.size());
        delete cards[8].get();
    };

    EXPECT_EQ("Asked for array of size: 9", failingAtTheLastAllocation(enumerate));

    EXPECT_EQ(8u, cards.size());
}

TEST_F(ExhaustedMemory, LeavesNoReferenceOnAConnectorForWhichAListOfMoreThanThousandCannotGrow)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Mixer", "mixer");
    for (int i = 0; i < 1030; ++i)
        card.connector("In", sim::nodetypes::stream, In);
    run(builder.build());
    simulation().journal().record(false);
    qor::LogFactory::setPriority(LoggerPriority::LOG_FATAL);
    const COMPtr<IDeviceTopology>::pointer topology = simulation().topology(card.adapter().id);
    const sim::Census before = simulation().census();
    unsigned int grown = 0;
    // Four blocks for the two lists, one for 1,024 connectors, two for each of these and for the next one.
    for (unsigned int room = 5 + 2 * 1024; room < 5 + 2 * 1026; ++room)
    {
        AllocationProbe probe;
        probe.failNothrow(room);
        try
        {
            const AudioDeviceTopology read(topology);
        }
        catch (const qor::NullPointer& exception)
        {
            probe.succeed();
            grown += exception.message() == "Asked for array of size: 1025" ? 1 : 0;
        }
        probe.succeed();
        EXPECT_EQ(before, simulation().census()) << room;
    }
    EXPECT_GT(grown, 0u);
}

TEST_F(ExhaustedMemory, PassesOutOfACardWhichHasAllItsSharesOrIsNotMade)
{
    run({});
    AudioDeviceEnumeratorFactory::enumerator()->m_notificationClients.ensureCapacity(100); // grows no more
    const SoundCard first;                                                                 // makes what stays
    simulation().journal().record(false);
    qor::LogFactory::setPriority(LoggerPriority::LOG_FATAL);
    unsigned int failures = 0;
    for (unsigned int allocation = 0; allocation < 6 + 3 * 6; ++allocation)
    {
        AllocationProbe probe;
        probe.failOnce(allocation);
        try
        {
            const SoundCard card;
            probe.succeed();
            const SoundCard copy(card);
            EXPECT_NE(nullptr, copy.m_playbackDevices.get()) << allocation;
            EXPECT_NE(nullptr, copy.m_deviceId.get()) << allocation;
        }
        catch (const std::bad_alloc&)
        {
            ++failures;
            EXPECT_EQ(0, probe.balance()) << allocation;
        }
        catch (const qor::NullPointer&)
        {
            ++failures;
            EXPECT_EQ(0, probe.balance()) << allocation;
        }
    }
    EXPECT_LT(6u * 3u, failures);
}

TEST_F(ExhaustedMemory, LosesNoReferenceOfAControllerThatCannotBeShared)
{
    sim::MachineBuilder builder;
    const std::string id = builder.card("Card").speaker().withoutTopology().id();
    run(support::withoutGuids(builder.build()));
    const qor::String text = qor::String::fromUtf8(id);
    const AudioDevice first(text); // makes the shared enumerator
    simulation().journal().record(false);
    qor::LogFactory::setPriority(LoggerPriority::LOG_FATAL);
    const sim::Census before = simulation().census();
    unsigned int failures = 0;
    for (unsigned int allocation = 0; allocation < 10; ++allocation)
    {
        AllocationProbe probe;
        probe.failNothrow(allocation);
        try
        {
            const AudioDevice device(text);
            probe.succeed();
        }
        catch (const std::exception&)
        {
            probe.succeed();
            ++failures;
        }
        EXPECT_EQ(before, simulation().census()) << allocation << ": " << simulation().census() - before;
    }
    EXPECT_LT(2u, failures);
}

TEST_F(ExhaustedMemory, LeavesCOMAsItWasWithoutTheFacade)
{
    CoUninitialize(); // of the fixture, whose apartment has one thread
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    runCards(1);
    { // makes the shared enumerator, which initialises COM once more
        const libSonavit::SysInfoHelper helper;
    }
    const unsigned int depth = sim::comapartment::depth();
    {
        AllocationProbe probe;
        probe.failNothrow(3);
        EXPECT_THROW(libSonavit::SysInfoHelper(), std::exception);
        probe.succeed();
    }
    EXPECT_EQ(depth, sim::comapartment::depth());
    CoUninitialize();
    CoInitialize(nullptr);
}
