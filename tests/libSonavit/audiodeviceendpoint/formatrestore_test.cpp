#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include "tests/libSonavit/supportchannels.h"

#include <memory>

namespace
{
using devicetest::waveFormat;
using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;

const sim::DeviceFormat usual = {16, 48000, 2};
const sim::DeviceFormat better = {24, 96000, 2};

/// How the destructor of a device restores the endpoint's format.
class AudioDeviceRestore : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
    }

    std::unique_ptr<AudioDevice> newDevice() { return std::make_unique<AudioDevice>(reference(speaker.id())); }

    /// The operations in the journal.
    std::vector<std::string> calls()
    {
        std::vector<std::string> operations;
        for (const sim::JournalEntry& entry : simulation().journal().entries())
            operations.push_back(entry.operation);
        return operations;
    }

    std::size_t writes() { return simulation().journal().count("IPropertyStore::SetValue"); }
};

TEST_F(AudioDeviceRestore, RestoresTheFormatThatSetFormatChanged)
{
    kept.directSoundTexts = 3;
    std::unique_ptr<AudioDevice> device = newDevice();
    device->setFormat(waveFormat(better));
    ASSERT_EQ(better.bytes(), storedFormat(speaker.id()));

    device.reset();

    EXPECT_EQ(usual.bytes(), storedFormat(speaker.id()));
    EXPECT_EQ(2u, writes());
}

TEST_F(AudioDeviceRestore, HappensBetweenTheCountsAndTheLastReleases)
{
    kept.directSoundTexts = 3;
    std::unique_ptr<AudioDevice> device = newDevice();
    device->setFormat(waveFormat(better));
    log.clear();

    device.reset();

    const std::vector<std::string> lines = records();
    ASSERT_LT(6u, lines.size());
    EXPECT_EQ("> AudioDevice::~AudioDevice()", lines[0]);
    EXPECT_EQ("1 m_propertyStore has reference count 1", lines[1]);
    EXPECT_EQ("1 m_device has reference count 1", lines[2]);
    EXPECT_EQ("> AudioDevice::setFormat", lines[3]);
    const std::vector<std::string> last(lines.end() - 4, lines.end());
    EXPECT_THAT(last, ElementsAre("< AudioDevice::setFormat", "1 Assigning m_propertyStore to NULL",
                                  "1 Assigning m_device to NULL", "< AudioDevice::~AudioDevice()"));
}

TEST_F(AudioDeviceRestore, WritesNothingIfTheFormatsAreEqual)
{
    kept.directSoundTexts = 1;
    std::unique_ptr<AudioDevice> device = newDevice();

    device.reset();

    EXPECT_EQ(0u, writes());
}

TEST_F(AudioDeviceRestore, WritesNothingAfterTheCallerHasRestoredTheFormat)
{
    kept.directSoundTexts = 3;
    std::unique_ptr<AudioDevice> device = newDevice();
    device->setFormat(waveFormat(better));
    device->setFormat(waveFormat(usual));

    device.reset();

    EXPECT_EQ(2u, writes());
    EXPECT_EQ(usual.bytes(), storedFormat(speaker.id()));
}

TEST_F(AudioDeviceRestore, IsNotDoneByACopyMadeBefore)
{
    kept.directSoundTexts = 3;
    std::unique_ptr<AudioDevice> device = newDevice();
    std::unique_ptr<AudioDevice> copy = std::make_unique<AudioDevice>(*device);
    device->setFormat(waveFormat(better));

    copy.reset();
    EXPECT_EQ(better.bytes(), storedFormat(speaker.id()));
    EXPECT_EQ(1u, writes());

    device.reset();
    EXPECT_EQ(usual.bytes(), storedFormat(speaker.id()));
    EXPECT_EQ(2u, writes());
}

TEST_F(AudioDeviceRestore, IsDoneByEachCopyMadeAfterwards)
{
    kept.directSoundTexts = 4;
    std::unique_ptr<AudioDevice> device = newDevice();
    device->setFormat(waveFormat(better));
    std::unique_ptr<AudioDevice> copy = std::make_unique<AudioDevice>(*device);
    AudioDevice assigned;
    assigned = *copy;

    copy.reset();
    EXPECT_EQ(usual.bytes(), storedFormat(speaker.id()));
    EXPECT_EQ(2u, writes());

    device.reset();
    EXPECT_EQ(3u, writes());
    assigned = AudioDevice(); // assigned to, not destroyed
    EXPECT_EQ(3u, writes());
}

TEST_F(AudioDeviceRestore, IsDoneByATemporary)
{
    kept.directSoundTexts = 4;
    std::unique_ptr<AudioDevice> device = newDevice();
    device->setFormat(waveFormat(better));

    EXPECT_TRUE(AudioDevice(*device).isInitialized());

    EXPECT_EQ(usual.bytes(), storedFormat(speaker.id()));
    EXPECT_TRUE(waveFormat(better) == device->deviceProperty().format); // not read again
    device.reset();
    EXPECT_EQ(3u, writes());
}

TEST_F(AudioDeviceRestore, IsDoneByTheElementThatAGrowingArrayDestroys)
{
    kept.directSoundTexts = 4;
    {
        qor::Array<AudioDevice> devices;
        devices.append(*newDevice());
        devices[0].setFormat(waveFormat(better));
        while (devices.size() < devices.capacity())
            devices.append(AudioDevice());
        ASSERT_EQ(better.bytes(), storedFormat(speaker.id()));

        devices.append(AudioDevice());

        EXPECT_EQ(usual.bytes(), storedFormat(speaker.id()));
        EXPECT_EQ(2u, writes());
    }
    EXPECT_EQ(3u, writes()); // the element in the new block
}

TEST_F(AudioDeviceRestore, ByAGrowingArrayMakesTheCallsOfAnyOther)
{
    kept.directSoundTexts = 7;
    std::unique_ptr<AudioDevice> device = newDevice();
    device->setFormat(waveFormat(better));
    simulation().journal().clear();
    device.reset();
    const std::vector<std::string> expected = calls();
    qor::Array<AudioDevice> devices;
    devices.append(*newDevice());
    while (devices.size() < devices.capacity())
        devices.append(AudioDevice());
    devices[0].setFormat(waveFormat(better));
    simulation().journal().clear();

    devices.append(AudioDevice());

    EXPECT_EQ(expected, calls());
    EXPECT_THAT(expected, testing::Contains("IConnector::GetConnectedTo"));
}

TEST_F(AudioDeviceRestore, IsOmittedWithoutAnOpenStore)
{
    kept.directSoundTexts = 2;
    std::unique_ptr<AudioDevice> device = newDevice();
    device->setFormat(waveFormat(better));
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::OpenPropertyStore", E_FAIL);
    ASSERT_FALSE(device->setFormat(waveFormat({24, 44100, 2})));
    log.clear();

    EXPECT_NO_THROW(delete device.release());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(2u, writes());
    EXPECT_EQ((sim::DeviceFormat{24, 44100, 2}.bytes()), storedFormat(speaker.id()));
    EXPECT_THAT(records(), ElementsAre("> AudioDevice::~AudioDevice()", "1 m_device has reference count 1",
                                       "1 Assigning m_propertyStore to NULL", "1 Assigning m_device to NULL",
                                       "< AudioDevice::~AudioDevice()"));
}

TEST_F(AudioDeviceRestore, ThatTheSystemRefusesIsLoggedAndDropped)
{
    kept.directSoundTexts = 2;
    std::unique_ptr<AudioDevice> device = newDevice();
    device->setFormat(waveFormat(better));
    sim::PlannedFault fault = simulation().faults().fail("IPropertyStore::SetValue", E_ACCESSDENIED);

    EXPECT_NO_THROW(delete device.release());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), ElementsAre("IPropertyStore::SetValue failed 0x80070005"));
    EXPECT_EQ(better.bytes(), storedFormat(speaker.id()));
}

TEST_F(AudioDeviceRestore, RestoresTheFormatOfTheLatestInitialize)
{
    kept.directSoundTexts = 3;
    std::unique_ptr<AudioDevice> device = newDevice();
    device->setFormat(waveFormat(better));
    device->initialize(reference(speaker.id()));

    device.reset();

    EXPECT_EQ(1u, writes());
    EXPECT_EQ(better.bytes(), storedFormat(speaker.id()));
}

TEST_F(AudioDeviceRestore, UndoesAForeignChangeThatARefreshHasRead)
{
    kept.directSoundTexts = 3;
    std::unique_ptr<AudioDevice> device = newDevice();
    setProperty(speaker.id(), sim::keys::deviceFormat, sim::PropertyValue::ofBytes(better.bytes()));
    device->refreshDeviceInformation();

    device.reset();

    EXPECT_EQ(usual.bytes(), storedFormat(speaker.id()));
}

TEST_F(AudioDeviceRestore, WritesAnEmptyFormatIfTheFirstRefreshFailedAndALaterOneSucceeded)
{
    kept.directSoundTexts = 2;
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::OpenPropertyStore", E_FAIL).at(1);
    std::unique_ptr<AudioDevice> device = newDevice();
    ASSERT_TRUE(device->refreshDeviceInformation());

    device.reset();

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(std::vector<std::uint8_t>(40, 0), storedFormat(speaker.id()));
}
}
