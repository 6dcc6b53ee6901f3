#include "libSonavit/endpointdeviceenumerator.h"

#include "tests/libSonavit/endpointdeviceenumerator/supportcountedclient.h"
#include "tests/support/librarytest.h"

#include <memory>

using libSonavit::AudioDeviceEnumerator;
using libSonavit::AudioDeviceEnumeratorFactory;
using support::CallList;
using support::CountedClient;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
/// The shared enumerator with two clients, with log and journal cleared.
struct SharedEnumeratorCopyTest : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        run({});
        shared().addNotificationClient(first.handle());
        shared().addNotificationClient(second.handle());
        calls.clear();
        log.clear();
        simulation().journal().clear();
    }

    /// Copies the shared enumerator. The copy's destructor calls CoUninitialize, which this balances beforehand.
    std::unique_ptr<AudioDeviceEnumerator> copyOfShared()
    {
        CoInitialize(nullptr);
        simulation().journal().clear();
        return std::make_unique<AudioDeviceEnumerator>(shared());
    }

    static AudioDeviceEnumerator& shared() { return *AudioDeviceEnumeratorFactory::enumerator(); }

    CallList calls;
    CountedClient first{calls, "first"};
    CountedClient second{calls, "second"};
};

struct AudioDeviceEnumeratorCopy : SharedEnumeratorCopyTest
{
};
struct AudioDeviceEnumeratorAssignment : SharedEnumeratorCopyTest
{
};
}

TEST_F(AudioDeviceEnumeratorCopy, TakesItsOwnReferencesAndRegistersNothing)
{
    const std::unique_ptr<AudioDeviceEnumerator> copy = copyOfShared();

    EXPECT_EQ(shared().m_deviceEnumerator.get(), copy->m_deviceEnumerator.get());
    EXPECT_EQ(2, simulation().census().references("IMMDeviceEnumerator"));
    ASSERT_EQ(2u, copy->m_notificationClients.size());
    EXPECT_EQ(2u, first.count); // the two lists
    EXPECT_EQ(2u, second.count);
    EXPECT_THAT(simulation().journal().operations(), IsEmpty()); // not even CoInitialize
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(AudioDeviceEnumeratorCopy, UnregistersAllClientsInTheDestructor)
{
    copyOfShared().reset();

    EXPECT_TRUE(simulation().census().clients.empty());
    EXPECT_EQ(2u, simulation().journal().count("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback"));
    EXPECT_EQ(2u, shared().m_notificationClients.size()); // the original has kept them
    EXPECT_EQ(1u, first.count);
    EXPECT_EQ(1u, second.count);
    EXPECT_EQ(1, simulation().census().references("IMMDeviceEnumerator"));
}

TEST_F(AudioDeviceEnumeratorCopy, LeavesTheOriginalToUnregisterThemOnceMore)
{
    copyOfShared().reset();
    simulation().journal().clear();

    endModule();

    EXPECT_EQ(2u, simulation().journal().count("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback"));
    EXPECT_EQ(0u, first.count);
    EXPECT_EQ(0u, second.count);
}

TEST_F(AudioDeviceEnumeratorAssignment, TakesTheSourcesClientsAndReleasesItsOwn)
{
    CountedClient third(calls, "third");
    const std::unique_ptr<AudioDeviceEnumerator> target = copyOfShared();
    target->m_notificationClients.clear();
    target->m_notificationClients.append(third.handle());

    *target = shared();

    EXPECT_EQ(0u, third.count);
    ASSERT_EQ(2u, target->m_notificationClients.size());
    EXPECT_EQ(&first, target->m_notificationClients[0].get());
    EXPECT_EQ(&second, target->m_notificationClients[1].get());
    EXPECT_EQ(2u, first.count);
    EXPECT_EQ(2, simulation().census().references("IMMDeviceEnumerator"));
}

TEST_F(AudioDeviceEnumeratorAssignment, LeavesTheRegistrationsUnchanged)
{
    const std::unique_ptr<AudioDeviceEnumerator> target = copyOfShared();

    *target = shared();

    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
    EXPECT_EQ(2, simulation().census().clients.at("IMMNotificationClient"));
}

TEST_F(AudioDeviceEnumeratorAssignment, ToItselfChangesNothing)
{
    const AudioDeviceEnumerator& same = shared();

    shared() = same;

    EXPECT_THAT(calls, IsEmpty());
    EXPECT_EQ(2u, shared().m_notificationClients.size());
    EXPECT_EQ(1, simulation().census().references("IMMDeviceEnumerator"));
    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
}

#if !defined(_WIN32) // the system's own COM keeps no journal
TEST_F(AudioDeviceEnumeratorCopy, UninitializesComWithoutHavingInitializedIt)
{
    copyOfShared().reset();

    EXPECT_EQ(0u, simulation().journal().count("CoInitialize"));
    EXPECT_EQ(1u, simulation().journal().count("CoUninitialize"));
}
#endif
