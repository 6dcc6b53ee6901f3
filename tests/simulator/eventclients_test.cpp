#include "tests/simulator/eventstest.h"
#include "tests/simulator/visit.h"

#include <chrono>
#include <memory>

namespace
{
using bench::Held;
using testing::ElementsAre;

using EventsClients = bench::EventsTest;

/// Stays in OnDeviceAdded until it is told to leave.
struct Visiting : bench::ClientListener
{
    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override
    {
        visit.stay();
        return S_OK;
    }
    bench::Visit visit;
};

TEST_F(EventsClients, AreCalledInTheOrderOfTheirRegistrationAndAsOftenAsTheyRegistered)
{
    simulation.deliverAtOnce(true);
    std::vector<std::string> order;
    struct Ordered : bench::ClientListener
    {
        HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override
        {
            order->push_back(name);
            return E_FAIL;
        }
        std::string name;
        std::vector<std::string>* order = nullptr;
    } first, second;
    first.name = "first";
    second.name = "second";
    first.order = second.order = &order;
    enumerator->RegisterEndpointNotificationCallback(&second);
    enumerator->RegisterEndpointNotificationCallback(&first);
    enumerator->RegisterEndpointNotificationCallback(&second);

    simulation.events().add(speakerId);

    EXPECT_THAT(order, ElementsAre("second", "first", "second"));
    EXPECT_EQ(3u, simulation.journal().of("IMMNotificationClient::OnDeviceAdded").failed().size());
    enumerator->UnregisterEndpointNotificationCallback(&second);
    enumerator->UnregisterEndpointNotificationCallback(&first);
    enumerator->UnregisterEndpointNotificationCallback(&second);
}

TEST_F(EventsClients, AreNotCalledAgainOnceTheyHaveSignedOffInTheirOwnCallback)
{
    expectViolations();
    struct Leaving : bench::ClientListener
    {
        HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR id) override
        {
            bench::ClientListener::OnDeviceAdded(id);
            return owner->UnregisterEndpointNotificationCallback(this);
        }
        IMMDeviceEnumerator* owner = nullptr;
    } leaving;
    leaving.owner = enumerator.get();
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&leaving));

    simulation.events().add(speakerId);
    simulation.events().add(earphoneId);
    simulation.events().waitForClients();

    EXPECT_THAT(leaving.heard(), ElementsAre("added " + speakerId));
}

TEST_F(EventsClients, OfAVolumeAreReleasedWhenTheCallbackEndsInWhichTheySignOff)
{
    expectViolations();
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    struct Leaving : bench::VolumeListener
    {
        HRESULT STDMETHODCALLTYPE OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA* data) override
        {
            bench::VolumeListener::OnNotify(data);
            const HRESULT result = owner->UnregisterControlChangeNotify(this);
            referencesInside = references;
            return result;
        }
        IAudioEndpointVolume* owner = nullptr;
        ULONG referencesInside = 0;
    } leaving;
    leaving.owner = control.get();
    ASSERT_EQ(S_OK, control->RegisterControlChangeNotify(&leaving));

    EXPECT_EQ(S_OK, control->SetMute(TRUE, nullptr));
    EXPECT_EQ(S_OK, control->SetMute(FALSE, nullptr));
    simulation.events().waitForClients();

    EXPECT_EQ(1u, leaving.heard().size());
    EXPECT_EQ(2u, leaving.referencesInside);
    EXPECT_EQ(1u, leaving.references);
}

TEST_F(EventsClients, AreNotCalledAfterAnotherClientHasUnregisteredThem)
{
    expectViolations();
    simulation.deliverAtOnce(true);
    bench::ClientListener later;
    struct Removing : bench::ClientListener
    {
        HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override
        {
            return owner->UnregisterEndpointNotificationCallback(victim);
        }
        IMMDeviceEnumerator* owner = nullptr;
        IMMNotificationClient* victim = nullptr;
    } removing;
    removing.owner = enumerator.get();
    removing.victim = &later;
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&removing));
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&later));

    simulation.events().add(speakerId);

    EXPECT_THAT(later.heard(), ElementsAre());
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&removing));
}

TEST_F(EventsClients, AreCalledFromTheNextChangeOnIfAClientRegistersThem)
{
    expectViolations();
    simulation.deliverAtOnce(true);
    bench::ClientListener later;
    struct Adding : bench::ClientListener
    {
        HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override
        {
            return owner->RegisterEndpointNotificationCallback(next);
        }
        IMMDeviceEnumerator* owner = nullptr;
        IMMNotificationClient* next = nullptr;
    } adding;
    adding.owner = enumerator.get();
    adding.next = &later;
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&adding));

    simulation.events().add(earphoneId);
    simulation.events().remove(earphoneId);

    EXPECT_THAT(later.heard(), ElementsAre("removed " + earphoneId));
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&adding));
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&later));
}

TEST_F(EventsClients, MayWaitForClientsInTheirOwnCallback)
{
    struct Waiting : bench::ClientListener
    {
        HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override
        {
            events->waitForClients();
            hasReturned = true;
            return S_OK;
        }
        sim::Events* events = nullptr;
        std::atomic<bool> hasReturned{false};
    } waiting;
    waiting.events = &simulation.events();
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&waiting));

    simulation.events().add(speakerId);
    simulation.events().waitForClients();

    EXPECT_TRUE(waiting.hasReturned);
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&waiting));
}

TEST_F(EventsClients, AreWaitedForWhileTheLastOfThemRuns)
{
    Visiting slow;
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&slow));
    simulation.events().add(speakerId);
    slow.visit.waitUntilInside();

    slow.visit.leave();
    simulation.events().waitForClients();

    EXPECT_FALSE(slow.visit.isInside());
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&slow));
}

TEST_F(EventsClients, AreNotCalledAfterTheEndOfTheSimulation)
{
    for (const bool atOnce : {false, true})
    {
        auto other = std::make_unique<sim::Simulation>(simulation.machine());
        other->deliverAtOnce(atOnce);
        const Held<IAudioEndpointVolume> control(other->endpointVolume(speakerId));
        bench::VolumeListener listener;
        ASSERT_EQ(S_OK, control->RegisterControlChangeNotify(&listener));
        sim::Events events = other->events();
        other.reset();

        EXPECT_EQ(S_OK, control->SetMute(TRUE, nullptr));
        events.waitForClients();

        EXPECT_THAT(listener.heard(), ElementsAre());
        EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&listener));
    }
}

TEST_F(EventsClients, AreWaitedForWhenTheySignOffOnAnotherThread)
{
    simulation.setPatience(std::chrono::minutes(5)); // on a busy computer the callback may return late
    Visiting slow;
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&slow));
    simulation.events().add(speakerId);
    slow.visit.waitUntilInside();

    slow.visit.leave();
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&slow));

    EXPECT_FALSE(slow.visit.isInside());
}

// Windows forbids to unregister in a callback; after it has returned, no call may come or go on nevertheless.
TEST_F(EventsClients, AreWaitedForOnOtherThreadsEvenIfTheySignOffInTheirOwnCallback)
{
    expectViolations();
    simulation.deliverAtOnce(true);
    struct Leaving : Visiting
    {
        HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR) override
        {
            visit.leave();
            const HRESULT result = owner->UnregisterEndpointNotificationCallback(this);
            isInsideAfterwards = visit.isInside();
            return result;
        }
        IMMDeviceEnumerator* owner = nullptr;
        bool isInsideAfterwards = true;
    } leaving;
    leaving.owner = enumerator.get();
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&leaving));
    std::thread other([&] { simulation.events().announceAdded(speakerId); });
    leaving.visit.waitUntilInside();

    simulation.events().announceRemoved(speakerId);
    other.join();

    EXPECT_FALSE(leaving.isInsideAfterwards);
}

TEST_F(EventsClients, MayEndTheSimulationInACallback)
{
    auto other = std::make_unique<sim::Simulation>(simulation.machine());
    struct Ending : bench::ClientListener
    {
        HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override
        {
            simulation->reset();
            isDone = true;
            return S_OK;
        }
        std::unique_ptr<sim::Simulation>* simulation = nullptr;
        std::atomic<bool> isDone{false};
    } ending;
    ending.simulation = &other;
    Held<IMMDeviceEnumerator> its(other->enumerator());
    ASSERT_EQ(S_OK, its->RegisterEndpointNotificationCallback(&ending));

    other->events().add(speakerId);
    while (!ending.isDone)
        std::this_thread::yield();

    EXPECT_EQ(S_OK, its->UnregisterEndpointNotificationCallback(&ending));
}
}
