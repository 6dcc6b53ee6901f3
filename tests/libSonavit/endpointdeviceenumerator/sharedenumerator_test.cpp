#include "libSonavit/endpointdeviceenumerator.h"

#include "tests/libSonavit/endpointdeviceenumerator/supportcountedclient.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

#include <type_traits>

using libSonavit::AudioDeviceEnumerator;
using libSonavit::AudioDeviceEnumeratorFactory;
using qor::LoggerPriority;
using support::CallList;
using support::CountedClient;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace
{
constexpr const char* label = "AudioDeviceEnumerator::deviceEnumerator()";
constexpr const char* createCall = "CoCreateInstance(MMDeviceEnumerator, 1, IMMDeviceEnumerator)";

static_assert(!std::is_polymorphic_v<AudioDeviceEnumerator> && !std::is_polymorphic_v<AudioDeviceEnumeratorFactory>,
              "neither has a virtual operation");
static_assert(std::is_empty_v<AudioDeviceEnumeratorFactory>, "the factory has no data of its own");

struct SharedEnumeratorTest : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        run({});
    }

    static AudioDeviceEnumerator& shared() { return *AudioDeviceEnumeratorFactory::enumerator(); }

    CallList calls;
    CountedClient client{calls, "client"};
    CountedClient other{calls, "other"};
};

struct AudioDeviceEnumeratorFactoryEnumerator : SharedEnumeratorTest
{
};
struct AudioDeviceEnumeratorDeviceEnumerator : SharedEnumeratorTest
{
};
struct AudioDeviceEnumeratorAddNotificationClient : SharedEnumeratorTest
{
};
}

TEST_F(AudioDeviceEnumeratorFactoryEnumerator, GivesTheSameHandleTwiceAndConstructsOnce)
{
    OwnedPointer<AudioDeviceEnumerator>& first = AudioDeviceEnumeratorFactory::enumerator();
    AudioDeviceEnumerator* const instance = first.get();
    OwnedPointer<AudioDeviceEnumerator>& second = AudioDeviceEnumeratorFactory::enumerator();

    EXPECT_EQ(&first, &second);
    ASSERT_NE(nullptr, instance);
    EXPECT_EQ(instance, second.get());
    EXPECT_EQ(1u, log.texts("comptr").size()); // the message about CoInitialize
}

TEST_F(AudioDeviceEnumeratorFactoryEnumerator, HasItsFieldsInTheirOrderWithComAtTheEnd)
{
    AudioDeviceEnumerator& instance = shared();

    EXPECT_EQ(static_cast<void*>(&instance), static_cast<void*>(&instance.m_deviceEnumerator));
    EXPECT_LT(static_cast<void*>(&instance.m_deviceEnumerator), static_cast<void*>(&instance.m_notificationClients));
    EXPECT_LT(static_cast<void*>(&instance.m_notificationClients), static_cast<void*>(&instance.m_comInitializer));
}

TEST_F(AudioDeviceEnumeratorFactoryEnumerator, InitializesComAndNothingElse)
{
    AudioDeviceEnumerator& instance = shared();

    EXPECT_EQ(nullptr, instance.m_deviceEnumerator.get());
    EXPECT_EQ(0u, instance.m_notificationClients.size());
    EXPECT_THAT(log.texts(), ElementsAre("CoInitialize returns 1"));
    EXPECT_THAT(log.entered(), ElementsAre("COMInitializer::COMInitializer"));
    EXPECT_EQ(0u, simulation().journal().count("CoCreateInstance"));
}

TEST_F(AudioDeviceEnumeratorFactoryEnumerator, HasAFactoryWhoseAssignmentDoesNothing)
{
    AudioDeviceEnumerator* const instance = &shared();
    AudioDeviceEnumeratorFactory left;
    const AudioDeviceEnumeratorFactory right;
    log.clear();

    AudioDeviceEnumeratorFactory& result = left = right;

    EXPECT_EQ(&left, &result);
    EXPECT_EQ(instance, &shared());
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(AudioDeviceEnumeratorDeviceEnumerator, CreatesThePlatformsEnumeratorOnFirstCall)
{
    const BorrowedPointer<IMMDeviceEnumerator> enumerator = shared().deviceEnumerator();

    EXPECT_NE(nullptr, enumerator.get());
    EXPECT_EQ(shared().m_deviceEnumerator.get(), enumerator.get());
    EXPECT_THAT(simulation().journal().of("CoCreateInstance").calls(), ElementsAre(createCall));
    EXPECT_THAT(log.entered(channels::deviceEnumerator), ElementsAre(label));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_DEBUG, channels::deviceEnumerator),
                ElementsAre("IMMDeviceEnumerator refcount = 2", "IMMDeviceEnumerator refcount after copy = 2"));
    EXPECT_EQ(2u, log.texts(channels::deviceEnumerator).size());
}

TEST_F(AudioDeviceEnumeratorDeviceEnumerator, ReturnsThePointerWithoutAReference)
{
    const BorrowedPointer<IMMDeviceEnumerator> enumerator = shared().deviceEnumerator();

    EXPECT_EQ(1, simulation().census().references("IMMDeviceEnumerator"));
}

TEST_F(AudioDeviceEnumeratorDeviceEnumerator, CreatesAndReportsNothingOnASecondCall)
{
    IMMDeviceEnumerator* const first = shared().deviceEnumerator().get();
    log.clear();
    simulation().journal().clear();

    IMMDeviceEnumerator* const second = shared().deviceEnumerator().get();

    EXPECT_EQ(first, second);
    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
    EXPECT_THAT(log.texts(), IsEmpty());
    EXPECT_THAT(log.entered(channels::deviceEnumerator), ElementsAre(label)); // the scope is opened on every call
}

TEST_F(AudioDeviceEnumeratorDeviceEnumerator, LogsAFailureReturnsNilAndTriesAgainNextTime)
{
    const sim::PlannedFault fault = simulation().faults().fail("CoCreateInstance", E_OUTOFMEMORY).at(1);

    EXPECT_EQ(nullptr, shared().deviceEnumerator().get());
    EXPECT_EQ(nullptr, shared().m_deviceEnumerator.get());
    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(log.texts(channels::deviceEnumerator), ElementsAre("CoCreateInstance returns 0x8007000E"));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_ERROR, channels::deviceEnumerator),
                ElementsAre("CoCreateInstance returns 0x8007000E"));

    EXPECT_NE(nullptr, shared().deviceEnumerator().get());
    EXPECT_THAT(log.texts(LoggerPriority::LOG_DEBUG, channels::deviceEnumerator),
                ElementsAre("IMMDeviceEnumerator refcount = 2", "IMMDeviceEnumerator refcount after copy = 2"));
}

TEST_F(AudioDeviceEnumeratorDeviceEnumerator, LogsNothingForASuccessWithoutAnEnumerator)
{
    const sim::PlannedFault fault = simulation().faults().succeedWithNull("CoCreateInstance").at(1);

    EXPECT_EQ(nullptr, shared().deviceEnumerator().get());
    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(log.texts(channels::deviceEnumerator), IsEmpty());
    EXPECT_NE(nullptr, shared().deviceEnumerator().get());
}

TEST_F(AudioDeviceEnumeratorAddNotificationClient, RegistersTheClientAndKeepsIt)
{
    shared().deviceEnumerator();
    log.clear();
    simulation().journal().clear();

    EXPECT_TRUE(shared().addNotificationClient(client.handle()));

    EXPECT_THAT(simulation().journal().operations(),
                ElementsAre("IMMDeviceEnumerator::RegisterEndpointNotificationCallback"));
    ASSERT_EQ(1u, shared().m_notificationClients.size());
    EXPECT_EQ(&client, shared().m_notificationClients[0].get());
    EXPECT_EQ(1u, client.count); // the list's
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(AudioDeviceEnumeratorAddNotificationClient, CreatesTheEnumeratorFirstOnAFreshInstance)
{
    EXPECT_TRUE(shared().addNotificationClient(client.handle()));

    EXPECT_THAT(simulation().journal().entries().without("CoInitialize").operations(),
                ElementsAre("CoCreateInstance", "IMMDeviceEnumerator::RegisterEndpointNotificationCallback"));
    EXPECT_THAT(log.entered(channels::deviceEnumerator), ElementsAre(label));
    EXPECT_THAT(log.texts(channels::deviceEnumerator),
                ElementsAre("IMMDeviceEnumerator refcount = 2", "IMMDeviceEnumerator refcount after copy = 2"));
}

TEST_F(AudioDeviceEnumeratorAddNotificationClient, KeepsAndRegistersTheSameClientTwice)
{
    EXPECT_TRUE(shared().addNotificationClient(client.handle()));
    EXPECT_TRUE(shared().addNotificationClient(client.handle()));

    EXPECT_EQ(2u, shared().m_notificationClients.size());
    EXPECT_EQ(2u, simulation().journal().count("IMMDeviceEnumerator::RegisterEndpointNotificationCallback"));
    EXPECT_EQ(2u, client.count);

    endModule();

    EXPECT_EQ(2u, simulation().journal().count("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback"));
    EXPECT_EQ(0u, client.count);
}

TEST_F(AudioDeviceEnumeratorAddNotificationClient, KeepsAClientThatThePlatformRefusesAndUnregistersItNevertheless)
{
    const sim::PlannedFault fault = simulation().faults().fail(
        "IMMDeviceEnumerator::RegisterEndpointNotificationCallback", static_cast<HRESULT>(0x80070005));

    EXPECT_FALSE(shared().addNotificationClient(client.handle()));

    EXPECT_EQ(1u, fault.fired());
    ASSERT_EQ(1u, shared().m_notificationClients.size());
    EXPECT_EQ(1u, client.count); // the list's only
    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING),
                ElementsAre("Fail to register notification callback 2147942405"));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING, channels::deviceEnumerator), Not(IsEmpty()));

    endModule();

    EXPECT_EQ(1u, simulation().journal().count("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback"));
    EXPECT_EQ(0u, client.count);
}

TEST_F(AudioDeviceEnumeratorAddNotificationClient, AppendsTheClientBeforeItIsRegistered)
{
    unsigned int sizeAtRegistration = 0;
    const sim::PlannedFault watch =
        simulation().faults().run("IMMDeviceEnumerator::RegisterEndpointNotificationCallback",
                                  [&] { sizeAtRegistration = shared().m_notificationClients.size(); });

    shared().addNotificationClient(client.handle());

    EXPECT_EQ(1u, watch.fired());
    EXPECT_EQ(1u, sizeAtRegistration);
}

TEST_F(AudioDeviceEnumeratorAddNotificationClient, FailsWithTheListUnchangedIfThereIsNoEnumerator)
{
    const sim::PlannedFault fault = simulation().faults().fail("CoCreateInstance", E_FAIL);

    EXPECT_FALSE(shared().addNotificationClient(client.handle()));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(0u, shared().m_notificationClients.size());
    EXPECT_EQ(0u, client.count);
    EXPECT_THAT(log.texts(channels::deviceEnumerator),
                ElementsAre("CoCreateInstance returns 0x80004005", "Fail to instantiate IMMDeviceNumerator"));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING, channels::deviceEnumerator),
                ElementsAre("Fail to instantiate IMMDeviceNumerator"));
}

TEST_F(AudioDeviceEnumeratorAddNotificationClient, FailsEvenIfTheCreationSucceedsWithNull)
{
    const sim::PlannedFault fault = simulation().faults().succeedWithNull("CoCreateInstance");

    EXPECT_FALSE(shared().addNotificationClient(client.handle()));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(log.texts(channels::deviceEnumerator), ElementsAre("Fail to instantiate IMMDeviceNumerator"));
}

TEST_F(AudioDeviceEnumeratorAddNotificationClient, KeepsEveryClientInOrderOfRegistration)
{
    shared().addNotificationClient(client.handle());
    shared().addNotificationClient(other.handle());

    ASSERT_EQ(2u, shared().m_notificationClients.size());
    EXPECT_EQ(&client, shared().m_notificationClients[0].get());
    EXPECT_EQ(&other, shared().m_notificationClients[1].get());
    EXPECT_EQ(1u, client.count);
    EXPECT_EQ(1u, other.count);
}
