#include "tests/simulator/objects/stream/streamtest.h"

namespace
{
using bench::Held;
using bench::poison;
using namespace std::chrono_literals;

template<class I>
const IID& idOf()
{
    return sim::InterfaceTraits<I>::iid();
}

using AudioClientStates = bench::StreamTest;
using AudioClientGetService = bench::StreamTest;

// Microsoft's documentation of each operation: AUDCLNT_E_NOT_INITIALIZED.
TEST_F(AudioClientStates, NeedInitialize)
{
    const Held<IAudioClient> speaker = client(speakerId);
    UINT32 frames = 99;
    REFERENCE_TIME latency = 99;
    void* object = poison<void>();

    EXPECT_EQ(AUDCLNT_E_NOT_INITIALIZED, speaker->GetBufferSize(&frames));
    EXPECT_EQ(AUDCLNT_E_NOT_INITIALIZED, speaker->GetStreamLatency(&latency));
    EXPECT_EQ(AUDCLNT_E_NOT_INITIALIZED, speaker->GetCurrentPadding(&frames));
    EXPECT_EQ(AUDCLNT_E_NOT_INITIALIZED, speaker->Start());
    EXPECT_EQ(AUDCLNT_E_NOT_INITIALIZED, speaker->Stop());
    EXPECT_EQ(AUDCLNT_E_NOT_INITIALIZED, speaker->Reset());
    EXPECT_EQ(AUDCLNT_E_NOT_INITIALIZED, speaker->SetEventHandle(anEvent));
    EXPECT_EQ(AUDCLNT_E_NOT_INITIALIZED, speaker->GetService(idOf<IAudioClock>(), &object));
    EXPECT_EQ(99u, frames);
    EXPECT_EQ(99, latency);
    EXPECT_EQ(nullptr, object);
}

TEST_F(AudioClientStates, RefuseNullOutParameters)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId);

    EXPECT_EQ(E_POINTER, speaker->GetBufferSize(nullptr));
    EXPECT_EQ(E_POINTER, speaker->GetStreamLatency(nullptr));
    EXPECT_EQ(E_POINTER, speaker->GetCurrentPadding(nullptr));
    EXPECT_EQ(E_POINTER, speaker->GetMixFormat(nullptr));
    EXPECT_EQ(E_POINTER, speaker->GetService(idOf<IAudioClock>(), nullptr));
}

// Microsoft's documentation of IAudioClient::Start, Stop and Reset.
TEST_F(AudioClientStates, AreStoppedAndRunning)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId);

    EXPECT_EQ(S_FALSE, speaker->Stop());
    EXPECT_EQ(S_OK, speaker->Reset());
    EXPECT_EQ(S_OK, speaker->Start());
    EXPECT_EQ(AUDCLNT_E_NOT_STOPPED, speaker->Start());
    EXPECT_EQ(AUDCLNT_E_NOT_STOPPED, speaker->Reset());
    EXPECT_EQ(S_OK, speaker->Stop());
    EXPECT_EQ(S_FALSE, speaker->Stop());
    EXPECT_EQ(S_OK, speaker->Start());
}

TEST_F(AudioClientStates, RefuseAResetWhileABufferIsOut)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId);
    const Held<IAudioRenderClient> render = service<IAudioRenderClient>(speaker);
    BYTE* data = nullptr;
    ASSERT_EQ(S_OK, render->GetBuffer(480, &data));

    EXPECT_EQ(AUDCLNT_E_BUFFER_OPERATION_PENDING, speaker->Reset());

    EXPECT_EQ(S_OK, render->ReleaseBuffer(480, 0));
    EXPECT_EQ(480u, padding(speaker));
    EXPECT_EQ(S_OK, speaker->Reset());
    EXPECT_EQ(0u, padding(speaker));
}

TEST_F(AudioClientStates, HaveTheLatencyOfOnePeriod)
{
    REFERENCE_TIME latency = 0;
    EXPECT_EQ(S_OK, sharedClient(speakerId)->GetStreamLatency(&latency));
    EXPECT_EQ(100000, latency);
}

// Only Activate is refused then, see EventsService.
TEST_F(AudioClientStates, GoOnWhileTheAudioServiceIsStopped)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId);
    const Held<IAudioClient> fresh = client(speakerId);
    const Held<IAudioRenderClient> render = service<IAudioRenderClient>(speaker);
    BYTE* data = nullptr;
    EXPECT_EQ(S_OK, render->GetBuffer(480, &data));
    EXPECT_EQ(S_OK, render->ReleaseBuffer(480, AUDCLNT_BUFFERFLAGS_SILENT));

    simulation.events().serviceStop();

    EXPECT_EQ(S_OK, speaker->Start());
    advance(10ms);
    EXPECT_EQ(0u, padding(speaker));
    EXPECT_EQ(S_OK, initialize(fresh, mixFormat));
}

// Microsoft's documentation of IAudioClient::GetService.
TEST_F(AudioClientGetService, RefusesTheOtherDirectionAndWhatIsNoService)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId);
    const Held<IAudioClient> microphone = sharedClient(microphoneId);
    const Held<IAudioClient> loopback = sharedClient(speakerId, AUDCLNT_STREAMFLAGS_LOOPBACK);
    void* object = poison<void>();

    EXPECT_EQ(AUDCLNT_E_WRONG_ENDPOINT_TYPE, speaker->GetService(idOf<IAudioCaptureClient>(), &object));
    EXPECT_EQ(AUDCLNT_E_WRONG_ENDPOINT_TYPE, microphone->GetService(idOf<IAudioRenderClient>(), &object));
    EXPECT_EQ(AUDCLNT_E_WRONG_ENDPOINT_TYPE, loopback->GetService(idOf<IAudioRenderClient>(), &object));
    EXPECT_EQ(E_NOINTERFACE, speaker->GetService(idOf<IAudioClient>(), &object));
    EXPECT_EQ(E_NOINTERFACE, speaker->GetService(idOf<IUnknown>(), &object));
    EXPECT_EQ(nullptr, object);
}

TEST_F(AudioClientGetService, GivesWhatBelongsToTheStream)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId);
    const Held<IAudioClient> microphone = sharedClient(microphoneId);

    EXPECT_NE(nullptr, service<IAudioRenderClient>(speaker).get());
    EXPECT_NE(nullptr, service<IAudioCaptureClient>(microphone).get());
    EXPECT_NE(nullptr, service<IAudioClock>(speaker).get());
    EXPECT_NE(nullptr, service<IAudioClock>(speaker).as<IAudioClock2>().get());
    EXPECT_NE(nullptr, service<ISimpleAudioVolume>(speaker).get());
    EXPECT_NE(nullptr, service<IAudioStreamVolume>(speaker).get());
    EXPECT_NE(nullptr, service<IChannelAudioVolume>(speaker).get());
}

// Wine's render tests, which were run on Windows: a service keeps its client alive, and its last release ends both.
TEST_F(AudioClientGetService, KeepsTheClientAlive)
{
    Held<IAudioClient> speaker = sharedClient(speakerId);
    const Held<IAudioRenderClient> render = service<IAudioRenderClient>(speaker);
    EXPECT_EQ(2, simulation.census().references("IAudioClient"));
    EXPECT_EQ(1, simulation.census().references("IAudioRenderClient"));

    speaker.reset();

    EXPECT_EQ(1, simulation.census().references("IAudioClient"));
    BYTE* data = nullptr;
    EXPECT_EQ(S_OK, render->GetBuffer(480, &data));
}
}
