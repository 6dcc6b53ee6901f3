#include "libSonavit/endpointdeviceenumerator.h"

#include "tests/libSonavit/endpointdeviceenumerator/supportcountedclient.h"
#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

#include <memory>

using support::CallList;
using support::CountedClient;
using support::namesOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* registerCall = "IMMDeviceEnumerator::RegisterEndpointNotificationCallback";
constexpr const char* unregisterCall = "IMMDeviceEnumerator::UnregisterEndpointNotificationCallback";

struct StateListsLifeTest : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        run(support::endpointsInAllStates());
        enumerator = std::make_unique<EndpointDeviceEnumeratorCommon>(eRender);
        log.clear();
        simulation().journal().clear();
    }

    void TearDown() override
    {
        enumerator.reset();
        LibraryTest::TearDown();
    }

    const EndpointDeviceEnumeratorCommon& constant() { return *enumerator; }

    CallList calls;
    CountedClient client{calls, "client"};
    CountedClient other{calls, "other"};
    std::unique_ptr<EndpointDeviceEnumeratorCommon> enumerator;
};

struct EndpointDeviceEnumeratorCommonCopy : StateListsLifeTest
{
};
struct EndpointDeviceEnumeratorCommonGetters : StateListsLifeTest
{
};
struct EndpointDeviceEnumeratorCommonDestruction : StateListsLifeTest
{
};
struct EndpointDeviceEnumeratorCommonObserver : StateListsLifeTest
{
};
}

TEST_F(EndpointDeviceEnumeratorCommonGetters, GiveTheListsThemselvesOfAConstantObject)
{
    EXPECT_EQ(&enumerator->m_active, &constant().activeDevice());
    EXPECT_EQ(&enumerator->m_notPresent, &constant().notPresentDevice());
    EXPECT_EQ(&enumerator->m_disabled, &constant().disabledDevice());
    EXPECT_EQ(&enumerator->m_unplugged, &constant().unpluggedDevice());
}

TEST_F(EndpointDeviceEnumeratorCommonGetters, GiveCopiesOfAnyOther)
{
    EXPECT_THAT(namesOf(enumerator->activeDevice()), ElementsAre("Active", "Second active"));
    EXPECT_THAT(namesOf(enumerator->notPresentDevice()), ElementsAre("Not present"));
    EXPECT_THAT(namesOf(enumerator->disabledDevice()), ElementsAre("Disabled"));
    EXPECT_THAT(namesOf(enumerator->unpluggedDevice()), ElementsAre("Unplugged"));

    qor::Array<AudioDevice> copy = enumerator->activeDevice();
    copy.clear();

    EXPECT_EQ(2u, constant().activeDevice().size());
}

TEST_F(EndpointDeviceEnumeratorCommonGetters, GiveTheEnumeratorWithAFurtherReference)
{
    const COMPtr<IMMDeviceEnumerator>::pointer handle = enumerator->enumerator();

    EXPECT_EQ(2, simulation().census().references("IMMDeviceEnumerator"));
    EXPECT_EQ(3u, comReferenceCount(handle.get())); // with the platform's own
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(EndpointDeviceEnumeratorCommonCopy, HasListsAndAReferenceOfItsOwn)
{
    const EndpointDeviceEnumeratorCommon copy(*enumerator);

    EXPECT_EQ(2, simulation().census().references("IMMDeviceEnumerator"));
    enumerator->clear();
    EXPECT_THAT(namesOf(copy.activeDevice()), ElementsAre("Active", "Second active"));
    EXPECT_THAT(namesOf(copy.notPresentDevice()), ElementsAre("Not present"));
    EXPECT_THAT(namesOf(copy.disabledDevice()), ElementsAre("Disabled"));
    EXPECT_THAT(namesOf(copy.unpluggedDevice()), ElementsAre("Unplugged"));
    EXPECT_EQ(1, simulation().census().references("IMMDeviceEnumerator"));
    EXPECT_EQ(nullptr, enumerator->enumerator().get());
}

TEST_F(EndpointDeviceEnumeratorCommonCopy, HasTheObserverWithoutRegisteringIt)
{
    enumerator->registerNotificationObserver(&client);
    simulation().journal().clear();

    const EndpointDeviceEnumeratorCommon copy(*enumerator);
    EndpointDeviceEnumeratorCommon target;
    target = *enumerator;

    EXPECT_EQ(&client, copy.m_notificationObserver);
    EXPECT_EQ(&client, target.m_notificationObserver);
    EXPECT_THAT(simulation().journal().operations(), IsEmpty());

    enumerator->unregisterNotificationObserver();
}

TEST_F(EndpointDeviceEnumeratorCommonCopy, ReplacesAllByAssignment)
{
    EndpointDeviceEnumeratorCommon target(eCapture);
    simulation().journal().recordReferences(true);
    simulation().journal().clear();

    EndpointDeviceEnumeratorCommon& result = target = *enumerator;
    const sim::JournalEntries references = simulation().journal().of("IMMDeviceEnumerator::*");
    simulation().journal().recordReferences(false);

    EXPECT_EQ(&target, &result);
    EXPECT_THAT(namesOf(target.activeDevice()), ElementsAre("Active", "Second active"));
    EXPECT_THAT(namesOf(target.unpluggedDevice()), ElementsAre("Unplugged"));
    EXPECT_EQ(enumerator->enumerator().get(), target.enumerator().get());
    EXPECT_THAT(references.operations(), ElementsAre("IMMDeviceEnumerator::AddRef", "IMMDeviceEnumerator::Release"));
    EXPECT_EQ(2, simulation().census().references("IMMDeviceEnumerator"));
}

TEST_F(EndpointDeviceEnumeratorCommonCopy, ChangesNothingWhenItIsAssignedToItself)
{
    const EndpointDeviceEnumeratorCommon& same = *enumerator;

    *enumerator = same;

    EXPECT_THAT(namesOf(constant().activeDevice()), ElementsAre("Active", "Second active"));
    EXPECT_EQ(1, simulation().census().references("IMMDeviceEnumerator"));
    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
}

TEST_F(EndpointDeviceEnumeratorCommonDestruction, ClearsWithinItsScope)
{
    enumerator.reset();

    EXPECT_THAT(log.entered(channels::deviceEnumerator),
                ElementsAre("EndpointDeviceEnumeratorCommon::~EndpointDeviceEnumeratorCommon()",
                            "EndpointDeviceEnumeratorCommon::clear()"));
    EXPECT_THAT(log.left(channels::deviceEnumerator),
                ElementsAre("EndpointDeviceEnumeratorCommon::clear()",
                            "EndpointDeviceEnumeratorCommon::~EndpointDeviceEnumeratorCommon()"));
    EXPECT_TRUE(simulation().census().empty()) << simulation().census();
}

TEST_F(EndpointDeviceEnumeratorCommonDestruction, LeavesTheObserverRegistered)
{
    const COMPtr<IMMDeviceEnumerator>::pointer handle = enumerator->enumerator();
    enumerator->registerNotificationObserver(&client);

    enumerator.reset();

    EXPECT_EQ(0u, simulation().journal().count(unregisterCall));
    EXPECT_EQ(1, simulation().census().clients.at("IMMNotificationClient"));
    handle->UnregisterEndpointNotificationCallback(&client);
}

TEST_F(EndpointDeviceEnumeratorCommonDestruction, LeavesASnapshotReadable)
{
    qor::Array<AudioDevice> snapshot = enumerator->activeDevice();

    enumerator.reset();

    ASSERT_EQ(2u, snapshot.size());
    EXPECT_TRUE(snapshot[0].refreshDeviceInformation());
    EXPECT_THAT(namesOf(snapshot), ElementsAre("Active", "Second active"));
}

TEST_F(EndpointDeviceEnumeratorCommonObserver, IsRegisteredWithoutAReferenceOfTheObject)
{
    enumerator->registerNotificationObserver(&client);

    EXPECT_THAT(simulation().journal().operations(), ElementsAre(registerCall));
    EXPECT_EQ(&client, enumerator->m_notificationObserver);
    EXPECT_EQ(0u, client.count);
    EXPECT_THAT(log.records(), IsEmpty());

    enumerator->unregisterNotificationObserver();
}

TEST_F(EndpointDeviceEnumeratorCommonObserver, StaysRegisteredWhenNullIsGiven)
{
    enumerator->registerNotificationObserver(&client);
    simulation().journal().clear();

    enumerator->registerNotificationObserver(nullptr);

    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
    EXPECT_EQ(&client, enumerator->m_notificationObserver);
    EXPECT_EQ(1, simulation().census().clients.at("IMMNotificationClient"));

    enumerator->unregisterNotificationObserver();
}

TEST_F(EndpointDeviceEnumeratorCommonObserver, IsUnregisteredBeforeAnotherOneIsRegistered)
{
    enumerator->registerNotificationObserver(&client);
    simulation().journal().clear();
    calls.clear();

    enumerator->registerNotificationObserver(&other);

    EXPECT_THAT(simulation().journal().operations(), ElementsAre(unregisterCall, registerCall));
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_EQ(&other, enumerator->m_notificationObserver);
    EXPECT_EQ(E_NOTFOUND, enumerator->enumerator()->UnregisterEndpointNotificationCallback(&client));

    enumerator->unregisterNotificationObserver();
}

TEST_F(EndpointDeviceEnumeratorCommonObserver, IsKeptEvenIfThePlatformRefuses)
{
    const sim::PlannedFault refused = simulation().faults().fail(registerCall);

    enumerator->registerNotificationObserver(&client);

    EXPECT_EQ(1u, refused.fired());
    EXPECT_EQ(&client, enumerator->m_notificationObserver);
    EXPECT_THAT(log.records(), IsEmpty());
    simulation().faults().clear();
    simulation().journal().clear();

    enumerator->registerNotificationObserver(&other);

    EXPECT_THAT(simulation().journal().operations(), ElementsAre(unregisterCall, registerCall));
    enumerator->unregisterNotificationObserver();
}

TEST_F(EndpointDeviceEnumeratorCommonObserver, IsReplacedEvenIfThePlatformRefusesToUnregisterIt)
{
    enumerator->registerNotificationObserver(&client);
    const sim::PlannedFault refused = simulation().faults().fail(unregisterCall).at(1);

    enumerator->registerNotificationObserver(&other);

    EXPECT_EQ(1u, refused.fired());
    EXPECT_EQ(&other, enumerator->m_notificationObserver);
    EXPECT_EQ(2, simulation().census().clients.at("IMMNotificationClient"));
    enumerator->unregisterNotificationObserver();
    enumerator->enumerator()->UnregisterEndpointNotificationCallback(&client);
}

TEST_F(EndpointDeviceEnumeratorCommonObserver, CanBeUnregisteredOnce)
{
    enumerator->registerNotificationObserver(&client);

    enumerator->unregisterNotificationObserver();
    enumerator->unregisterNotificationObserver();

    EXPECT_THAT(simulation().journal().operations(), ElementsAre(registerCall, unregisterCall));
    EXPECT_EQ(nullptr, enumerator->m_notificationObserver);
    EXPECT_EQ(0u, client.count);
}

TEST_F(EndpointDeviceEnumeratorCommonObserver, StaysRegisteredDuringANewEnumeration)
{
    enumerator->registerNotificationObserver(&client);
    simulation().journal().clear();

    enumerator->enumerate(eCapture);

    EXPECT_EQ(&client, enumerator->m_notificationObserver);
    EXPECT_EQ(0u, simulation().journal().count(registerCall));
    EXPECT_EQ(0u, simulation().journal().count(unregisterCall));

    enumerator->registerNotificationObserver(&other); // unregisters the former one with the new enumerator

    EXPECT_EQ(0u, client.count);
    enumerator->unregisterNotificationObserver();
}
