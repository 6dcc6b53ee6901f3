#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

#include "tests/libSonavit/supportchannels.h"

#include <memory>

namespace
{
using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;
using Properties = AudioDeviceInterface::Properties;

/// A device on the speaker, refreshed once by its constructor.
class AudioDeviceRefresh : public devicetest::DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        start();
        m_device = std::make_unique<AudioDevice>(reference(speaker.id()));
        kept.directSoundTexts = 1;
        log.clear();
        simulation().journal().clear();
    }

    void TearDown() override
    {
        m_device.reset();
        DeviceTest::TearDown();
    }

    AudioDevice& device() { return *m_device; }
    const Properties& properties() const { return m_device->deviceProperty(); }

private:
    std::unique_ptr<AudioDevice> m_device;
};

/// One of the properties whose type tag is checked.
struct PropertyCase
{
    std::string name; ///< as the journal writes the key
    PROPERTYKEY key;
    std::string message;
    sim::PropertyValue changed;
    std::string changedText;
    sim::PropertyValue mistyped;
    std::string (*shown)(const Properties&);
};

void PrintTo(const PropertyCase& property, std::ostream* stream)
{
    *stream << property.name;
}

class AudioDeviceRefreshProperty : public AudioDeviceRefresh, public testing::WithParamInterface<PropertyCase>
{
protected:
    std::string shown() const { return GetParam().shown(properties()); }
};

TEST_P(AudioDeviceRefreshProperty, IsReadAnew)
{
    kept.directSoundTexts = 2;
    setProperty(speaker.id(), GetParam().key, GetParam().changed);

    EXPECT_TRUE(device().refreshDeviceInformation());

    EXPECT_EQ(GetParam().changedText, shown());
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), IsEmpty());
}

TEST_P(AudioDeviceRefreshProperty, IsLoggedAndUnchangedIfItIsMissing)
{
    kept.directSoundTexts = 2;
    const std::string before = shown();
    removeProperty(speaker.id(), GetParam().key);

    EXPECT_TRUE(device().refreshDeviceInformation());

    EXPECT_NE("", before);
    EXPECT_EQ(before, shown());
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre(GetParam().message));
}

TEST_P(AudioDeviceRefreshProperty, IsLoggedAndUnchangedIfItHasAnotherType)
{
    kept.directSoundTexts = 2;
    const std::string before = shown();
    setProperty(speaker.id(), GetParam().key, GetParam().mistyped);

    EXPECT_TRUE(device().refreshDeviceInformation());

    EXPECT_EQ(before, shown());
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre(GetParam().message));
}

TEST_P(AudioDeviceRefreshProperty, IsLoggedAndUnchangedIfTheStoreFails)
{
    kept.directSoundTexts = 2;
    const std::string before = shown();
    sim::PlannedFault fault = simulation().faults().fail("IPropertyStore::GetValue", E_FAIL).with(GetParam().name);

    EXPECT_TRUE(device().refreshDeviceInformation());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(before, shown());
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre(GetParam().message));
    EXPECT_EQ(7u, simulation().journal().count("IPropertyStore::GetValue"));
}

std::vector<PropertyCase> propertyCases()
{
    using sim::PropertyValue;
    const PropertyValue text = PropertyValue::ofText("changed");
    const PropertyValue number = PropertyValue::ofNumber(0);
    return {
        {"deviceDescription", sim::keys::deviceDescription,
         "m_propertyStore->GetValue(PKEY_Device_DeviceDesc, &deviceProperty) fails ", text, "changed", number,
         [](const Properties& properties) { return properties.endpointType.toUtf8(); }},
        {"instancePath", sim::keys::instancePath, "Fail to get instancePathKey value ", text, "changed",
         PropertyValue::ofBytes({1, 2, 3}),
         [](const Properties& properties) { return properties.instancePath.toUtf8(); }},
        {"driverNodeStrongName", sim::keys::driverNodeStrongName, "Fail to get driverNodeStrongName value ", text,
         "changed", number, [](const Properties& properties) { return properties.driverNodeStrongName.toUtf8(); }},
        {"friendlyName", sim::keys::friendlyName, "Fail to get device friendly name ", text, "changed", number,
         [](const Properties& properties) { return properties.friendlyName.toUtf8(); }},
        {"speakerConfig", sim::keys::speakerConfig, "Fail to get physical speaker config ",
         PropertyValue::ofNumber(0x63F), "1599", PropertyValue::ofText("stereo"),
         [](const Properties& properties) { return std::to_string(properties.speakerConfig); }},
    };
}

INSTANTIATE_TEST_SUITE_P(Each, AudioDeviceRefreshProperty, testing::ValuesIn(propertyCases()),
                         [](const auto& tested) { return tested.param.name; });

class AudioDeviceRefreshFormat : public AudioDeviceRefresh
{
protected:
    const WAVEFORMATEXTENSIBLE usual = devicetest::waveFormat({16, 48000, 2});
    const std::string message = "m_propertyStore->GetValue(PKEY_AudioEngine_DeviceFormat, &deviceProperty) fails";

    void SetUp() override
    {
        AudioDeviceRefresh::SetUp();
        kept.directSoundTexts = 2;
    }
};

TEST_F(AudioDeviceRefreshFormat, IsUnchangedWithoutAMessageIfThereIsNone)
{
    removeProperty(speaker.id(), sim::keys::deviceFormat);

    EXPECT_TRUE(device().refreshDeviceInformation());

    EXPECT_TRUE(usual == properties().format);
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), IsEmpty());
}

TEST_F(AudioDeviceRefreshFormat, IsUnchangedWithoutAMessageIfItHasAnotherType)
{
    setProperty(speaker.id(), sim::keys::deviceFormat, sim::PropertyValue::ofText("16/48000/2"));

    EXPECT_TRUE(device().refreshDeviceInformation());

    EXPECT_TRUE(usual == properties().format);
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), IsEmpty());
}

TEST_F(AudioDeviceRefreshFormat, IsLoggedAndUnchangedIfItHas18Bytes)
{
    std::vector<std::uint8_t> plain = sim::DeviceFormat{24, 96000, 2}.bytes();
    plain.resize(18);
    setProperty(speaker.id(), sim::keys::deviceFormat, sim::PropertyValue::ofBytes(plain));

    EXPECT_TRUE(device().refreshDeviceInformation());

    EXPECT_TRUE(usual == properties().format);
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre(message));
}

TEST_F(AudioDeviceRefreshFormat, IsLoggedAndUnchangedIfTheStoreFails)
{
    sim::PlannedFault fault = simulation().faults().fail("IPropertyStore::GetValue", E_FAIL).with("deviceFormat");

    EXPECT_TRUE(device().refreshDeviceInformation());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(usual == properties().format);
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), ElementsAre(message));
}

TEST_F(AudioDeviceRefreshFormat, IsReadByteForByte)
{
    std::vector<std::uint8_t> bytes(40);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i + 1);
    setProperty(speaker.id(), sim::keys::deviceFormat, sim::PropertyValue::ofBytes(bytes));

    device().refreshDeviceInformation();

    EXPECT_EQ(0, std::memcmp(bytes.data(), &properties().format, 40));
    device().m_properties.format = usual; // so that the destructor restores nothing
}

class AudioDeviceRefreshDirectSoundGuid : public AudioDeviceRefresh
{
};

TEST_F(AudioDeviceRefreshDirectSoundGuid, LeavesTheStringAllocated)
{
    const sim::Census before = simulation().census();

    device().refreshDeviceInformation();

    const std::map<std::string, long> more = (simulation().census() - before).taskMemory;
    const std::map<std::string, long> expected = {{"IPropertyStore::GetValue " + speaker.id(), 1}};
    EXPECT_EQ(expected, more);
    kept.directSoundTexts = 2;
}

TEST_F(AudioDeviceRefreshDirectSoundGuid, LogsAStringThatIsNoGuid)
{
    setProperty(speaker.id(), sim::keys::endpointGuid, sim::PropertyValue::ofText("not a GUID"));

    EXPECT_TRUE(device().refreshDeviceInformation());

    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING),
                ElementsAre("CLSIDFromString cannot convert sting guid to direct sound guid"));
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), IsEmpty());
    kept.directSoundTexts = 2;
}

TEST_F(AudioDeviceRefreshDirectSoundGuid, IsUnchangedWithoutAMessageIfTheStoreFails)
{
    const GUID before = properties().directSoundGuid;
    sim::PlannedFault fault = simulation().faults().fail("IPropertyStore::GetValue", E_FAIL).with("endpointGuid");

    EXPECT_TRUE(device().refreshDeviceInformation());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(before == properties().directSoundGuid);
    EXPECT_FALSE(before == GUID());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), IsEmpty());
    EXPECT_THAT(messages(LoggerPriority::LOG_ERROR), IsEmpty());
}

TEST_F(AudioDeviceRefreshDirectSoundGuid, IsZeroWithoutAMessageIfThereIsNone)
{
    removeProperty(speaker.id(), sim::keys::endpointGuid);

    EXPECT_TRUE(device().refreshDeviceInformation());

    EXPECT_TRUE(properties().directSoundGuid == GUID());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), IsEmpty());
}

TEST_F(AudioDeviceRefreshDirectSoundGuid, IgnoresTheType)
{
    setProperty(speaker.id(), sim::keys::endpointGuid, sim::PropertyValue::ofNumber(0)); // reads as a null string

    device().refreshDeviceInformation();

    EXPECT_TRUE(properties().directSoundGuid == GUID());
    EXPECT_THAT(messages(LoggerPriority::LOG_WARNING), IsEmpty());
}

#if !defined(_WIN32)
class AudioDeviceRefreshMemory : public AudioDeviceRefresh
{
};

TEST_F(AudioDeviceRefreshMemory, ClearsEachVariantExceptThatOfTheGuid)
{
    kept.directSoundTexts = 2;

    device().refreshDeviceInformation();

    EXPECT_THAT(simulation().journal().of("PropVariantClear").calls(),
                ElementsAre("PropVariantClear(31)", "PropVariantClear(65)", "PropVariantClear(31)",
                            "PropVariantClear(31)", "PropVariantClear(31)", "PropVariantClear(19)"));
}

TEST_F(AudioDeviceRefreshMemory, ClearsVariantsOfAnotherTypeToo)
{
    kept.directSoundTexts = 2;
    setProperty(speaker.id(), sim::keys::speakerConfig, sim::PropertyValue::ofText("stereo"));
    setProperty(speaker.id(), sim::keys::friendlyName, sim::PropertyValue::ofBytes({1, 2, 3}));
    removeProperty(speaker.id(), sim::keys::deviceFormat);

    device().refreshDeviceInformation();

    EXPECT_THAT(simulation().journal().of("PropVariantClear").calls(),
                ElementsAre("PropVariantClear(31)", "PropVariantClear(0)", "PropVariantClear(31)",
                            "PropVariantClear(31)", "PropVariantClear(65)", "PropVariantClear(31)"));
}

TEST_F(AudioDeviceRefreshMemory, ClearsNothingAfterAReadThatFailed)
{
    sim::PlannedFault fault = simulation().faults().fail("IPropertyStore::GetValue");

    EXPECT_TRUE(device().refreshDeviceInformation());

    EXPECT_EQ(7u, fault.fired());
    EXPECT_EQ(0u, simulation().journal().count("PropVariantClear"));
}
#endif
}
