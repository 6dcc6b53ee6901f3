#include "tests/simulator/objects/stream/streamtest.h"

#include <algorithm>

namespace
{
using bench::Held;
using bench::poison;
using namespace std::chrono_literals;

/// A shared stream with a buffer of ten packets of 480 frames.
class CaptureClient : public bench::StreamTest
{
protected:
    struct Packet
    {
        HRESULT result = E_FAIL;
        BYTE* data = poison<BYTE>();
        UINT32 frames = 99;
        DWORD flags = 0;
        UINT64 position = 0;
        UINT64 counter = 0;
    };

    Packet take()
    {
        Packet packet;
        packet.result =
            capture->GetBuffer(&packet.data, &packet.frames, &packet.flags, &packet.position, &packet.counter);
        return packet;
    }

    UINT32 nextSize()
    {
        UINT32 frames = 99;
        EXPECT_EQ(S_OK, capture->GetNextPacketSize(&frames));
        return frames;
    }

    const Held<IAudioClient> microphone = sharedClient(microphoneId);
    const Held<IAudioCaptureClient> capture = service<IAudioCaptureClient>(microphone);
};

using CaptureClientGetBuffer = CaptureClient;
using CaptureClientReleaseBuffer = CaptureClient;
using CaptureClientGetNextPacketSize = CaptureClient;

// Microsoft's documentation of IAudioCaptureClient::GetBuffer: AUDCLNT_S_BUFFER_EMPTY and 0 frames.
TEST_F(CaptureClientGetBuffer, HasNothingBeforeAPeriodIsOver)
{
    ASSERT_EQ(S_OK, microphone->Start());
    advance(9999us);

    const Packet packet = take();

    EXPECT_EQ(AUDCLNT_S_BUFFER_EMPTY, packet.result);
    EXPECT_EQ(nullptr, packet.data);
    EXPECT_EQ(0u, packet.frames);
    EXPECT_EQ(0u, nextSize());
}

// Microsoft's documentation of IAudioCaptureClient::GetBuffer: flags, positions in frames, times in 100 ns.
TEST_F(CaptureClientGetBuffer, GivesSilenceWithItsPositionAndTime)
{
    ASSERT_EQ(S_OK, microphone->Start());
    advance(20ms);

    const Packet first = take();
    ASSERT_EQ(S_OK, first.result);
    EXPECT_EQ(480u, first.frames);
    EXPECT_EQ(DWORD(AUDCLNT_BUFFERFLAGS_SILENT), first.flags);
    EXPECT_EQ(0u, first.position);
    EXPECT_TRUE(std::all_of(first.data, first.data + 480 * 8, [](BYTE byte) { return byte == 0; }));
    ASSERT_EQ(S_OK, capture->ReleaseBuffer(480));
    const Packet second = take();
    EXPECT_EQ(480u, second.position);
    EXPECT_EQ(100000u, second.counter - first.counter);
    ASSERT_EQ(S_OK, capture->ReleaseBuffer(480));
    EXPECT_EQ(AUDCLNT_S_BUFFER_EMPTY, take().result);
}

TEST_F(CaptureClientGetBuffer, GivesTheTimeOfAPacketAlsoAfterAStop)
{
    const Held<IAudioClock> clock = service<IAudioClock>(microphone);
    UINT64 position = 0;
    UINT64 start = 0;
    ASSERT_EQ(S_OK, microphone->Start());
    ASSERT_EQ(S_OK, clock->GetPosition(&position, &start));
    advance(25ms);
    ASSERT_EQ(S_OK, microphone->Stop());

    advance(1s);
    EXPECT_EQ(start, take().counter);
    ASSERT_EQ(S_OK, capture->ReleaseBuffer(480));
    advance(1s);
    EXPECT_EQ(start + 100000u, take().counter);
}

TEST_F(CaptureClientGetBuffer, NeedsNoPlaceForPositions)
{
    ASSERT_EQ(S_OK, microphone->Start());
    advance(10ms);
    BYTE* data = nullptr;
    UINT32 frames = 0;
    DWORD flags = 0;

    EXPECT_EQ(E_POINTER, capture->GetBuffer(nullptr, &frames, &flags, nullptr, nullptr));
    EXPECT_EQ(E_POINTER, capture->GetBuffer(&data, nullptr, &flags, nullptr, nullptr));
    EXPECT_EQ(E_POINTER, capture->GetBuffer(&data, &frames, nullptr, nullptr, nullptr));
    EXPECT_EQ(S_OK, capture->GetBuffer(&data, &frames, &flags, nullptr, nullptr));
}

// Microsoft's documentation of IAudioCaptureClient::GetBuffer: AUDCLNT_E_OUT_OF_ORDER.
TEST_F(CaptureClientGetBuffer, AlternatesWithReleaseBuffer)
{
    ASSERT_EQ(S_OK, microphone->Start());
    advance(20ms);
    ASSERT_EQ(S_OK, take().result);

    EXPECT_EQ(AUDCLNT_E_OUT_OF_ORDER, take().result);
}

// Microsoft's documentation of AUDCLNT_BUFFERFLAGS_DATA_DISCONTINUITY.
TEST_F(CaptureClientGetBuffer, ReportsTheGapAfterAClientThatCameTooLate)
{
    ASSERT_EQ(S_OK, microphone->Start());
    advance(120ms);

    EXPECT_EQ(4800u, padding(microphone));
    const Packet packet = take();
    EXPECT_EQ(DWORD(AUDCLNT_BUFFERFLAGS_SILENT | AUDCLNT_BUFFERFLAGS_DATA_DISCONTINUITY), packet.flags);
    EXPECT_EQ(960u, packet.position);
    ASSERT_EQ(S_OK, capture->ReleaseBuffer(480));
    EXPECT_EQ(DWORD(AUDCLNT_BUFFERFLAGS_SILENT), take().flags);
}

TEST_F(CaptureClientGetBuffer, HearsTheSilenceOfARenderEndpointLoopedBack)
{
    const Held<IAudioClient> loopback = sharedClient(speakerId, AUDCLNT_STREAMFLAGS_LOOPBACK);
    const Held<IAudioCaptureClient> heard = service<IAudioCaptureClient>(loopback);
    ASSERT_EQ(S_OK, loopback->Start());
    advance(10ms);

    UINT32 frames = 0;
    EXPECT_EQ(S_OK, heard->GetNextPacketSize(&frames));
    EXPECT_EQ(480u, frames);
}

// Microsoft's documentation of IAudioCaptureClient::ReleaseBuffer: all frames or none, and none gives the packet again.
TEST_F(CaptureClientReleaseBuffer, TakesAPacketWholeOrNotAtAll)
{
    ASSERT_EQ(S_OK, microphone->Start());
    advance(10ms);
    EXPECT_EQ(AUDCLNT_E_OUT_OF_ORDER, capture->ReleaseBuffer(480));
    ASSERT_EQ(S_OK, take().result);

    EXPECT_EQ(AUDCLNT_E_INVALID_SIZE, capture->ReleaseBuffer(479));
    EXPECT_EQ(S_OK, capture->ReleaseBuffer(0));
    EXPECT_EQ(480u, nextSize());
    EXPECT_EQ(0u, take().position);
    EXPECT_EQ(S_OK, capture->ReleaseBuffer(480));
    EXPECT_EQ(0u, nextSize());
}

// Microsoft's documentation of IAudioClient::GetCurrentPadding: the frames that are captured and not read.
TEST_F(CaptureClientGetNextPacketSize, StaysWhileTheStreamIsStoppedAndEndsWithAReset)
{
    ASSERT_EQ(S_OK, microphone->Start());
    advance(25ms);
    ASSERT_EQ(S_OK, microphone->Stop());
    advance(1s);
    EXPECT_EQ(480u, nextSize());
    EXPECT_EQ(960u, padding(microphone));
    EXPECT_EQ(E_POINTER, capture->GetNextPacketSize(nullptr));

    ASSERT_EQ(S_OK, microphone->Reset());

    EXPECT_EQ(0u, nextSize());
    EXPECT_EQ(0u, padding(microphone));
}
}
