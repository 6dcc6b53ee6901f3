#include "tests/simulator/objects/stream/streamtest.h"

namespace
{
using bench::Held;
using bench::poison;

constexpr HRESULT lost = AUDCLNT_E_DEVICE_INVALIDATED;

// Microsoft's documentation of each operation here: AUDCLNT_E_DEVICE_INVALIDATED.
class LostEndpointStreams : public bench::StreamTest
{
protected:
    void expectNothingToAnswer()
    {
        UINT32 frames = 0;
        UINT64 position = 0;
        REFERENCE_TIME time = 0;
        float level = 0.0f;
        BYTE* data = nullptr;
        DWORD flags = 0;
        BOOL capable = FALSE;
        auto* format = poison<WAVEFORMATEX>();
        void* object = poison<void>();
        const AudioClientProperties properties = {16, FALSE, AudioCategory_Other, AUDCLNT_STREAMOPTIONS_NONE};

        EXPECT_EQ(lost, initialize(untouched, mixFormat));
        EXPECT_EQ(lost, speaker->GetBufferSize(&frames));
        EXPECT_EQ(lost, speaker->GetStreamLatency(&time));
        EXPECT_EQ(lost, speaker->GetCurrentPadding(&frames));
        EXPECT_EQ(lost, speaker->IsFormatSupported(AUDCLNT_SHAREMODE_SHARED, &mixFormat.Format, &format));
        EXPECT_EQ(lost, speaker->GetMixFormat(&format));
        EXPECT_EQ(lost, speaker->GetDevicePeriod(&time, nullptr));
        EXPECT_EQ(lost, speaker->Start());
        EXPECT_EQ(lost, speaker->Stop());
        EXPECT_EQ(lost, speaker->Reset());
        EXPECT_EQ(lost, speaker->SetEventHandle(anEvent));
        EXPECT_EQ(lost, speaker->GetService(sim::InterfaceTraits<IAudioClock>::iid(), &object));
        const Held<IAudioClient3> third = speaker.as<IAudioClient3>();
        EXPECT_EQ(lost, third->IsOffloadCapable(AudioCategory_Other, &capable));
        EXPECT_EQ(lost, third->SetClientProperties(&properties));
        EXPECT_EQ(lost, third->GetBufferSizeLimits(&mixFormat.Format, FALSE, &time, &time));
        EXPECT_EQ(lost, third->GetSharedModeEnginePeriod(&mixFormat.Format, &frames, &frames, &frames, &frames));
        EXPECT_EQ(lost, third->GetCurrentSharedModeEnginePeriod(&format, &frames));
        EXPECT_EQ(lost, untouched.as<IAudioClient3>()->InitializeSharedAudioStream(0, 480, &mixFormat.Format, nullptr));
        EXPECT_EQ(nullptr, format);
        EXPECT_EQ(nullptr, object);

        EXPECT_EQ(lost, render->GetBuffer(1, &data));
        EXPECT_EQ(lost, render->ReleaseBuffer(0, 0));
        EXPECT_EQ(lost, capture->GetBuffer(&data, &frames, &flags, nullptr, nullptr));
        EXPECT_EQ(lost, capture->ReleaseBuffer(0));
        EXPECT_EQ(lost, capture->GetNextPacketSize(&frames));
        EXPECT_EQ(lost, clock->GetFrequency(&position));
        EXPECT_EQ(lost, clock->GetPosition(&position, nullptr));
        EXPECT_EQ(lost, clock->GetCharacteristics(&flags));
        EXPECT_EQ(lost, clock.as<IAudioClock2>()->GetDevicePosition(&position, nullptr));
        EXPECT_EQ(lost, volume->GetMasterVolume(&level));
        EXPECT_EQ(lost, levels->GetChannelVolume(0, &level));
        EXPECT_EQ(lost, channels->GetChannelVolume(0, &level));
        EXPECT_EQ(lost, meter->GetPeakValue(&level));
        EXPECT_EQ(lost,
                  device(speakerId)->Activate(sim::InterfaceTraits<IAudioClient>::iid(), CLSCTX_ALL, nullptr, &object));
        EXPECT_EQ(lost, device(speakerId)->Activate(sim::InterfaceTraits<IAudioMeterInformation>::iid(), CLSCTX_ALL,
                                                    nullptr, &object));
        EXPECT_EQ(nullptr, object);
    }

    const Held<IAudioClient> untouched = client(speakerId);
    const Held<IAudioClient> speaker = sharedClient(speakerId);
    const Held<IAudioClient> loopback = sharedClient(speakerId, AUDCLNT_STREAMFLAGS_LOOPBACK);
    const Held<IAudioRenderClient> render = service<IAudioRenderClient>(speaker);
    const Held<IAudioCaptureClient> capture = service<IAudioCaptureClient>(loopback);
    const Held<IAudioClock> clock = service<IAudioClock>(speaker);
    const Held<ISimpleAudioVolume> volume = service<ISimpleAudioVolume>(speaker);
    const Held<IAudioStreamVolume> levels = service<IAudioStreamVolume>(speaker);
    const Held<IChannelAudioVolume> channels = service<IChannelAudioVolume>(speaker);
    const Held<IAudioMeterInformation> meter = activated<IAudioMeterInformation>(speakerId);
};

TEST_F(LostEndpointStreams, AnswerNothingOnceItIsUnplugged)
{
    simulation.events().unplug(speakerId);

    expectNothingToAnswer();
}

TEST_F(LostEndpointStreams, AnswerNothingOnceItIsDisabled)
{
    simulation.events().setState(speakerId, sim::stateDisabled);

    expectNothingToAnswer();
}

TEST_F(LostEndpointStreams, AnswerNothingOnceItIsRemoved)
{
    simulation.events().remove(speakerId);

    expectNothingToAnswer();
}

TEST_F(LostEndpointStreams, EndWithTheEndpointAndAreReleased)
{
    simulation.change([](sim::Machine& machine) { machine.endpoints.clear(); });

    EXPECT_EQ(lost, speaker->Start());
    EXPECT_EQ(lost, initialize(untouched, mixFormat));
}

/// The endpoint's meter.
using Meter = bench::StreamTest;

// Microsoft's documentation of IAudioMeterInformation: a peak for each channel of the mix format, 0 for silence.
TEST_F(Meter, SeesSilence)
{
    const Held<IAudioMeterInformation> meter = activated<IAudioMeterInformation>(speakerId);
    simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->volume->hardwareSupport = 4; });
    float peaks[3] = {9.0f, 9.0f, 9.0f};
    UINT count = 0;
    DWORD support = 0;

    EXPECT_EQ(S_OK, meter->GetMeteringChannelCount(&count));
    EXPECT_EQ(2u, count);
    EXPECT_EQ(S_OK, meter->GetChannelsPeakValues(2, peaks));
    EXPECT_THAT(peaks, testing::ElementsAre(0.0f, 0.0f, 9.0f));
    EXPECT_EQ(E_INVALIDARG, meter->GetChannelsPeakValues(3, peaks));
    EXPECT_EQ(S_OK, meter->GetPeakValue(peaks + 2));
    EXPECT_EQ(0.0f, peaks[2]);
    EXPECT_EQ(S_OK, meter->QueryHardwareSupport(&support));
    EXPECT_EQ(4u, support);
    EXPECT_EQ(E_POINTER, meter->GetPeakValue(nullptr));
    EXPECT_EQ(E_POINTER, meter->GetChannelsPeakValues(2, nullptr));
}

TEST_F(Meter, IsActivatedOnlyWhereTheMachineHasOne)
{
    void* object = poison<void>();
    EXPECT_EQ(E_NOINTERFACE,
              device(earphoneId)
                  ->Activate(sim::InterfaceTraits<IAudioMeterInformation>::iid(), CLSCTX_ALL, nullptr, &object));
    EXPECT_EQ(nullptr, object);
}
}
