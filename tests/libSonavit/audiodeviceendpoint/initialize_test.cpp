#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include "tests/libSonavit/supportchannels.h"

namespace
{
using devicetest::visible;
using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;

class AudioDeviceInitialize : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
    }
};

using AudioDeviceInitializeAgain = AudioDeviceInitialize;
using AudioDeviceInitializeById = AudioDeviceInitialize;

TEST_F(AudioDeviceInitialize, ReturnsTheResultOfTheRefresh)
{
    kept.directSoundTexts = 1;
    AudioDevice device;

    EXPECT_TRUE(device.initialize(reference(speaker.id())));
}

TEST_F(AudioDeviceInitialize, ContinuesIfGetIdFails)
{
    kept.directSoundTexts = 1;
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::GetId", E_FAIL);
    AudioDevice device;
    device.m_properties.deviceId = "an earlier id";

    const bool initialized = device.initialize(reference(speaker.id()));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(initialized);
    EXPECT_EQ(qor::String(), device.deviceProperty().deviceId);
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), IsEmpty());
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), IsEmpty());
}

TEST_F(AudioDeviceInitialize, FreesTheIdThatThePlatformGave)
{
    kept.directSoundTexts = 1;

    const AudioDevice device(reference(speaker.id()));

    EXPECT_EQ(0u, simulation().census().taskMemory.count("IMMDevice::GetId " + speaker.id()));
    EXPECT_EQ(1u, simulation().journal().count("IMMDevice::GetId"));
}

TEST_F(AudioDeviceInitialize, ReportsTheCountAfterTheIdAndBeforeTheTopology)
{
    kept.directSoundTexts = 1;
    std::vector<std::string> upToTheId;
    sim::PlannedFault watch =
        simulation().faults().run("IMMDevice::GetId", [this, &upToTheId] { upToTheId = records(); });

    const AudioDevice device(reference(speaker.id()));

    EXPECT_EQ(1u, watch.fired());
    const std::vector<std::string> lines = records();
    ASSERT_LE(4u, lines.size());
    const std::vector<std::string> beginning(lines.begin(), lines.begin() + 4);
    EXPECT_THAT(beginning, ElementsAre("> AudioDevice::AudioDevice(IMMDevice* device)",
                                       "> AudioDevice::initialize(IMMDevice* device)",
                                       "1 m_device has reference count 1", "> AudioDevice::activateDeviceInterface()"));
    EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.begin() + 2), upToTheId);
}

TEST_F(AudioDeviceInitialize, SavesThePropertiesAfterASuccess)
{
    kept.directSoundTexts = 1;
    AudioDevice device;

    device.initialize(reference(speaker.id()));

    EXPECT_TRUE(devicetest::waveFormat({16, 48000, 2}) == device.m_savedProperties.format);
    EXPECT_EQ(speaker.id(), device.m_savedProperties.deviceId.toUtf8());
    EXPECT_EQ("Speakers", device.m_savedProperties.endpointType.toUtf8());
    EXPECT_TRUE(device.m_savedProperties.subType == sim::nodetypes::speaker);
    EXPECT_EQ(unsigned(DEVICE_STATE_ACTIVE), device.m_savedProperties.deviceState);
}

TEST_F(AudioDeviceInitialize, WithoutAStoreFailsButKeepsTheDeviceAndCreatesTheController)
{
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::OpenPropertyStore", E_ACCESSDENIED);
    AudioDevice device;

    const bool initialized = device.initialize(reference(speaker.id()));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(initialized);
    EXPECT_TRUE(device.isInitialized());
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("OpenPropertyStore returns 0x80070005"));
    EXPECT_EQ(0u, simulation().journal().count("IPropertyStore::*"));
    EXPECT_NE(nullptr, device.volumeControl().get());
    EXPECT_EQ(speaker.id(), device.deviceProperty().deviceId.toUtf8());
    EXPECT_EQ(qor::String(), device.deviceProperty().endpointType);
    EXPECT_EQ(qor::String(), device.deviceProperty().friendlyName);
    EXPECT_EQ(qor::String(), device.deviceProperty().instancePath);
    EXPECT_EQ(qor::String(), device.deviceProperty().driverNodeStrongName);
    EXPECT_EQ(qor::String(), device.m_savedProperties.deviceId);
}

TEST_F(AudioDeviceInitialize, WithASuccessfulNullStoreFailsInTheSameWay)
{
    sim::PlannedFault fault = simulation().faults().succeedWithNull("IMMDevice::OpenPropertyStore");
    AudioDevice device;

    const bool initialized = device.initialize(reference(speaker.id()));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(initialized);
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("OpenPropertyStore returns 0x00000000"));
}

TEST_F(AudioDeviceInitialize, WithoutATopologyNamesTheInterfaceBeforeTheFailureAndShowsNoNamesYet)
{
    kept.directSoundTexts = 1;
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::Activate", E_NOINTERFACE).with("IDeviceTopology");
    AudioDevice device;

    const bool initialized = device.initialize(reference(speaker.id()));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(initialized);
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING),
                ElementsAre("Interface is not available for this device   0x80004002"));
    const std::vector<std::string> lines = records();
    const auto label = std::find(lines.begin(), lines.end(), "> AudioDevice::logInterfaceType()");
    ASSERT_NE(lines.end(), label);
    EXPECT_EQ("2 IDeviceTopology", label[1]);
    EXPECT_EQ("< AudioDevice::logInterfaceType()", label[2]);
    EXPECT_EQ("3 Interface is not available for this device   0x80004002", label[3]);
    EXPECT_THAT(log.texts(LoggerPriority::LOG_ERROR, "libSonavit.audioDeviceTopology"),
                ElementsAre("Using NULL deviceTopology invalidates this object"));
}

TEST_F(AudioDeviceInitialize, WithNullReturnsFalseAndCallsNothing)
{
    AudioDevice device;

    EXPECT_FALSE(device.initialize(static_cast<IMMDevice*>(nullptr)));

    EXPECT_FALSE(device.isInitialized());
    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
}

TEST_F(AudioDeviceInitializeAgain, ReleasesTheFirstDevice)
{
    kept.directSoundTexts = 2;
    AudioDevice device(reference(speaker.id()));

    device.initialize(reference(microphone.id()));

    EXPECT_EQ(0, references("IMMDevice " + speaker.id()));
    EXPECT_EQ(1, references("IMMDevice " + microphone.id()));
    EXPECT_EQ(microphone.id(), device.deviceProperty().deviceId.toUtf8());
}

TEST_F(AudioDeviceInitializeAgain, KeepsTopologyAndStoreOfTheFirstDevice)
{
    kept.directSoundTexts = 2;
    AudioDevice device(reference(speaker.id()));
    simulation().journal().clear();

    device.initialize(reference(microphone.id()));

    EXPECT_THAT(
        simulation().journal().of("IMMDevice::*").calls(),
        ElementsAre("IMMDevice::GetId()", "IMMDevice::GetState()", "IMMDevice::Activate(IAudioEndpointVolume, 23)"));
    EXPECT_EQ(0u, simulation().journal().count("IDeviceTopology::*"));
    EXPECT_EQ(7u, simulation().journal().of("IPropertyStore::GetValue").on(speaker.id()).size());
    EXPECT_EQ("Speakers", device.deviceProperty().endpointType.toUtf8());
}

TEST_F(AudioDeviceInitializeAgain, ReportsTheCountsOfTheOldStoreAndTheNewDevice)
{
    kept.directSoundTexts = 2;
    AudioDevice device(reference(speaker.id()));
    device.m_propertyStore->AddRef(); // makes the two counts differ
    log.clear();

    device.initialize(reference(microphone.id()));

    const std::vector<std::string> lines = records();
    ASSERT_LE(4u, lines.size());
    EXPECT_THAT(std::vector<std::string>(lines.begin(), lines.begin() + 4),
                ElementsAre("> AudioDevice::initialize(IMMDevice* device)", "1 m_propertyStore has reference count 2",
                            "1 m_device has reference count 1", "> AudioDevice::refreshDeviceInformation()"));
    device.m_propertyStore->Release();
}

TEST_F(AudioDeviceInitializeAgain, ActivatesATopologyThatTheFirstTimeFailedToActivate)
{
    kept.directSoundTexts = 2;
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::Activate", E_NOINTERFACE).with("IDeviceTopology");
    AudioDevice device(reference(speaker.id()));
    log.clear();

    device.initialize(reference(speaker.id()));

    EXPECT_EQ(2u, fault.fired());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING),
                ElementsAre("Interface is not available for this device Speakers Analog Audio 0x80004002"));
}

TEST_F(AudioDeviceInitializeAgain, MovesTheSavedProperties)
{
    kept.directSoundTexts = 2;
    AudioDevice device(reference(speaker.id()));
    setProperty(speaker.id(), sim::keys::deviceFormat,
                sim::PropertyValue::ofBytes(sim::DeviceFormat{24, 96000, 2}.bytes()));

    device.initialize(reference(speaker.id()));

    EXPECT_TRUE(devicetest::waveFormat({24, 96000, 2}) == device.m_savedProperties.format);
}

TEST_F(AudioDeviceInitializeAgain, KeepsTheSavedPropertiesAfterAFailure)
{
    kept.directSoundTexts = 1;
    AudioDevice device(reference(speaker.id()));
    device.m_propertyStore = nullptr;
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::OpenPropertyStore");

    const bool initialized = device.initialize(reference(microphone.id()));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(initialized);
    EXPECT_EQ(microphone.id(), device.deviceProperty().deviceId.toUtf8());
    EXPECT_EQ(speaker.id(), device.m_savedProperties.deviceId.toUtf8());
}

TEST_F(AudioDeviceInitializeAgain, WithTheSameDeviceHoldsOneReference)
{
    kept.directSoundTexts = 2;
    AudioDevice device(reference(speaker.id()));
    device.m_device->AddRef(); // the reference that the device adopts

    device.initialize(device.m_device.get());

    EXPECT_EQ(1, references("IMMDevice " + speaker.id()));
}

TEST_F(AudioDeviceInitializeById, AsksTheSharedEnumeratorForTheDevice)
{
    kept.directSoundTexts = 1;

    const AudioDevice device(qor::String::fromUtf8(speaker.id()));

    EXPECT_TRUE(device.isInitialized());
    EXPECT_THAT(simulation().journal().of("IMMDeviceEnumerator::*").calls(),
                ElementsAre("IMMDeviceEnumerator::GetDevice(" + speaker.id() + ")"));
    EXPECT_THAT(simulation().journal().of("CoCreateInstance").size(), 1u);
    EXPECT_EQ(1, references("IMMDevice " + speaker.id()));
    EXPECT_EQ(1, simulation().census().references("IMMDeviceEnumerator"));
}

TEST_F(AudioDeviceInitializeById, StoresTheIdAsThePlatformSpellsIt)
{
    kept.directSoundTexts = 1;
    const std::string upper = devicetest::upperCase(speaker.id());
    ASSERT_NE(upper, speaker.id());

    const AudioDevice device(qor::String::fromUtf8(upper));

    EXPECT_EQ(speaker.id(), device.deviceProperty().deviceId.toUtf8());
}

TEST_F(AudioDeviceInitializeById, NestsTheTraceScopes)
{
    kept.directSoundTexts = 1;

    const AudioDevice device(qor::String::fromUtf8(speaker.id()));

    const std::vector<std::string> labels = log.entered(channels::audioDevice);
    EXPECT_EQ("AudioDevice::AudioDevice(qor::String const& deviceId)", labels.at(0));
    EXPECT_EQ("AudioDevice::initialize(qor::String const& deviceId)", labels.at(1));
    EXPECT_EQ("AudioDevice::initialize(IMMDevice* device)", labels.at(2));
}

TEST_F(AudioDeviceInitializeById, LogsAnUnknownDevice)
{
    AudioDevice device;

    EXPECT_FALSE(device.initialize(qor::String("{0.0.0.00000000}.{11111111-2222-3333-4444-555555555555}")));

    EXPECT_FALSE(device.isInitialized());
    EXPECT_EQ(qor::String(), device.deviceProperty().deviceId);
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("IMMDeviceEnumerator::GetDevice returns 0x80070490"));
}

TEST_F(AudioDeviceInitializeById, LogsATextThatIsNoIdOfADevice)
{
    AudioDevice device;

    EXPECT_FALSE(device.initialize(qor::String("{0.0.0.00000000}.{nowhere}")));

    EXPECT_FALSE(device.isInitialized());
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("IMMDeviceEnumerator::GetDevice returns 0x80070057"));
}

TEST_F(AudioDeviceInitializeById, KeepsTheFormerDeviceAfterAFailure)
{
    kept.directSoundTexts = 1;
    AudioDevice device(reference(speaker.id()));
    sim::PlannedFault fault = simulation().faults().fail("IMMDeviceEnumerator::GetDevice", E_OUTOFMEMORY);

    EXPECT_FALSE(device.initialize(qor::String::fromUtf8(microphone.id())));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(speaker.id(), device.deviceProperty().deviceId.toUtf8());
    EXPECT_TRUE(device.isInitialized());
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre("IMMDeviceEnumerator::GetDevice returns 0x8007000E"));
}

TEST_F(AudioDeviceInitializeById, LogsAnEnumeratorThatCannotBeCreated)
{
    sim::PlannedFault fault = simulation().faults().fail("CoCreateInstance", E_FAIL);

    const AudioDevice device(qor::String::fromUtf8(speaker.id()));

    EXPECT_LE(1u, fault.fired());
    EXPECT_FALSE(device.isInitialized());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("Unable to initialize enumerator"));
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), IsEmpty());
    EXPECT_EQ(0u, simulation().journal().count("IMMDeviceEnumerator::*"));
}

TEST_F(AudioDeviceInitializeById, TriesToCreateTheEnumeratorAgain)
{
    kept.directSoundTexts = 1;
    sim::PlannedFault fault = simulation().faults().fail("CoCreateInstance", E_FAIL).at(1);
    AudioDevice device;
    EXPECT_FALSE(device.initialize(qor::String::fromUtf8(speaker.id())));

    EXPECT_TRUE(device.initialize(qor::String::fromUtf8(speaker.id())));

    EXPECT_EQ(1u, fault.fired());
}

TEST_F(AudioDeviceInitializeById, OpensAnAdapterDevice)
{
    const AudioDevice device(qor::String::fromUtf8(card.adapter().id));

    EXPECT_TRUE(device.isInitialized());
    EXPECT_FALSE(device.isEndpoint());
    EXPECT_EQ("Analog Audio", device.deviceProperty().endpointType.toUtf8());
}
}
