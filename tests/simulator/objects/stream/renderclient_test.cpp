#include "tests/simulator/objects/stream/streamtest.h"

#include <algorithm>

namespace
{
using bench::Held;
using bench::millisecond;
using bench::poison;
using namespace std::chrono_literals;

/// A shared stream with a buffer of 4800 frames.
class RenderClient : public bench::StreamTest
{
protected:
    void write(UINT32 frames)
    {
        BYTE* data = nullptr;
        ASSERT_EQ(S_OK, render->GetBuffer(frames, &data));
        ASSERT_EQ(S_OK, render->ReleaseBuffer(frames, 0));
    }

    const Held<IAudioClient> speaker = sharedClient(speakerId);
    const Held<IAudioRenderClient> render = service<IAudioRenderClient>(speaker);
};

using RenderClientGetBuffer = RenderClient;
using RenderClientReleaseBuffer = RenderClient;
using RenderClientPadding = RenderClient;

TEST_F(RenderClientGetBuffer, GivesMemoryForAllFrames)
{
    BYTE* data = nullptr;
    ASSERT_EQ(S_OK, render->GetBuffer(4800, &data));

    ASSERT_NE(nullptr, data);
    std::fill(data, data + 4800 * 8, BYTE{0x7F}); // a sanitizer finds what is too much
    EXPECT_EQ(S_OK, render->ReleaseBuffer(4800, 0));
}

// Microsoft's documentation of IAudioRenderClient::GetBuffer, return values; the same for the next two.
TEST_F(RenderClientGetBuffer, ExceedsNoFreeSpace)
{
    auto* data = poison<BYTE>();
    EXPECT_EQ(AUDCLNT_E_BUFFER_TOO_LARGE, render->GetBuffer(4801, &data));
    EXPECT_EQ(nullptr, data);
    write(4000);

    EXPECT_EQ(AUDCLNT_E_BUFFER_TOO_LARGE, render->GetBuffer(801, &data));
    EXPECT_EQ(S_OK, render->GetBuffer(800, &data));
}

TEST_F(RenderClientGetBuffer, AlternatesWithReleaseBuffer)
{
    BYTE* data = nullptr;
    ASSERT_EQ(S_OK, render->GetBuffer(10, &data));

    data = poison<BYTE>();
    EXPECT_EQ(AUDCLNT_E_OUT_OF_ORDER, render->GetBuffer(10, &data));

    EXPECT_EQ(nullptr, data);
    EXPECT_EQ(E_POINTER, render->GetBuffer(10, nullptr));
}

// Wine's render tests, which were run on Windows.
TEST_F(RenderClientGetBuffer, OfNoFramesNeedsNoRelease)
{
    BYTE* data = nullptr;
    EXPECT_EQ(S_OK, render->GetBuffer(0, &data));
    EXPECT_EQ(S_OK, render->GetBuffer(10, &data));
}

// Microsoft's documentation of IAudioRenderClient::GetBuffer: an event-driven exclusive stream handles whole buffers,
// one of which is played while the client fills the other.
TEST_F(RenderClientGetBuffer, TakesWholeBuffersOnlyWhereEventsDriveAnExclusiveStream)
{
    const Held<IAudioClient> earphone = client(microphoneId); // the other endpoint, whose flow changes here
    simulation.change([&](sim::Machine& machine) { machine.endpoint(microphoneId)->flow = eRender; });
    ASSERT_EQ(S_OK, initializeExclusive(earphone, deviceFormat, AUDCLNT_STREAMFLAGS_EVENTCALLBACK, 10 * millisecond,
                                        10 * millisecond));
    const Held<IAudioRenderClient> exclusive = service<IAudioRenderClient>(earphone);
    BYTE* data = nullptr;

    EXPECT_EQ(AUDCLNT_E_BUFFER_SIZE_ERROR, exclusive->GetBuffer(479, &data));
    EXPECT_EQ(S_OK, exclusive->GetBuffer(480, &data));
    EXPECT_EQ(AUDCLNT_E_BUFFER_SIZE_ERROR, exclusive->ReleaseBuffer(479, 0));
    EXPECT_EQ(S_OK, exclusive->ReleaseBuffer(480, 0));
    EXPECT_EQ(S_OK, exclusive->GetBuffer(480, &data));
    EXPECT_EQ(S_OK, exclusive->ReleaseBuffer(480, 0));
    EXPECT_EQ(AUDCLNT_E_BUFFER_TOO_LARGE, exclusive->GetBuffer(480, &data));
}

// Microsoft's documentation of IAudioRenderClient::ReleaseBuffer, return values.
TEST_F(RenderClientReleaseBuffer, FollowsGetBuffer)
{
    EXPECT_EQ(AUDCLNT_E_OUT_OF_ORDER, render->ReleaseBuffer(1, 0));
    BYTE* data = nullptr;
    ASSERT_EQ(S_OK, render->GetBuffer(10, &data));

    EXPECT_EQ(AUDCLNT_E_INVALID_SIZE, render->ReleaseBuffer(11, 0));
    EXPECT_EQ(E_INVALIDARG, render->ReleaseBuffer(10, AUDCLNT_BUFFERFLAGS_DATA_DISCONTINUITY));
    EXPECT_EQ(S_OK, render->ReleaseBuffer(10, AUDCLNT_BUFFERFLAGS_SILENT));
    EXPECT_EQ(AUDCLNT_E_OUT_OF_ORDER, render->ReleaseBuffer(10, 0));
}

TEST_F(RenderClientReleaseBuffer, MayWriteLessOrNothing)
{
    BYTE* data = nullptr;
    ASSERT_EQ(S_OK, render->GetBuffer(100, &data));
    EXPECT_EQ(S_OK, render->ReleaseBuffer(60, 0));
    EXPECT_EQ(60u, padding(speaker));
    ASSERT_EQ(S_OK, render->GetBuffer(100, &data));
    EXPECT_EQ(S_OK, render->ReleaseBuffer(0, 0));

    EXPECT_EQ(60u, padding(speaker));
    EXPECT_EQ(S_OK, render->GetBuffer(100, &data));
}

TEST_F(RenderClientPadding, EmptiesWhileTheStreamRuns)
{
    write(1000);
    advance(10ms);
    EXPECT_EQ(1000u, padding(speaker));

    ASSERT_EQ(S_OK, speaker->Start());
    advance(10ms);
    EXPECT_EQ(520u, padding(speaker));

    ASSERT_EQ(S_OK, speaker->Stop());
    advance(10ms);
    EXPECT_EQ(520u, padding(speaker));

    ASSERT_EQ(S_OK, speaker->Start());
    advance(1s);
    EXPECT_EQ(0u, padding(speaker));
}

TEST_F(RenderClientPadding, CountsNoTimeInWhichNothingWasWritten)
{
    ASSERT_EQ(S_OK, speaker->Start());
    advance(1s);

    write(480);
    EXPECT_EQ(480u, padding(speaker));
    advance(5ms);

    EXPECT_EQ(240u, padding(speaker));
}
}
