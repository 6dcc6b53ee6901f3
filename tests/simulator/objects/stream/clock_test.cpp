#include "tests/simulator/objects/stream/streamtest.h"

namespace
{
using bench::Held;
using bench::millisecond;
using namespace std::chrono_literals;

class AudioClock : public bench::StreamTest
{
protected:
    static UINT64 position(const Held<IAudioClient>& client)
    {
        UINT64 result = 99;
        EXPECT_EQ(S_OK, service<IAudioClock>(client)->GetPosition(&result, nullptr));
        return result;
    }

    static UINT64 frequency(const Held<IAudioClient>& client)
    {
        UINT64 result = 99;
        EXPECT_EQ(S_OK, service<IAudioClock>(client)->GetFrequency(&result));
        return result;
    }

    static void write(const Held<IAudioClient>& client, UINT32 frames)
    {
        const Held<IAudioRenderClient> render = service<IAudioRenderClient>(client);
        BYTE* data = nullptr;
        ASSERT_EQ(S_OK, render->GetBuffer(frames, &data));
        ASSERT_EQ(S_OK, render->ReleaseBuffer(frames, 0));
    }
};

using AudioClockFrequency = AudioClock;
using AudioClockPosition = AudioClock;

// Wine's render tests, which were run on Windows: bytes a second in shared mode, frames a second in exclusive mode.
TEST_F(AudioClockFrequency, DependsOnTheMode)
{
    EXPECT_EQ(48000u * 8, frequency(sharedClient(speakerId)));
    const Held<IAudioClient> exclusive = client(microphoneId);
    ASSERT_EQ(S_OK, initializeExclusive(exclusive, deviceFormat, 0, 100 * millisecond, 0));
    EXPECT_EQ(48000u, frequency(exclusive));
}

// Microsoft's documentation of IAudioClock::GetCharacteristics: always the fixed frequency.
TEST_F(AudioClockFrequency, IsFixed)
{
    DWORD characteristics = 0;
    const Held<IAudioClock> clock = service<IAudioClock>(sharedClient(speakerId));
    EXPECT_EQ(S_OK, clock->GetCharacteristics(&characteristics));
    EXPECT_EQ(1u, characteristics);
    EXPECT_EQ(E_POINTER, clock->GetCharacteristics(nullptr));
    EXPECT_EQ(E_POINTER, clock->GetFrequency(nullptr));
}

TEST_F(AudioClockPosition, CountsWhatWasPlayed)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId);
    write(speaker, 960);
    EXPECT_EQ(0u, position(speaker));

    ASSERT_EQ(S_OK, speaker->Start());
    advance(5ms);
    EXPECT_EQ(240u * 8, position(speaker));
    advance(15ms);
    EXPECT_EQ(960u * 8, position(speaker));
    advance(1s); // nothing is left to play
    EXPECT_EQ(960u * 8, position(speaker));
}

TEST_F(AudioClockPosition, StopsWithTheStreamAndEndsWithAReset)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId);
    write(speaker, 960);
    ASSERT_EQ(S_OK, speaker->Start());
    advance(5ms);
    ASSERT_EQ(S_OK, speaker->Stop());
    advance(1s);
    EXPECT_EQ(240u * 8, position(speaker));

    ASSERT_EQ(S_OK, speaker->Reset());

    EXPECT_EQ(0u, position(speaker));
}

TEST_F(AudioClockPosition, CountsWhatWasCaptured)
{
    const Held<IAudioClient> microphone = sharedClient(microphoneId);
    ASSERT_EQ(S_OK, microphone->Start());
    advance(5ms);

    EXPECT_EQ(240u * 8, position(microphone));
}

// Microsoft's documentation of IAudioClock2::GetDevicePosition: frames, and the counter in units of 100 ns.
TEST_F(AudioClockPosition, OfTheDeviceIsInFrames)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId);
    const Held<IAudioClock2> clock = service<IAudioClock>(speaker).as<IAudioClock2>();
    write(speaker, 960);
    ASSERT_EQ(S_OK, speaker->Start());
    UINT64 frames = 99;
    UINT64 before = 0;
    UINT64 after = 0;
    ASSERT_EQ(S_OK, clock->GetDevicePosition(&frames, &before));
    EXPECT_EQ(0u, frames);
    EXPECT_NE(0u, before);

    advance(5ms);

    ASSERT_EQ(S_OK, clock->GetDevicePosition(&frames, &after));
    EXPECT_EQ(240u, frames);
    EXPECT_EQ(50000u, after - before);
    EXPECT_EQ(E_POINTER, clock->GetDevicePosition(nullptr, &after));
    EXPECT_EQ(E_POINTER, service<IAudioClock>(speaker)->GetPosition(nullptr, &after));
}

TEST_F(AudioClockPosition, HoldsForDays)
{
    const Held<IAudioClient> microphone = sharedClient(microphoneId);
    ASSERT_EQ(S_OK, microphone->Start());
    advance(24h * 365);

    EXPECT_EQ(std::uint64_t{365} * 24 * 3600 * 48000 * 8, position(microphone));
}
}
