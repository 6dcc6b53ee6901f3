#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include "simulator/machine/valuetext.h"
#include "tests/libSonavit/supportchannels.h"

namespace
{
using devicetest::visible;
using devicetest::withoutCounting;
using qor::LoggerPriority;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class AudioDeviceDefault : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
        simulation().journal().recordReferences(true);
    }
};

TEST_F(AudioDeviceDefault, IsNotInitialized)
{
    const AudioDevice device;

    EXPECT_FALSE(device.isInitialized());
}

TEST_F(AudioDeviceDefault, HasEmptyPropertiesTwice)
{
    AudioDevice device;

    const WAVEFORMATEXTENSIBLE zero = {};
    for (const AudioDeviceInterface::Properties* properties : {&device.m_properties, &device.m_savedProperties})
    {
        EXPECT_EQ(0u, properties->speakerConfig);
        EXPECT_EQ(0, std::memcmp(&zero, &properties->format, sizeof(zero)));
        EXPECT_EQ(qor::String(), properties->deviceId);
        EXPECT_EQ(qor::String(), properties->instancePath);
        EXPECT_EQ(qor::String(), properties->driverNodeStrongName);
        EXPECT_EQ(qor::String(), properties->friendlyName);
        EXPECT_EQ(qor::String(), properties->endpointType);
        EXPECT_TRUE(properties->directSoundGuid == GUID());
    }
}

TEST_F(AudioDeviceDefault, HoldsNothing)
{
    AudioDevice device;

    EXPECT_EQ(nullptr, device.device().get());
    EXPECT_EQ(nullptr, device.m_propertyStore.get());
    EXPECT_EQ(nullptr, device.volumeControl().get());
    EXPECT_FALSE(device.m_topology.isInitialized());
}

TEST_F(AudioDeviceDefault, ReturnsItsStateWithoutAPlatformCall)
{
    AudioDevice device;
    device.m_properties.deviceState = DEVICE_STATE_UNPLUGGED;

    const unsigned int state = device.refreshDeviceState();

    EXPECT_EQ(unsigned(DEVICE_STATE_UNPLUGGED), state);
    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
    EXPECT_THAT(log.records(channels::audioDevice), IsEmpty());
}

TEST_F(AudioDeviceDefault, MakesNoPlatformCallInItsConstructorAndDestructor)
{
    {
        const AudioDevice device;
    }

    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
}

TEST_F(AudioDeviceDefault, ConstructsWithoutATrace)
{
    const AudioDevice device;
    const AudioDevice copy(device);

    EXPECT_THAT(log.records(channels::audioDevice), IsEmpty());
}

TEST_F(AudioDeviceDefault, LogsBothAssignmentsInTheDestructor)
{
    {
        const AudioDevice device;
    }

    EXPECT_THAT(records(), ElementsAre("> AudioDevice::~AudioDevice()", "1 Assigning m_propertyStore to NULL",
                                       "1 Assigning m_device to NULL", "< AudioDevice::~AudioDevice()"));
}

class AudioDeviceOfPlatformDevice : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
    }
};

TEST_F(AudioDeviceOfPlatformDevice, CallsThePlatformInThisOrder)
{
    kept.directSoundTexts = 1;
    const std::string guid = speaker.endpoint().properties.back().value.text.value();
    IMMDevice* const platformDevice = reference(speaker.id());
    simulation().journal().recordReferences(true);

    const AudioDevice device(platformDevice);

    const std::string freeId = "CoTaskMemFree(IPart::GetGlobalId ";
    EXPECT_THAT(withoutCounting(simulation().journal().entries()),
                ElementsAreArray(visible({
                    "IMMDevice::GetId()",
                    "CoTaskMemFree(IMMDevice::GetId " + speaker.id() + ")",
                    "IMMDevice::Activate(IDeviceTopology, 23)",
                    "IDeviceTopology::GetDeviceId()",
                    "CoTaskMemFree(IDeviceTopology::GetDeviceId " + speaker.id() + ")",
                    "IDeviceTopology::GetConnectorCount()",
                    "IDeviceTopology::GetConnector(0)",
                    "IConnector::QueryInterface(IPart)",
                    "IPart::GetSubType()",
                    "IPart::GetGlobalId()",
                    freeId + speaker.connectorId() + ")",
                    "IPart::GetName()",
                    "IDeviceTopology::GetSubunitCount()",
                    "IMMDevice::OpenPropertyStore(2)",
                    "IPropertyStore::GetValue(deviceDescription)",
                    "PropVariantClear(31)",
                    "IPropertyStore::GetValue(deviceFormat)",
                    "PropVariantClear(65)",
                    "IPropertyStore::GetValue(instancePath)",
                    "PropVariantClear(31)",
                    "IPropertyStore::GetValue(driverNodeStrongName)",
                    "PropVariantClear(31)",
                    "IPropertyStore::GetValue(friendlyName)",
                    "PropVariantClear(31)",
                    "IPropertyStore::GetValue(speakerConfig)",
                    "PropVariantClear(19)",
                    "IPropertyStore::GetValue(endpointGuid)",
                    "CLSIDFromString(" + guid + ")",
                    "IMMDevice::GetState()",
                    "IMMDevice::QueryInterface(IMMEndpoint)",
                    "IConnector::GetConnectedTo()",
                    "IConnector::QueryInterface(IPart)",
                    "IPart::GetSubType()",
                    "IPart::GetGlobalId()",
                    freeId + speaker.jackId() + ")",
                    "IPart::GetName()",
                    "CoTaskMemFree(IPart::GetName " + speaker.jackId() + ")",
                    "IMMDevice::QueryInterface(IMMEndpoint)",
                    "IMMDevice::Activate(IAudioEndpointVolume, 23)",
                })));
}

TEST_F(AudioDeviceOfPlatformDevice, TracesInThisOrder)
{
    kept.directSoundTexts = 1;

    const AudioDevice device(reference(speaker.id()));

    const std::string data = "bool AudioDevice::getDeviceData(const PROPERTYKEY& key, DataType& value)";
    EXPECT_THAT(log.entered(channels::audioDevice),
                ElementsAre("AudioDevice::AudioDevice(IMMDevice* device)", "AudioDevice::initialize(IMMDevice* device)",
                            "AudioDevice::activateDeviceInterface()", "AudioDevice::refreshDeviceInformation()", data,
                            data, data, data, data, data,
                            "AudioDevice::connector(qor::Array<AudioConnector>& connectorList)",
                            "AudioDevice::Properties::logPropertyInfo()", "AudioDevice::volumeControl",
                            "AudioDevice::volumeController()", "AudioDevice::activateDeviceInterface()"));
    EXPECT_EQ("AudioDevice::AudioDevice(IMMDevice* device)", log.left(channels::audioDevice).back());
}

TEST_F(AudioDeviceOfPlatformDevice, ReadsThePropertiesOfTheEndpoint)
{
    kept.directSoundTexts = 1;
    const std::string guid = speaker.endpoint().properties.back().value.text.value();

    const AudioDevice device(reference(speaker.id()));

    const AudioDeviceInterface::Properties& properties = device.deviceProperty();
    EXPECT_TRUE(device.isInitialized());
    EXPECT_EQ(speaker.id(), properties.deviceId.toUtf8());
    EXPECT_EQ(card.instancePath(), properties.instancePath.toUtf8());
    EXPECT_EQ("Analog Audio", properties.friendlyName.toUtf8());
    EXPECT_EQ("Speakers", properties.endpointType.toUtf8());
    EXPECT_EQ(3u, properties.speakerConfig);
    EXPECT_TRUE(devicetest::waveFormat({16, 48000, 2}) == properties.format);
    EXPECT_TRUE(properties.subType == sim::nodetypes::speaker);
    EXPECT_TRUE(properties.directSoundGuid == sim::guidFromText(guid).value());
    EXPECT_EQ(unsigned(DEVICE_STATE_ACTIVE), properties.deviceState);
    EXPECT_NE(qor::String(), properties.driverNodeStrongName);
}

TEST_F(AudioDeviceOfPlatformDevice, AdoptsTheReferenceAndHoldsOneOnEachInterface)
{
    kept.directSoundTexts = 1;

    const AudioDevice device(reference(speaker.id()));

    const std::map<std::string, long> held = simulation().census().byInterface;
    const std::map<std::string, long> expected = {{"IMMDevice", 1},
                                                  {"IPropertyStore", 1},
                                                  {"IDeviceTopology", 1},
                                                  {"IConnector", 2}, // as connector and as part
                                                  {"IAudioEndpointVolume", 1}};
    EXPECT_EQ(expected, held);
}

TEST_F(AudioDeviceOfPlatformDevice, LogsTheCountOfTheDeviceInTheConstructorAndOfBothInTheDestructor)
{
    kept.directSoundTexts = 1;
    {
        const AudioDevice device(reference(speaker.id()));
        EXPECT_THAT(messages(LoggerPriority::LOG_DEBUG), ElementsAre("m_device has reference count 1"));
        log.clear();
    }

    EXPECT_THAT(records(), ElementsAre("> AudioDevice::~AudioDevice()", "1 m_propertyStore has reference count 1",
                                       "1 m_device has reference count 1", "1 Assigning m_propertyStore to NULL",
                                       "1 Assigning m_device to NULL", "< AudioDevice::~AudioDevice()"));
}

TEST_F(AudioDeviceOfPlatformDevice, CountsReferencesOnlyForAMessageThatIsWritten)
{
    kept.directSoundTexts = 1;
    withoutDebugMessages();
    const AudioDevice device(reference(speaker.id()));
    simulation().journal().recordReferences(true);

    const_cast<AudioDevice&>(device).printReferenceCount();

    EXPECT_THAT(simulation().journal().of("IMMDevice::AddRef"), IsEmpty());
    EXPECT_THAT(simulation().journal().of("IPropertyStore::AddRef"), IsEmpty());
}

TEST_F(AudioDeviceOfPlatformDevice, ReleasesStoreAndDeviceBeforeItsOtherMembers)
{
    kept.directSoundTexts = 1;
    withoutDebugMessages();
    {
        const AudioDevice device(reference(speaker.id()));
        simulation().journal().clear();
        simulation().journal().recordReferences(true);
    }

    EXPECT_THAT(simulation().journal().operations(),
                ElementsAre("IPropertyStore::Release", "IMMDevice::Release", "IConnector::Release",
                            "IConnector::Release", "IDeviceTopology::Release", "IAudioEndpointVolume::Release"));
}

TEST_F(AudioDeviceOfPlatformDevice, PassesAnExceptionOfReleaseOnAndReleasesTheRest)
{
    kept.directSoundTexts = 1;
    withoutDebugMessages();
    const auto beginAndEnd = [this]
    {
        const AudioDevice device(reference(speaker.id()));
        simulation().faults().raise("IPropertyStore::Release");
    };

    EXPECT_THROW(beginAndEnd(), sim::InjectedException);

    EXPECT_THAT(simulation().faults().unmet(), IsEmpty());
    EXPECT_EQ(0, simulation().census().references());
    EXPECT_THAT(log.texts(LoggerPriority::LOG_ERROR, "comptr"), ElementsAre("COMPtr destructor caught an exception"));
}

TEST_F(AudioDeviceOfPlatformDevice, ReturnsTheDeviceWithANewReference)
{
    kept.directSoundTexts = 1;
    AudioDevice device(reference(speaker.id()));

    const COMPtr<IMMDevice>::pointer shared = device.device();

    EXPECT_EQ(device.m_device.get(), shared.get());
    EXPECT_EQ(2, references("IMMDevice " + speaker.id()));
}
}
