#include "tests/simulator/objects/stream/streamtest.h"

namespace
{
using bench::Held;
using bench::millisecond;

using AudioClientInitialize = bench::StreamTest;
using AudioClientInitializeExclusive = bench::StreamTest;
using AudioClientBufferSize = bench::StreamTest;

// Microsoft's documentation of IAudioClient::Initialize, return values; the same for the next tests.
TEST_F(AudioClientInitialize, IsPossibleOnce)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId);

    EXPECT_EQ(AUDCLNT_E_ALREADY_INITIALIZED, initialize(speaker, mixFormat));
}

TEST_F(AudioClientInitialize, MayFollowOneThatFailed)
{
    const Held<IAudioClient> speaker = client(speakerId);
    EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, initialize(speaker, mix("32f/44100/2")));

    EXPECT_EQ(S_OK, initialize(speaker, mixFormat));
}

TEST_F(AudioClientInitialize, RefusesWhatNoStreamCanBe)
{
    const Held<IAudioClient> speaker = client(speakerId);
    WAVEFORMATEXTENSIBLE empty = mixFormat;
    empty.Format.nChannels = 0;
    WAVEFORMATEXTENSIBLE compressed = mixFormat;
    compressed.Format.wFormatTag = 0x0055;
    const WAVEFORMATEX* const format = &mixFormat.Format;

    EXPECT_EQ(E_POINTER, speaker->Initialize(AUDCLNT_SHAREMODE_SHARED, 0, 0, 0, nullptr, nullptr));
    EXPECT_EQ(E_INVALIDARG, speaker->Initialize(static_cast<AUDCLNT_SHAREMODE>(2), 0, 0, 0, format, nullptr));
    EXPECT_EQ(E_INVALIDARG, speaker->Initialize(AUDCLNT_SHAREMODE_SHARED, 0, -1, 0, format, nullptr));
    EXPECT_EQ(AUDCLNT_E_INVALID_STREAM_FLAG, initialize(speaker, mixFormat, 1));
    EXPECT_EQ(E_INVALIDARG, initialize(speaker, empty));
    EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, initialize(speaker, compressed));
}

// Microsoft's documentation of the stream flags: the engine converts rate and channels.
TEST_F(AudioClientInitialize, TakesAnyLinearFormatToConvert)
{
    for (const char* text : {"16/44100/1", "32f/8000/6"})
    {
        const Held<IAudioClient> speaker = client(speakerId);
        EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, initialize(speaker, mix(text))) << text;
        EXPECT_EQ(S_OK, initialize(speaker, mix(text),
                                   AUDCLNT_STREAMFLAGS_AUTOCONVERTPCM | AUDCLNT_STREAMFLAGS_SRC_DEFAULT_QUALITY))
            << text;
    }
}

/// A format of whole numbers, which need not be one that a machine file can name.
WAVEFORMATEX wholeNumbers(DWORD rate, WORD channels, WORD bits)
{
    WAVEFORMATEX format = {};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = channels;
    format.nSamplesPerSec = rate;
    format.wBitsPerSample = bits;
    format.nBlockAlign = static_cast<WORD>(channels * bits / 8);
    format.nAvgBytesPerSec = rate * format.nBlockAlign;
    return format;
}

// The engine of Windows converts what an endpoint could have, not everything that a structure can say.
TEST_F(AudioClientInitialize, RefusesToConvertRatesAndChannelsThatNoEndpointHas)
{
    const auto convert = [](const Held<IAudioClient>& client, const WAVEFORMATEX& format)
    {
        return client->Initialize(AUDCLNT_SHAREMODE_SHARED, AUDCLNT_STREAMFLAGS_AUTOCONVERTPCM, 1200 * millisecond, 0,
                                  &format, nullptr);
    };
    const Held<IAudioClient> refused = client(speakerId);

    EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, convert(refused, wholeNumbers(4294967295u, 1, 16)));
    EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, convert(refused, wholeNumbers(1000000, 1, 16)));
    EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, convert(refused, wholeNumbers(48000, 9, 16)));
    EXPECT_EQ(S_OK, convert(refused, wholeNumbers(999999, 8, 16)));
    EXPECT_EQ(1199999u, bufferSize(refused));
}

TEST_F(AudioClientInitialize, LoopsRenderEndpointsBackInSharedModeOnly)
{
    const Held<IAudioClient> speaker = client(speakerId);
    EXPECT_EQ(E_INVALIDARG, initializeExclusive(speaker, deviceFormat, AUDCLNT_STREAMFLAGS_LOOPBACK, 0, 0));
    EXPECT_EQ(S_OK, initialize(speaker, mixFormat, AUDCLNT_STREAMFLAGS_LOOPBACK));

    EXPECT_EQ(AUDCLNT_E_WRONG_ENDPOINT_TYPE, initialize(client(microphoneId), mixFormat, AUDCLNT_STREAMFLAGS_LOOPBACK));
    EXPECT_EQ(E_INVALIDARG,
              initializeExclusive(client(speakerId), deviceFormat, AUDCLNT_STREAMFLAGS_CROSSPROCESS, 0, 0));
}

// cubeb issue 750, FlexASIO issue 61: the privacy switch of Windows 10 refuses recording programs.
TEST_F(AudioClientInitialize, IsDeniedOnCaptureEndpointsByThePrivacySwitch)
{
    simulation.change([](sim::Machine& machine) { machine.captureAccess = sim::CaptureAccess::denied; });

    EXPECT_EQ(E_ACCESSDENIED, initialize(client(microphoneId), mixFormat));
    const Held<IAudioClient> speaker = sharedClient(speakerId);
    const Held<IAudioClient> loopback = sharedClient(speakerId, AUDCLNT_STREAMFLAGS_LOOPBACK);
    auto* format = bench::poison<WAVEFORMATEX>();
    EXPECT_EQ(S_OK, client(microphoneId)->GetMixFormat(&format));
    EXPECT_EQ("32f/48000/2", taken(format));
}

TEST_F(AudioClientInitialize, LeavesAnExclusiveStreamAlone)
{
    {
        const Held<IAudioClient> exclusive = client(speakerId);
        ASSERT_EQ(S_OK, initializeExclusive(exclusive, deviceFormat, 0, 100 * millisecond, 0));
        EXPECT_EQ(AUDCLNT_E_DEVICE_IN_USE, initialize(client(speakerId), mixFormat));
        const Held<IAudioClient> microphone = sharedClient(microphoneId);
    }

    const Held<IAudioClient> shared = sharedClient(speakerId);
    const Held<IAudioClient> another = sharedClient(speakerId);
    EXPECT_EQ(AUDCLNT_E_DEVICE_IN_USE, initializeExclusive(client(speakerId), deviceFormat, 0, 100 * millisecond, 0));
}

TEST_F(AudioClientInitialize, ShowsItsArgumentsInTheJournal)
{
    simulation.journal().clear();
    const Held<IAudioClient> speaker = sharedClient(speakerId, AUDCLNT_STREAMFLAGS_NOPERSIST);

    EXPECT_THAT(simulation.journal().of("IAudioClient::*").calls(),
                testing::ElementsAre("IAudioClient::Initialize(shared, 524288, 1000000, 0, 32f/48000/2, null)"));
}

TEST_F(AudioClientInitializeExclusive, TakesTheDeviceFormatOnly)
{
    EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, initializeExclusive(client(speakerId), mixFormat, 0, 0, 0));
    EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT,
              initializeExclusive(client(speakerId), mix("16/44100/2"), AUDCLNT_STREAMFLAGS_AUTOCONVERTPCM, 0, 0));
    EXPECT_EQ(S_OK, initializeExclusive(client(speakerId), deviceFormat, 0, 0, 0));
}

TEST_F(AudioClientInitializeExclusive, LimitsBuffersAndPeriods)
{
    const Held<IAudioClient> speaker = client(speakerId);
    constexpr DWORD events = AUDCLNT_STREAMFLAGS_EVENTCALLBACK;
    constexpr REFERENCE_TIME second = 1000 * millisecond;

    EXPECT_EQ(AUDCLNT_E_BUFFER_SIZE_ERROR, initializeExclusive(speaker, deviceFormat, 0, 2 * second + 1, 0));
    EXPECT_EQ(AUDCLNT_E_INVALID_DEVICE_PERIOD, initializeExclusive(speaker, deviceFormat, 0, second, 5 * second + 1));
    EXPECT_EQ(AUDCLNT_E_INVALID_DEVICE_PERIOD,
              initializeExclusive(speaker, deviceFormat, events, 5 * second + 1, 5 * second + 1));
    EXPECT_EQ(AUDCLNT_E_BUFDURATION_PERIOD_NOT_EQUAL,
              initializeExclusive(speaker, deviceFormat, events, 20 * millisecond, 10 * millisecond));
    EXPECT_EQ(AUDCLNT_E_BUFFER_SIZE_ERROR, initializeExclusive(speaker, deviceFormat, events, 29999, 29999));
    EXPECT_EQ(AUDCLNT_E_BUFFER_SIZE_ERROR, initializeExclusive(speaker, deviceFormat, events, 0, 0));
}

// Microsoft's documentation of IAudioClient::Initialize, the example of the alignment: the next aligned size comes from
// GetBufferSize of the client that was refused, and a duration computed from it is accepted.
TEST_F(AudioClientInitializeExclusive, RefusesASizeThatIsNotAlignedAndNamesTheNextOne)
{
    constexpr DWORD events = AUDCLNT_STREAMFLAGS_EVENTCALLBACK;
    UINT32 frames = 0;
    {
        const Held<IAudioClient> speaker = client(speakerId);
        EXPECT_EQ(AUDCLNT_E_BUFFER_SIZE_NOT_ALIGNED,
                  initializeExclusive(speaker, deviceFormat, events, 11 * millisecond, 11 * millisecond));
        frames = bufferSize(speaker);
        EXPECT_EQ(AUDCLNT_E_NOT_INITIALIZED, speaker->Start());
    }
    EXPECT_EQ(544u, frames); // 528 frames are 16.5 packets of 128 bytes

    const auto duration = static_cast<REFERENCE_TIME>(10000.0 * 1000 / 48000 * frames + 0.5);
    const Held<IAudioClient> speaker = client(speakerId);
    EXPECT_EQ(S_OK, initializeExclusive(speaker, deviceFormat, events, duration, duration));
    EXPECT_EQ(544u, bufferSize(speaker));
}

TEST_F(AudioClientBufferSize, IsWhatWasAskedForOrTwoPeriods)
{
    EXPECT_EQ(4800u, bufferSize(sharedClient(speakerId, 0, 100 * millisecond)));
    EXPECT_EQ(4801u, bufferSize(sharedClient(speakerId, 0, 100 * millisecond + 1)));
    EXPECT_EQ(960u, bufferSize(sharedClient(speakerId, 0, 0)));
    EXPECT_EQ(960u, bufferSize(sharedClient(speakerId, AUDCLNT_STREAMFLAGS_EVENTCALLBACK, 0)));
}

// Wine's render tests, which were run on Windows: a duration above 2 s or a period in shared mode is ignored.
TEST_F(AudioClientBufferSize, HasAtMostTwoSecondsInSharedModeAndNoPeriodOfTheClient)
{
    EXPECT_EQ(96000u, bufferSize(sharedClient(speakerId, 0, 3000 * millisecond)));
    const Held<IAudioClient> speaker = client(speakerId);
    EXPECT_EQ(S_OK, speaker->Initialize(AUDCLNT_SHAREMODE_SHARED, 0, 0, 50 * millisecond, &mixFormat.Format, nullptr));
    EXPECT_EQ(960u, bufferSize(speaker));
}

// Microsoft's documentation of IAudioClient::Initialize: a period below the device's minimum becomes the minimum, and
// no period becomes the default one.
TEST_F(AudioClientBufferSize, FollowsThePeriodOfAnExclusiveStream)
{
    const auto sizeWith = [&](REFERENCE_TIME periodicity)
    {
        const Held<IAudioClient> speaker = client(speakerId);
        EXPECT_EQ(S_OK, initializeExclusive(speaker, deviceFormat, 0, 0, periodicity));
        return bufferSize(speaker);
    };

    EXPECT_EQ(960u, sizeWith(0));
    EXPECT_EQ(288u, sizeWith(1));
    EXPECT_EQ(1920u, sizeWith(20 * millisecond));
}
}
