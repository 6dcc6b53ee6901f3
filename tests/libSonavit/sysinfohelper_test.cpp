#include "libSonavit/sysinfohelper.h"

#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcardupdater.h"
#include "tests/libSonavit/supportsysinfo.h"

#include <memory>
#include <thread>
#include <type_traits>

using libSonavit::SysInfoHelper;
using support::BalancedHelper;
using support::SysInfoHelperTest;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace
{
static_assert(!std::is_polymorphic_v<SysInfoHelper>, "it has no virtual operation");
static_assert(sizeof(SysInfoHelper) == sizeof(qor::Array<SharedPointer<SoundCard>>), "the snapshot is its only field");

struct SysInfoHelperConstruction : SysInfoHelperTest
{
};
struct SysInfoHelperCopy : SysInfoHelperTest
{
};
}

TEST_F(SysInfoHelperConstruction, TakesASnapshotOfAllCardsInTheirOrder)
{
    builder.card("First", "first").speaker();
    builder.card("Second", "second").microphone();
    runBuilt();

    BalancedHelper helper;

    ASSERT_EQ(2u, helper.m_soundCards.size());
    EXPECT_EQ(qor::String("{1}.second"), helper.m_soundCards[0]->deviceId());
    EXPECT_EQ(qor::String("{1}.first"), helper.m_soundCards[1]->deviceId());
    EXPECT_TRUE(helper.isInitialized());
    EXPECT_EQ(2, simulation().census().clients.at("IMMNotificationClient"));
}

TEST_F(SysInfoHelperConstruction, LeavesItsCardsAsTheOnlyHoldersApartFromTheUpdaters)
{
    builder.card("Codec").speaker();
    runBuilt();

    const BalancedHelper helper;

    EXPECT_EQ(1, *helper.m_soundCards[0].m_count);
    EXPECT_EQ(2, *helper.m_soundCards[0]->m_playbackDevices.m_count);
    EXPECT_EQ(2u, comReferenceCount(helper.m_soundCards[0]->m_updater.get()));
    EXPECT_EQ(3u, helper.m_soundCards[0]->m_connectorMap.size());
}

TEST_F(SysInfoHelperConstruction, AnswersFalseOnAMachineWithoutCards)
{
    run({});

    BalancedHelper helper;

    EXPECT_FALSE(helper.isInitialized());
    EXPECT_EQ(none, answersOf(helper, "anything"));
    EXPECT_EQ(none, answersOf(helper, ""));
}

TEST_F(SysInfoHelperConstruction, IsUsableAfterAFailedDiscovery)
{
    builder.card("Codec", "USB").speaker();
    runBuilt();
    const sim::PlannedFault fault = simulation().faults().fail("CoCreateInstance");

    BalancedHelper helper;

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(helper.isInitialized());
    EXPECT_EQ(none, answersOf(helper, "USB"));
}

TEST_F(SysInfoHelperConstruction, LogsNothingOfItsOwn)
{
    builder.card("Codec", "USB").speaker();
    runBuilt();

    {
        BalancedHelper helper;
        helper.hasAnalogOut("USB");
        helper.hasAnalogOut("other");
    }

    EXPECT_THAT(log.entered(), Not(IsEmpty()));
    EXPECT_THAT(log.entered(), testing::Each(Not(testing::HasSubstr("SysInfoHelper"))));
    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_WARNING, "libSonavit.soundcard"), IsEmpty());
}

TEST_F(SysInfoHelperConstruction, FollowsHotPlugThroughTheCards)
{
    sim::CardBuilder card = builder.card("Codec", "USB");
    card.speaker();
    const std::string microphone = card.microphone().notInstalled().id();
    runBuilt();
    BalancedHelper helper;
    EXPECT_FALSE(helper.hasMicIn("USB"));

    simulation().events().add(microphone);

    EXPECT_TRUE(helper.hasMicIn("USB"));
}

TEST_F(SysInfoHelperConstruction, DoesNotAddCardsThatArrive)
{
    builder.card("Codec", "USB").speaker();
    const std::string later = builder.card("Headset", "HEADSET").headphones().notInstalled().id();
    runBuilt();
    BalancedHelper helper;

    simulation().events().add(later);

    EXPECT_FALSE(helper.hasAnalogOut("HEADSET"));
    EXPECT_EQ(1u, helper.m_soundCards.size());
}

TEST_F(SysInfoHelperCopy, SharesTheCardsAndKeepsThemAlive)
{
    builder.card("Codec", "USB").speaker();
    runBuilt();
    auto helper = std::make_unique<BalancedHelper>();
    BalancedHelper copy(*helper);
    EXPECT_EQ(helper->m_soundCards[0].get(), copy.m_soundCards[0].get());
    EXPECT_EQ(2, *copy.m_soundCards[0].m_count);

    helper.reset();

    EXPECT_EQ(1, *copy.m_soundCards[0].m_count);
    EXPECT_TRUE(copy.hasAnalogOut("USB"));
}

TEST_F(SysInfoHelperCopy, RegistersNoFurtherClient)
{
    builder.card("Codec", "USB").speaker();
    runBuilt();
    const BalancedHelper helper;
    simulation().journal().clear();

    const BalancedHelper copy(helper);

    EXPECT_THAT(simulation().journal().entries().without("CoInitialize").operations(), IsEmpty());
    EXPECT_EQ(1, simulation().census().clients.at("IMMNotificationClient"));
}

TEST_F(SysInfoHelperCopy, ReplacesItsCardsWhenItIsAssigned)
{
    builder.card("Codec", "USB").speaker();
    runBuilt();
    BalancedHelper helper;
    BalancedHelper target;
    const SharedPointer<SoundCard> former = target.m_soundCards[0];

    const SysInfoHelper& result = target = helper;

    EXPECT_EQ(&target, &result);
    EXPECT_EQ(helper.m_soundCards[0].get(), target.m_soundCards[0].get());
    EXPECT_EQ(2, *helper.m_soundCards[0].m_count);
    EXPECT_EQ(1, *former.m_count); // the test's
}

TEST_F(SysInfoHelperCopy, KeepsItsCardsWhenItIsAssignedToItself)
{
    builder.card("Codec", "USB").speaker();
    runBuilt();
    BalancedHelper helper;
    const BalancedHelper& same = helper;

    helper = same;

    ASSERT_EQ(1u, helper.m_soundCards.size());
    EXPECT_EQ(1, *helper.m_soundCards[0].m_count);
}

#if !defined(_WIN32) // the system's own COM keeps no journal

TEST_F(SysInfoHelperConstruction, RequestsAMultithreadedApartmentFirst)
{
    builder.card("Codec").speaker();
    runBuilt();

    CoInitialize(nullptr); // balances the object's CoUninitialize
    simulation().journal().clear();

    const SysInfoHelper helper;

    EXPECT_EQ("CoInitializeEx(0)", simulation().journal().entries()[0].call());
    EXPECT_EQ("CoCreateInstance", simulation().journal().entries()[1].operation);
    EXPECT_EQ(RPC_E_CHANGED_MODE, simulation().journal().entries()[0].result); // and the constructor goes on
    EXPECT_THAT(simulation().journal().of("CoInitialize*").calls(),
                ElementsAre("CoInitializeEx(0)", "CoInitialize()")); // the second one is the shared enumerator's
    EXPECT_EQ(1u, helper.m_soundCards.size());
}

TEST_F(SysInfoHelperConstruction, InitializesComOnAThreadThatHasNone)
{
    builder.card("Codec", "USB").speaker();
    runBuilt();
    bool answer = false;

    std::thread(
        [&]
        {
            {
                SysInfoHelper helper;
                answer = helper.hasAnalogOut("USB");
            }
            endModule();
        })
        .join();

    EXPECT_TRUE(answer);
    EXPECT_THAT(log.texts("comptr"), ElementsAre("CoInitialize returns 18446744071562133766"));
    EXPECT_EQ(1u, simulation().comUnderflows()); // the shared enumerator's, whose CoInitialize failed
}

TEST_F(SysInfoHelperConstruction, ReleasesItsCardsBeforeItUninitializesCom)
{
    builder.card("Codec").speaker();
    runBuilt();
    auto helper = std::make_unique<BalancedHelper>();
    simulation().journal().clear();
    simulation().journal().recordReferences(true);

    helper.reset();

    const std::vector<std::string> operations = simulation().journal().operations();
    EXPECT_EQ("CoUninitialize", operations.back());
    EXPECT_EQ(1u, simulation().journal().count("CoUninitialize"));
    EXPECT_THAT(operations[operations.size() - 2], testing::EndsWith("::Release"));
    simulation().journal().recordReferences(false);
}

TEST_F(SysInfoHelperCopy, UninitializesComWithoutHavingInitializedIt)
{
    run({});
    {
        const BalancedHelper helper;
        const BalancedHelper copy(helper);
    }

    EXPECT_EQ(1u, simulation().journal().count("CoInitializeEx"));
    EXPECT_EQ(2u, simulation().journal().count("CoUninitialize"));
}

#endif
