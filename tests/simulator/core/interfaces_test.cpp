#include "simulator/core/interfaces.h"

#include "simulator/machine/operations.h"
#include "simulator/machine/valuetext.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{
/// The interfaces that clients implement, and those that others extend and no object implements alone.
const std::set<std::string> notImplemented = {
    "IMMNotificationClient", "IControlChangeNotify", "IAudioEndpointVolumeCallback", "IPerChannelDbLevel", "IPersist",
    "IMediaFilter"};

TEST(Interfaces, HaveOperationsThatAMachineFileCanName)
{
#define SONAVIT_TEST_NAME(I, B) #I,
    for (const std::string name : {SONAVIT_SIM_INTERFACES(SONAVIT_TEST_NAME)})
    {
        EXPECT_EQ(notImplemented.count(name) == 0, sim::isOperation(name + "::Release")) << name;
    }
#undef SONAVIT_TEST_NAME
}

// As Windows' documentation and the headers of its SDK have them.
TEST(Interfaces, HaveTheIdentifiersThatArePublished)
{
    const std::vector<std::pair<std::string, std::string>> published = {
        {"IUnknown", "{00000000-0000-0000-C000-000000000046}"},
        {"IMMDeviceEnumerator", "{A95664D2-9614-4F35-A746-DE8DB63617E6}"},
        {"IMMDeviceCollection", "{0BD7A1BE-7A1A-44DB-8397-CC5392387B5E}"},
        {"IMMDevice", "{D666063F-1587-4E43-81F1-B948E807363F}"},
        {"IMMEndpoint", "{1BE09788-6894-4089-8586-9A2A6C265AC5}"},
        {"IMMNotificationClient", "{7991EEC9-7E89-4D85-8390-6C703CEC60C0}"},
        {"IPropertyStore", "{886D8EEB-8CF2-4446-8D02-CDBA1DBDCF99}"},
        {"IDeviceTopology", "{2A07407E-6497-4A18-9787-32F79BD0D98F}"},
        {"IPart", "{AE2DE0E4-5BCA-4F2D-AA46-5D13F8FDB3A9}"},
        {"IConnector", "{9C2C4058-23F5-41DE-877A-DF3AF236A09E}"},
        {"ISubunit", "{82149A85-DBA6-4487-86BB-EA8F7FEFCC71}"},
        {"IPartsList", "{6DAA848C-5EB0-45CC-AEA5-998A2CDA1FFB}"},
        {"IControlInterface", "{45D37C3F-5140-444A-AE24-400789F3CBF3}"},
        {"IControlChangeNotify", "{A09513ED-C709-4D21-BD7B-5F34C47F3947}"},
        {"IPerChannelDbLevel", "{C2F8E001-F205-4BC9-99BC-C13B1E048CCB}"},
        {"IAudioVolumeLevel", "{7FB7B48F-531D-44A2-BCB3-5AD5A134B3DC}"},
        {"IAudioMute", "{DF45AEEA-B74A-4B6B-AFAD-2366B6AA012E}"},
        {"IAudioInputSelector", "{4F03DC02-5E6E-4653-8F72-A030C123D598}"},
        {"IKsJackDescription", "{4509F757-2D46-4637-8E62-CE7DB944F57B}"},
        {"IKsJackDescription2", "{478F3A9B-E0C9-4827-9228-6F5505FFE76A}"},
        {"IAudioEndpointVolume", "{5CDF2C82-841E-4546-9722-0CF74078229A}"},
        {"IAudioEndpointVolumeCallback", "{657804FA-D6AD-4496-8A60-352752AF4F89}"},
        {"IAudioClient", "{1CB9AD4C-DBFA-4C32-B178-C2F568A703B2}"},
        {"IAudioClient2", "{726778CD-F60A-4EDA-82DE-E47610CD78AA}"},
        {"IAudioClient3", "{7ED4EE07-8E67-4CD4-8C1A-2B7A5987AD42}"},
        {"IAudioRenderClient", "{F294ACFC-3146-4483-A7BF-ADDCA7C260E2}"},
        {"IAudioCaptureClient", "{C8ADBD64-E71E-48A0-A4DE-185C395CD317}"},
        {"IAudioClock", "{CD63314F-3FBA-4A1B-812C-EF96358728E7}"},
        {"IAudioClock2", "{6F49FF73-6727-49AC-A008-D98CF5E70048}"},
        {"ISimpleAudioVolume", "{87CE5498-68D6-44E5-9215-6DA47EF883D8}"},
        {"IAudioStreamVolume", "{93014887-242D-4068-8A15-CF5E93B90FE3}"},
        {"IChannelAudioVolume", "{1C158861-B533-4B30-B1CF-E853E51C59B8}"},
        {"IAudioMeterInformation", "{C02216F6-8C67-4B5B-9D00-D008E73E0064}"},
        {"IPersist", "{0000010C-0000-0000-C000-000000000046}"},
        {"IMediaFilter", "{56A86899-0AD4-11CE-B03A-0020AF0BA770}"},
        {"IBaseFilter", "{56A86895-0AD4-11CE-B03A-0020AF0BA770}"},
    };

    std::vector<std::pair<std::string, std::string>> identifiers;
#define SONAVIT_TEST_IDENTIFIER(I, B) identifiers.emplace_back(#I, sim::guidText(sim::InterfaceTraits<I>::iid()));
    SONAVIT_SIM_INTERFACES(SONAVIT_TEST_IDENTIFIER)
#undef SONAVIT_TEST_IDENTIFIER

    EXPECT_EQ(published, identifiers);
    for (const auto& [name, identifier] : identifiers)
        EXPECT_EQ(name, sim::interfaceName(sim::guidFromText(identifier).value())) << identifier;
}
}
