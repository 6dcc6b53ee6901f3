#include "tests/simulator/bench.h"

namespace
{
using bench::Held;
using bench::poison;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;

/// The speaker with an audio client.
class SimulatedAudioClient : public bench::SimulationTest
{
protected:
    SimulatedAudioClient()
    {
        simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->hasAudioClient = true; });
        EXPECT_EQ(S_OK, device(speakerId)->Activate(sim::InterfaceTraits<IAudioClient>::iid(), CLSCTX_ALL, nullptr,
                                                    client.putVoid()));
        simulation.journal().clear();
    }

    Held<IAudioClient> client;
};

TEST_F(SimulatedAudioClient, ImplementsNoOperation)
{
    UINT32 frames = 99;
    REFERENCE_TIME time = 99;
    auto* format = poison<WAVEFORMATEX>();
    void* service = poison<void>();

    EXPECT_EQ(E_NOTIMPL, client->Initialize(AUDCLNT_SHAREMODE_SHARED, 0, 0, 0, nullptr, nullptr));
    EXPECT_EQ(E_NOTIMPL, client->GetBufferSize(&frames));
    EXPECT_EQ(E_NOTIMPL, client->GetStreamLatency(&time));
    EXPECT_EQ(E_NOTIMPL, client->GetCurrentPadding(&frames));
    EXPECT_EQ(E_NOTIMPL, client->IsFormatSupported(AUDCLNT_SHAREMODE_EXCLUSIVE, nullptr, nullptr));
    EXPECT_EQ(E_NOTIMPL, client->GetMixFormat(&format));
    EXPECT_EQ(E_NOTIMPL, client->GetDevicePeriod(&time, &time));
    EXPECT_EQ(E_NOTIMPL, client->Start());
    EXPECT_EQ(E_NOTIMPL, client->Stop());
    EXPECT_EQ(E_NOTIMPL, client->Reset());
    EXPECT_EQ(E_NOTIMPL, client->SetEventHandle(nullptr));
    EXPECT_EQ(E_NOTIMPL, client->GetService(sim::InterfaceTraits<IAudioMute>::iid(), &service));

    EXPECT_EQ(99u, frames);
    EXPECT_EQ(99, time);
    EXPECT_EQ(nullptr, format);
    EXPECT_EQ(nullptr, service);
    const sim::JournalEntries entries = simulation.journal().entries();
    EXPECT_THAT(entries.calls(), ElementsAre("IAudioClient::Initialize()", "IAudioClient::GetBufferSize()",
                                             "IAudioClient::GetStreamLatency()", "IAudioClient::GetCurrentPadding()",
                                             "IAudioClient::IsFormatSupported()", "IAudioClient::GetMixFormat()",
                                             "IAudioClient::GetDevicePeriod()", "IAudioClient::Start()",
                                             "IAudioClient::Stop()", "IAudioClient::Reset()",
                                             "IAudioClient::SetEventHandle()", "IAudioClient::GetService(IAudioMute)"));
    EXPECT_THAT(entries.lines(), Each(EndsWith(" on " + speakerId + " -> 0x80004001")));
}

TEST_F(SimulatedAudioClient, OffersNoFormatThatWouldBeCloser)
{
    auto* closest = poison<WAVEFORMATEX>();

    EXPECT_EQ(E_NOTIMPL, client->IsFormatSupported(AUDCLNT_SHAREMODE_SHARED, nullptr, &closest));

    EXPECT_EQ(nullptr, closest);
}

TEST_F(SimulatedAudioClient, RefusesNullOutParameters)
{
    EXPECT_EQ(E_POINTER, client->GetBufferSize(nullptr));
    EXPECT_EQ(E_POINTER, client->GetStreamLatency(nullptr));
    EXPECT_EQ(E_POINTER, client->GetCurrentPadding(nullptr));
    EXPECT_EQ(E_POINTER, client->GetMixFormat(nullptr));
    EXPECT_EQ(E_POINTER, client->GetService(sim::InterfaceTraits<IAudioMute>::iid(), nullptr));
}
}
