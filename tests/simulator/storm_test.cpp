// Everything at once: two threads make events while others use, change, plan and watch the same machine.
#include "tests/support/storm.h"

#include "tests/simulator/objects/stream/streamtest.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace
{
using bench::Held;
using namespace std::chrono_literals;

class StormOnTheSimulation : public bench::StreamTest
{
protected:
    using Random = std::minstd_rand;

    StormOnTheSimulation()
    {
        simulation.streams().signalWith([this](HANDLE) { ++m_signals; });
        simulation.journal().record(false);
    }

    /// A thread that repeats @p action with random numbers of its own until the storm is over.
    void start(const std::function<void(Random&)>& action)
    {
        const auto seed = static_cast<unsigned>(m_threads.size() + 1);
        m_threads.emplace_back(
            [this, action, seed]
            {
                ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
                ASSERT_TRUE(SUCCEEDED(simulation.registerOnThisThread()));
                Random random(seed);
                do
                    action(random);
                while (!m_isOver);
                CoUninitialize();
            });
    }

    void end()
    {
        m_isOver = true;
        for (std::thread& thread : m_threads)
            thread.join();
        simulation.events().waitForClients();
    }

    const std::string& any(Random& random) const
    {
        const std::string* const ids[] = {&microphoneId, &lineInId, &earphoneId};
        return *ids[random() % 3];
    }

    void makeEvent(Random& random)
    {
        sim::Events& events = simulation.events();
        const std::string& id = any(random);
        switch (random() % 14)
        {
        case 0:
            return events.remove(id);
        case 1:
            return events.add(id);
        case 2:
            return events.setState(id, 1U << random() % 4);
        case 3:
            return events.setDefault(id, static_cast<ERole>(random() % 3));
        case 4:
            return events.plugUsb(earphoneId);
        case 5:
            return events.unplugUsb(earphoneId);
        case 6:
            return random() % 2 == 0 ? events.plugJack(id) : events.unplugJack(id);
        case 7:
            return events.driverUpdate(id);
        case 8:
            return random() % 2 == 0 ? events.serviceStop() : events.serviceStart();
        case 9:
            return random() % 20 == 0 ? events.wake() : events.remoteLogon();
        default:
            return events.setVolume(id, -static_cast<float>(random() % 60), random() % 2 == 0);
        }
    }

    void registerClients()
    {
        const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
        const Held<IAudioEndpointVolume> control = volume(speakerId);
        const Held<IPart> node = part(muteId);
        bench::ClientListener client;
        bench::VolumeListener volumeListener;
        bench::ControlListener controlListener;
        EXPECT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&client));
        EXPECT_EQ(S_OK, control->RegisterControlChangeNotify(&volumeListener));
        EXPECT_EQ(S_OK, node->RegisterControlChangeCallback(sim::InterfaceTraits<IAudioMute>::iid(), &controlListener));
        EXPECT_EQ(S_OK, node->UnregisterControlChangeCallback(&controlListener));
        EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&volumeListener));
        EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&client));
        EXPECT_EQ(1u, client.references);
        EXPECT_EQ(1u, volumeListener.references);
        EXPECT_EQ(1u, controlListener.references);
    }

    /// The endpoint may vanish at each step, so that each may fail.
    void playStream()
    {
        Held<IAudioClient> stream;
        const Held<IMMDevice> from = device(microphoneId);
        if (from.get() == nullptr ||
            FAILED(from->Activate(sim::InterfaceTraits<IAudioClient>::iid(), CLSCTX_ALL, nullptr, stream.putVoid())))
            return;
        if (FAILED(initialize(stream, mixFormat, AUDCLNT_STREAMFLAGS_EVENTCALLBACK)))
            return;
        stream->SetEventHandle(anEvent);
        stream->Start();
        UINT32 frames = 0;
        stream->GetCurrentPadding(&frames);
        m_streams += SUCCEEDED(stream->Stop()) ? 1 : 0;
    }

    void planAndLook(Random& random)
    {
        simulation.faults().fail("IMMDevice::GetId").on(lineInId).at(random() % 3);
        simulation.latency().set("IMMDevice::GetId", 1us);
        simulation.journal().record(random() % 2 == 0);
        EXPECT_GE(3u, simulation.faults().faults().size());
        EXPECT_LE(0, simulation.census().references());
        EXPECT_LE(3u, simulation.machine().endpoints.size());
        const Held<IMMDevice> line = device(lineInId);
        LPWSTR id = nullptr;
        if (line.get() != nullptr && SUCCEEDED(line->GetId(&id)))
            CoTaskMemFree(id);
        simulation.journal().clear();
        simulation.latency().clear();
        simulation.faults().clear();
    }

    /// How many of the numbers from firstNumber on the client heard one after another; no real state is as large.
    unsigned inOrder(const std::vector<std::string>& heard) const
    {
        unsigned next = firstNumber;
        for (const std::string& text : heard)
            next += text == "state " + speakerId + " " + std::to_string(next) ? 1 : 0;
        return next - firstNumber;
    }

    static constexpr unsigned firstNumber = 1000;

    std::atomic<bool> m_isOver{false};
    std::atomic<unsigned> m_signals{0};
    std::atomic<unsigned> m_streams{0};
    std::vector<std::thread> m_threads;
};

TEST_F(StormOnTheSimulation, LosesNoNotificationAndLeavesNothing)
{
    const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
    bench::ClientListener client;
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&client));
    start([this](Random& random) { makeEvent(random); });
    start([this](Random&) { registerClients(); });
    start([this](Random&) { playStream(); });
    start([this](Random&) { simulation.streams().advance(5ms); });
    start([this](Random& random) { planAndLook(random); });

    const unsigned events = support::stormEvents(1000);
    for (unsigned event = 0; event < events; ++event)
        simulation.events().announceState(speakerId, firstNumber + event);
    end();

    EXPECT_EQ(events, inOrder(client.heard())) << "of the announced numbers, in their order";
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&client));
    EXPECT_EQ(1u, client.references);
}
}
