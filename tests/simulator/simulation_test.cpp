#include "tests/simulator/bench.h"

namespace
{
using bench::Held;
using bench::poison;
using bench::textOf;

using SimulationLife = bench::SimulationTest;
using SimulationObjects = bench::SimulationTest;
using SimulationThreads = bench::SimulationTest;

HRESULT create(void** enumerator)
{
    return CoCreateInstance(bench::enumeratorClass, nullptr, CLSCTX_INPROC_SERVER,
                            sim::InterfaceTraits<IMMDeviceEnumerator>::iid(), enumerator);
}

UINT endpointCount()
{
    Held<IMMDeviceEnumerator> enumerator;
    Held<IMMDeviceCollection> collection;
    UINT count = 0;
    EXPECT_EQ(S_OK, create(enumerator.putVoid()));
    EXPECT_EQ(S_OK, enumerator->EnumAudioEndpoints(eAll, DEVICE_STATEMASK_ALL, collection.put()));
    EXPECT_EQ(S_OK, collection->GetCount(&count));
    return count;
}

TEST_F(SimulationLife, LetsTheLatestSimulationAnswerAndThenTheOneBefore)
{
    EXPECT_EQ(4u, endpointCount());
    {
        const sim::Simulation empty{sim::Machine()};
        EXPECT_EQ(0u, endpointCount());
    }
    EXPECT_EQ(4u, endpointCount());
}

TEST_F(SimulationLife, KeepsObjectsUsableAfterItsEnd)
{
    auto other = std::make_unique<sim::Simulation>(simulation.machine());
    const Held<IMMDevice> speaker(other->device(speakerId));
    const Held<IAudioEndpointVolume> control(other->endpointVolume(speakerId));
    other.reset();

    EXPECT_EQ(speakerId, textOf(speaker, &IMMDevice::GetId));
    EXPECT_EQ(S_OK, control->SetMasterVolumeLevelScalar(0.5f, nullptr));
    float level = 0.0f;
    EXPECT_EQ(S_OK, control->GetMasterVolumeLevelScalar(&level));
    EXPECT_FLOAT_EQ(0.5f, level);
}

TEST_F(SimulationLife, LetsClientsSignOffAfterItsEnd)
{
    auto other = std::make_unique<sim::Simulation>(simulation.machine());
    bench::ClientListener client;
    Held<IMMDeviceEnumerator> enumerator(other->enumerator());
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&client));
    other.reset();

    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&client));
    EXPECT_EQ(1u, client.references);
}

TEST_F(SimulationLife, RegistersOnOtherThreadsToo)
{
    HRESULT created = E_FAIL;
    bench::onThread(
        [&]
        {
            CoInitialize(nullptr);
            EXPECT_EQ(S_OK, simulation.registerOnThisThread());
            Held<IMMDeviceEnumerator> enumerator;
            created = create(enumerator.putVoid());
            enumerator.reset();
            CoUninitialize();
        });

    EXPECT_EQ(S_OK, created);
}

TEST_F(SimulationObjects, AreHandedOutWithoutAnyCall)
{
    simulation.journal().clear();
    Held<IMMDevice>(simulation.device(codecId));
    Held<IDeviceTopology>(simulation.topology(codecId));
    Held<IPart>(simulation.part(volumeId));
    Held<IAudioVolumeLevel>(simulation.volumeLevel(volumeId));

    EXPECT_EQ(0u, simulation.journal().size());
}

TEST_F(SimulationObjects, AreNullWhereTheMachineHasThemNot)
{
    EXPECT_EQ(nullptr, simulation.device("{unknown}"));
    EXPECT_EQ(nullptr, simulation.topology("{unknown}"));
    EXPECT_EQ(nullptr, simulation.endpointVolume(codecId));
    EXPECT_EQ(nullptr, simulation.part("{unknown}"));
    EXPECT_EQ(nullptr, simulation.connector(volumeId));
    EXPECT_EQ(nullptr, simulation.subunit(speakerJack));
    EXPECT_EQ(nullptr, simulation.volumeLevel(muteId));
    EXPECT_EQ(nullptr, simulation.mute(volumeId));
    EXPECT_EQ(nullptr, simulation.inputSelector(volumeId));
}

TEST_F(SimulationObjects, ShowTheMachineAsAnActionThatThrowsHasLeftIt)
{
    const std::string renamed(300, 'x');

    EXPECT_THROW(simulation.change(
                     [&](sim::Machine& machine)
                     {
                         machine.endpoint(speakerId)->id = renamed;
                         throw std::runtime_error("halfway");
                     }),
                 std::runtime_error);

    EXPECT_EQ(nullptr, simulation.device(speakerId));
    const Held<IMMDevice> device(simulation.device(renamed));
    EXPECT_NE(nullptr, device.get());
}

TEST_F(SimulationObjects, ShowTheMachineAsItIsChanged)
{
    simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->state = sim::stateDisabled; });

    DWORD state = 0;
    EXPECT_EQ(S_OK, device(speakerId)->GetState(&state));
    EXPECT_EQ(DWORD(DEVICE_STATE_DISABLED), state);
    EXPECT_EQ(sim::stateDisabled, simulation.machine().endpoint(speakerId)->state);
}

/// One user of everything: walks the graph, sets levels, reads properties.
void use(sim::Simulation& simulation, const std::string& endpoint, const std::string& jack, int rounds)
{
    for (int round = 0; round < rounds; ++round)
    {
        const Held<IMMDevice> device(simulation.device(endpoint));
        EXPECT_EQ(endpoint, textOf(device, &IMMDevice::GetId));
        const Held<IAudioEndpointVolume> control(simulation.endpointVolume(endpoint));
        EXPECT_EQ(S_OK, control->SetMasterVolumeLevelScalar(static_cast<float>(round % 100) / 100.0f, nullptr));
        const Held<IConnector> connector(simulation.connector(jack));
        Held<IConnector> peer;
        EXPECT_EQ(S_OK, connector->GetConnectedTo(peer.put()));
        EXPECT_NE(nullptr, peer.as<IPart>().get());
    }
}

TEST_F(SimulationThreads, MayUseTheMachineWhileItNotifies)
{
    const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    bench::ClientListener client;
    bench::VolumeListener listener;
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&client));
    ASSERT_EQ(S_OK, control->RegisterControlChangeNotify(&listener));

    constexpr int rounds = 50;
    std::thread first([&] { use(simulation, speakerId, speakerJack, rounds); });
    std::thread second([&] { use(simulation, speakerId, speakerConnector, rounds); });
    std::thread third(
        [&]
        {
            for (int round = 0; round < rounds; ++round)
            {
                simulation.events().unplug(microphoneId);
                EXPECT_LE(1u, simulation.machine().endpoints.size());
                EXPECT_LE(0, simulation.census().references());
                EXPECT_LE(0u, simulation.journal().count("IMMDevice::*"));
                simulation.faults().fail("IMMDevice::Activate").at(1);
            }
        });
    first.join();
    second.join();
    third.join();
    simulation.events().waitForClients();

    EXPECT_EQ(static_cast<std::size_t>(rounds), client.heard().size());
    EXPECT_FALSE(listener.heard().empty());
    EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&listener));
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&client));
}

TEST_F(SimulationThreads, MaySignOnAndOffWhileTheMachineNotifies)
{
    simulation.journal().record(false);
    std::atomic<bool> isDone{false};
    std::thread happening(
        [&]
        {
            while (!isDone)
            {
                simulation.events().plug(lineInId);
                simulation.events().waitForClients();
            }
        });

    for (int round = 0; round < 200; ++round)
    {
        const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
        bench::ClientListener client;
        EXPECT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&client));
        EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&client));
        EXPECT_EQ(1u, client.references);
    }

    isDone = true;
    happening.join();
}
}
