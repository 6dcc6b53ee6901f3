#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include "tests/libSonavit/supportchannels.h"

#include <cstddef>

namespace
{
using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;
using Properties = AudioDeviceInterface::Properties;

Properties filled()
{
    Properties properties;
    properties.speakerConfig = 0x63F;
    properties.format = devicetest::waveFormat({24, 96000, 8});
    properties.deviceId = "id";
    properties.instancePath = "path";
    properties.driverNodeStrongName = "driver";
    properties.friendlyName = "Analog Audio";
    properties.endpointType = "Speakers";
    properties.subType = sim::nodetypes::speaker;
    properties.directSoundGuid = sim::nodetypes::line;
    properties.deviceState = DEVICE_STATE_UNPLUGGED;
    return properties;
}

void expectFilled(const Properties& properties)
{
    EXPECT_EQ(0x63Fu, properties.speakerConfig);
    EXPECT_TRUE(devicetest::waveFormat({24, 96000, 8}) == properties.format);
    EXPECT_EQ(qor::String("id"), properties.deviceId);
    EXPECT_EQ(qor::String("path"), properties.instancePath);
    EXPECT_EQ(qor::String("driver"), properties.driverNodeStrongName);
    EXPECT_EQ(qor::String("Analog Audio"), properties.friendlyName);
    EXPECT_EQ(qor::String("Speakers"), properties.endpointType);
    EXPECT_TRUE(properties.subType == sim::nodetypes::speaker);
    EXPECT_TRUE(properties.directSoundGuid == sim::nodetypes::line);
    EXPECT_EQ(unsigned(DEVICE_STATE_UNPLUGGED), properties.deviceState);
}

TEST(DeviceProperties, BeginEmpty)
{
    const Properties properties;

    EXPECT_EQ(0u, properties.speakerConfig);
    EXPECT_TRUE(properties.format == WAVEFORMATEXTENSIBLE());
    EXPECT_TRUE(properties.directSoundGuid == GUID());
    for (const qor::String* text : {&properties.deviceId, &properties.instancePath, &properties.driverNodeStrongName,
                                    &properties.friendlyName, &properties.endpointType})
        EXPECT_EQ(0u, text->size());
}

TEST(DeviceProperties, StandInThisOrder)
{
    EXPECT_EQ(0u, offsetof(Properties, speakerConfig));
    EXPECT_LT(offsetof(Properties, speakerConfig), offsetof(Properties, format));
    EXPECT_LT(offsetof(Properties, format), offsetof(Properties, deviceId));
    EXPECT_LT(offsetof(Properties, deviceId), offsetof(Properties, instancePath));
    EXPECT_LT(offsetof(Properties, instancePath), offsetof(Properties, driverNodeStrongName));
    EXPECT_LT(offsetof(Properties, driverNodeStrongName), offsetof(Properties, friendlyName));
    EXPECT_LT(offsetof(Properties, friendlyName), offsetof(Properties, endpointType));
    EXPECT_LT(offsetof(Properties, endpointType), offsetof(Properties, subType));
    EXPECT_LT(offsetof(Properties, subType), offsetof(Properties, directSoundGuid));
    EXPECT_LT(offsetof(Properties, directSoundGuid), offsetof(Properties, deviceState));
}

TEST(DeviceProperties, CopyHasAllFields)
{
    const Properties original = filled();

    const Properties copy(original);

    expectFilled(copy);
}

TEST(DeviceProperties, AssignmentTakesAllFields)
{
    const Properties original = filled();
    Properties assigned;

    assigned = original;

    expectFilled(assigned);
}

TEST(DevicePropertiesLog, WritesSevenLinesInThisOrder)
{
    const support::LogCapture log;

    filled().logPropertyInfo();

    EXPECT_THAT(log.texts(LoggerPriority::LOG_INFO, channels::audioDevice),
                ElementsAre("Device ID id", "Device Instance Path path", "Driver Node Strong Name driver",
                            "Friendly Name Analog Audio", "Endpoint Type Speakers",
                            "Physical Speaker Config 0x0000063F", "Device state is 8"));
    EXPECT_EQ(7u, log.texts().size());
    EXPECT_THAT(log.entered(channels::audioDevice), ElementsAre("AudioDevice::Properties::logPropertyInfo()"));
}

TEST(DevicePropertiesLog, IsSilentAboveItsPriority)
{
    const support::LogCapture log(LoggerPriority::LOG_WARNING);

    filled().logPropertyInfo();

    EXPECT_THAT(log.records(), IsEmpty());
}

TEST(DevicePropertyKeys, HaveTheirValues)
{
    EXPECT_TRUE(sim::sameKey(sim::keys::friendlyName, AudioDevice::m_friendlyName));
    EXPECT_TRUE(sim::sameKey(sim::keys::instancePath, AudioDevice::m_instancePathKey));
    EXPECT_TRUE(sim::sameKey(sim::keys::driverNodeStrongName, AudioDevice::m_driverNodeStrongName));
    EXPECT_TRUE(sim::sameKey(sim::keys::speakerConfig, AudioDevice::m_speakerConfig));
    EXPECT_TRUE(sim::sameKey(sim::keys::endpointGuid, AudioDevice::m_directSoundGUID));
    EXPECT_TRUE(sim::sameKey(sim::keys::deviceFormat, AudioDevice::m_deviceFormat));
}

PROPVARIANT variantOf(VARTYPE tag)
{
    PROPVARIANT variant;
    std::memset(&variant, 0, sizeof(variant));
    variant.vt = tag;
    return variant;
}

/// Type tags that none of the readers below accepts.
constexpr VARTYPE foreignTags[] = {VT_EMPTY, VT_I4, VT_BOOL, VT_UI8, VT_CLSID};

TEST(AudioDevicePropVariant, ReadsAStringFromAStringTagOnly)
{
    AudioDevice device;
    qor::String value("before");
    for (const VARTYPE tag : foreignTags)
        EXPECT_FALSE(device.getPropVariantValue(variantOf(tag), value));
    EXPECT_FALSE(device.getPropVariantValue(variantOf(VT_UI4), value));
    EXPECT_FALSE(device.getPropVariantValue(variantOf(VT_BLOB), value));
    EXPECT_EQ(qor::String("before"), value);

    WCHAR text[] = {'a', 'b', 0};
    PROPVARIANT variant = variantOf(VT_LPWSTR);
    variant.pwszVal = text;

    EXPECT_TRUE(device.getPropVariantValue(variant, value));
    EXPECT_EQ(qor::String("ab"), value);
}

TEST(AudioDevicePropVariant, ReadsANumberFromAnUnsignedTagOnly)
{
    AudioDevice device;
    unsigned int value = 7;
    for (const VARTYPE tag : foreignTags)
        EXPECT_FALSE(device.getPropVariantValue(variantOf(tag), value));
    EXPECT_FALSE(device.getPropVariantValue(variantOf(VT_LPWSTR), value));
    EXPECT_FALSE(device.getPropVariantValue(variantOf(VT_BLOB), value));
    EXPECT_EQ(7u, value);

    PROPVARIANT variant = variantOf(VT_UI4);
    variant.ulVal = 0x63F;

    EXPECT_TRUE(device.getPropVariantValue(variant, value));
    EXPECT_EQ(0x63Fu, value);
}

TEST(AudioDevicePropVariant, SucceedsWithTheFormatUnchangedForAnyTagExceptABlob)
{
    AudioDevice device;
    const WAVEFORMATEXTENSIBLE before = devicetest::waveFormat({16, 44100, 2});
    WAVEFORMATEXTENSIBLE value = before;

    for (const VARTYPE tag : foreignTags)
        EXPECT_TRUE(device.getPropVariantValue(variantOf(tag), value));
    EXPECT_TRUE(device.getPropVariantValue(variantOf(VT_LPWSTR), value));
    EXPECT_TRUE(device.getPropVariantValue(variantOf(VT_UI4), value));

    EXPECT_TRUE(before == value);
}

TEST(AudioDevicePropVariant, ReadsAFormatOf40BytesOnly)
{
    AudioDevice device;
    const WAVEFORMATEXTENSIBLE before = devicetest::waveFormat({16, 44100, 2});
    WAVEFORMATEXTENSIBLE value = before;
    std::vector<std::uint8_t> bytes = sim::DeviceFormat{24, 96000, 2}.bytes();
    bytes.push_back(0);
    PROPVARIANT variant = variantOf(VT_BLOB);
    variant.blob.pBlobData = bytes.data();
    for (const ULONG size : {0u, 18u, 39u, 41u})
    {
        variant.blob.cbSize = size;
        EXPECT_FALSE(device.getPropVariantValue(variant, value)) << size;
        EXPECT_TRUE(before == value) << size;
    }

    variant.blob.cbSize = 40;

    EXPECT_TRUE(device.getPropVariantValue(variant, value));
    EXPECT_TRUE(devicetest::waveFormat({24, 96000, 2}) == value);
}

TEST(AudioDevicePropVariant, FailsWithTheFormatUnchangedForABlobWithoutItsBytes)
{
    AudioDevice device;
    const WAVEFORMATEXTENSIBLE before = devicetest::waveFormat({16, 48000, 2});
    WAVEFORMATEXTENSIBLE value = before;
    PROPVARIANT variant = variantOf(VT_BLOB);
    variant.blob.cbSize = sizeof(value);
    variant.blob.pBlobData = nullptr;

    EXPECT_FALSE(device.getPropVariantValue(variant, value));

    EXPECT_TRUE(before == value);
}
}
