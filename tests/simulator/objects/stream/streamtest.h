/// What the tests of streams share: the bench machine with audio clients, and a clock that tests move.
#pragma once

#include "simulator/core/argumenttext.h"
#include "tests/simulator/bench.h"

#include <chrono>
#include <string>
#include <vector>

namespace bench
{
using namespace std::chrono_literals;

constexpr REFERENCE_TIME millisecond = 10000;

/// The bench machine: the speaker 16/48000/2, the microphone 16/48000/2 and plugged; both have audio client and meter.
/// Periods are 480 frames, which are 10 ms and 1920 bytes of 16-bit stereo.
class StreamTest : public SimulationTest
{
protected:
    StreamTest() : StreamTest(BenchMachine()) {}

    explicit StreamTest(const BenchMachine& bench) : SimulationTest(bench)
    {
        simulation.change(
            [&](sim::Machine& machine)
            {
                for (const std::string& id : {speakerId, microphoneId})
                {
                    machine.endpoint(id)->state = sim::stateActive;
                    machine.endpoint(id)->hasAudioClient = true;
                    machine.endpoint(id)->hasMeter = true;
                }
            });
        simulation.streams().driveClock();
        simulation.streams().signalWith([this](HANDLE event) { signalled.push_back(event); });
    }

    template<class I>
    Held<I> activated(const std::string& id)
    {
        Held<I> object;
        EXPECT_EQ(S_OK, device(id)->Activate(sim::InterfaceTraits<I>::iid(), CLSCTX_ALL, nullptr, object.putVoid()));
        return object;
    }

    Held<IAudioClient> client(const std::string& id) { return activated<IAudioClient>(id); }

    /// A client with a stream in the mix format: 32f/48000/2 for both endpoints.
    Held<IAudioClient> sharedClient(const std::string& id, DWORD flags = 0, REFERENCE_TIME duration = 100 * millisecond)
    {
        Held<IAudioClient> result = client(id);
        EXPECT_EQ(S_OK, initialize(result, mixFormat, flags, duration));
        return result;
    }

    static HRESULT initialize(const Held<IAudioClient>& client, const WAVEFORMATEXTENSIBLE& format, DWORD flags = 0,
                              REFERENCE_TIME duration = 100 * millisecond)
    {
        return client->Initialize(AUDCLNT_SHAREMODE_SHARED, flags, duration, 0, &format.Format, nullptr);
    }

    static HRESULT initializeExclusive(const Held<IAudioClient>& client, const WAVEFORMATEXTENSIBLE& format,
                                       DWORD flags, REFERENCE_TIME duration, REFERENCE_TIME periodicity)
    {
        return client->Initialize(AUDCLNT_SHAREMODE_EXCLUSIVE, flags, duration, periodicity, &format.Format, nullptr);
    }

    template<class I>
    static Held<I> service(const Held<IAudioClient>& client)
    {
        Held<I> object;
        EXPECT_EQ(S_OK, client->GetService(sim::InterfaceTraits<I>::iid(), object.putVoid()));
        return object;
    }

    static UINT32 bufferSize(const Held<IAudioClient>& client)
    {
        UINT32 frames = 0;
        EXPECT_EQ(S_OK, client->GetBufferSize(&frames));
        return frames;
    }

    static UINT32 padding(const Held<IAudioClient>& client)
    {
        UINT32 frames = 0;
        EXPECT_EQ(S_OK, client->GetCurrentPadding(&frames));
        return frames;
    }

    /// The format as text; its task memory is freed.
    static std::string taken(WAVEFORMATEX* format)
    {
        const std::string text = sim::argumentText(static_cast<const WAVEFORMATEX*>(format));
        CoTaskMemFree(format);
        return text;
    }

    void advance(std::chrono::nanoseconds step) { simulation.streams().advance(step); }

    static WAVEFORMATEXTENSIBLE mix(const std::string& text) { return sim::MixFormat::fromText(text)->waveFormat(); }

    const WAVEFORMATEXTENSIBLE mixFormat = mix("32f/48000/2");
    const WAVEFORMATEXTENSIBLE deviceFormat = mix("16/48000/2");
    const HANDLE anEvent = poison<void>();
    std::vector<HANDLE> signalled;
};
}
