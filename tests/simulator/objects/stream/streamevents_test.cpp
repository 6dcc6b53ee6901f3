#include "tests/simulator/objects/stream/streamtest.h"
#include "tests/simulator/visit.h"
#include "tests/support/pace.h"

#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

namespace
{
using bench::Held;
using bench::millisecond;
using bench::poison;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

constexpr DWORD events = AUDCLNT_STREAMFLAGS_EVENTCALLBACK;

using StreamEvents = bench::StreamTest;

// Microsoft's documentation of IAudioClient::SetEventHandle and Start.
TEST_F(StreamEvents, NeedAHandleBeforeTheStart)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId, events);

    EXPECT_EQ(AUDCLNT_E_EVENTHANDLE_NOT_SET, speaker->Start());
    EXPECT_EQ(E_INVALIDARG, speaker->SetEventHandle(nullptr));
    EXPECT_EQ(S_OK, speaker->SetEventHandle(anEvent));
    EXPECT_EQ(S_OK, speaker->Start());
    EXPECT_EQ(AUDCLNT_E_EVENTHANDLE_NOT_EXPECTED, sharedClient(speakerId)->SetEventHandle(anEvent));
}

// Wine's render tests, which were run on Windows: HRESULT_FROM_WIN32(ERROR_INVALID_NAME).
TEST_F(StreamEvents, TakeOneHandle)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId, events);
    ASSERT_EQ(S_OK, speaker->SetEventHandle(anEvent));

    EXPECT_EQ(static_cast<HRESULT>(0x8007007Bu), speaker->SetEventHandle(anEvent));
}

TEST_F(StreamEvents, AreSignalledAtTheEndOfEachPeriodWhileTheStreamRuns)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId, events);
    ASSERT_EQ(S_OK, speaker->SetEventHandle(anEvent));
    advance(1s);
    EXPECT_THAT(signalled, IsEmpty());

    ASSERT_EQ(S_OK, speaker->Start());
    advance(9999us);
    EXPECT_THAT(signalled, IsEmpty());
    advance(1us);
    EXPECT_THAT(signalled, ElementsAre(anEvent));
    advance(20ms);
    EXPECT_EQ(3u, signalled.size());

    ASSERT_EQ(S_OK, speaker->Stop());
    advance(1s);
    EXPECT_EQ(3u, signalled.size());
    ASSERT_EQ(S_OK, speaker->Start());
    advance(10ms);
    EXPECT_EQ(4u, signalled.size());
}

TEST_F(StreamEvents, OfSeveralStreamsComeInTheirOrder)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId, events);
    const Held<IAudioClient> microphone = client(microphoneId);
    ASSERT_EQ(S_OK, initializeExclusive(microphone, deviceFormat, events, 4 * millisecond, 4 * millisecond));
    HANDLE const other = poison<int>() + 1;
    ASSERT_EQ(S_OK, speaker->SetEventHandle(anEvent));
    ASSERT_EQ(S_OK, microphone->SetEventHandle(other));
    ASSERT_EQ(S_OK, speaker->Start());
    ASSERT_EQ(S_OK, microphone->Start());

    advance(12ms);

    EXPECT_THAT(signalled, ElementsAre(other, other, anEvent, other));
}

TEST_F(StreamEvents, LetTheClientServeTheStreamAtTheirTime)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId, events, 0);
    const Held<IAudioRenderClient> render = service<IAudioRenderClient>(speaker);
    std::vector<UINT32> paddings;
    simulation.streams().signalWith(
        [&](HANDLE)
        {
            paddings.push_back(padding(speaker));
            BYTE* data = nullptr;
            EXPECT_EQ(S_OK, render->GetBuffer(480, &data));
            EXPECT_EQ(S_OK, render->ReleaseBuffer(480, 0));
        });
    ASSERT_EQ(S_OK, speaker->SetEventHandle(anEvent));
    ASSERT_EQ(S_OK, speaker->Start());

    advance(40ms);

    EXPECT_THAT(paddings, ElementsAre(0u, 0u, 0u, 0u));
    EXPECT_EQ(480u, padding(speaker));
}

TEST_F(StreamEvents, OfAClientThatIsGoneAreNotSignalled)
{
    {
        const Held<IAudioClient> speaker = sharedClient(speakerId, events);
        ASSERT_EQ(S_OK, speaker->SetEventHandle(anEvent));
        ASSERT_EQ(S_OK, speaker->Start());
    }
    advance(1s);

    EXPECT_THAT(signalled, IsEmpty());
}

TEST_F(StreamEvents, MayMoveTheClockFurther)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId, events);
    const Held<IAudioClock> clock = service<IAudioClock>(speaker);
    const auto now = [&]
    {
        UINT64 position = 0;
        UINT64 counter = 0;
        EXPECT_EQ(S_OK, clock->GetPosition(&position, &counter));
        return counter;
    };
    int count = 0;
    simulation.streams().signalWith(
        [&](HANDLE)
        {
            if (++count == 1)
                advance(25ms);
        });
    ASSERT_EQ(S_OK, speaker->SetEventHandle(anEvent));
    ASSERT_EQ(S_OK, speaker->Start());
    const UINT64 start = now();

    advance(12ms);

    EXPECT_EQ(350000u, now() - start); // 10 ms to the first signal, 25 ms in it: the 12 ms are over
    EXPECT_EQ(3, count);
}

// Microsoft's documentation of IAudioClient::Stop: the stream stops although the operation says that the device has
// gone.
TEST_F(StreamEvents, EndWithAStopAlthoughTheEndpointHasGone)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId, events);
    ASSERT_EQ(S_OK, speaker->SetEventHandle(anEvent));
    ASSERT_EQ(S_OK, speaker->Start());
    simulation.events().unplug(speakerId);

    EXPECT_EQ(AUDCLNT_E_DEVICE_INVALIDATED, speaker->Stop());

    advance(1s);
    EXPECT_THAT(signalled, IsEmpty());
    simulation.events().plug(speakerId);
    EXPECT_EQ(S_OK, speaker->Start());
    EXPECT_EQ(S_OK, speaker->Stop());
}

TEST_F(StreamEvents, MayReleaseTheirClient)
{
    Held<IAudioClient> speaker = sharedClient(speakerId, events);
    int count = 0;
    simulation.streams().signalWith(
        [&](HANDLE)
        {
            ++count;
            speaker.reset();
        });
    ASSERT_EQ(S_OK, speaker->SetEventHandle(anEvent));
    ASSERT_EQ(S_OK, speaker->Start());

    advance(1s);

    EXPECT_EQ(1, count);
}

// The client may close its event as soon as the stream has stopped.
TEST_F(StreamEvents, AreOverWhenAStopReturnsWhileAnotherThreadMovesTheClock)
{
    constexpr int stops = support::cases(4000, 500);
    const auto spend = [](std::chrono::nanoseconds time)
    {
        const auto end = std::chrono::steady_clock::now() + time;
        while (std::chrono::steady_clock::now() < end)
            continue;
    };
    std::atomic<bool> hasStopped{false};
    std::atomic<int> tooLate{0};
    simulation.journal().record(false);
    simulation.streams().signalWith(
        [&](HANDLE)
        {
            spend(2us);
            tooLate += hasStopped ? 1 : 0;
        });
    const Held<IAudioClient> speaker = sharedClient(speakerId, events);
    ASSERT_EQ(S_OK, speaker->SetEventHandle(anEvent));
    std::atomic<bool> isOver{false};
    std::thread clock(
        [&]
        {
            while (!isOver)
                advance(10ms);
        });

    for (int stop = 0; stop < stops; ++stop)
    {
        hasStopped = false;
        EXPECT_EQ(S_OK, speaker->Start());
        spend(stop % 40 * 100ns);
        EXPECT_EQ(S_OK, speaker->Stop());
        hasStopped = true;
        spend(5us);
    }

    isOver = true;
    clock.join();
    EXPECT_EQ(0, tooLate);
}

/// The clock runs by itself.
class RunningClock : public bench::SimulationTest
{
protected:
    /// Starts an event-driven stream of the speaker.
    Held<IAudioClient> started()
    {
        simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->hasAudioClient = true; });
        return started(simulation, speakerId);
    }

    /// The same of an endpoint that has an audio client.
    static Held<IAudioClient> started(sim::Simulation& machine, const std::string& id)
    {
        Held<IAudioClient> client;
        EXPECT_EQ(S_OK,
                  Held<IMMDevice>(machine.device(id))
                      ->Activate(sim::InterfaceTraits<IAudioClient>::iid(), CLSCTX_ALL, nullptr, client.putVoid()));
        const WAVEFORMATEXTENSIBLE format = sim::MixFormat().waveFormat();
        EXPECT_EQ(S_OK, client->Initialize(AUDCLNT_SHAREMODE_SHARED, events, 0, 0, &format.Format, nullptr));
        EXPECT_EQ(S_OK, client->SetEventHandle(poison<void>()));
        EXPECT_EQ(S_OK, client->Start());
        return client;
    }
};

TEST_F(RunningClock, LetsASignalEndBeforeAStopReturns)
{
    bench::Visit visit;
    simulation.streams().signalWith([&](HANDLE) { visit.stay(); });
    const Held<IAudioClient> speaker = started();
    visit.waitUntilInside();

    visit.leave();
    EXPECT_EQ(S_OK, speaker->Stop());

    EXPECT_FALSE(visit.isInside());
    simulation.streams().signalWith({});
}

// The client closes its event after the last Release.
TEST_F(RunningClock, LetsASignalEndBeforeTheLastReleaseReturns)
{
    bench::Visit visit;
    simulation.streams().signalWith([&](HANDLE) { visit.stay(); });
    Held<IAudioClient> speaker = started();
    visit.waitUntilInside();

    visit.leave();
    speaker.reset();

    EXPECT_FALSE(visit.isInside());
    simulation.streams().signalWith({});
}

TEST_F(RunningClock, LetsASignalEndBeforeItStops)
{
    bench::Visit visit;
    simulation.streams().signalWith([&](HANDLE) { visit.stay(); });
    const Held<IAudioClient> speaker = started();
    visit.waitUntilInside();

    visit.leave();
    simulation.streams().driveClock();

    EXPECT_FALSE(visit.isInside());
    simulation.streams().signalWith({});
}

TEST_F(RunningClock, LetsASignalEndBeforeAnotherFunctionTakesItsPlace)
{
    bench::Visit visit;
    simulation.streams().signalWith([&](HANDLE) { visit.stay(); });
    const Held<IAudioClient> speaker = started();
    visit.waitUntilInside();

    visit.leave();
    simulation.streams().signalWith({});

    EXPECT_FALSE(visit.isInside());
}

TEST_F(RunningClock, MayBeStoppedInASignal)
{
    std::promise<void> stopped;
    std::atomic<int> count{0};
    simulation.streams().signalWith(
        [&](HANDLE)
        {
            ++count;
            simulation.streams().driveClock();
            simulation.streams().signalWith({});
            stopped.set_value();
        });

    const Held<IAudioClient> speaker = started();

    ASSERT_EQ(std::future_status::ready, stopped.get_future().wait_for(60s));
    EXPECT_EQ(S_OK, speaker->Stop());
    EXPECT_EQ(1, count);
}

TEST_F(RunningClock, SignalsPeriodsOnAThreadOfItsOwn)
{
    std::promise<std::thread::id> signalled;
    std::atomic<int> count{0};
    simulation.streams().signalWith(
        [&](HANDLE)
        {
            if (++count == 2)
                signalled.set_value(std::this_thread::get_id());
        });

    const Held<IAudioClient> speaker = started();

    std::future<std::thread::id> thread = signalled.get_future();
    ASSERT_EQ(std::future_status::ready, thread.wait_for(60s));
    EXPECT_NE(std::this_thread::get_id(), thread.get());
    EXPECT_EQ(S_OK, speaker->Stop());
    simulation.streams().signalWith({});
}

TEST_F(RunningClock, StopsWithTheSimulation)
{
    const bench::BenchMachine machine;
    std::atomic<int> count{0};
    auto other = std::make_unique<sim::Simulation>(machine.builder.build());
    other->streams().signalWith([&](HANDLE) { ++count; });
    const Held<IAudioClient> earphone = started(*other, machine.earphone.id());
    while (count == 0)
        std::this_thread::yield();

    other.reset();

    const int atTheEnd = count;
    std::this_thread::sleep_for(50ms); // five periods
    EXPECT_EQ(atTheEnd, count);
}

TEST_F(RunningClock, CannotBeMovedByHand)
{
    EXPECT_THROW(simulation.streams().advance(1ms), std::logic_error);
}
}
