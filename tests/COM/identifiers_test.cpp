#include "platform/windows/defineidentifiers.h" // first: on Windows this file defines what it names

#include "COM/identifiers.h"
#include "libModuleCommon/guid.h"
#include "libSonavit/audiodeviceendpoint.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace
{
std::string textOf(GUID guid)
{
    return guidToString(&guid).toUtf8();
}

struct NamedGuid
{
    const char* name;
    GUID value;
    const char* expected;
};

void PrintTo(const NamedGuid& identifier, std::ostream* out)
{
    *out << identifier.name;
}

struct NamedKey
{
    const char* name;
    PROPERTYKEY value;
    const char* expectedFormat;
    unsigned int expectedNumber;
};

void PrintTo(const NamedKey& key, std::ostream* out)
{
    *out << key.name;
}

template<class Named>
std::string nameOf(const testing::TestParamInfo<Named>& info)
{
    return info.param.name;
}

class Identifiers : public testing::TestWithParam<NamedGuid>
{
};

class PropertyKeys : public testing::TestWithParam<NamedKey>
{
};

const NamedGuid interfacesAndClasses[] = {
    {"CLSID_MMDeviceEnumerator", CLSID_MMDeviceEnumerator, "{BCDE0395-E52F-467C-8E3D-C4579291692E}"},
    {"IID_IMMDeviceEnumerator", IID_IMMDeviceEnumerator, "{A95664D2-9614-4F35-A746-DE8DB63617E6}"},
    {"IID_IMMEndpoint", IID_IMMEndpoint, "{1BE09788-6894-4089-8586-9A2A6C265AC5}"},
    {"IID_IDeviceTopology", IID_IDeviceTopology, "{2A07407E-6497-4A18-9787-32F79BD0D98F}"},
    {"IID_IAudioEndpointVolume", IID_IAudioEndpointVolume, "{5CDF2C82-841E-4546-9722-0CF74078229A}"},
    {"IID_IAudioClient", IID_IAudioClient, "{1CB9AD4C-DBFA-4C32-B178-C2F568A703B2}"},
    {"IID_IBaseFilter", IID_IBaseFilter, "{56A86895-0AD4-11CE-B03A-0020AF0BA770}"},
    {"IID_IPart", IID_IPart, "{AE2DE0E4-5BCA-4F2D-AA46-5D13F8FDB3A9}"},
    {"IID_IConnector", IID_IConnector, "{9C2C4058-23F5-41DE-877A-DF3AF236A09E}"},
    {"IID_ISubunit", IID_ISubunit, "{82149A85-DBA6-4487-86BB-EA8F7FEFCC71}"},
    {"IID_IAudioVolumeLevel", IID_IAudioVolumeLevel, "{7FB7B48F-531D-44A2-BCB3-5AD5A134B3DC}"},
    {"IID_IAudioMute", IID_IAudioMute, "{DF45AEEA-B74A-4B6B-AFAD-2366B6AA012E}"},
    {"IID_IAudioInputSelector", IID_IAudioInputSelector, "{4F03DC02-5E6E-4653-8F72-A030C123D598}"},
    {"IID_IUnknown", IID_IUnknown, "{00000000-0000-0000-C000-000000000046}"},
    {"IID_IAudioEndpointVolumeCallback", IID_IAudioEndpointVolumeCallback, "{657804FA-D6AD-4496-8A60-352752AF4F89}"},
    {"IID_IMMNotificationClient", IID_IMMNotificationClient, "{7991EEC9-7E89-4D85-8390-6C703CEC60C0}"},
};

const NamedGuid nodeTypes[] = {
    {"KSNODETYPE_VOLUME", KSNODETYPE_VOLUME, "{3A5ACC00-C557-11D0-8A2B-00A0C9255AC1}"},
    {"KSNODETYPE_MUTE", KSNODETYPE_MUTE, "{02B223C0-C557-11D0-8A2B-00A0C9255AC1}"},
    {"KSNODETYPE_MICROPHONE", KSNODETYPE_MICROPHONE, "{DFF21BE1-F70F-11D0-B917-00A0C9223196}"},
    {"KSNODETYPE_SPEAKER", KSNODETYPE_SPEAKER, "{DFF21CE1-F70F-11D0-B917-00A0C9223196}"},
    {"KSNODETYPE_HEADPHONES", KSNODETYPE_HEADPHONES, "{DFF21CE2-F70F-11D0-B917-00A0C9223196}"},
    {"KSNODETYPE_LINE_CONNECTOR", KSNODETYPE_LINE_CONNECTOR, "{DFF21FE3-F70F-11D0-B917-00A0C9223196}"},
    {"KSNODETYPE_SPDIF_INTERFACE", KSNODETYPE_SPDIF_INTERFACE, "{DFF21FE5-F70F-11D0-B917-00A0C9223196}"},
};

const NamedKey keys[] = {
    {"deviceDescription", propertykeys::deviceDescription, "{A45C254E-DF1C-4EFD-8020-67D146A850E0}", 2},
    {"m_deviceFormat", AudioDevice::m_deviceFormat, "{F19F064D-082C-4E27-BC73-6882A1BB8E4C}", 0},
    {"m_instancePathKey", AudioDevice::m_instancePathKey, "{B3F8FA53-0004-438E-9003-51A46E139BFC}", 2},
    {"m_driverNodeStrongName", AudioDevice::m_driverNodeStrongName, "{83DA6326-97A6-4088-9453-A1923F573B29}", 3},
    {"m_friendlyName", AudioDevice::m_friendlyName, "{B3F8FA53-0004-438E-9003-51A46E139BFC}", 6},
    {"m_speakerConfig", AudioDevice::m_speakerConfig, "{1DA5D803-D492-4EDD-8C23-E0C0FFEE7F0E}", 3},
    {"m_directSoundGUID", AudioDevice::m_directSoundGUID, "{1DA5D803-D492-4EDD-8C23-E0C0FFEE7F0E}", 4},
};
}

TEST_P(Identifiers, HaveThePlatformsValue)
{
    EXPECT_EQ(GetParam().expected, textOf(GetParam().value));
}

INSTANTIATE_TEST_SUITE_P(InterfacesAndClasses, Identifiers, testing::ValuesIn(interfacesAndClasses), nameOf<NamedGuid>);
INSTANTIATE_TEST_SUITE_P(NodeTypes, Identifiers, testing::ValuesIn(nodeTypes), nameOf<NamedGuid>);

TEST_P(PropertyKeys, HaveThePlatformsFormatAndNumber)
{
    EXPECT_EQ(GetParam().expectedFormat, textOf(GetParam().value.fmtid));
    EXPECT_EQ(GetParam().expectedNumber, GetParam().value.pid);
}

INSTANTIATE_TEST_SUITE_P(AudioDevice, PropertyKeys, testing::ValuesIn(keys), nameOf<NamedKey>);

TEST(ClassContexts, HaveThePlatformsValues)
{
    EXPECT_EQ(1u, static_cast<unsigned int>(CLSCTX_INPROC_SERVER));
    EXPECT_EQ(23u, static_cast<unsigned int>(CLSCTX_ALL));
}
