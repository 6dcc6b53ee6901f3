#include "tests/simulator/objects/stream/streamtest.h"

#include <limits>

namespace
{
using bench::Held;
using testing::ElementsAre;

class StreamVolumes : public bench::StreamTest
{
protected:
    Held<IAudioClient> clientOfSession(const std::string& endpoint, const GUID& session)
    {
        Held<IAudioClient> result = client(endpoint);
        EXPECT_EQ(S_OK, result->Initialize(AUDCLNT_SHAREMODE_SHARED, 0, 0, 0, &mixFormat.Format, &session));
        return result;
    }

    static float level(const Held<IAudioClient>& client)
    {
        float result = -1.0f;
        EXPECT_EQ(S_OK, service<ISimpleAudioVolume>(client)->GetMasterVolume(&result));
        return result;
    }

    const GUID session = {0x5E551011, 0, 0, {1}};
    const float tooMuch = 1.01f;
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
};

using SimpleVolume = StreamVolumes;
using StreamVolume = StreamVolumes;
using ChannelVolume = StreamVolumes;

// Microsoft's documentation of ISimpleAudioVolume: the volume is that of the session.
TEST_F(SimpleVolume, BelongsToTheSessionAtTheEndpoint)
{
    const Held<IAudioClient> first = clientOfSession(speakerId, session);
    const Held<IAudioClient> second = clientOfSession(speakerId, session);
    const Held<IAudioClient> elsewhere = clientOfSession(microphoneId, session);
    const Held<IAudioClient> another = sharedClient(speakerId);

    EXPECT_EQ(S_OK, service<ISimpleAudioVolume>(first)->SetMasterVolume(0.25f, nullptr));
    EXPECT_EQ(S_OK, service<ISimpleAudioVolume>(first)->SetMute(TRUE, nullptr));

    EXPECT_EQ(0.25f, level(second));
    EXPECT_EQ(1.0f, level(elsewhere));
    EXPECT_EQ(1.0f, level(another));
    BOOL muted = FALSE;
    EXPECT_EQ(S_OK, service<ISimpleAudioVolume>(second)->GetMute(&muted));
    EXPECT_TRUE(muted);
    EXPECT_EQ(S_OK, service<ISimpleAudioVolume>(another)->GetMute(&muted));
    EXPECT_FALSE(muted);
}

// Wine's render tests, which were run on Windows; the same for the next two.
TEST_F(SimpleVolume, RefusesLevelsOutOfRange)
{
    const Held<ISimpleAudioVolume> volume = service<ISimpleAudioVolume>(sharedClient(speakerId));

    for (const float wrong : {-0.01f, tooMuch, notANumber})
        EXPECT_EQ(E_INVALIDARG, volume->SetMasterVolume(wrong, nullptr)) << wrong;
    EXPECT_EQ(E_POINTER, volume->GetMasterVolume(nullptr));
    EXPECT_EQ(E_POINTER, volume->GetMute(nullptr));
}

TEST_F(StreamVolume, HasALevelForEachChannelOfTheStream)
{
    const Held<IAudioClient> speaker = sharedClient(speakerId);
    const Held<IAudioStreamVolume> volume = service<IAudioStreamVolume>(speaker);
    UINT32 count = 0;
    float levels[2] = {0.5f, 0.25f};

    EXPECT_EQ(S_OK, volume->GetChannelCount(&count));
    EXPECT_EQ(2u, count);
    EXPECT_EQ(S_OK, volume->SetAllVolumes(2, levels));
    EXPECT_EQ(S_OK, volume->SetChannelVolume(1, 0.75f));
    EXPECT_EQ(S_OK, service<IAudioStreamVolume>(speaker)->GetAllVolumes(2, levels));
    EXPECT_THAT(levels, ElementsAre(0.5f, 0.75f));
    EXPECT_EQ(S_OK, volume->GetChannelVolume(0, levels));
    EXPECT_EQ(0.5f, levels[0]);
    const Held<IAudioStreamVolume> other = service<IAudioStreamVolume>(sharedClient(speakerId));
    EXPECT_EQ(S_OK, other->GetChannelVolume(0, levels));
    EXPECT_EQ(1.0f, levels[0]);
}

TEST_F(StreamVolume, RefusesWhatDoesNotFit)
{
    const Held<IAudioStreamVolume> volume = service<IAudioStreamVolume>(sharedClient(speakerId));
    float levels[3] = {0.5f, tooMuch, 0.5f};

    EXPECT_EQ(E_INVALIDARG, volume->SetChannelVolume(2, 0.5f));
    EXPECT_EQ(E_INVALIDARG, volume->SetChannelVolume(0, notANumber));
    EXPECT_EQ(E_INVALIDARG, volume->GetChannelVolume(2, levels));
    EXPECT_EQ(E_INVALIDARG, volume->SetAllVolumes(2, levels));
    levels[1] = 0.5f;
    EXPECT_EQ(E_INVALIDARG, volume->SetAllVolumes(3, levels));
    EXPECT_EQ(E_INVALIDARG, volume->GetAllVolumes(1, levels));
    EXPECT_EQ(E_POINTER, volume->GetChannelCount(nullptr));
    EXPECT_EQ(E_POINTER, volume->GetChannelVolume(0, nullptr));
    EXPECT_EQ(E_POINTER, volume->SetAllVolumes(2, nullptr));
    EXPECT_EQ(E_POINTER, volume->GetAllVolumes(2, nullptr));
}

// Microsoft's documentation of IChannelAudioVolume: the channels of the session.
TEST_F(ChannelVolume, BelongsToTheSession)
{
    const Held<IChannelAudioVolume> volume = service<IChannelAudioVolume>(sharedClient(speakerId));
    UINT32 count = 0;
    float levels[2] = {0.5f, 0.25f};

    EXPECT_EQ(S_OK, volume->GetChannelCount(&count));
    EXPECT_EQ(2u, count);
    EXPECT_EQ(S_OK, volume->SetAllVolumes(2, levels, nullptr));
    EXPECT_EQ(S_OK, volume->SetChannelVolume(1, 0.75f, &session));
    EXPECT_EQ(S_OK, service<IChannelAudioVolume>(sharedClient(speakerId))->GetAllVolumes(2, levels));
    EXPECT_THAT(levels, ElementsAre(0.5f, 0.75f));
    EXPECT_EQ(S_OK, volume->GetChannelVolume(1, levels));
    EXPECT_EQ(0.75f, levels[0]);
    EXPECT_EQ(E_INVALIDARG, volume->SetChannelVolume(2, 0.5f, nullptr));
    EXPECT_EQ(E_INVALIDARG, volume->GetAllVolumes(3, levels));
    EXPECT_EQ(E_POINTER, volume->SetAllVolumes(2, nullptr, nullptr));
}
}
