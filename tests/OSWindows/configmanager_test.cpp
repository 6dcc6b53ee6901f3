#include "OSWindows/configmanager.h"

#include "tests/support/librarytest.h"

using libOSWindows::ConfigManager;
using testing::ElementsAre;

namespace
{
struct ConfigManagerParent : support::LibraryTest
{
    ConfigManagerParent()
    {
        machine.deviceInstances = {{"USB\\VID_0001&PID_0002&MI_00\\7&0&0000", "USB\\VID_0001&PID_0002\\42"},
                                   {"ROOT\\ORPHAN\\0000", {}}};
    }

    sim::Machine machine;
    qor::String parent = "before";
};
}

TEST_F(ConfigManagerParent, LeavesTheResultUnchangedForAnUnknownInstance)
{
    run(machine);

    EXPECT_FALSE(ConfigManager::getParentDeviceInstanceId("NO\\SUCH\\DEVICE", parent));
    EXPECT_EQ(qor::String("before"), parent);
}

TEST_F(ConfigManagerParent, LeavesTheResultUnchangedForAnEmptyId)
{
    run(machine);

    EXPECT_FALSE(ConfigManager::getParentDeviceInstanceId("", parent));
    EXPECT_EQ(qor::String("before"), parent);
}

#if !defined(_WIN32) // Windows searches its own device tree, which does not contain the machine's devices
TEST_F(ConfigManagerParent, ReplacesTheResultWithTheParent)
{
    run(machine);

    EXPECT_TRUE(ConfigManager::getParentDeviceInstanceId("USB\\VID_0001&PID_0002&MI_00\\7&0&0000", parent));
    EXPECT_EQ(qor::String("USB\\VID_0001&PID_0002\\42"), parent);
}

TEST_F(ConfigManagerParent, FindsAnInstanceInAnyCase)
{
    run(machine);

    EXPECT_TRUE(ConfigManager::getParentDeviceInstanceId("usb\\vid_0001&pid_0002&mi_00\\7&0&0000", parent));
    EXPECT_EQ(qor::String("USB\\VID_0001&PID_0002\\42"), parent);
}

TEST_F(ConfigManagerParent, LeavesTheResultUnchangedForAnInstanceWithoutAParent)
{
    run(machine);

    EXPECT_FALSE(ConfigManager::getParentDeviceInstanceId("ROOT\\ORPHAN\\0000", parent));
    EXPECT_EQ(qor::String("before"), parent);
}

TEST_F(ConfigManagerParent, FailsIfNoMachineRuns)
{
    EXPECT_FALSE(ConfigManager::getParentDeviceInstanceId("USB\\VID_0001&PID_0002&MI_00\\7&0&0000", parent));
    EXPECT_EQ(qor::String("before"), parent);
}
#endif
