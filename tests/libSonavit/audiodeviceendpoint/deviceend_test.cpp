// The order in which a device stores its members and releases them.
#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include "tests/libSonavit/supportplace.h"

namespace
{
using qor::LoggerPriority;
using support::placeOf;
using testing::ElementsAre;

class AudioDeviceEnd : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
    }
};

using AudioDeviceFields = AudioDeviceEnd;

TEST_F(AudioDeviceFields, AreInTheirFixedOrder)
{
    const AudioDevice device;

    EXPECT_LT(placeOf(device), placeOf(device.m_device)); // after the pointer to the virtual table
    EXPECT_LT(placeOf(device.m_device), placeOf(device.m_propertyStore));
    EXPECT_LT(placeOf(device.m_propertyStore), placeOf(device.m_volumeControl));
    EXPECT_LT(placeOf(device.m_volumeControl), placeOf(device.m_topology));
    EXPECT_LT(placeOf(device.m_topology), placeOf(device.m_properties));
    EXPECT_LT(placeOf(device.m_properties), placeOf(device.m_savedProperties));
}

TEST_F(AudioDeviceEnd, LogsEachAssignmentBeforeTheRelease)
{
    kept.directSoundTexts = 1;
    std::vector<std::string> whenTheStoreWent;
    std::vector<std::string> whenTheDeviceWent;
    {
        const AudioDevice device(reference(speaker.id()));
        log.clear();
        // The logged counts take references, too; only the last Release of each interface matters.
        simulation().faults().run("IPropertyStore::Release",
                                  [&] { whenTheStoreWent = messages(LoggerPriority::LOG_DEBUG); });
        simulation().faults().run("IMMDevice::Release",
                                  [&] { whenTheDeviceWent = messages(LoggerPriority::LOG_DEBUG); });
    }
    simulation().faults().clear();

    const char* const storeCount = "m_propertyStore has reference count 1";
    const char* const deviceCount = "m_device has reference count 1";
    const char* const storeGoes = "Assigning m_propertyStore to NULL";
    const char* const deviceGoes = "Assigning m_device to NULL";
    EXPECT_THAT(whenTheStoreWent, ElementsAre(storeCount, deviceCount, storeGoes));
    EXPECT_THAT(whenTheDeviceWent, ElementsAre(storeCount, deviceCount, storeGoes, deviceGoes));
}
}
