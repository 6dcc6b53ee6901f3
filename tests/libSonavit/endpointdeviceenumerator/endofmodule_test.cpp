#include "libSonavit/endpointdeviceenumerator.h"

#include "tests/libSonavit/endpointdeviceenumerator/supportcountedclient.h"
#include "tests/support/librarytest.h"

using libSonavit::AudioDeviceEnumerator;
using libSonavit::AudioDeviceEnumeratorFactory;
using support::CallList;
using support::CountedClient;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* unregisterCall = "IMMDeviceEnumerator::UnregisterEndpointNotificationCallback";
constexpr const char* releaseCall = "IMMDeviceEnumerator::Release";

/// The end of the module as the fixture simulates it: the static handle deletes the shared enumerator.
struct AudioDeviceEnumeratorEnd : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        run({});
    }

    static AudioDeviceEnumerator& shared() { return *AudioDeviceEnumeratorFactory::enumerator(); }

    void addThreeClients()
    {
        shared().addNotificationClient(first.handle());
        shared().addNotificationClient(second.handle());
        shared().addNotificationClient(third.handle());
        calls.clear();
        simulation().journal().clear();
    }

    CallList calls;
    CountedClient first{calls, "first"};
    CountedClient second{calls, "second"};
    CountedClient third{calls, "third"};
};
}

TEST_F(AudioDeviceEnumeratorEnd, UnregistersThenReleasesTheClientsInOrderOfRegistrationAndTheEnumeratorLast)
{
    addThreeClients();
    const auto record = [this](const char* call) // and who is still called, in the order of registration
    {
        return [this, call]
        {
            simulation().events().announceAdded("arrival");
            calls.push_back(call);
        };
    };
    simulation().faults().run(unregisterCall, record("Unregister"));
    const sim::PlannedFault watch = simulation().faults().run(releaseCall, record("enumerator Release"));

    endModule();

    EXPECT_EQ(1u, watch.fired());
    EXPECT_THAT(calls, ElementsAre("first OnDeviceAdded", "second OnDeviceAdded", "third OnDeviceAdded", "Unregister",
                                   "second OnDeviceAdded", "third OnDeviceAdded", "Unregister", //
                                   "third OnDeviceAdded", "Unregister",                         //
                                   "first Release", "second Release", "third Release",          // by the list
                                   "enumerator Release"));
    EXPECT_EQ(0u, first.count + second.count + third.count);
}

TEST_F(AudioDeviceEnumeratorEnd, HoldsNothingAfterwards)
{
    addThreeClients();
    simulation().journal().recordReferences(true);

    endModule();

    EXPECT_THAT(simulation().journal().entries().without("CoUninitialize").operations(),
                ElementsAre(unregisterCall, unregisterCall, unregisterCall, releaseCall));
    EXPECT_TRUE(simulation().census().empty()) << simulation().census();
}

TEST_F(AudioDeviceEnumeratorEnd, IgnoresTheResultsOfTheUnregistrations)
{
    addThreeClients();
    const sim::PlannedFault fault = simulation().faults().fail(unregisterCall);
    log.clear();

    endModule();

    EXPECT_EQ(3u, fault.fired());
    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_EQ(0u, first.count);
    EXPECT_EQ(3, simulation().census().clients.at("IMMNotificationClient")); // the machine has refused
    EXPECT_EQ(0, simulation().census().references("IMMDeviceEnumerator"));

    simulation().faults().clear(); // so that none of them is left registered
    const COMPtr<IMMDeviceEnumerator>::pointer enumerator(simulation().enumerator());
    for (CountedClient* client : {&first, &second, &third})
        enumerator->UnregisterEndpointNotificationCallback(client);
}

TEST_F(AudioDeviceEnumeratorEnd, LeavesAnEmptyHandle)
{
    shared();

    endModule();

    EXPECT_EQ(nullptr, AudioDeviceEnumeratorFactory::m_enumerator.get());
}

TEST_F(AudioDeviceEnumeratorEnd, CallsNoPlatformFunctionIfNoEnumeratorWasCreated)
{
    shared();
    simulation().journal().clear();

    endModule();

    EXPECT_THAT(simulation().journal().entries().without("CoUninitialize").operations(), IsEmpty());
}

TEST_F(AudioDeviceEnumeratorEnd, DoesNothingIfNoInstanceWasCreated)
{
    endModule();

    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
    EXPECT_THAT(log.records(), IsEmpty());
}

#if !defined(_WIN32) // the system's COM has no journal and no fault plan

TEST_F(AudioDeviceEnumeratorEnd, UninitializesComLast)
{
    addThreeClients();
    simulation().journal().recordReferences(true);

    endModule();

    EXPECT_THAT(simulation().journal().operations(),
                ElementsAre(unregisterCall, unregisterCall, unregisterCall, releaseCall, "CoUninitialize"));
}

TEST_F(AudioDeviceEnumeratorEnd, UninitializesComEvenIfCoInitializeFailed)
{
    const sim::PlannedFault fault = simulation().faults().fail("CoInitialize", E_OUTOFMEMORY);

    EXPECT_NE(nullptr, shared().deviceEnumerator().get()); // COM is initialized by the fixture

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(log.texts("comptr"), ElementsAre("CoInitialize returns 18446744071562526734"));
    simulation().journal().clear();

    endModule();

    EXPECT_THAT(simulation().journal().operations(), ElementsAre("CoUninitialize"));
    CoInitialize(nullptr); // balances the fixture's CoUninitialize
}

#endif
