// What only Windows has: its events, and apartments between which a stream passes.

#include "tests/simulator/objects/stream/streamtest.h"

namespace
{
using bench::Held;

/// A speaker whose clock runs by itself.
class WindowsStreams : public bench::SimulationTest
{
protected:
    WindowsStreams()
    {
        simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->hasAudioClient = true; });
        EXPECT_EQ(S_OK, device(speakerId)->Activate(__uuidof(IAudioClient), CLSCTX_ALL, nullptr, speaker.putVoid()));
        const WAVEFORMATEXTENSIBLE format = sim::MixFormat().waveFormat();
        EXPECT_EQ(S_OK, speaker->Initialize(AUDCLNT_SHAREMODE_SHARED, AUDCLNT_STREAMFLAGS_EVENTCALLBACK, 0, 0,
                                            &format.Format, nullptr));
    }

    /// Passes @p object to a thread in another apartment, as CoMarshalInterThreadInterfaceInStream does, and returns
    /// what arrives there; its reference is released.
    template<class I>
    static I* passed(const Held<I>& object)
    {
        IStream* stream = nullptr;
        EXPECT_EQ(S_OK, CoMarshalInterThreadInterfaceInStream(__uuidof(I), object.get(), &stream));
        I* arrived = nullptr;
        bench::onThread(
            [&]
            {
                CoInitializeEx(nullptr, COINIT_MULTITHREADED);
                EXPECT_EQ(S_OK,
                          CoGetInterfaceAndReleaseStream(stream, __uuidof(I), reinterpret_cast<void**>(&arrived)));
                if (arrived != nullptr)
                    arrived->Release();
                CoUninitialize();
            });
        return arrived;
    }

    Held<IAudioClient> speaker;
};

TEST_F(WindowsStreams, SetTheEventAtTheEndOfEachPeriod)
{
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    ASSERT_EQ(S_OK, speaker->SetEventHandle(event));
    ASSERT_EQ(S_OK, speaker->Start());

    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event, 60000));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event, 60000));

    EXPECT_EQ(S_OK, speaker->Stop());
    CloseHandle(event);
}

// Wine's render tests, which were run on Windows: a client and its services pass between apartments; PortAudio relies
// on it. Windows' objects aggregate the free-threaded marshaller.
TEST_F(WindowsStreams, PassBetweenApartmentsAsThemselves)
{
    Held<IAudioRenderClient> render;
    ASSERT_EQ(S_OK, speaker->GetService(__uuidof(IAudioRenderClient), render.putVoid()));

    EXPECT_EQ(speaker.get(), passed(speaker));
    EXPECT_EQ(render.get(), passed(render));
    EXPECT_EQ(speaker.get(), passed(speaker));
    EXPECT_EQ(2, simulation.census().references("IAudioClient"));
}
}
