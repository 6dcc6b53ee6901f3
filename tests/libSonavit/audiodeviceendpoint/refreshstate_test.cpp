#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include "tests/libSonavit/supportchannels.h"

#include <memory>

namespace
{
using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;

class AudioDeviceRefreshState : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
        kept.directSoundTexts = 1;
    }
};

TEST_F(AudioDeviceRefreshState, FollowsTheEndpoint)
{
    AudioDevice device(reference(speaker.id()));
    simulation().events().unplug(speaker.id());
    EXPECT_EQ(unsigned(DEVICE_STATE_ACTIVE), device.deviceProperty().deviceState);

    EXPECT_EQ(unsigned(DEVICE_STATE_UNPLUGGED), device.refreshDeviceState());

    EXPECT_EQ(unsigned(DEVICE_STATE_UNPLUGGED), device.deviceProperty().deviceState);
}

TEST_F(AudioDeviceRefreshState, ReadsNothingElseAndOpensNoScope)
{
    AudioDevice device(reference(speaker.id()));
    simulation().journal().clear();
    log.clear();

    device.refreshDeviceState();

    EXPECT_THAT(simulation().journal().operations(), ElementsAre("IMMDevice::GetState"));
    EXPECT_THAT(log.records(channels::audioDevice), IsEmpty());
}

TEST_F(AudioDeviceRefreshState, LogsAFailureAndKeepsTheState)
{
    AudioDevice device(reference(speaker.id()));
    simulation().events().unplug(speaker.id());
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::GetState", E_FAIL);

    EXPECT_EQ(unsigned(DEVICE_STATE_ACTIVE), device.refreshDeviceState());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("GetState failed 0x80004005"));
}

TEST_F(AudioDeviceRefreshState, FailureLeavesARefreshSuccessful)
{
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::GetState", E_FAIL);
    AudioDevice device;

    EXPECT_TRUE(device.initialize(reference(speaker.id())));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(0u, device.deviceProperty().deviceState);
}

class AudioDeviceRefreshStore : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
    }
};

TEST_F(AudioDeviceRefreshStore, IsOpenedOnceForReadingAndWriting)
{
    kept.directSoundTexts = 3;
    AudioDevice device(reference(speaker.id()));

    device.refreshDeviceInformation();
    device.refreshDeviceInformation();

    EXPECT_THAT(simulation().journal().of("IMMDevice::OpenPropertyStore").calls(),
                ElementsAre("IMMDevice::OpenPropertyStore(2)"));
}

TEST_F(AudioDeviceRefreshStore, ThatCannotBeOpenedIsTriedAgain)
{
    kept.directSoundTexts = 1;
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::OpenPropertyStore", E_ACCESSDENIED).at(1);
    AudioDevice device(reference(speaker.id()));
    EXPECT_EQ(nullptr, device.m_propertyStore.get());

    EXPECT_TRUE(device.refreshDeviceInformation());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ("Speakers", device.deviceProperty().endpointType.toUtf8());
    device.m_savedProperties = device.m_properties; // so that the destructor restores nothing
}

TEST_F(AudioDeviceRefreshStore, ThatCannotBeOpenedLeavesAllPropertiesUnread)
{
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::OpenPropertyStore", E_ACCESSDENIED);
    AudioDevice device(reference(speaker.id()));
    simulation().journal().clear();
    log.clear();

    EXPECT_FALSE(device.refreshDeviceInformation());

    EXPECT_EQ(2u, fault.fired());
    EXPECT_THAT(records(),
                ElementsAre("> AudioDevice::refreshDeviceInformation()", "4 OpenPropertyStore returns 0x80070005",
                            "< AudioDevice::refreshDeviceInformation()"));
    EXPECT_THAT(simulation().journal().operations(), ElementsAre("IMMDevice::OpenPropertyStore"));
}

TEST_F(AudioDeviceRefreshStore, RefreshEndsWithSevenLinesOfProperties)
{
    kept.directSoundTexts = 1;

    const AudioDevice device(reference(speaker.id()));

    const std::string driver = device.deviceProperty().driverNodeStrongName.toUtf8();
    EXPECT_THAT(messages(LoggerPriority::LOG_INFO),
                ElementsAre("Device ID " + speaker.id(), "Device Instance Path " + card.instancePath(),
                            "Driver Node Strong Name " + driver, "Friendly Name Analog Audio", "Endpoint Type Speakers",
                            "Physical Speaker Config 0x00000003", "Device state is 1"));
}

/// Records which of the virtual operations are called.
class WatchedDevice : public AudioDevice
{
public:
    bool isEndpoint() const override
    {
        calls.push_back("isEndpoint");
        return AudioDevice::isEndpoint();
    }
    bool refreshDeviceInformation() override
    {
        calls.push_back("refreshDeviceInformation");
        return AudioDevice::refreshDeviceInformation() && !refuses;
    }
    const Properties& deviceProperty() const override
    {
        calls.push_back("deviceProperty");
        return AudioDevice::deviceProperty();
    }
    unsigned int refreshDeviceState() override
    {
        calls.push_back("refreshDeviceState");
        return AudioDevice::refreshDeviceState();
    }

    mutable std::vector<std::string> calls;
    bool refuses = false;
};

class AudioDeviceOverrides : public AudioDeviceRefreshStore
{
};

TEST_F(AudioDeviceOverrides, AreCalledByInitialize)
{
    kept.directSoundTexts = 1;
    WatchedDevice device;

    device.initialize(reference(speaker.id()));

    EXPECT_THAT(device.calls,
                ElementsAre("refreshDeviceInformation", "refreshDeviceState", "isEndpoint", "isEndpoint"));
}

TEST_F(AudioDeviceOverrides, DecideWhetherInitializeSucceeds)
{
    kept.directSoundTexts = 1;
    WatchedDevice device;
    device.refuses = true;

    EXPECT_FALSE(device.initialize(reference(speaker.id())));

    EXPECT_EQ(qor::String(), device.m_savedProperties.deviceId);
    EXPECT_NE(nullptr, device.volumeControl().get());
    device.m_savedProperties = device.m_properties; // so that the destructor restores nothing
}

TEST_F(AudioDeviceOverrides, AreCalledBySetFormat)
{
    kept.directSoundTexts = 2;
    WatchedDevice device;
    device.initialize(reference(speaker.id()));
    device.calls.clear();
    device.refuses = true;

    EXPECT_FALSE(device.setFormat(devicetest::waveFormat({16, 48000, 2})));

    EXPECT_THAT(device.calls, ElementsAre("refreshDeviceInformation", "refreshDeviceState", "isEndpoint"));
}

TEST_F(AudioDeviceOverrides, AreCalledByTheSearchForAWaveNumber)
{
    WatchedDevice device;

    device.waveLegacyDeviceID();

    EXPECT_THAT(device.calls, ElementsAre("deviceProperty"));
}
}
