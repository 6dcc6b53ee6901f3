// A device whose format setFormat() had changed, and that was then initialized with a null device, crashed in its
// destructor: the restore wrote through the open store and opened a new one on the null device.
#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include <functional>
#include <memory>

namespace
{
using devicetest::waveFormat;
using testing::IsEmpty;

const sim::DeviceFormat usual = {16, 48000, 2};
const sim::DeviceFormat better = {24, 96000, 2};

class FormatRestoreWithoutADevice : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
        kept.directSoundTexts = 2; // of initialize() and of setFormat()
        device = std::make_unique<AudioDevice>(reference(speaker.id()));
        device->setFormat(waveFormat(better));
    }

    std::size_t count(const char* operation) { return simulation().journal().count(operation); }

    std::unique_ptr<AudioDevice> device;
};
}

TEST_F(FormatRestoreWithoutADevice, WritesTheFormatAndOpensNoNewStore)
{
    EXPECT_FALSE(device->initialize(nullptr));
    simulation().journal().clear();

    device.reset();

    EXPECT_EQ(usual.bytes(), storedFormat(speaker.id()));
    EXPECT_EQ(1u, count("IPropertyStore::SetValue"));
    EXPECT_EQ(1u, count("IPropertyStore::Commit"));
    EXPECT_EQ(0u, count("IMMDevice::OpenPropertyStore"));
}

TEST_F(FormatRestoreWithoutADevice, DoesTheSameAfterASearchThatSucceedsWithoutADevice)
{
    const sim::PlannedFault fault = simulation().faults().succeedWithNull("IMMDeviceEnumerator::GetDevice");
    EXPECT_FALSE(device->initialize(qor::String("anything")));
    EXPECT_EQ(1u, fault.fired());

    device.reset();

    EXPECT_EQ(usual.bytes(), storedFormat(speaker.id()));
}

TEST_F(FormatRestoreWithoutADevice, ReturnsFalseFromSetFormatWithoutAMessage)
{
    device->initialize(nullptr);
    log.clear();

    EXPECT_FALSE(device->setFormat(waveFormat(usual)));

    EXPECT_THAT(log.texts(), IsEmpty());
    EXPECT_EQ(usual.bytes(), storedFormat(speaker.id()));
    device.reset();
}
