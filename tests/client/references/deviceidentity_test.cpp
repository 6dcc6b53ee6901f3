#include "client/references/deviceidentity.h"

#include <gtest/gtest.h>

namespace
{
using namespace sonavit::references;

TEST(IdentityOf, ReadsAUsbDeviceWithASerialNumber)
{
    const DeviceIdentity identity = identityOf("USB\\VID_1235&PID_8210\\Y8H3KQ2", "USB\\ROOT_HUB30\\4&1A2B&0&0");

    EXPECT_EQ(identity.bus, "USB");
    EXPECT_EQ(identity.vendor, "USB:1235");
    EXPECT_EQ(identity.product, "8210");
    EXPECT_EQ(identity.function, "");
    EXPECT_EQ(identity.serial, "Y8H3KQ2");
}

TEST(IdentityOf, FindsNoSerialNumberInAPlace)
{
    EXPECT_EQ(identityOf("USB\\VID_1235&PID_8210\\6&2D3F1A&0&3", std::nullopt).serial, "");
    EXPECT_EQ(identityOf("USB\\VID_1235&PID_8210\\", std::nullopt).serial, "");
    EXPECT_EQ(identityOf("USB\\VID_1235&PID_8210\\7", std::nullopt).serial, "7");
}

TEST(IdentityOf, TakesTheSerialNumberOfACompositeDeviceFromItsParent)
{
    const DeviceIdentity identity =
        identityOf("USB\\VID_2641&PID_247B&MI_00\\7&8777D5D&0&0000", "usb\\vid_2641&pid_247b\\E26CFD296326");

    EXPECT_EQ(identity.vendor, "USB:2641");
    EXPECT_EQ(identity.product, "247B");
    EXPECT_EQ(identity.function, "00");
    EXPECT_EQ(identity.serial, "E26CFD296326");
}

TEST(IdentityOf, DoesNotTakeTheSerialNumberOfAHub)
{
    EXPECT_EQ(identityOf("USB\\VID_2641&PID_247B&MI_00\\7&8777D5D&0&0000", "USB\\VID_05E3&PID_0610\\HUB77").serial, "");
    EXPECT_EQ(identityOf("USB\\VID_2641&PID_247B\\6&8777D5D&0&3", "USB\\VID_2641&PID_247B\\HUB77").serial, "");
}

TEST(IdentityOf, FindsNoSerialNumberOfACompositeDeviceWithout)
{
    EXPECT_EQ(identityOf("USB\\VID_2641&PID_247B&MI_00\\7&8777D5D&0&0000", "USB\\VID_2641&PID_247B\\6&1D&0&2").serial,
              "");
    EXPECT_EQ(identityOf("USB\\VID_2641&PID_247B&MI_00\\7&8777D5D&0&0000", std::nullopt).serial, "");
}

TEST(IdentityOf, ReadsACodec)
{
    const DeviceIdentity identity = identityOf(
        "HDAUDIO\\FUNC_01&VEN_10EC&DEV_0887&SUBSYS_10438445&REV_1003\\4&1A2B3C&0&0001", "PCI\\VEN_8086&DEV_A170\\3&FB");

    EXPECT_EQ(identity.vendor, "HDAUDIO:10EC");
    EXPECT_EQ(identity.product, "0887&10438445");
    EXPECT_EQ(identity.serial, "");
}

TEST(IdentityOf, ReadsAPciCard)
{
    const DeviceIdentity identity =
        identityOf("PCI\\VEN_13F6&DEV_8788&SUBSYS_85211043&REV_00\\4&2A1B&0&00E0", std::nullopt);

    EXPECT_EQ(identity.bus, "PCI");
    EXPECT_EQ(identity.vendor, "PCI:13F6");
    EXPECT_EQ(identity.product, "8788&85211043");
}

TEST(IdentityOf, ReadsABluetoothService)
{
    const DeviceIdentity identity = identityOf("BTHENUM\\{0000110B-0000-1000-8000-00805F9B34FB}_VID&000105D6_PID&000A\\"
                                               "7&3B5C1D2&0&28E14CA0B1F7_C00000000",
                                               std::nullopt);

    EXPECT_EQ(identity.vendor, "BTHENUM:000105D6");
    EXPECT_EQ(identity.product, "000A");
    EXPECT_EQ(identity.serial, "");
}

TEST(IdentityOf, HasNoSerialNumberWithoutVendor)
{
    EXPECT_EQ(identityOf("ROOT\\MEDIA\\0000", std::nullopt).serial, "");
    EXPECT_EQ(identityOf("ROOT\\MEDIA\\0000", std::nullopt).bus, "ROOT");
    EXPECT_EQ(identityOf("BTHHFENUM\\BTHHFPAUDIO\\8&1E2F4A9C&0&97", std::nullopt).vendor, "");
}

TEST(IdentityOf, ReadsNothingFromOtherTexts)
{
    for (const char* const text : {"", "\\", "USB", "USB\\VID_1235&PID_8210", "VID_1235&PID_8210\\1"})
    {
        const DeviceIdentity identity = identityOf(text, std::nullopt);

        EXPECT_EQ(identity.bus + identity.vendor + identity.product + identity.serial, "") << text;
    }
}

TEST(InstanceIdIn, FindsItInAnInstancePath)
{
    EXPECT_EQ(instanceIdIn("{1}.USB\\VID_1235&PID_8210\\000001"), "USB\\VID_1235&PID_8210\\000001");
    EXPECT_EQ(instanceIdIn("USB\\VID_1235"), "");
    EXPECT_EQ(instanceIdIn(""), "");
}
}
