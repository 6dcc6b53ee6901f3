#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include "qor/exception.h"
#include "tests/libSonavit/supportchannels.h"

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

class AudioDeviceActivation : public devicetest::DeviceTest
{
protected:
    /// Runs the machine for a test that refreshes endpoints @p refreshes times.
    void startFor(long refreshes)
    {
        start();
        kept.directSoundTexts = refreshes;
    }
};

using AudioDeviceAudioClient = AudioDeviceActivation;
using AudioDeviceBaseFilter = AudioDeviceActivation;
using AudioDeviceDeviceTopology = AudioDeviceActivation;
using AudioDeviceConnector = AudioDeviceActivation;

TEST_F(AudioDeviceActivation, OnAnEmptyDeviceThrowsOutOfTheVolumeControllerItself)
{
    AudioDevice device;

    try
    {
        device.volumeController();
        FAIL() << "no exception";
    }
    catch (const qor::AssertionFailure& failure)
    {
        EXPECT_STREQ(devicetest::noDevice, failure.expression());
    }
    EXPECT_THAT(log.entered(channels::audioDevice), ElementsAre("AudioDevice::volumeController()"));
}

#if !defined(_WIN32) // private templates are not exported there
TEST_F(AudioDeviceActivation, OnAnEmptyDeviceThrowsAtALineOfItsOwn)
{
    AudioDevice device;
    unsigned __int64 lineOfVolumeController = 0;
    try
    {
        device.volumeController();
    }
    catch (const qor::AssertionFailure& failure)
    {
        lineOfVolumeController = failure.line();
    }

    try
    {
        device.activateDeviceInterface<IDeviceTopology>();
        FAIL() << "no exception";
    }
    catch (const qor::AssertionFailure& failure)
    {
        EXPECT_STREQ(devicetest::noDevice, failure.expression());
        EXPECT_NE(lineOfVolumeController, failure.line());
    }
}
#endif

TEST_F(AudioDeviceActivation, FailureNamesInterfaceAndDevice)
{
    startFor(1);
    AudioDevice device(reference(speaker.id()));
    log.clear();
    sim::PlannedFault fault =
        simulation().faults().fail("IMMDevice::Activate", E_OUTOFMEMORY).with("IAudioEndpointVolume");

    const COMPtr<IAudioEndpointVolume>::pointer volume = device.volumeController();

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(nullptr, volume.get());
    EXPECT_THAT(records(),
                ElementsAre("> AudioDevice::volumeController()", "> AudioDevice::activateDeviceInterface()",
                            "> AudioDevice::logInterfaceType()", "2 IAudioEndpointVolume",
                            "< AudioDevice::logInterfaceType()",
                            "3 Interface is not available for this device Speakers Analog Audio 0x8007000E",
                            "< AudioDevice::activateDeviceInterface()", "< AudioDevice::volumeController()"));
}

TEST_F(AudioDeviceActivation, PassesTheReferenceOfThePlatformOn)
{
    startFor(1);
    AudioDevice device(reference(speaker.id()));

    const COMPtr<IAudioEndpointVolume>::pointer volume = device.volumeController();

    ASSERT_NE(nullptr, volume.get());
    EXPECT_EQ(2, simulation().census().references("IAudioEndpointVolume")); // its own and the controller's
    EXPECT_EQ(2, simulation().census().objects.at("IAudioEndpointVolume"));
}

TEST_F(AudioDeviceActivation, PassesNoParameters)
{
    startFor(1);
    AudioDevice device(reference(speaker.id()));

    device.audioClient();
    device.baseFilter();

    const sim::JournalEntries activations = simulation().journal().of("IMMDevice::Activate");
    EXPECT_EQ(4u, activations.size());
    for (const sim::JournalEntry& activation : activations)
        EXPECT_EQ(2u, activation.arguments.size()) << activation.line(); // parameters would be the third
}

TEST_F(AudioDeviceAudioClient, IsActivatedAgainOnEachCall)
{
    startFor(1);
    AudioDevice device(reference(speaker.id()));
    simulation().journal().clear();
    log.clear();

    const COMPtr<IAudioClient>::pointer first = device.audioClient();
    const COMPtr<IAudioClient>::pointer second = device.audioClient();

    ASSERT_NE(nullptr, first.get());
    ASSERT_NE(nullptr, second.get());
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(2, simulation().census().references("IAudioClient"));
    EXPECT_THAT(simulation().journal().entries().calls(),
                ElementsAre("IMMDevice::Activate(IAudioClient, 23)", "IMMDevice::Activate(IAudioClient, 23)"));
    EXPECT_THAT(log.entered(channels::audioDevice),
                ElementsAre("AudioDevice::audioClient", "AudioDevice::audioClient"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(AudioDeviceAudioClient, IsEmptyWithADebugMessageIfThereIsNone)
{
    speaker.endpoint().hasAudioClient = false;
    startFor(1);
    AudioDevice device(reference(speaker.id()));
    log.clear();

    const COMPtr<IAudioClient>::pointer client = device.audioClient();

    EXPECT_EQ(nullptr, client.get());
    EXPECT_THAT(records(),
                ElementsAre("> AudioDevice::audioClient", "1 Device Analog Audio has not audio client interface",
                            "< AudioDevice::audioClient"));
}

TEST_F(AudioDeviceAudioClient, IsEmptyIfThePlatformFails)
{
    startFor(1);
    AudioDevice device(reference(speaker.id()));
    log.clear();
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::Activate", E_FAIL).with("IAudioClient");

    const COMPtr<IAudioClient>::pointer client = device.audioClient();

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(nullptr, client.get());
    EXPECT_THAT(log.texts(), ElementsAre("Device Analog Audio has not audio client interface"));
}

TEST_F(AudioDeviceBaseFilter, IsActivatedAgainOnEachCall)
{
    startFor(1);
    AudioDevice device(reference(speaker.id()));
    simulation().journal().clear();
    {
        const ATL::CComPtr<IBaseFilter> first = device.baseFilter();
        const ATL::CComPtr<IBaseFilter> second = device.baseFilter();

        ASSERT_NE(nullptr, first.p);
        ASSERT_NE(nullptr, second.p);
        EXPECT_NE(first.p, second.p);
        EXPECT_EQ(2, simulation().census().references("IBaseFilter"));
    }
    EXPECT_EQ(0, simulation().census().references("IBaseFilter"));
    EXPECT_THAT(simulation().journal().entries().calls(),
                ElementsAre("IMMDevice::Activate(IBaseFilter, 23)", "IMMDevice::Activate(IBaseFilter, 23)"));
}

TEST_F(AudioDeviceBaseFilter, LogsTheMessageOfAnAudioClientIfThereIsNone)
{
    speaker.endpoint().hasBaseFilter = false;
    startFor(1);
    AudioDevice device(reference(speaker.id()));
    log.clear();

    const ATL::CComPtr<IBaseFilter> filter = device.baseFilter();

    EXPECT_EQ(nullptr, filter.p);
    EXPECT_THAT(records(),
                ElementsAre("> AudioDevice::audioClient", "1 Device Analog Audio has not audio client interface",
                            "< AudioDevice::audioClient"));
}

TEST_F(AudioDeviceBaseFilter, IsEmptyIfThePlatformFails)
{
    startFor(1);
    AudioDevice device(reference(speaker.id()));
    log.clear();
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::Activate", E_FAIL).with("IBaseFilter");

    const ATL::CComPtr<IBaseFilter> filter = device.baseFilter();

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(nullptr, filter.p);
    EXPECT_THAT(log.texts(), ElementsAre("Device Analog Audio has not audio client interface"));
}

TEST_F(AudioDeviceDeviceTopology, OfAnEmptyDeviceIsEmpty)
{
    AudioDevice device;

    EXPECT_EQ(nullptr, device.deviceTopology().get());

    EXPECT_THAT(log.entered(channels::audioDevice), ElementsAre("AudioDevice::deviceTopology()"));
}

TEST_F(AudioDeviceDeviceTopology, IsTheOneThatWasActivatedFirst)
{
    startFor(1);
    const AudioDevice device(reference(speaker.id()));
    simulation().journal().clear();

    const COMPtr<IDeviceTopology>::pointer topology = device.deviceTopology();

    EXPECT_EQ(device.m_topology.topology().get(), topology.get());
    EXPECT_EQ(2, simulation().census().references("IDeviceTopology"));
    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
}

TEST_F(AudioDeviceDeviceTopology, IsEmptyIfThePlatformHasNone)
{
    speaker.withoutTopology();
    startFor(1);
    const AudioDevice device(reference(speaker.id()));

    EXPECT_EQ(nullptr, device.deviceTopology().get());
    EXPECT_TRUE(device.isInitialized());
}

TEST_F(AudioDeviceDeviceTopology, SnapshotReplacesWhatTheCallerHad)
{
    startFor(2);
    const AudioDevice device(reference(speaker.id()));
    const AudioDevice other(reference(microphone.id()));
    AudioDeviceTopology topology = other.m_topology;
    log.clear();

    device.deviceTopology(topology);

    EXPECT_EQ(speaker.id(), topology.deviceOwner().toUtf8());
    ASSERT_EQ(1u, topology.connector().size());
    EXPECT_EQ(speaker.connectorId(), topology.connector()[0].id().toUtf8());
    EXPECT_THAT(log.entered(channels::audioDevice),
                ElementsAre("AudioDevice::deviceTopology(AudioDeviceTopology& topo)"));
}

TEST_F(AudioDeviceDeviceTopology, SnapshotMayBeAskedForIntoItself)
{
    startFor(1);
    AudioDevice device(reference(speaker.id()));

    device.deviceTopology(device.m_topology);

    EXPECT_EQ(1, simulation().census().references("IDeviceTopology"));
    EXPECT_EQ(1u, device.m_topology.connector().size());
}

TEST_F(AudioDeviceConnector, ListIsReplacedAndCounted)
{
    startFor(2);
    AudioDevice device(reference(speaker.id()));
    AudioDevice other(reference(microphone.id()));
    qor::Array<AudioComponent<IConnector>> connectors;
    other.connector(connectors);
    log.clear();

    EXPECT_EQ(1u, device.connector(connectors));

    ASSERT_EQ(1u, connectors.size());
    EXPECT_EQ(speaker.connectorId(), connectors[0].id().toUtf8());
    EXPECT_THAT(log.entered(channels::audioDevice),
                ElementsAre("AudioDevice::connector(qor::Array<AudioConnector>& connectorList)"));
}

TEST_F(AudioDeviceConnector, ListIsEmptyWithoutATopology)
{
    speaker.withoutTopology();
    startFor(2);
    AudioDevice device(reference(speaker.id()));
    AudioDevice other(reference(microphone.id()));
    qor::Array<AudioComponent<IConnector>> connectors;
    other.connector(connectors);
    ASSERT_EQ(1u, connectors.size());

    EXPECT_EQ(0u, device.connector(connectors));

    EXPECT_EQ(0u, connectors.size());
}
}
