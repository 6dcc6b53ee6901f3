#include "simulator/machine/identity.h"

#include "platform/coreaudio.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

namespace
{
/// Whether @p id has the form in which each '?' stands for an upper-case hexadecimal digit.
bool hasForm(const std::string& id, const std::string& form)
{
    const auto fits = [](char wanted, char found)
    { return wanted == '?' ? std::string("0123456789ABCDEF").find(found) != std::string::npos : wanted == found; };
    return std::equal(form.begin(), form.end(), id.begin(), id.end(), fits);
}

TEST(DeviceInstanceForm, IsThatOfRealMachines)
{
    const std::string seed = "any";
    for (const auto& [id, form] :
         {std::pair<std::string, std::string>(
              sim::boardInstance(seed),
              "HDAUDIO\\FUNC_01&VEN_????&DEV_????&SUBSYS_????????&REV_1000\\4&???????&0&0001"),
          {sim::boardParent(seed), "PCI\\VEN_????&DEV_????&SUBSYS_????????&REV_03\\3&???????&0&FB"},
          {sim::usbInstance(seed), "USB\\VID_????&PID_????&MI_00\\7&???????&0&0000"},
          {sim::usbParent(seed), "USB\\VID_????&PID_????\\????????????"}})
        EXPECT_TRUE(hasForm(id, form)) << id;
}

TEST(DeviceInstanceForm, OfAUsbFunctionNamesTheDeviceOfItsParent)
{
    const std::string device = "USB\\VID_????&PID_????";

    EXPECT_EQ(sim::usbParent("any").substr(0, device.size()), sim::usbInstance("any").substr(0, device.size()));
    EXPECT_NE(sim::usbParent("any"), sim::usbParent("other"));
}

// The tests of Wine, which were run on Windows: IMMDeviceEnumerator::GetDevice refuses L"notadevice" with E_INVALIDARG.
// The forms themselves are those that real machines have.

TEST(DeviceIdForm, IsThatOfTheMachinesOwnIds)
{
    const GUID guid = sim::derivedGuid("any");

    EXPECT_TRUE(sim::isDeviceId(sim::endpointId(eRender, guid)));
    EXPECT_TRUE(sim::isDeviceId(sim::endpointId(eCapture, guid)));
    EXPECT_TRUE(sim::isDeviceId(sim::adapterId(sim::boardInstance("any"))));
    EXPECT_TRUE(sim::isDeviceId(sim::adapterId(sim::usbInstance("any"))));
}

TEST(DeviceIdForm, LeavesTheCaseOfLettersOpen)
{
    EXPECT_TRUE(sim::isDeviceId("{0.0.0.0000000A}.{0A1B2C3D-4E5F-4A6B-8C7D-9E0F1A2B3C4D}"));
    EXPECT_TRUE(sim::isDeviceId("{0.0.0.0000000a}.{0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d}"));
    EXPECT_TRUE(sim::isDeviceId("{2}.\\\\?\\HDAUDIO#FUNC_01"));
}

TEST(DeviceIdForm, IsNoOtherText)
{
    for (const char* const id : {
             "",
             "notadevice",
             "{0.0.0.00000000}",
             "{0.0.0.00000000}.",
             "{0.0.0.00000000}.{nowhere}",
             "{0.0.0.00000000}.{0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d",
             "{0.0.0.00000000}.{0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d} ",
             " {0.0.0.00000000}.{0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d}",
             "{0.0.0.0000000}.{0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d}",
             "{0.0.0.0000000x}.{0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d}",
             "{0.0.2.00000000}.{0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d}",
             "{0.1.0.00000000}.{0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d}",
             "{0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d}",
             "{2}",
             "{2}.\\\\?\\",
             "{2}.\\\\?",
             "{2}.hdaudio#func_01",
             "{3}.\\\\?\\hdaudio#func_01",
             "{1}.HDAUDIO\\FUNC_01",
         })
        EXPECT_FALSE(sim::isDeviceId(id)) << id;
}
}
