#include "client/diagnosing/failurewords.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{
using sonavit::diagnosing::areForAnyProperty;
using sonavit::diagnosing::FailureWords;
using sonavit::diagnosing::wordsFor;

constexpr const char* noJack = "Its jack and its hardware controls are not known.";
constexpr const char* controlPath = "Controls behind it may be missing from the list of hardware controls.";
constexpr const char* noWave = "Programs that use the old wave functions cannot be matched with an endpoint.";

/// A call with its first argument, the rule that names its failure, and what people read of it.
const std::vector<FailureWords>& failures()
{
    static const std::vector<FailureWords> rows = {
        {"CoCreateInstance", "", "platform-unreachable", "Windows Core Audio cannot be reached",
         "No sound device can be listed or controlled."},
        {"IMMDeviceEnumerator::EnumAudioEndpoints", "", "list-unreadable", "The list of endpoints cannot be read",
         "Programs see no endpoint, or only some of them."},
        {"IMMDeviceCollection::GetCount", "", "list-unreadable", "The list of endpoints has no length",
         "Programs see no endpoint, or only some of them."},
        {"IMMDeviceCollection::Item", "", "list-unreadable", "An entry of the list of endpoints cannot be read",
         "One endpoint is missing from every list."},
        {"IMMDeviceEnumerator::GetDefaultAudioEndpoint", "", "default-unreadable", "A default endpoint cannot be read",
         "Programs that use the default find none."},
        {"IMMDeviceEnumerator::GetDevice", "", "device-unreachable",
         "A device that a connector names cannot be opened by its id", noJack},
        {"IMMDevice::GetId", "", "endpoint-unreadable", "A device does not tell its id",
         "It is missing from every list, as nothing else identifies it."},
        {"IMMDevice::GetState", "", "state-unreadable", "Its state cannot be read",
         "Whether it can be used is not known; its volume and its jack are not looked for."},
        {"IMMDevice::OpenPropertyStore", "", "properties-unreadable", "Its properties cannot be read",
         "It has no name in lists. Its card, its format and the kind of its jack are not known."},
        {"IMMDevice::Activate", "IAudioEndpointVolume", "volume-unreadable", "Its volume cannot be opened",
         "Its volume and its mute can be neither seen nor changed."},
        {"IMMDevice::Activate", "IDeviceTopology", "hardware-unreadable", "Its hardware graph cannot be opened",
         noJack},
        {"IMMDevice::Activate", "IAudioClient", "stream-unavailable", "Streams cannot be opened on it",
         "Programs can neither play nor record there."},
        {"IMMDevice::Activate", "IBaseFilter", "filter-unavailable", "It cannot be used as a DirectShow filter",
         "Only old programs that use DirectShow miss it."},
        {"IMMDevice::Activate", "IAudioMeterInformation", "meter-unavailable", "Its level meter cannot be opened",
         "Programs cannot show how loud the sound is there."},
        {"IMMDevice::Activate", "IAudioSessionManager", "interface-unavailable",
         "One of its interfaces cannot be opened", ""},
        {"IMMDevice::QueryInterface", "", "flow-unreadable", "Whether it is an output or an input cannot be read",
         "It may be missing from lists of outputs or inputs."},
        {"IMMEndpoint::GetDataFlow", "", "flow-unreadable", "Whether it is an output or an input cannot be read",
         "It may be missing from lists of outputs or inputs."},
        {"IAudioClient::GetMixFormat", "", "mix-format-unreadable", "The format of its shared streams cannot be read",
         "Most programs give up before they play or record there."},
        {"IAudioClient::GetDevicePeriod", "", "stream-unreadable", "The timing of its streams cannot be read",
         "Programs cannot adapt their delay to it."},
        {"IPropertyStore::GetCount", "", "properties-uncounted", "Its properties cannot be counted",
         "Properties that nobody asks for by name are not known."},
        {"IPropertyStore::GetAt", "", "properties-uncounted", "The name of one of its properties cannot be read",
         "That property is not known."},
        {"IPropertyStore::GetValue", "deviceDescription", "property-unreadable", "Its name cannot be read",
         "Lists show it by the name of its device alone, or by its id."},
        {"IPropertyStore::GetValue", "friendlyName", "property-unreadable", "The name of its device cannot be read",
         "Lists show it without the name of its card."},
        {"IPropertyStore::GetValue", "{A45C254E-DF1C-4EFD-8020-67D146A850E0}/14", "property-unreadable",
         "Its full name cannot be read", "Programs that show names in full have none for it."},
        {"IPropertyStore::GetValue", "instancePath", "property-unreadable", "The path of its device cannot be read",
         "It is not listed with the other endpoints of its card."},
        {"IPropertyStore::GetValue", "deviceFormat", "property-unreadable", "Its format cannot be read",
         "Sample rate and bits are not known."},
        {"IPropertyStore::GetValue", "speakerConfig", "property-unreadable", "Its loudspeaker setup cannot be read",
         "Which loudspeakers are set up is not known."},
        {"IPropertyStore::GetValue", "endpointGuid", "property-unreadable", "Its DirectSound id cannot be read",
         "Programs that use DirectSound cannot be matched with it."},
        {"IPropertyStore::GetValue", "driverNodeStrongName", "property-unreadable",
         "The name of its driver cannot be read", "Which driver it has is not known."},
        {"IPropertyStore::GetValue", "containerId", "property-unreadable", "Its container cannot be read",
         "What else belongs to the same physical thing is not known."},
        {"IPropertyStore::GetValue", "formFactor", "property-unreadable", "Its form cannot be read",
         "Whether it is a loudspeaker, a headset or something else is not known."},
        {"IPropertyStore::GetValue", "jackSubType", "property-unreadable", "The kind of its jack cannot be read",
         "The kind of jack is known only if the hardware graph has it."},
        {"IPropertyStore::GetValue", "enumeratorName", "property-unreadable", "The name of its bus cannot be read",
         "The bus is known only from the path of its device."},
        {"IPropertyStore::GetValue", "instanceId", "property-unreadable", "The id of its device cannot be read",
         "The device in Windows that it belongs to is not known."},
        {"IPropertyStore::GetValue", "{00000000-0000-0000-0000-000000000001}/7", "property-unreadable",
         "A property that no list shows cannot be read", ""},
        {"IAudioEndpointVolume::GetVolumeRange", "", "volume-unreadable", "The range of its volume cannot be read",
         "How loud and how soft it can be is not known."},
        {"IAudioEndpointVolume::GetMasterVolumeLevelScalar", "", "volume-unreadable",
         "Its volume in percent cannot be read", "Lists show no percent for it."},
        {"IAudioEndpointVolume::GetMasterVolumeLevel", "", "volume-unreadable", "Its volume in decibels cannot be read",
         "Lists show no decibels for it."},
        {"IAudioEndpointVolume::GetMute", "", "volume-unreadable", "Its mute cannot be read",
         "Whether it is silenced is not known."},
        {"IAudioEndpointVolume::GetChannelCount", "", "volume-unreadable", "The number of its channels cannot be read",
         "The volume of a single channel, and so the balance, can be neither seen nor changed."},
        {"IAudioEndpointVolume::GetChannelVolumeLevel", "", "volume-unreadable",
         "The volume of one of its channels cannot be read", "The balance is not known."},
        {"IAudioEndpointVolume::GetChannelVolumeLevelScalar", "", "volume-unreadable",
         "The volume of one of its channels cannot be read in percent", "The balance is not known in percent."},
        {"IAudioEndpointVolume::QueryHardwareSupport", "", "volume-unreadable",
         "Whether its volume is in hardware cannot be read", "Whether the device or Windows attenuates is not known."},
        {"IAudioEndpointVolume::GetVolumeStepInfo", "", "volume-unreadable", "The steps of its volume cannot be read",
         ""},
        {"IAudioEndpointVolume::VolumeStepUp", "", "volume-unreadable", "A part of its volume cannot be read", ""},
        {"IAudioMeterInformation::GetPeakValue", "", "meter-unavailable", "Its level meter cannot be read",
         "Programs cannot show how loud the sound is there."},
        {"IDeviceTopology::GetConnectorCount", "", "hardware-unreadable", "Its connectors cannot be counted", noJack},
        {"IDeviceTopology::GetConnector", "", "hardware-unreadable", "A connector of the hardware graph cannot be read",
         "The jack or stream there, and the controls behind it, are missing."},
        {"IDeviceTopology::GetSubunitCount", "", "hardware-unreadable",
         "The nodes of the hardware graph cannot be counted", "Hardware controls may be missing."},
        {"IDeviceTopology::GetSubunit", "", "hardware-unreadable", "A node of the hardware graph cannot be read",
         "A hardware control may be missing."},
        {"IDeviceTopology::GetDeviceId", "", "hardware-unreadable", "The hardware graph does not tell its device",
         "The card's graph may be drawn without the name of the device."},
        {"IDeviceTopology::GetSignalPath", "", "path-unreadable", "A signal path of the hardware cannot be read",
         "Which controls act on an endpoint may be incomplete."},
        {"IDeviceTopology::GetPartById", "", "hardware-unreadable", "A piece of the hardware graph cannot be read", ""},
        {"IPart::GetName", "", "part-unreadable", "The name of the part @ of the hardware cannot be read",
         "Controls and jacks that have their name from it have none."},
        {"IPart::GetLocalId", "", "part-unreadable", "The number of the part @ of the hardware cannot be read",
         "A selector cannot say that it has chosen it."},
        {"IPart::GetGlobalId", "", "part-unreadable", "The id of the part @ of the hardware cannot be read",
         "It cannot be named or found again, and a control there cannot be changed."},
        {"IPart::GetPartType", "", "part-unreadable", "What the part @ of the hardware is cannot be read", controlPath},
        {"IPart::GetSubType", "", "part-unreadable", "The kind of the part @ of the hardware cannot be read",
         "The kind of jack, or of node, is not known."},
        {"IPart::GetControlInterfaceCount", "", "control-unreadable", "The controls of the part @ cannot be counted",
         "Its hardware controls are missing."},
        {"IPart::GetControlInterface", "", "control-unreadable", "A control of the part @ cannot be read",
         "One of its hardware controls may be missing."},
        {"IPart::EnumPartsIncoming", "", "path-unreadable", "What leads to the part @ of the hardware cannot be read",
         controlPath},
        {"IPart::EnumPartsOutgoing", "", "path-unreadable", "Where the part @ of the hardware leads cannot be read",
         controlPath},
        {"IPart::GetTopologyObject", "", "hardware-unreadable", "The hardware graph behind the part @ cannot be opened",
         noJack},
        {"IPart::Activate", "IAudioVolumeLevel", "control-unreadable",
         "The volume control of the part @ cannot be opened", "That volume is missing from the hardware controls."},
        {"IPart::Activate", "IAudioMute", "control-unreadable", "The mute control of the part @ cannot be opened",
         "That mute is missing from the hardware controls."},
        {"IPart::Activate", "IAudioInputSelector", "control-unreadable", "The input selector @ cannot be opened",
         "Which input is recorded can be neither seen nor chosen."},
        {"IPart::Activate", "IKsJackDescription", "jack-unreadable", "The description of the jack @ cannot be opened",
         "Colour and place of the jack are not known."},
        {"IPart::Activate", "IKsJackDescription2", "jack-unreadable", "What the jack @ can sense cannot be opened",
         "Whether the jack notices a plug is not known."},
        {"IPart::Activate", "IAudioTreble", "control-unreadable", "A control of the part @ cannot be opened", ""},
        {"IPart::RegisterControlChangeCallback", "", "part-unreadable", "The part @ of the hardware cannot be read",
         controlPath},
        {"IConnector::GetConnectedTo", "", "join-unreadable", "Where the connector @ leads cannot be read", noJack},
        {"IConnector::GetDeviceIdConnectedTo", "", "join-unreadable", "The device behind the connector @ has no id",
         "Without the path of its device, an endpoint cannot be counted to its card."},
        {"IConnector::GetConnectorIdConnectedTo", "", "join-unreadable", "The connector behind @ has no id",
         "The join is followed by the connector itself."},
        {"IConnector::GetType", "", "join-unreadable", "The connector @ cannot be read", controlPath},
        {"ISubunit::QueryInterface", "", "part-unreadable", "The part @ of the hardware cannot be read", controlPath},
        {"IPartsList::GetPart", "", "path-unreadable", "A list of neighbours of the part @ cannot be read",
         controlPath},
        {"IControlInterface::GetName", "", "control-unreadable", "A control of the part @ does not tell what it is",
         "That control may be missing from the hardware controls."},
        {"IAudioVolumeLevel::GetChannelCount", "", "control-unreadable",
         "The channels of the hardware volume @ cannot be counted", "Its level can be neither seen nor changed."},
        {"IAudioVolumeLevel::GetLevelRange", "", "control-unreadable",
         "The range of the hardware volume @ cannot be read",
         "Its level has no percent, and cannot be set in percent."},
        {"IAudioVolumeLevel::GetLevel", "", "control-unreadable", "The level of the hardware volume @ cannot be read",
         "Lists show no level for it."},
        {"IAudioMute::GetMute", "", "control-unreadable", "The hardware mute @ cannot be read",
         "Whether the hardware is silent there is not known."},
        {"IAudioInputSelector::GetSelection", "", "control-unreadable", "The selection of @ cannot be read",
         "Which input is recorded is not known."},
        {"IKsJackDescription::GetJackCount", "", "jack-unreadable", "The description of the jack @ cannot be read",
         "Colour and place of the jack are not known."},
        {"IKsJackDescription2::GetJackDescription2", "", "jack-unreadable", "What the jack @ can sense cannot be read",
         "Whether the jack notices a plug is not known."},
        {"waveOutGetNumDevs", "", "wave-id-unreadable", "The outputs of the wave functions cannot be counted", noWave},
        {"waveInGetNumDevs", "", "wave-id-unreadable", "The inputs of the wave functions cannot be counted", noWave},
        {"waveOutMessage", "", "wave-id-unreadable", "An output of the wave functions does not tell its endpoint",
         noWave},
        {"waveInMessage", "", "wave-id-unreadable", "An input of the wave functions does not tell its endpoint",
         noWave},
        {"IUnknown::QueryInterface", "", "call-failed", "A call of the platform fails", ""},
    };
    return rows;
}

TEST(FailureWordsOfACall, NameTheRuleWhatFailsAndWhatIsMissing)
{
    for (const FailureWords& row : failures())
    {
        const FailureWords& words = wordsFor(row.operation, row.argument);
        EXPECT_STREQ(row.rule, words.rule) << row.operation;
        EXPECT_STREQ(row.what, words.what) << row.operation;
        EXPECT_STREQ(row.effect, words.effect) << row.operation;
    }
}

/// A machine's fault may name a property by its key.
TEST(FailureWordsOfACall, AreTheSameForAPropertyByNameAndByKey)
{
    const FailureWords& words = wordsFor("IPropertyStore::GetValue", "{A45C254E-DF1C-4EFD-8020-67D146A850E0}/2");

    EXPECT_STREQ("Its name cannot be read", words.what);
    EXPECT_EQ(&wordsFor("IPropertyStore::GetValue", "deviceDescription"), &words);
}

TEST(FailureWordsOfACall, AreForAnyPropertyOnlyIfItHasNoneOfItsOwn)
{
    EXPECT_TRUE(areForAnyProperty(wordsFor("IPropertyStore::GetValue", "{00000000-0000-0000-0000-000000000001}/7")));
    EXPECT_FALSE(areForAnyProperty(wordsFor("IPropertyStore::GetValue", "deviceDescription")));
    EXPECT_FALSE(areForAnyProperty(wordsFor("IPropertyStore::GetCount", "")));
}
}
