#include "tests/simulator/bench.h"
#include "tests/support/pace.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

namespace
{
using bench::Held;
using bench::textOf;
using std::chrono::microseconds;

constexpr unsigned threadCount = 4;
constexpr unsigned rounds = support::cases(4000, 1000);

/// Several threads use the same part of the machine at once. What is counted at the end comes out wrong, or the process
/// dies, if two of them meet in it without a lock.
class ThreadsOfSimulation : public bench::SimulationTest
{
protected:
    ThreadsOfSimulation() { simulation.journal().record(false); }

    /// Calls @p action(thread, round) on all threads, which start together.
    static void onAllThreads(const std::function<void(unsigned, unsigned)>& action)
    {
        std::atomic<unsigned> waiting{threadCount};
        std::vector<std::thread> threads;
        for (unsigned number = 0; number < threadCount; ++number)
            threads.emplace_back(
                [&, number]
                {
                    for (--waiting; waiting > 0;)
                        std::this_thread::yield();
                    for (unsigned round = 0; round < rounds; ++round)
                        action(number, round);
                });
        for (std::thread& thread : threads)
            thread.join();
    }

    Held<IMMDevice> speaker = device(speakerId);
};

TEST_F(ThreadsOfSimulation, MayCountReferencesOnOneObject)
{
    const Held<IMMEndpoint> endpoint = speaker.as<IMMEndpoint>();

    onAllThreads(
        [&](unsigned number, unsigned)
        {
            speaker->AddRef();
            const Held<IMMEndpoint> other = speaker.as<IMMEndpoint>();
            if (number % 2 == 0)
                endpoint->Release();
            else
                speaker->Release();
        });

    EXPECT_EQ(2, simulation.census().byObject.at("IMMDevice " + speakerId));
    EXPECT_EQ(3u, speaker->AddRef());
    EXPECT_EQ(2u, speaker->Release());
}

TEST_F(ThreadsOfSimulation, MayCreateAndReleaseObjects)
{
    onAllThreads(
        [&](unsigned number, unsigned round)
        {
            const Held<IMMDevice> first(simulation.device(number % 2 == 0 ? earphoneId : lineInId));
            const Held<IPart> second(simulation.part(speakerJack));
            if (round % 100 == 0)
            {
                EXPECT_LE(2, simulation.census().references());
            }
        });

    EXPECT_EQ(1, simulation.census().references());
}

TEST_F(ThreadsOfSimulation, MayAllocateAndFreeTaskMemory)
{
    onAllThreads([&](unsigned, unsigned) { EXPECT_EQ(speakerId, textOf(speaker, &IMMDevice::GetId)); });

    EXPECT_EQ(0, simulation.census().taskBlocks());
}

TEST_F(ThreadsOfSimulation, MayBeRecorded)
{
    simulation.journal().clear();
    simulation.journal().record(true);

    onAllThreads(
        [&](unsigned number, unsigned round)
        {
            DWORD state = 0;
            speaker->GetState(&state);
            if (number == 0 && round % 200 == 0)
            {
                EXPECT_LE(1u, simulation.journal().entries().size());
            }
        });

    const sim::JournalEntries entries = simulation.journal().of("IMMDevice::GetState");
    EXPECT_EQ(threadCount * rounds, entries.size());
    EXPECT_EQ(threadCount * rounds, simulation.journal().size());
    EXPECT_EQ(threadCount * rounds, simulation.journal().count("IMMDevice::*"));
    for (const sim::JournalEntry& entry : entries)
        ASSERT_EQ(sim::CallEnd::returned, entry.end);
}

TEST_F(ThreadsOfSimulation, MayMeetAFault)
{
    const sim::PlannedFault fault = simulation.faults().fail("GetState").on(speakerId);

    onAllThreads(
        [&](unsigned number, unsigned round)
        {
            DWORD state = 0;
            EXPECT_EQ(E_FAIL, speaker->GetState(&state));
            if (number == 0)
            {
                simulation.faults().fail("GetId").at(round);
            }
            else if (round % 50 == 0)
            {
                EXPECT_LE(1u, simulation.faults().faults().size());
            }
        });

    EXPECT_EQ(threadCount * rounds, fault.met());
    EXPECT_EQ(threadCount * rounds, fault.fired());
    EXPECT_EQ(rounds + 1, simulation.faults().faults().size());
    simulation.faults().clear();
}

TEST_F(ThreadsOfSimulation, MayPlanDelays)
{
    onAllThreads(
        [&](unsigned number, unsigned round)
        {
            const std::string operation = "operation " + std::to_string(number * rounds + round);
            simulation.latency().set(operation, microseconds(1));
            EXPECT_EQ(microseconds(1), simulation.latency().cost(operation));
        });

    EXPECT_EQ(microseconds(0), simulation.latency().cost("IMMDevice::GetState"));
    simulation.latency().clear();
}

TEST_F(ThreadsOfSimulation, MayRegisterClients)
{
    const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    const Held<IPart> node = part(muteId);
    bench::ClientListener client;
    bench::VolumeListener volumeListener;
    bench::ControlListener controlListener;
    const IID& muteIid = sim::InterfaceTraits<IAudioMute>::iid();

    onAllThreads(
        [&](unsigned, unsigned)
        {
            EXPECT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&client));
            EXPECT_EQ(S_OK, control->RegisterControlChangeNotify(&volumeListener));
            EXPECT_EQ(S_OK, node->RegisterControlChangeCallback(muteIid, &controlListener));
            EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&client));
            EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&volumeListener));
            EXPECT_EQ(S_OK, node->UnregisterControlChangeCallback(&controlListener));
        });

    EXPECT_TRUE(simulation.census().clients.empty());
    EXPECT_EQ(1u, client.references);
    EXPECT_EQ(1u, volumeListener.references);
    EXPECT_EQ(1u, controlListener.references);
}

TEST_F(ThreadsOfSimulation, MayRegisterTheFirstClientOfManyParts)
{
    std::vector<std::string> ids;
    simulation.change(
        [&](sim::Machine& machine)
        {
            const sim::Endpoint model = *machine.endpoint(speakerId);
            for (unsigned number = 0; number < threadCount * 50; ++number)
            {
                sim::Endpoint copy = model;
                copy.id = ids.emplace_back("{0.0.0.00000000}.{copy " + std::to_string(number) + "}");
                copy.topology.reset();
                machine.endpoints.push_back(copy);
            }
        });
    bench::VolumeListener listener;

    onAllThreads(
        [&](unsigned number, unsigned round)
        {
            if (round < 50)
            {
                EXPECT_EQ(S_OK, volume(ids[number * 50 + round])->RegisterControlChangeNotify(&listener));
            }
        });

    EXPECT_EQ(1 + threadCount * 50, listener.references);
    for (const std::string& id : ids)
        EXPECT_EQ(S_OK, volume(id)->UnregisterControlChangeNotify(&listener));
    EXPECT_EQ(1u, listener.references);
}

TEST_F(ThreadsOfSimulation, MayChangeTheMachine)
{
    simulation.change([&](sim::Machine& machine)
                      { machine.endpoint(speakerId)->volume = {0.0f, 1e9f, 1.0f, {0.0f}, false, 0, {}}; });

    onAllThreads(
        [&](unsigned number, unsigned round)
        {
            simulation.change([&](sim::Machine& machine)
                              { machine.endpoint(speakerId)->volume->channels.at(0) += 1.0f; });
            if (round % 100 == number)
            {
                EXPECT_EQ(4u, simulation.machine().endpoints.size());
            }
        });

    EXPECT_EQ(static_cast<float>(threadCount * rounds),
              simulation.machine().endpoint(speakerId)->volume->channels.at(0));
}

TEST_F(ThreadsOfSimulation, MayNotify)
{
    const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
    bench::ClientListener client;
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&client));

    onAllThreads([&](unsigned, unsigned) { simulation.events().announceState(speakerId, 1); });
    simulation.events().waitForClients();

    EXPECT_EQ(threadCount * rounds, client.heard().size());
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&client));
}

TEST_F(ThreadsOfSimulation, MayBeginAndEndSimulations)
{
    onAllThreads(
        [&](unsigned, unsigned round)
        {
            if (round % 10 == 0)
            {
                const sim::Simulation other{sim::Machine()};
            }
        });

    EXPECT_NE(nullptr, createdEnumerator().get());
}
}
