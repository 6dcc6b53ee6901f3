#include "tests/simulator/bench.h"

#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/identity.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>

// What the platform composes where a machine says nothing.
namespace
{
using bench::Held;
using sim::PropertyValue;
namespace keys = sim::keys;

const std::string internalParts = "{00000000-0000-0000-FFFF-FFFFFFFFFFFF}";

class ComposedProperties : public bench::SimulationTest
{
protected:
    Held<IPropertyStore> storeOf(const std::string& deviceId)
    {
        Held<IPropertyStore> store;
        EXPECT_EQ(S_OK, device(deviceId)->OpenPropertyStore(STGM_READWRITE, store.put()));
        return store;
    }

    /// The value as text, behind its tag: "31 Speakers".
    std::string shown(const std::string& deviceId, const PROPERTYKEY& key)
    {
        PROPVARIANT value;
        EXPECT_EQ(S_OK, storeOf(deviceId)->GetValue(key, &value));
        std::string text = std::to_string(value.vt);
        if (value.vt == VT_LPWSTR)
            text += " " + sim::utf8(value.pwszVal);
        if (value.vt == VT_CLSID)
            text += " " + sim::guidText(*value.puuid);
        if (value.vt == VT_UI4)
            text += " " + std::to_string(value.ulVal);
        PropVariantClear(&value);
        return text;
    }

    bool lists(const std::string& deviceId, const PROPERTYKEY& key)
    {
        const Held<IPropertyStore> store = storeOf(deviceId);
        DWORD count = 0;
        EXPECT_EQ(S_OK, store->GetCount(&count));
        for (DWORD index = 0; index < count; ++index)
        {
            PROPERTYKEY found = {};
            EXPECT_EQ(S_OK, store->GetAt(index, &found));
            if (sim::sameKey(key, found))
                return true;
        }
        return false;
    }

    void set(const std::string& deviceId, const PROPERTYKEY& key, const PropertyValue& value)
    {
        simulation.change(
            [&](sim::Machine& machine)
            {
                sim::Device* const endpoint = machine.endpoint(deviceId);
                sim::setProperty((endpoint != nullptr ? *endpoint : *machine.adapter(deviceId)).properties, key, value);
            });
    }

    void setUnlisted(const std::string& endpointId, const PROPERTYKEY& key, const PropertyValue& value)
    {
        simulation.change([&](sim::Machine& machine)
                          { sim::setProperty(machine.endpoint(endpointId)->unlistedProperties, key, value); });
    }

    void composeNothing()
    {
        simulation.change([](sim::Machine& machine) { machine.composition = sim::Composition::none; });
    }

    DWORD countOf(const std::string& deviceId)
    {
        DWORD count = 0;
        EXPECT_EQ(S_OK, storeOf(deviceId)->GetCount(&count));
        return count;
    }

    static constexpr PROPERTYKEY foreign = {{0x12345678, 0x1234, 0x1234, {1, 2, 3, 4, 5, 6, 7, 8}}, 9};

    static std::string text(const std::string& value) { return "31 " + value; }
};

using ComposedPropertiesOfAnAdapter = ComposedProperties;
using ComposedPropertiesOfAnEndpoint = ComposedProperties;
using PropertiesOfAnAbsentEndpoint = ComposedProperties;
using PropertiesWithoutComposition = ComposedProperties;
using UnlistedProperties = ComposedProperties;

// NAudio issue 508; cubeb reads it for its groups of devices.
TEST_F(ComposedPropertiesOfAnAdapter, HaveTheInstanceIdThatItsIdContains)
{
    const std::string path = simulation.machine().endpoint(speakerId)->properties[2].value.text.value_or("");
    ASSERT_EQ("{1}.HDAUDIO\\FUNC_01", path.substr(0, 19));

    EXPECT_EQ(text(path.substr(4)), shown(codecId, keys::instanceId));
    EXPECT_TRUE(lists(codecId, keys::instanceId));
    EXPECT_EQ("0", shown(speakerId, keys::instanceId)) << "endpoints have none";
    EXPECT_FALSE(lists(speakerId, keys::instanceId));
}

// Wine's tests of the property store, which were run on Windows.
TEST_F(ComposedPropertiesOfAnEndpoint, HaveTheIdOfTheAdapterThatItIsJoinedTo)
{
    EXPECT_EQ(text(codecId), shown(speakerId, keys::interfacePath));

    simulation.change([](sim::Machine& machine) { machine.joins.clear(); });

    EXPECT_EQ("0", shown(speakerId, keys::interfacePath));
    EXPECT_FALSE(lists(speakerId, keys::interfacePath));
}

// Microsoft's documentation of the properties of endpoints: the form factor is a number, jack subtype and association
// are GUIDs written as strings.
TEST_F(ComposedPropertiesOfAnEndpoint, SayWhatKindOfJackItHas)
{
    const std::string speaker = text("{DFF21CE1-F70F-11D0-B917-00A0C9223196}");

    EXPECT_EQ("19 1", shown(speakerId, keys::formFactor));
    EXPECT_EQ(speaker, shown(speakerId, keys::jackSubType));
    EXPECT_EQ(speaker, shown(speakerId, keys::association));
    EXPECT_EQ("19 4", shown(microphoneId, keys::formFactor));
    EXPECT_EQ("19 2", shown(lineInId, keys::formFactor));
    EXPECT_EQ("19 3", shown(earphoneId, keys::formFactor));

    simulation.change([&](sim::Machine& machine) { machine.part(speakerJack)->subType = GUID{}; });

    EXPECT_EQ("19 10", shown(speakerId, keys::formFactor)) << "UnknownFormFactor";
    EXPECT_EQ("0", shown(speakerId, keys::jackSubType));
    EXPECT_EQ("0", shown(codecId, keys::formFactor)) << "an adapter has none";
}

// A published listing of an endpoint's store; xbmc issue 25648 for the enumerator's name.
TEST_F(ComposedPropertiesOfAnEndpoint, NameTheBusOfItsDevice)
{
    EXPECT_EQ(text("HDAUDIO"), shown(speakerId, keys::enumeratorName));
    EXPECT_EQ(text("USB"), shown(earphoneId, keys::enumeratorName));

    set(speakerId, keys::enumeratorName, PropertyValue::ofText(""));
    set(earphoneId, keys::instancePath, PropertyValue::ofText("invalid"));

    EXPECT_EQ(text(""), shown(speakerId, keys::enumeratorName));
    EXPECT_EQ("0", shown(earphoneId, keys::enumeratorName));
    EXPECT_EQ("0", shown(earphoneId, keys::containerId));
}

// Microsoft's documentation of container ids: the parts of the computer share one, each device has one of its own.
TEST_F(ComposedPropertiesOfAnEndpoint, HaveTheContainerOfTheComputerOrOfAUsbDevice)
{
    EXPECT_EQ("72 " + internalParts, shown(speakerId, keys::containerId));
    EXPECT_EQ("72 " + internalParts, shown(lineInId, keys::containerId));

    const std::string usb = shown(earphoneId, keys::containerId);
    EXPECT_EQ("72 {", usb.substr(0, 4));
    EXPECT_NE("72 " + internalParts, usb);
    EXPECT_EQ(usb, shown(earphoneId, keys::containerId));
}

TEST_F(ComposedPropertiesOfAnEndpoint, GiveWayToThoseOfTheMachine)
{
    set(speakerId, keys::formFactor, PropertyValue::ofNumber(5));
    set(codecId, keys::instanceId, PropertyValue::ofText("given"));

    EXPECT_EQ("19 5", shown(speakerId, keys::formFactor));
    EXPECT_EQ(text("given"), shown(codecId, keys::instanceId));
}

TEST_F(ComposedPropertiesOfAnEndpoint, AreSuppressedByAnEmptyValue)
{
    for (const PROPERTYKEY& key : {keys::formFactor, keys::containerId, keys::interfacePath, keys::fullName})
    {
        EXPECT_TRUE(lists(speakerId, key));

        set(speakerId, key, PropertyValue());

        EXPECT_EQ("0", shown(speakerId, key));
        EXPECT_FALSE(lists(speakerId, key));
    }
}

TEST_F(ComposedPropertiesOfAnEndpoint, AreGoneAfterAClientHasSetThemToEmpty)
{
    PROPVARIANT empty;
    PropVariantInit(&empty);

    EXPECT_EQ(S_OK, storeOf(speakerId)->SetValue(keys::containerId, empty));

    EXPECT_EQ("0", shown(speakerId, keys::containerId));
    EXPECT_FALSE(lists(speakerId, keys::containerId));
}

TEST(Container, IsOneForAllFunctionsOfAUsbDevice)
{
    const std::string parent = "USB\\VID_C0DE&PID_0001\\0123456789AB";
    const GUID speaker = sim::containerOf("USB\\VID_C0DE&PID_0001&MI_00\\7&1A2B3C4&0&0000", parent);

    EXPECT_TRUE(IsEqualGUID(speaker, sim::containerOf("USB\\VID_C0DE&PID_0001&MI_02\\7&1A2B3C4&0&0002", parent)));
    EXPECT_FALSE(IsEqualGUID(speaker, sim::containerOf("USB\\VID_C0DE&PID_0002&MI_00\\7&1A2B3C5&0&0000", {})));
}

// ToothTray issue 3: a Bluetooth headset's two profiles have one container.
TEST(Container, IsOneForAllProfilesOfABluetoothDevice)
{
    const std::string service = "-0000-1000-8000-00805F9B34FB}_VID&0001005D_PID&0001\\7&1A2B3C4&0&";
    const GUID music = sim::containerOf("BTHENUM\\{0000110B" + service + "001122334455_C00000000", {});

    EXPECT_TRUE(IsEqualGUID(music, sim::containerOf("BTHHFENUM\\BTHHFPAUDIO\\8&2B3C4D5&0&97",
                                                    "BTHENUM\\{0000111E" + service + "001122334455_C00000000")));
    EXPECT_FALSE(IsEqualGUID(music, sim::containerOf("BTHENUM\\{0000110B" + service + "001122334466_C00000000", {})));
}

TEST(InstanceOfAnAdapter, IsInItsIdUpToTheClassOfTheInterface)
{
    EXPECT_EQ("BTHENUM\\{0000110B-0000}_VID\\7&0_C0",
              sim::instanceOfAdapter("{2}.\\\\?\\bthenum#{0000110b-0000}_vid#7&0_c0#{6994ad04-93ef}\\topo"));
    EXPECT_EQ(std::nullopt, sim::instanceOfAdapter("{2}.somewhere"));
    EXPECT_EQ(std::nullopt, sim::instanceOfAdapter("{2}.\\\\?\\usb#vid"));
    EXPECT_EQ(std::nullopt, sim::instanceOfAdapter("#{\\\\?\\usb"));
}

TEST_F(PropertiesOfAnAbsentEndpoint, AreReadableOnMostMachines)
{
    simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->state = sim::stateNotPresent; });

    EXPECT_EQ(text("Speakers"), shown(speakerId, keys::deviceDescription));
}

// CoreAudio issue 14, CSCore issue 433, pycaw issue 69, AudioSwitcher_v1 issue 129: on some machines the names of an
// endpoint that is not present cannot be read.
TEST_F(PropertiesOfAnAbsentEndpoint, HaveNoNamesOnSomeMachines)
{
    constexpr auto noSuchInstance = static_cast<HRESULT>(0xE000020B);
    simulation.change(
        [&](sim::Machine& machine)
        {
            machine.notPresentNames = sim::NotPresentNames::failing;
            machine.endpoint(speakerId)->state = sim::stateNotPresent;
        });

    for (const PROPERTYKEY& key : {keys::deviceDescription, keys::friendlyName, keys::fullName})
    {
        PROPVARIANT value;
        value.vt = VT_LPWSTR;
        EXPECT_EQ(noSuchInstance, storeOf(speakerId)->GetValue(key, &value));
        EXPECT_EQ(VT_EMPTY, value.vt);
    }
    EXPECT_EQ("19 3", shown(speakerId, keys::speakerConfig));
    EXPECT_EQ(text("Line In"), shown(lineInId, keys::deviceDescription)) << "it is present";
}

TEST_F(PropertiesWithoutComposition, AreThoseOfTheMachineAlone)
{
    const auto own = static_cast<DWORD>(simulation.machine().endpoint(speakerId)->properties.size());
    EXPECT_LT(own, countOf(speakerId));

    composeNothing();

    EXPECT_EQ(own, countOf(speakerId));
    for (const PROPERTYKEY& key : {keys::fullName, keys::containerId, keys::formFactor})
    {
        EXPECT_EQ(std::to_string(VT_EMPTY), shown(speakerId, key));
        EXPECT_FALSE(lists(speakerId, key));
    }
    EXPECT_EQ(std::to_string(VT_EMPTY), shown(codecId, keys::instanceId));
}

TEST_F(PropertiesWithoutComposition, AreListedOnlyIfTheyAreNotEmpty)
{
    composeNothing();
    set(speakerId, keys::fullName, PropertyValue::ofText("Full"));
    set(speakerId, keys::formFactor, PropertyValue());

    EXPECT_EQ(text("Full"), shown(speakerId, keys::fullName));
    EXPECT_TRUE(lists(speakerId, keys::fullName));
    EXPECT_FALSE(lists(speakerId, keys::formFactor));
}

TEST_F(UnlistedProperties, AreReturnedAndNotListed)
{
    setUnlisted(speakerId, foreign, PropertyValue::ofText("secret"));
    const DWORD count = countOf(speakerId);
    EXPECT_EQ(text("secret"), shown(speakerId, foreign));
    EXPECT_FALSE(lists(speakerId, foreign));

    set(speakerId, {foreign.fmtid, 10}, PropertyValue::ofText("listed"));

    EXPECT_EQ(count + 1, countOf(speakerId));
}

TEST_F(UnlistedProperties, StandForComposedOnes)
{
    setUnlisted(speakerId, keys::formFactor, PropertyValue::ofNumber(77));
    setUnlisted(speakerId, keys::fullName, PropertyValue());

    EXPECT_EQ("19 77", shown(speakerId, keys::formFactor));
    EXPECT_FALSE(lists(speakerId, keys::formFactor));
    EXPECT_EQ(std::to_string(VT_EMPTY), shown(speakerId, keys::fullName));
    EXPECT_FALSE(lists(speakerId, keys::fullName));
}

TEST_F(UnlistedProperties, AreWhatOthersAreComposedFrom)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            sim::Endpoint& endpoint = *machine.endpoint(speakerId);
            endpoint.unlistedProperties.swap(endpoint.properties);
        });

    EXPECT_EQ(text("HDAUDIO"), shown(speakerId, keys::enumeratorName));
    EXPECT_TRUE(lists(speakerId, keys::enumeratorName));
    EXPECT_FALSE(lists(speakerId, keys::instancePath));
}

TEST_F(UnlistedProperties, StayUnlistedWhenTheyChange)
{
    setUnlisted(speakerId, foreign, PropertyValue::ofText("old"));
    PROPVARIANT number;
    PropVariantInit(&number);
    number.vt = VT_UI4;
    number.ulVal = 5;

    EXPECT_EQ(S_OK, storeOf(speakerId)->SetValue(foreign, number));
    EXPECT_EQ("19 5", shown(speakerId, foreign));
    EXPECT_FALSE(lists(speakerId, foreign));

    simulation.events().setProperty(speakerId, foreign, PropertyValue());
    EXPECT_EQ(std::to_string(VT_EMPTY), shown(speakerId, foreign));
    EXPECT_TRUE(simulation.machine().endpoint(speakerId)->unlistedProperties.empty());
}
}
