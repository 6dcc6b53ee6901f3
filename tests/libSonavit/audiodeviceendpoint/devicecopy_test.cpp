#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include <memory>

namespace
{
using testing::IsEmpty;

class AudioDeviceCopy : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
        withoutDebugMessages();
        kept.directSoundTexts = 1;
        m_original = std::make_unique<AudioDevice>(reference(speaker.id()));
        simulation().journal().clear();
    }

    void TearDown() override
    {
        m_original.reset();
        DeviceTest::TearDown();
    }

    AudioDevice& original() { return *m_original; }

    /// References on the objects that the original holds.
    std::map<std::string, long> held() { return simulation().census().byInterface; }

private:
    std::unique_ptr<AudioDevice> m_original; // a device's destructor may throw, a fixture's may not
};

using AudioDeviceAssignment = AudioDeviceCopy;

const std::map<std::string, long> referencesOfOne = {
    {"IMMDevice", 1}, {"IPropertyStore", 1}, {"IDeviceTopology", 1}, {"IConnector", 2}, {"IAudioEndpointVolume", 1}};
const std::map<std::string, long> referencesOfTwo = {
    {"IMMDevice", 2}, {"IPropertyStore", 2}, {"IDeviceTopology", 2}, {"IConnector", 4}, {"IAudioEndpointVolume", 1}};

TEST_F(AudioDeviceCopy, TakesOneReferenceOnEachInterfaceAndSharesTheController)
{
    ASSERT_EQ(referencesOfOne, held());
    {
        AudioDevice copy(original());

        EXPECT_EQ(referencesOfTwo, held());
        EXPECT_EQ(original().m_device.get(), copy.m_device.get());
        EXPECT_EQ(original().m_propertyStore.get(), copy.m_propertyStore.get());
        EXPECT_EQ(original().volumeControl().get(), copy.volumeControl().get());
    }

    EXPECT_EQ(referencesOfOne, held());
}

TEST_F(AudioDeviceCopy, CallsNoPlatformFunction)
{
    const AudioDevice copy(original());

    EXPECT_THAT(simulation().journal().operations(), IsEmpty());
}

TEST_F(AudioDeviceCopy, HasAllProperties)
{
    const AudioDevice copy(original());

    EXPECT_EQ(original().deviceProperty().deviceId, copy.deviceProperty().deviceId);
    EXPECT_EQ(original().deviceProperty().endpointType, copy.deviceProperty().endpointType);
    EXPECT_TRUE(original().deviceProperty().format == copy.deviceProperty().format);
    EXPECT_TRUE(original().m_savedProperties.format == copy.m_savedProperties.format);
    EXPECT_TRUE(original() == copy);
}

TEST_F(AudioDeviceCopy, HasItsOwnTopologyLists)
{
    AudioDevice copy(original());

    copy.m_topology.m_connectors.clear();

    qor::Array<AudioComponent<IConnector>> connectors;
    EXPECT_EQ(1u, original().connector(connectors));
}

TEST_F(AudioDeviceCopy, OutlivesTheOriginal)
{
    AudioDevice copy(original());
    original() = AudioDevice();

    EXPECT_EQ(referencesOfOne, held());
    EXPECT_EQ(unsigned(DEVICE_STATE_ACTIVE), copy.refreshDeviceState());
    EXPECT_EQ(2u, copy.volumeControl()->numChannel());
}

TEST_F(AudioDeviceAssignment, TakesTheReferencesOfTheOther)
{
    AudioDevice assigned;

    assigned = original();

    EXPECT_EQ(referencesOfTwo, held());
    EXPECT_EQ(original().volumeControl().get(), assigned.volumeControl().get());
    EXPECT_TRUE(assigned == original());
    EXPECT_TRUE(assigned.m_savedProperties.format == original().m_savedProperties.format);
}

TEST_F(AudioDeviceAssignment, ReleasesTheFormerInterfaces)
{
    kept.directSoundTexts = 2;
    AudioDevice assigned(reference(microphone.id()));

    assigned = original();

    EXPECT_EQ(referencesOfTwo, held());
}

TEST_F(AudioDeviceAssignment, OfAnEmptyDeviceUnbinds)
{
    original() = AudioDevice();

    EXPECT_FALSE(original().isInitialized());
    EXPECT_EQ(nullptr, original().volumeControl().get());
    EXPECT_EQ(qor::String(), original().deviceProperty().deviceId);
    EXPECT_EQ(0, simulation().census().references());
}

TEST_F(AudioDeviceAssignment, ToItselfChangesNothing)
{
    const AudioDevice& same = original();

    original() = same;

    EXPECT_EQ(referencesOfOne, held());
    EXPECT_TRUE(original().isInitialized());
    EXPECT_NE(nullptr, original().volumeControl().get());
    qor::Array<AudioComponent<IConnector>> connectors;
    EXPECT_EQ(1u, original().connector(connectors));
}

TEST_F(AudioDeviceAssignment, BetweenCopiesChangesNoCount)
{
    AudioDevice copy(original());

    copy = original();

    EXPECT_EQ(referencesOfTwo, held());
}
}
