// What ends, and what gives up what it holds, while memory is missing or a Release throws. On Windows a DLL has
// allocation operators of its own, and COM is the system's.
#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcard.h"
#include "libSonavit/sysinfohelper.h"
#include "simulator/portable/comapartment.h"
#include "tests/foundation/supportallocations.h"
#include "tests/support/librarytest.h"

#include <cstdlib>
#include <iostream>
#include <new>

using qor::LoggerPriority;
using support::AllocationProbe;
using testing::ElementsAre;

namespace
{
struct EndWithoutMemory : support::LibraryTest
{
    /// A machine with @p count cards of one endpoint each. The journal is off and allocates nothing.
    void runCards(unsigned int count)
    {
        sim::MachineBuilder builder;
        for (unsigned int i = 0; i < count; ++i)
            ids.push_back(builder.card("Card", "card" + std::to_string(i)).speaker().id());
        run(support::withoutGuids(builder.build()));
        simulation().journal().record(false);
    }

    static void silenceLog() { qor::LogFactory::setPriority(LoggerPriority::LOG_FATAL); }

    qor::String id() const { return qor::String::fromUtf8(ids.front()); }

    /// The first search of the process, in which one allocation fails, and a second one. Says what is left of them.
    void searchForAWaveId(unsigned int allocation)
    {
        runCards(1);
        silenceLog();
        AudioDevice device(id());
        const sim::Census before = simulation().census();
        {
            AllocationProbe probe;
            probe.failOnce(allocation);
            try
            {
                device.waveLegacyDeviceID();
            }
            catch (const std::bad_alloc&)
            {
                probe.succeed();
            }
        }
        if (device.waveLegacyDeviceID() != 0)
            std::cerr << "the device has no number any more";
        if (simulation().census() != before)
            std::cerr << simulation().census() - before;
        std::_Exit(0);
    }

    std::vector<std::string> ids;
};

/// A device whose format has been changed, so that its end puts the former one back.
struct ChangedFormat : EndWithoutMemory
{
    struct Leaving
    {
    };

    void SetUp() override
    {
        EndWithoutMemory::SetUp();
        runCards(1);
        silenceLog();
        former = rate();
    }

    DWORD rate() const { return AudioDevice(id()).deviceProperty().format.Format.nSamplesPerSec; }

    static void change(AudioDevice& device, DWORD wanted)
    {
        WAVEFORMATEXTENSIBLE format = device.deviceProperty().format;
        format.Format.nSamplesPerSec = wanted;
        ASSERT_TRUE(device.setFormat(format));
    }

    /// Whether the machine has the former format again; it has it afterwards in any case.
    bool isRestored()
    {
        if (rate() == former)
            return true;
        AudioDevice device(id());
        change(device, former);
        device.m_savedProperties = device.m_properties;
        return false;
    }

    /// Those that the machine makes when a format is written; the library makes none.
    unsigned int allocationsOfAWrite()
    {
        AudioDevice device(id());
        AllocationProbe probe;
        device.writeFormat(device.m_properties.format);
        return probe.count();
    }

    static constexpr DWORD other = 44100;
    static constexpr unsigned int allocations = 60; ///< more than the end of a device makes
    DWORD former = 0;
};
}

TEST_F(EndWithoutMemory, OfStateListsEmptiesAllOfThem)
{
    runCards(2);
    {
        AllocationProbe probe;
        const EndpointDeviceEnumeratorCommon lists(eRender);
        log.clear();
        probe.failNothrow(); // what the log needs is there
    }
    EXPECT_THAT(
        log.texts(LoggerPriority::LOG_DEBUG, "libSonavit.endpointDeviceEnumerator"),
        ElementsAre("clearing m_unplugged", "crearing m_disabled", "clearing m_notPresent", "clearing m_active"));
    EXPECT_EQ(0, simulation().census().references("IMMDevice"));
}

TEST_F(EndWithoutMemory, OfTheSharedEnumeratorReleasesItsClients)
{
    runCards(2);
    silenceLog();
    SoundCard::enumerateSystemSoundDevices();
    {
        AllocationProbe probe;
        probe.failNothrow(); // the machine has memory

        endModule();
    }
    EXPECT_EQ(sim::Census(), simulation().census());
}

TEST_F(EndWithoutMemory, OfTheFacadeReleasesItsCardsAndTakesCOMBack)
{
    CoUninitialize(); // of the fixture, whose apartment has one thread
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    runCards(2);
    silenceLog();
    { // makes the shared enumerator, which initialises COM once more
        const libSonavit::SysInfoHelper helper;
    }
    const unsigned int depth = sim::comapartment::depth();
    {
        AllocationProbe probe;
        const libSonavit::SysInfoHelper helper;
        probe.failAll();
    }
    EXPECT_EQ(depth, sim::comapartment::depth());
    CoUninitialize();
    CoInitialize(nullptr);
}

TEST_F(EndWithoutMemory, OfAWaveIdSearchLeavesNoBufferBehind)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // begins anew: the first search of a process makes the lock

    for (unsigned int allocation = 0; allocation < 12; ++allocation)
        EXPECT_EXIT(searchForAWaveId(allocation), testing::ExitedWithCode(0), testing::StrEq("")) << allocation;
}

TEST_F(ChangedFormat, IsPutBackWhileAnExceptionIsOnItsWayWithoutMemory)
{
    const unsigned int ofTheMachine = allocationsOfAWrite();
    for (unsigned int allocation = 0; allocation < allocations; ++allocation)
    {
        AllocationProbe probe;
        try
        {
            AudioDevice device(id());
            change(device, other);
            probe.failOnce(ofTheMachine + allocation);
            throw Leaving();
        }
        catch (const Leaving&)
        {
            probe.succeed();
        }
        EXPECT_TRUE(isRestored()) << allocation;
    }
}

TEST_F(ChangedFormat, IsPutBackAtAnOrdinaryEndWhichPassesOnThatMemoryIsMissing)
{
    const unsigned int ofTheMachine = allocationsOfAWrite();
    const sim::Census before = simulation().census();
    unsigned int failures = 0;
    for (unsigned int allocation = 0; allocation < allocations; ++allocation)
    {
        AllocationProbe probe;
        try
        {
            AudioDevice device(id());
            change(device, other);
            probe.failOnce(ofTheMachine + allocation);
        }
        catch (const std::bad_alloc&)
        {
            ++failures;
        }
        probe.succeed();
        EXPECT_TRUE(isRestored()) << allocation;
        EXPECT_EQ(before.byInterface, simulation().census().byInterface) << allocation;
    }
    EXPECT_LT(3u, failures);
}
