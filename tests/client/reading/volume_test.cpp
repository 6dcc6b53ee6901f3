#include "tests/client/reading/readingtest.h"

#include <cmath>
#include <limits>

namespace
{
using sonavit::EndpointField;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr HRESULT invalidData = static_cast<HRESULT>(0x8007000D);
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// One speaker with a volume that each test arranges.
class ReadingVolume : public ReadingTest
{
protected:
    ReadingVolume() : m_speaker(m_builder.card("Card").speaker()) {}

    reading::EndpointReading readWith(const sim::EndpointVolume& volume)
    {
        m_speaker.volume(volume);
        return readSpeaker();
    }

    reading::EndpointReading readSpeaker()
    {
        start(m_builder.build());
        return read(m_speaker.id());
    }

    sim::EndpointBuilder& speaker() { return m_speaker; }

private:
    sim::MachineBuilder m_builder;
    sim::EndpointBuilder m_speaker;
};

TEST_F(ReadingVolume, GivesLevelsRangeMuteAndHardware)
{
    sim::EndpointVolume volume;
    volume.minimum = -60;
    volume.maximum = 0;
    volume.step = 0.5F;
    volume.channels = {-15, -30};
    volume.muted = true;
    volume.hardwareSupport = 1;

    const reading::EndpointReading endpoint = readWith(volume);

    ASSERT_TRUE(endpoint.content.volume);
    const sonavit::Volume& read = *endpoint.content.volume;
    EXPECT_EQ(sonavit::Percent(75), read.master.percent);
    EXPECT_EQ(sonavit::Decibels(-15), read.master.decibels);
    EXPECT_EQ((sonavit::LevelRange{-60, 0, 0.5}), read.range);
    ASSERT_TRUE(read.channels);
    ASSERT_EQ(2u, read.channels->size());
    EXPECT_EQ(sonavit::Percent(75), (*read.channels)[0].percent);
    EXPECT_EQ(sonavit::Percent(50), (*read.channels)[1].percent);
    EXPECT_EQ(sonavit::Decibels(-30), (*read.channels)[1].decibels);
    EXPECT_EQ(true, read.isMuted);
    EXPECT_EQ(true, read.isInHardware);
    EXPECT_THAT(endpoint.content.problems, IsEmpty());
}

/// The platform's scalar is a float; its digits are kept, so that a level that is set to what was read stays as it is.
TEST_F(ReadingVolume, HasThePlatformsScalarAsPercentWithoutRounding)
{
    sim::EndpointVolume volume;
    volume.channels = {-20.25F};
    volume.taper = sim::Taper::audio;

    const reading::EndpointReading endpoint = readWith(volume);

    float scalar = 0;
    ASSERT_EQ(S_OK, endpoint.volume->GetMasterVolumeLevelScalar(&scalar));
    EXPECT_EQ(double{scalar} * 100.0, endpoint.content.volume->master.percent->value());
    EXPECT_EQ(scalar, static_cast<float>(endpoint.content.volume->master.percent->value() / 100.0));
}

TEST_F(ReadingVolume, HasNoPercentOnAnEmptyRange)
{
    sim::EndpointVolume volume;
    volume.minimum = volume.maximum = -6;
    volume.channels = {-6};

    const reading::EndpointReading endpoint = readWith(volume);

    ASSERT_TRUE(endpoint.content.volume);
    EXPECT_FALSE(endpoint.content.volume->master.percent);
    EXPECT_EQ(sonavit::Decibels(-6), endpoint.content.volume->master.decibels);
    EXPECT_FALSE(endpoint.content.volume->channels->front().percent);
    EXPECT_THAT(endpoint.content.problems, IsEmpty());
}

TEST_F(ReadingVolume, HasNoValueForNumbersThatAreNotFinite)
{
    for (const float number :
         {notANumber, std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()})
    {
        sim::EndpointVolume volume;
        volume.minimum = number;
        volume.channels = {number};
        speaker().volume(volume);
        sim::Machine machine;
        machine.endpoints.push_back(speaker().endpoint());
        machine.endpoints.back().topology.reset();
        if (std::isnan(number))
            start(machine);
        else
            simulation().change([&](sim::Machine& running) { running = machine; });

        const reading::EndpointReading endpoint = read(speaker().id());

        ASSERT_TRUE(endpoint.content.volume) << number;
        EXPECT_FALSE(endpoint.content.volume->range) << number;
        EXPECT_FALSE(endpoint.content.volume->master.decibels) << number;
        EXPECT_FALSE(endpoint.content.volume->master.percent) << number;
        EXPECT_THAT(problemsOf(endpoint, EndpointField::volume),
                    testing::Contains(IsFailureOf("IAudioEndpointVolume::GetVolumeRange", invalidData)));
        EXPECT_EQ(endpoint.content.volume, read(speaker().id()).content.volume) << "equal to itself";
    }
}

TEST_F(ReadingVolume, HasNoChannelsIfTheEndpointHasNone)
{
    sim::EndpointVolume volume;
    volume.channels = {};

    const reading::EndpointReading endpoint = readWith(volume);

    ASSERT_TRUE(endpoint.content.volume);
    ASSERT_TRUE(endpoint.content.volume->channels);
    EXPECT_THAT(*endpoint.content.volume->channels, IsEmpty());
}

TEST_F(ReadingVolume, DoesNotBelieveTenThousandChannels)
{
    sim::EndpointVolume volume;
    volume.channels.assign(10000, -3.0F);

    const reading::EndpointReading endpoint = readWith(volume);

    ASSERT_TRUE(endpoint.content.volume);
    EXPECT_FALSE(endpoint.content.volume->channels);
    EXPECT_TRUE(endpoint.content.volume->master.percent);
    EXPECT_THAT(problemsOf(endpoint, EndpointField::volume),
                ElementsAre(IsFailureOf("IAudioEndpointVolume::GetChannelCount", invalidData)));
    EXPECT_EQ(0u, simulation().journal().count("IAudioEndpointVolume::GetChannelVolumeLevel"));
}

TEST_F(ReadingVolume, OfAnEndpointWithoutVolumeIsNoneAndNoProblem)
{
    speaker().withoutVolume();

    const reading::EndpointReading endpoint = readSpeaker();

    EXPECT_FALSE(endpoint.content.volume);
    EXPECT_EQ(nullptr, endpoint.volume.get());
    EXPECT_THAT(endpoint.content.problems, IsEmpty());
}

TEST_F(ReadingVolume, LeavesOutWhatFailsAndSaysSo)
{
    sim::EndpointVolume volume;
    volume.refused = {"GetMute", "GetVolumeRange"};
    volume.channels = {-3, -3};
    speaker().volume(volume);
    static_cast<void>(readSpeaker());
    simulation().faults().fail("IAudioEndpointVolume::GetChannelVolumeLevel", E_ABORT).with("1");

    const reading::EndpointReading endpoint = read(speaker().id());

    ASSERT_TRUE(endpoint.content.volume);
    EXPECT_FALSE(endpoint.content.volume->isMuted);
    EXPECT_FALSE(endpoint.content.volume->range);
    EXPECT_TRUE(endpoint.content.volume->master.percent);
    EXPECT_TRUE((*endpoint.content.volume->channels)[1].percent);
    EXPECT_FALSE((*endpoint.content.volume->channels)[1].decibels);
    EXPECT_THAT(problemsOf(endpoint, EndpointField::volume),
                ElementsAre(IsFailureOf("IAudioEndpointVolume::GetVolumeRange", E_NOTIMPL),
                            IsFailureOf("IAudioEndpointVolume::GetChannelVolumeLevel(1)", E_ABORT),
                            IsFailureOf("IAudioEndpointVolume::GetMute", E_NOTIMPL)));
}

TEST_F(ReadingVolume, IsActivatedOnce)
{
    reading::EndpointReading endpoint = readSpeaker();

    reading::readVolume(endpoint);
    reading::readVolume(endpoint);

    EXPECT_EQ(1u, simulation().journal().of("IMMDevice::Activate").with("IAudioEndpointVolume").size());
}

TEST_F(ReadingVolume, IsActivatedAnewAfterItsDeviceWasReplaced)
{
    reading::EndpointReading endpoint = readSpeaker();
    simulation().faults().fail("IAudioEndpointVolume::GetMute", AUDCLNT_E_DEVICE_INVALIDATED).at(1);

    reading::readVolume(endpoint);
    const bool letGo = endpoint.volume.get() == nullptr;
    reading::readVolume(endpoint);

    EXPECT_TRUE(letGo);
    EXPECT_THAT(endpoint.content.problems, IsEmpty());
    EXPECT_EQ(false, endpoint.content.volume->isMuted);
}

TEST_F(ReadingVolume, EndsWithTheStateThatAllowsIt)
{
    reading::EndpointReading endpoint = readSpeaker();
    const std::string id = speaker().id();
    for (const std::uint32_t state : {sim::stateDisabled, sim::stateNotPresent})
    {
        simulation().change([&](sim::Machine& machine) { machine.endpoint(id)->state = state; });
        reading::readEndpoint(endpoint);
        EXPECT_FALSE(endpoint.content.volume) << state;
        EXPECT_EQ(nullptr, endpoint.volume.get()) << state;
        EXPECT_THAT(endpoint.content.problems, IsEmpty()) << state;
    }
    simulation().change([&](sim::Machine& machine) { machine.endpoint(id)->state = sim::stateUnplugged; });
    reading::readEndpoint(endpoint);
    EXPECT_TRUE(endpoint.content.volume);
}

/// On Windows the device of an unplugged endpoint need not answer; that of an active one must.
TEST_F(ReadingVolume, OfAnUnpluggedDeviceThatDoesNotAnswerIsNoProblem)
{
    reading::EndpointReading endpoint = readSpeaker();
    const std::string id = speaker().id();
    simulation().faults().fail("IMMDevice::Activate", AUDCLNT_E_DEVICE_INVALIDATED);

    const reading::EndpointReading active = read(id);
    simulation().change([&](sim::Machine& machine) { machine.endpoint(id)->state = sim::stateUnplugged; });
    const reading::EndpointReading unplugged = read(id);

    EXPECT_THAT(problemsOf(active, EndpointField::volume),
                ElementsAre(IsFailureOf("IMMDevice::Activate(IAudioEndpointVolume)", AUDCLNT_E_DEVICE_INVALIDATED)));
    EXPECT_THAT(unplugged.content.problems, IsEmpty());
}
}
