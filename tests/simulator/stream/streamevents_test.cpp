#include "tests/simulator/stream/streamtest.h"

#include <atomic>
#include <future>
#include <stdexcept>

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

/// The clock runs by itself.
class RunningClock : public bench::SimulationTest
{
};

TEST_F(RunningClock, SignalsPeriodsOnAThreadOfItsOwn)
{
    simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->hasAudioClient = true; });
    std::promise<std::thread::id> signalled;
    std::atomic<int> count{0};
    simulation.streams().signalWith(
        [&](HANDLE)
        {
            if (++count == 2)
                signalled.set_value(std::this_thread::get_id());
        });
    Held<IAudioClient> speaker;
    ASSERT_EQ(S_OK, device(speakerId)->Activate(sim::InterfaceTraits<IAudioClient>::iid(), CLSCTX_ALL, nullptr,
                                                speaker.putVoid()));
    const WAVEFORMATEXTENSIBLE format = sim::MixFormat().waveFormat();
    ASSERT_EQ(S_OK, speaker->Initialize(AUDCLNT_SHAREMODE_SHARED, events, 0, 0, &format.Format, nullptr));
    ASSERT_EQ(S_OK, speaker->SetEventHandle(poison<void>()));

    ASSERT_EQ(S_OK, speaker->Start());

    std::future<std::thread::id> thread = signalled.get_future();
    ASSERT_EQ(std::future_status::ready, thread.wait_for(60s));
    EXPECT_NE(std::this_thread::get_id(), thread.get());
    EXPECT_EQ(S_OK, speaker->Stop());
    simulation.streams().driveClock(); // no further signals, whose function this test ends
    simulation.streams().signalWith({});
}

TEST_F(RunningClock, CannotBeMovedByHand)
{
    EXPECT_THROW(simulation.streams().advance(1ms), std::logic_error);
}
}
