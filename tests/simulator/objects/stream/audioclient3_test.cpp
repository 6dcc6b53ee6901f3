#include "tests/simulator/objects/stream/streamtest.h"

namespace
{
using bench::Held;
using bench::poison;

class AudioClientExtensions : public bench::StreamTest
{
protected:
    const Held<IAudioClient3> speaker = activated<IAudioClient3>(speakerId);
};

using AudioClient2 = AudioClientExtensions;
using AudioClient3 = AudioClientExtensions;

TEST_F(AudioClient2, IsTheSameObjectAsTheClient)
{
    EXPECT_EQ(speaker.as<IUnknown>().get(), speaker.as<IAudioClient>().as<IUnknown>().get());
    EXPECT_EQ(speaker.as<IUnknown>().get(), speaker.as<IAudioClient2>().as<IUnknown>().get());
    EXPECT_NE(nullptr, activated<IAudioClient2>(speakerId).get());
    EXPECT_EQ(1, simulation.census().references("IAudioClient"));
}

// Wine's render tests, which were run on Windows: E_INVALIDARG for a null pointer.
TEST_F(AudioClient2, OffloadsNothing)
{
    BOOL capable = TRUE;
    EXPECT_EQ(S_OK, speaker->IsOffloadCapable(AudioCategory_Media, &capable));
    EXPECT_FALSE(capable);
    EXPECT_EQ(E_INVALIDARG, speaker->IsOffloadCapable(AudioCategory_Media, nullptr));
}

// Microsoft's documentation of IAudioClient2::SetClientProperties and GetBufferSizeLimits; the sizes are those of the
// structure before and after Windows 8.1.
TEST_F(AudioClient2, TakesPropertiesThatTheEndpointCanHave)
{
    AudioClientProperties properties = {16, FALSE, AudioCategory_Communications, AUDCLNT_STREAMOPTIONS_NONE};
    EXPECT_EQ(S_OK, speaker->SetClientProperties(&properties));
    properties.Options = AUDCLNT_STREAMOPTIONS_RAW;
    EXPECT_EQ(AUDCLNT_E_RAW_MODE_UNSUPPORTED, speaker->SetClientProperties(&properties));
    properties.cbSize = 12;
    EXPECT_EQ(S_OK, speaker->SetClientProperties(&properties));
    properties.bIsOffload = TRUE;
    EXPECT_EQ(AUDCLNT_E_ENDPOINT_OFFLOAD_NOT_CAPABLE, speaker->SetClientProperties(&properties));
    properties.cbSize = 8;
    EXPECT_EQ(E_INVALIDARG, speaker->SetClientProperties(&properties));
    EXPECT_EQ(E_POINTER, speaker->SetClientProperties(nullptr));
}

TEST_F(AudioClient2, HasNoLimitsOfOffloadedBuffers)
{
    REFERENCE_TIME minimum = 99;
    REFERENCE_TIME maximum = 99;
    EXPECT_EQ(AUDCLNT_E_OFFLOAD_MODE_ONLY, speaker->GetBufferSizeLimits(&mixFormat.Format, FALSE, &minimum, &maximum));
    EXPECT_EQ(E_POINTER, speaker->GetBufferSizeLimits(&mixFormat.Format, FALSE, nullptr, &maximum));
    EXPECT_EQ(99, minimum);
}

// Microsoft's page on low latency audio: with a driver that reports no small buffers the period is 10 ms for all.
TEST_F(AudioClient3, HasOnePeriodOfTheEngine)
{
    UINT32 usual = 0;
    UINT32 fundamental = 0;
    UINT32 minimum = 0;
    UINT32 maximum = 0;
    EXPECT_EQ(S_OK, speaker->GetSharedModeEnginePeriod(&mixFormat.Format, &usual, &fundamental, &minimum, &maximum));

    EXPECT_EQ(480u, usual);
    EXPECT_EQ(480u, fundamental);
    EXPECT_EQ(480u, minimum);
    EXPECT_EQ(480u, maximum);
    const WAVEFORMATEXTENSIBLE other = mix("32f/44100/2");
    EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT,
              speaker->GetSharedModeEnginePeriod(&other.Format, &usual, &fundamental, &minimum, &maximum));
    EXPECT_EQ(E_POINTER, speaker->GetSharedModeEnginePeriod(nullptr, &usual, &fundamental, &minimum, &maximum));
    EXPECT_EQ(E_POINTER,
              speaker->GetSharedModeEnginePeriod(&mixFormat.Format, nullptr, &fundamental, &minimum, &maximum));
}

TEST_F(AudioClient3, ReportsTheCurrentFormatAndPeriod)
{
    WAVEFORMATEX* format = nullptr;
    UINT32 period = 0;
    EXPECT_EQ(S_OK, speaker->GetCurrentSharedModeEnginePeriod(&format, &period));

    EXPECT_EQ(480u, period);
    EXPECT_EQ("32f/48000/2", taken(format));
    EXPECT_EQ(E_POINTER, speaker->GetCurrentSharedModeEnginePeriod(nullptr, &period));
}

// Microsoft's documentation of IAudioClient3::InitializeSharedAudioStream.
TEST_F(AudioClient3, InitialisesASharedStreamWithThatPeriod)
{
    constexpr DWORD events = AUDCLNT_STREAMFLAGS_EVENTCALLBACK;
    EXPECT_EQ(AUDCLNT_E_INVALID_DEVICE_PERIOD,
              speaker->InitializeSharedAudioStream(events, 240, &mixFormat.Format, nullptr));
    EXPECT_EQ(S_OK, speaker->InitializeSharedAudioStream(events, 480, &mixFormat.Format, nullptr));
    EXPECT_EQ(AUDCLNT_E_ALREADY_INITIALIZED,
              speaker->InitializeSharedAudioStream(events, 480, &mixFormat.Format, nullptr));

    UINT32 frames = 0;
    EXPECT_EQ(S_OK, speaker->GetBufferSize(&frames));
    EXPECT_EQ(960u, frames);
    EXPECT_EQ(S_OK, speaker->SetEventHandle(anEvent));
}
}
