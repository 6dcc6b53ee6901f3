#include "tests/simulator/objects/stream/streamtest.h"

#include <array>
#include <initializer_list>

namespace
{
using bench::Held;
using bench::poison;

/// Streams whose calls succeed with nothing: every out-parameter becomes null or zero.
class NullSuccess : public bench::StreamTest
{
protected:
    void plan(std::initializer_list<const char*> operations)
    {
        for (const char* const operation : operations)
            simulation.faults().succeedWithNull(operation);
    }

    template<class First, class... Others>
    static void expectZero(const First& first, const Others&... others)
    {
        EXPECT_EQ(First(), first);
        if constexpr (sizeof...(Others) > 0)
            expectZero(others...);
    }

    const Held<IAudioClient> speaker = sharedClient(speakerId);
    UINT32 first = 99, second = 99, third = 99, fourth = 99;
    UINT64 position = 99, counter = 99;
    DWORD flags = 99;
    std::array<float, 2> levels = {9.0f, 9.0f};
    const std::array<float, 2> silent = {0.0f, 0.0f};
};

using NullSuccessAudioClient = NullSuccess;
using NullSuccessServices = NullSuccess;
using NullSuccessParts = NullSuccess;

TEST_F(NullSuccessAudioClient, ClearsSizesAndTimes)
{
    plan({"IAudioClient::GetBufferSize", "IAudioClient::GetStreamLatency", "IAudioClient::GetCurrentPadding",
          "IAudioClient::GetDevicePeriod"});
    REFERENCE_TIME latency = 99, usual = 99, minimum = 99;

    EXPECT_EQ(S_OK, speaker->GetBufferSize(&first));
    EXPECT_EQ(S_OK, speaker->GetStreamLatency(&latency));
    EXPECT_EQ(S_OK, speaker->GetCurrentPadding(&second));
    EXPECT_EQ(S_OK, speaker->GetDevicePeriod(&usual, &minimum));
    expectZero(first, latency, second, usual, minimum);
    usual = 99;
    EXPECT_EQ(S_OK, speaker->GetDevicePeriod(&usual, nullptr));
    expectZero(usual);
}

TEST_F(NullSuccessAudioClient, ClearsFormatsAndServices)
{
    plan({"IAudioClient::GetMixFormat", "IAudioClient::IsFormatSupported", "IAudioClient::GetService"});
    auto* mixed = poison<WAVEFORMATEX>();
    auto* closest = poison<WAVEFORMATEX>();
    void* object = poison<void>();

    EXPECT_EQ(S_OK, speaker->GetMixFormat(&mixed));
    EXPECT_EQ(S_OK, speaker->IsFormatSupported(AUDCLNT_SHAREMODE_SHARED, &mixFormat.Format, &closest));
    EXPECT_EQ(S_OK, speaker->GetService(sim::InterfaceTraits<IAudioClock>::iid(), &object));
    expectZero(mixed, closest, object);
}

TEST_F(NullSuccessAudioClient, ClearsWhatLaterVersionsStore)
{
    plan({"IAudioClient2::IsOffloadCapable", "IAudioClient2::GetBufferSizeLimits",
          "IAudioClient3::GetSharedModeEnginePeriod", "IAudioClient3::GetCurrentSharedModeEnginePeriod"});
    const Held<IAudioClient3> later = speaker.as<IAudioClient3>();
    BOOL capable = 99;
    REFERENCE_TIME minimum = 99, maximum = 99;
    auto* format = poison<WAVEFORMATEX>();
    UINT32 period = 99;

    EXPECT_EQ(S_OK, later->IsOffloadCapable(AudioCategory_Other, &capable));
    EXPECT_EQ(S_OK, later->GetBufferSizeLimits(&mixFormat.Format, FALSE, &minimum, &maximum));
    EXPECT_EQ(S_OK, later->GetSharedModeEnginePeriod(&mixFormat.Format, &first, &second, &third, &fourth));
    EXPECT_EQ(S_OK, later->GetCurrentSharedModeEnginePeriod(&format, &period));
    expectZero(capable, minimum, maximum, first, second, third, fourth, format, period);
}

TEST_F(NullSuccessServices, ClearBuffersAndPackets)
{
    plan({"IAudioRenderClient::GetBuffer", "IAudioCaptureClient::GetBuffer", "IAudioCaptureClient::GetNextPacketSize"});
    const Held<IAudioRenderClient> render = service<IAudioRenderClient>(speaker);
    const Held<IAudioClient> microphone = sharedClient(microphoneId);
    const Held<IAudioCaptureClient> capture = service<IAudioCaptureClient>(microphone);
    auto* written = poison<BYTE>();
    auto* read = poison<BYTE>();

    EXPECT_EQ(S_OK, render->GetBuffer(480, &written));
    EXPECT_EQ(S_OK, capture->GetBuffer(&read, &first, &flags, &position, &counter));
    EXPECT_EQ(S_OK, capture->GetNextPacketSize(&second));
    expectZero(written, read, first, flags, position, counter, second);
    EXPECT_EQ(S_OK, capture->GetBuffer(&read, &first, &flags, nullptr, nullptr));
}

TEST_F(NullSuccessServices, ClearPositions)
{
    plan({"IAudioClock::GetFrequency", "IAudioClock::GetPosition", "IAudioClock::GetCharacteristics",
          "IAudioClock2::GetDevicePosition"});
    const Held<IAudioClock> clock = service<IAudioClock>(speaker);
    UINT64 frequency = 99, devicePosition = 99, deviceCounter = 99;

    EXPECT_EQ(S_OK, clock->GetFrequency(&frequency));
    EXPECT_EQ(S_OK, clock->GetPosition(&position, &counter));
    EXPECT_EQ(S_OK, clock->GetCharacteristics(&flags));
    EXPECT_EQ(S_OK, clock.as<IAudioClock2>()->GetDevicePosition(&devicePosition, &deviceCounter));
    expectZero(frequency, position, counter, flags, devicePosition, deviceCounter);
}

TEST_F(NullSuccessServices, ClearTheSessionsVolume)
{
    plan({"ISimpleAudioVolume::GetMasterVolume", "ISimpleAudioVolume::GetMute"});
    const Held<ISimpleAudioVolume> session = service<ISimpleAudioVolume>(speaker);
    float level = 9.0f;
    BOOL muted = 99;

    EXPECT_EQ(S_OK, session->GetMasterVolume(&level));
    EXPECT_EQ(S_OK, session->GetMute(&muted));
    expectZero(level, muted);
}

TEST_F(NullSuccessServices, ClearTheLevelsOfAllChannels)
{
    plan({"IAudioStreamVolume::GetChannelCount", "IAudioStreamVolume::GetChannelVolume",
          "IAudioStreamVolume::GetAllVolumes", "IChannelAudioVolume::GetChannelCount",
          "IChannelAudioVolume::GetChannelVolume", "IChannelAudioVolume::GetAllVolumes"});
    const Held<IAudioStreamVolume> ofStream = service<IAudioStreamVolume>(speaker);
    const Held<IChannelAudioVolume> ofSession = service<IChannelAudioVolume>(speaker);
    std::array<float, 2> others = {9.0f, 9.0f};
    float one = 9.0f, other = 9.0f;

    EXPECT_EQ(S_OK, ofStream->GetChannelCount(&first));
    EXPECT_EQ(S_OK, ofStream->GetChannelVolume(0, &one));
    EXPECT_EQ(S_OK, ofStream->GetAllVolumes(2, levels.data()));
    EXPECT_EQ(S_OK, ofSession->GetChannelCount(&second));
    EXPECT_EQ(S_OK, ofSession->GetChannelVolume(0, &other));
    EXPECT_EQ(S_OK, ofSession->GetAllVolumes(2, others.data()));
    expectZero(first, one, second, other);
    EXPECT_EQ(silent, levels);
    EXPECT_EQ(silent, others);
}

TEST_F(NullSuccessParts, ClearThePeaks)
{
    plan({"IAudioMeterInformation::GetPeakValue", "IAudioMeterInformation::GetMeteringChannelCount",
          "IAudioMeterInformation::GetChannelsPeakValues", "IAudioMeterInformation::QueryHardwareSupport"});
    const Held<IAudioMeterInformation> meter = activated<IAudioMeterInformation>(speakerId);
    float peak = 9.0f;

    EXPECT_EQ(S_OK, meter->GetPeakValue(&peak));
    EXPECT_EQ(S_OK, meter->GetMeteringChannelCount(&first));
    EXPECT_EQ(S_OK, meter->GetChannelsPeakValues(2, levels.data()));
    EXPECT_EQ(S_OK, meter->QueryHardwareSupport(&flags));
    expectZero(peak, first, flags);
    EXPECT_EQ(silent, levels);
}

TEST_F(NullSuccessParts, ClearTheDescriptionsOfJacks)
{
    simulation.change([&](sim::Machine& machine) { machine.part(speakerJack).connector->jacks = {sim::Jack()}; });
    plan({"IKsJackDescription::GetJackCount", "IKsJackDescription::GetJackDescription",
          "IKsJackDescription2::GetJackCount", "IKsJackDescription2::GetJackDescription2"});
    const Held<IPart> jack = part(speakerJack);
    Held<IKsJackDescription> one;
    Held<IKsJackDescription2> other;
    ASSERT_EQ(S_OK, jack->Activate(CLSCTX_ALL, sim::InterfaceTraits<IKsJackDescription>::iid(), one.putVoid()));
    ASSERT_EQ(S_OK, jack->Activate(CLSCTX_ALL, sim::InterfaceTraits<IKsJackDescription2>::iid(), other.putVoid()));
    KSJACK_DESCRIPTION description = {};
    description.Color = 99;
    KSJACK_DESCRIPTION2 capabilities = {99, 99};

    EXPECT_EQ(S_OK, one->GetJackCount(&first));
    EXPECT_EQ(S_OK, one->GetJackDescription(0, &description));
    EXPECT_EQ(S_OK, other->GetJackCount(&second));
    EXPECT_EQ(S_OK, other->GetJackDescription2(0, &capabilities));
    expectZero(first, second, description.Color, capabilities.DeviceStateInfo, capabilities.JackCapabilities);
}
}
