#include "simulator/machine/propertykeys.h"
#include "tests/simulator/objects/stream/streamtest.h"

#include <cstring>
#include <vector>

// Streams of an endpoint whose mix format is given as bytes.
namespace
{
using bench::Held;
using bench::poison;
using Bytes = std::vector<std::uint8_t>;

class OwnMixFormat : public bench::StreamTest
{
protected:
    void setMixFormat(const Bytes& bytes)
    {
        simulation.change(
            [&](sim::Machine& machine)
            {
                sim::Endpoint& endpoint = *machine.endpoint(speakerId);
                endpoint.mixFormatBytes = bytes;
                endpoint.hasMeter = true;
            });
    }

    Bytes reported()
    {
        WAVEFORMATEX* format = nullptr;
        EXPECT_EQ(S_OK, speaker->GetMixFormat(&format));
        const auto* const first = reinterpret_cast<const std::uint8_t*>(format);
        const Bytes bytes = format == nullptr ? Bytes() : Bytes(first, first + sizeof *format + format->cbSize);
        CoTaskMemFree(format);
        return bytes;
    }

    UINT meteringChannels()
    {
        UINT channels = 99;
        EXPECT_EQ(S_OK, activated<IAudioMeterInformation>(speakerId)->GetMeteringChannelCount(&channels));
        return channels;
    }

    /// 16-bit samples at 48 kHz in 6 channels, with three further bytes.
    const Bytes linear = {1, 0, 6, 0, 0x80, 0xBB, 0, 0, 0, 0x94, 8, 0, 12, 0, 16, 0, 3, 0, 7, 8, 9};
    /// A format of compressed samples.
    const Bytes compressed = {0x92, 0, 2, 0, 0x80, 0xBB, 0, 0, 0, 0xEE, 2, 0, 4, 0, 16, 0, 0, 0};
    /// As compressed, without rate, channels and frames.
    const Bytes empty = {0x92, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 5};
    Held<IAudioClient> speaker = client(speakerId);
};

TEST_F(OwnMixFormat, IsReportedToTheLastByte)
{
    for (const Bytes& bytes : {linear, compressed, empty})
    {
        setMixFormat(bytes);
        EXPECT_EQ(bytes, reported());
    }
}

TEST_F(OwnMixFormat, GivesStreamsItsRateAndChannels)
{
    setMixFormat(linear);

    EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, initialize(client(speakerId), mix("32f/48000/2")));
    EXPECT_EQ(S_OK, initialize(speaker, mix("32f/48000/6")));
    EXPECT_EQ(6u, meteringChannels());
}

TEST_F(OwnMixFormat, TakesNoStreamIfItsSamplesAreNotLinear)
{
    for (const Bytes& bytes : {compressed, empty})
    {
        setMixFormat(bytes);
        WAVEFORMATEX* closest = poison<WAVEFORMATEX>();
        UINT32 frames = 0;
        Held<IAudioClient3> third = speaker.as<IAudioClient3>();

        EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, initialize(speaker, mixFormat));
        EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT,
                  speaker->IsFormatSupported(AUDCLNT_SHAREMODE_SHARED, &mixFormat.Format, &closest));
        EXPECT_EQ(nullptr, closest);
        EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, third->GetCurrentSharedModeEnginePeriod(&closest, &frames));
        EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT,
                  third->GetSharedModeEnginePeriod(&mixFormat.Format, &frames, &frames, &frames, &frames));
    }
    EXPECT_EQ(0u, meteringChannels());
}

TEST_F(OwnMixFormat, LeavesTheUsualPeriodsIfItsSamplesAreNotLinear)
{
    setMixFormat(empty);
    REFERENCE_TIME usual = 0;
    REFERENCE_TIME minimum = 0;

    EXPECT_EQ(S_OK, speaker->GetDevicePeriod(&usual, &minimum));

    EXPECT_EQ(100000, usual);
    EXPECT_EQ(30000, minimum);
}

TEST_F(OwnMixFormat, IsNoFormatIfItsBytesAreTooFew)
{
    setMixFormat({1, 0, 2});

    EXPECT_EQ(AUDCLNT_E_UNSUPPORTED_FORMAT, initialize(speaker, mixFormat));
    EXPECT_EQ(0u, meteringChannels());
}

TEST_F(OwnMixFormat, MayComeWithPeriodsOfZero)
{
    setMixFormat(linear);
    simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->periods = sim::DevicePeriods{0, 0}; });
    UINT32 frames = 0;

    EXPECT_EQ(S_OK, initialize(speaker, mix("32f/48000/6"), AUDCLNT_STREAMFLAGS_EVENTCALLBACK, 0));

    EXPECT_EQ(S_OK, speaker->GetBufferSize(&frames));
    EXPECT_EQ(2u, frames);
}

TEST_F(OwnMixFormat, ComesFromADeviceFormatThatIsNotListed)
{
    const Bytes listed = reported();
    simulation.change(
        [&](sim::Machine& machine)
        {
            sim::Endpoint& endpoint = *machine.endpoint(speakerId);
            const sim::PropertyValue format = *sim::findProperty(endpoint, sim::keys::deviceFormat);
            sim::removeProperty(endpoint.properties, sim::keys::deviceFormat);
            sim::setProperty(endpoint.unlistedProperties, sim::keys::deviceFormat, format);
        });

    const Bytes unlisted = reported();

    EXPECT_FALSE(listed.empty());
    EXPECT_EQ(listed, unlisted);
}
}
