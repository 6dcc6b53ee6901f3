#include "tests/simulator/objects/stream/streamtest.h"

#include "simulator/machine/propertykeys.h"

#include <cstdint>
#include <functional>

namespace
{
using bench::Held;
using bench::poison;

class AudioClientFormats : public bench::StreamTest
{
protected:
    AudioClientFormats() : speaker(client(speakerId)) {}

    void setEndpoint(const std::function<void(sim::Endpoint&)>& change)
    {
        simulation.change([&](sim::Machine& machine) { change(*machine.endpoint(speakerId)); });
    }

    std::string mixFormatText()
    {
        WAVEFORMATEX* format = nullptr;
        EXPECT_EQ(S_OK, speaker->GetMixFormat(&format));
        return taken(format);
    }

    HRESULT support(AUDCLNT_SHAREMODE mode, const WAVEFORMATEXTENSIBLE& format)
    {
        WAVEFORMATEX* closest = poison<WAVEFORMATEX>();
        const HRESULT result = speaker->IsFormatSupported(mode, &format.Format, &closest);
        m_closest = closest == nullptr ? "null" : taken(closest);
        return result;
    }

    const std::string& closest() const { return m_closest; }

    Held<IAudioClient> speaker;

private:
    std::string m_closest;
};

using AudioClientGetMixFormat = AudioClientFormats;
using AudioClientIsFormatSupported = AudioClientFormats;
using AudioClientGetDevicePeriod = AudioClientFormats;

// Microsoft's documentation of IAudioClient::GetMixFormat: the shared engine mixes floating-point samples, and the
// structure is a WAVEFORMATEXTENSIBLE.
TEST_F(AudioClientGetMixFormat, IsFloatingPointAtTheRateAndChannelsOfTheDeviceFormat)
{
    setEndpoint(
        [](sim::Endpoint& endpoint)
        {
            sim::setProperty(endpoint.properties, sim::keys::deviceFormat,
                             sim::PropertyValue::ofBytes(sim::DeviceFormat{24, 96000, 6}.bytes()));
        });

    WAVEFORMATEX* format = nullptr;
    ASSERT_EQ(S_OK, speaker->GetMixFormat(&format));

    EXPECT_EQ(WAVE_FORMAT_EXTENSIBLE, format->wFormatTag);
    EXPECT_EQ(22u, format->cbSize);
    EXPECT_EQ(24u, format->nBlockAlign);
    EXPECT_EQ("32f/96000/6", taken(format));
}

TEST_F(AudioClientGetMixFormat, IsWhatTheMachineSays)
{
    setEndpoint([](sim::Endpoint& endpoint) { endpoint.mixFormat = sim::MixFormat::fromText("16/44100/1"); });

    EXPECT_EQ("16/44100/1", mixFormatText());
}

TEST_F(AudioClientGetMixFormat, IsTaskMemoryThatTheCensusCounts)
{
    WAVEFORMATEX* format = nullptr;
    ASSERT_EQ(S_OK, speaker->GetMixFormat(&format));

    const sim::Census census = simulation.census();
    EXPECT_EQ(1, census.taskMemory.at("IAudioClient::GetMixFormat " + speakerId));
    EXPECT_EQ(40, census.taskBytes);
    CoTaskMemFree(format);
}

// A device format that no structure of the SDK describes leaves the engine without a format.
TEST_F(AudioClientGetMixFormat, NeedsAReadableDeviceFormat)
{
    auto* format = poison<WAVEFORMATEX>();
    setEndpoint([](sim::Endpoint& endpoint) { sim::removeProperty(endpoint.properties, sim::keys::deviceFormat); });
    EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, speaker->GetMixFormat(&format));
    EXPECT_EQ(nullptr, format);

    std::vector<std::uint8_t> cut = sim::DeviceFormat().bytes();
    cut.resize(39);
    setEndpoint([&](sim::Endpoint& endpoint)
                { sim::setProperty(endpoint.properties, sim::keys::deviceFormat, sim::PropertyValue::ofBytes(cut)); });
    EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, speaker->GetMixFormat(&format));
    EXPECT_EQ(E_POINTER, speaker->GetMixFormat(nullptr));
}

// Microsoft's documentation of IAudioClient::IsFormatSupported, remarks: the engine supports the mix format and formats
// that differ from it in the representation of the samples only.
TEST_F(AudioClientIsFormatSupported, SharesStreamsAtTheRateAndChannelsOfTheEngine)
{
    for (const char* text : {"32f/48000/2", "16/48000/2", "24/48000/2", "32/48000/2", "8/48000/2"})
    {
        EXPECT_EQ(S_OK, support(AUDCLNT_SHAREMODE_SHARED, mix(text))) << text;
        EXPECT_EQ("null", closest()) << text;
    }
}

// Microsoft's documentation of IAudioClient::IsFormatSupported: S_FALSE and a closest match.
TEST_F(AudioClientIsFormatSupported, OffersTheMixFormatInsteadOfAnother)
{
    for (const char* text : {"32f/44100/2", "16/48000/1", "16/8000/6"})
    {
        EXPECT_EQ(S_FALSE, support(AUDCLNT_SHAREMODE_SHARED, mix(text))) << text;
        EXPECT_EQ("32f/48000/2", closest()) << text;
    }
}

TEST_F(AudioClientIsFormatSupported, HasNoMatchForSamplesThatAreNotLinear)
{
    WAVEFORMATEXTENSIBLE compressed = {};
    compressed.Format = {0x0055, 2, 48000, 16000, 1, 0, 0};
    WAVEFORMATEXTENSIBLE passedThrough = mix("16/48000/2");
    passedThrough.SubFormat.Data1 = 0x92; // Dolby Digital in IEC 61937

    for (const WAVEFORMATEXTENSIBLE& format : {compressed, passedThrough})
    {
        EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, support(AUDCLNT_SHAREMODE_SHARED, format));
        EXPECT_EQ("null", closest());
    }
}

TEST_F(AudioClientIsFormatSupported, ReadsPlainStructuresAsWell)
{
    WAVEFORMATEXTENSIBLE plain = {};
    plain.Format = {WAVE_FORMAT_PCM, 2, 48000, 192000, 4, 16, 0};
    EXPECT_EQ(S_OK, support(AUDCLNT_SHAREMODE_SHARED, plain));
    EXPECT_EQ(S_OK, support(AUDCLNT_SHAREMODE_EXCLUSIVE, plain));
    plain.Format.nBlockAlign = 5; // not two samples of 16 bits
    EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, support(AUDCLNT_SHAREMODE_EXCLUSIVE, plain));
}

// Microsoft's documentation of IAudioClient::IsFormatSupported: in exclusive mode the device decides, and no closest
// match is stored.
TEST_F(AudioClientIsFormatSupported, GivesExclusiveStreamsTheDeviceFormatOnly)
{
    EXPECT_EQ(S_OK, support(AUDCLNT_SHAREMODE_EXCLUSIVE, mix("16/48000/2")));
    EXPECT_EQ("null", closest());
    for (const char* text : {"32f/48000/2", "24/48000/2", "16/44100/2", "16/48000/1"})
    {
        EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, support(AUDCLNT_SHAREMODE_EXCLUSIVE, mix(text))) << text;
        EXPECT_EQ("null", closest()) << text;
    }
    EXPECT_EQ(S_OK, speaker->IsFormatSupported(AUDCLNT_SHAREMODE_EXCLUSIVE, &deviceFormat.Format, nullptr));
}

// Microsoft's documentation of IAudioClient::IsFormatSupported, return values.
TEST_F(AudioClientIsFormatSupported, RefusesNullPointersAndUnknownModes)
{
    auto* closest = poison<WAVEFORMATEX>();
    EXPECT_EQ(E_POINTER, speaker->IsFormatSupported(AUDCLNT_SHAREMODE_SHARED, nullptr, &closest));
    EXPECT_EQ(nullptr, closest);
    EXPECT_EQ(E_POINTER, speaker->IsFormatSupported(AUDCLNT_SHAREMODE_SHARED, &mixFormat.Format, nullptr));
    EXPECT_EQ(E_INVALIDARG, speaker->IsFormatSupported(static_cast<AUDCLNT_SHAREMODE>(2), &mixFormat.Format, &closest));
}

TEST_F(AudioClientIsFormatSupported, ShowsModeAndFormatInTheJournal)
{
    simulation.journal().clear();
    support(AUDCLNT_SHAREMODE_SHARED, mix("24/44100/1"));

    EXPECT_THAT(simulation.journal().of("IAudioClient::*").calls(),
                testing::ElementsAre("IAudioClient::IsFormatSupported(shared, 24/44100/1)"));
}

// Microsoft's documentation of IAudioClient::GetDevicePeriod: 10 ms and 3 ms are usual; one pointer may be null.
TEST_F(AudioClientGetDevicePeriod, IsTenMillisecondsAndThree)
{
    REFERENCE_TIME usual = 0;
    REFERENCE_TIME minimum = 0;
    EXPECT_EQ(S_OK, speaker->GetDevicePeriod(&usual, nullptr));
    EXPECT_EQ(S_OK, speaker->GetDevicePeriod(nullptr, &minimum));

    EXPECT_EQ(100000, usual);
    EXPECT_EQ(30000, minimum);
    EXPECT_EQ(E_POINTER, speaker->GetDevicePeriod(nullptr, nullptr));
}

// 448 frames, 10.1587 ms at 44100 Hz, as real devices report: High Definition Audio transfers whole bursts.
TEST_F(AudioClientGetDevicePeriod, IsAWholeNumberOfBursts)
{
    setEndpoint([](sim::Endpoint& endpoint) { endpoint.mixFormat = sim::MixFormat::fromText("32f/44100/2"); });

    REFERENCE_TIME usual = 0;
    EXPECT_EQ(S_OK, speaker->GetDevicePeriod(&usual, nullptr));
    EXPECT_EQ(101587, usual);
}

TEST_F(AudioClientGetDevicePeriod, IsWhatTheMachineSays)
{
    setEndpoint([](sim::Endpoint& endpoint) { endpoint.periods = sim::DevicePeriods{200000, 50000}; });

    REFERENCE_TIME usual = 0;
    REFERENCE_TIME minimum = 0;
    EXPECT_EQ(S_OK, speaker->GetDevicePeriod(&usual, &minimum));
    EXPECT_EQ(200000, usual);
    EXPECT_EQ(50000, minimum);
}
}
