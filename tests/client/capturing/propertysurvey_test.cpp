#include "client/capturing/variant.h"

#include "simulator/machine/propertykeys.h"
#include "tests/client/capturing/surveytest.h"

namespace
{
using sim::PropertyValue;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr PROPERTYKEY ownKey = {{0x12345678, 0x1234, 0x1234, {1, 2, 3, 4, 5, 6, 7, 8}}, 9};
const std::string ownKeyText = "{12345678-1234-1234-0102-030405060708}/9";

class SurveyProperties : public SurveyTest
{
protected:
    /// Starts a machine whose only endpoint has these properties.
    void startWith(sim::Properties listed, sim::Properties unlisted = {})
    {
        sim::Machine machine = machineWithOneEndpoint();
        machine.endpoints[0].properties = std::move(listed);
        machine.endpoints[0].unlistedProperties = std::move(unlisted);
        id = machine.endpoints[0].id;
        start(std::move(machine));
    }

    static std::vector<std::string> keysOf(const sim::Properties& properties)
    {
        std::vector<std::string> texts;
        for (const sim::Property& property : properties)
            texts.push_back(sim::keyText(property.key));
        return texts;
    }

    sim::FaultPlan& faults() { return simulation().faults(); }

    std::string id;
    const PropertyValue text = PropertyValue::ofText("a text");
    const PropertyValue placeholder = PropertyValue::ofText(std::nullopt);
};

TEST_F(SurveyProperties, RecordsThemAsStoredInTheirOrder)
{
    sim::Properties properties = {{ownKey, text},
                                  {sim::keys::friendlyName, placeholder},
                                  {sim::keys::formFactor, PropertyValue::ofNumber(3)},
                                  {sim::keys::containerId, PropertyValue::ofGuid(KSNODETYPE_SPEAKER)},
                                  {sim::keys::deviceFormat, PropertyValue::ofBytes({1, 2, 3})},
                                  {sim::keys::association, PropertyValue::ofReal(0.5f)},
                                  {sim::keys::jackSubType, PropertyValue::ofLongReal(-0.25)},
                                  {sim::keys::instanceId, PropertyValue::ofNarrowText("narrow")},
                                  {sim::keys::instancePath, PropertyValue::ofBoolean(true)},
                                  {sim::keys::enumeratorName, PropertyValue::ofNumber(~std::uint64_t{0}, VT_I8)},
                                  {sim::keys::speakerConfig, PropertyValue::ofNumber(1ull << 40, VT_FILETIME)},
                                  {sim::keys::endpointGuid, PropertyValue::ofNumber(200, VT_UI1)},
                                  {sim::keys::interfacePath, PropertyValue::ofNumber(0xFFFE, VT_I2)}};
    startWith(properties);

    const capturing::Survey found = survey();

    EXPECT_EQ(properties, found.machine.endpoints[0].properties);
    EXPECT_THAT(found.machine.endpoints[0].unlistedProperties, IsEmpty());
    EXPECT_THAT(failuresOf(found), IsEmpty());
    EXPECT_THAT(found.notes, IsEmpty());
    expectSame(found, replay(found));
}

TEST_F(SurveyProperties, RecordsTheTagAloneOfAnyOtherValue)
{
    startWith({{ownKey, PropertyValue::ofTag(VT_NULL)}});

    const capturing::Survey found = survey();

    EXPECT_EQ(PropertyValue::ofTag(VT_NULL), found.machine.endpoints[0].properties[0].value);
    EXPECT_THAT(found.notes,
                ElementsAre("Of the property " + ownKeyText + " of " + id + " the tag alone, 1, is recorded."));
}

TEST_F(SurveyProperties, RecordsWellKnownOnesThatAreNotListedApart)
{
    startWith({{ownKey, text}}, {{sim::keys::fullName, text}});

    const capturing::Survey found = survey();

    EXPECT_THAT(keysOf(found.machine.endpoints[0].properties), ElementsAre(ownKeyText));
    ASSERT_THAT(keysOf(found.machine.endpoints[0].unlistedProperties), ElementsAre(sim::keyText(sim::keys::fullName)));
    EXPECT_EQ(text, found.machine.endpoints[0].unlistedProperties[0].value);
}

TEST_F(SurveyProperties, KeepsThePlaceOfAValueThatFails)
{
    startWith({{ownKey, text}, {sim::keys::friendlyName, text}});
    faults().fail("IPropertyStore::GetValue").with(ownKeyText);
    faults().fail("IPropertyStore::GetValue").with("association");

    const capturing::Survey found = survey();

    EXPECT_THAT(keysOf(found.machine.endpoints[0].properties), ElementsAre(ownKeyText, "friendlyName"));
    EXPECT_EQ(placeholder, found.machine.endpoints[0].properties[0].value);
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IPropertyStore::GetValue(" + ownKeyText + ")", id),
                                               failureOf("IPropertyStore::GetValue(association)", id)));
    expectSame(found, replay(found));
}

TEST_F(SurveyProperties, FillsThePlaceOfAKeyThatFailsWithAWellKnownOne)
{
    startWith({{ownKey, text}, {sim::keys::friendlyName, text}});
    faults().fail("IPropertyStore::GetAt").with("1");

    const capturing::Survey found = survey();

    EXPECT_THAT(keysOf(found.machine.endpoints[0].properties), ElementsAre(ownKeyText, "friendlyName"));
    EXPECT_THAT(found.machine.endpoints[0].unlistedProperties, IsEmpty());
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IPropertyStore::GetAt(1)", id)));
    expectSame(found, replay(found));
}

TEST_F(SurveyProperties, InventsAKeyThatFailsIfNoneIsLeft)
{
    startWith({{ownKey, text}, {sim::keys::friendlyName, text}});
    faults().fail("IPropertyStore::GetAt").with("0");

    const capturing::Survey found = survey();

    EXPECT_THAT(keysOf(found.machine.endpoints[0].properties),
                ElementsAre("{00000000-0000-0000-0000-000000000000}/0", "friendlyName"));
    EXPECT_EQ(placeholder, found.machine.endpoints[0].properties[0].value);
    expectSame(found, replay(found));
}

TEST_F(SurveyProperties, ListsTheWellKnownOnesIfTheyCannotBeCounted)
{
    startWith({{ownKey, text}, {sim::keys::friendlyName, text}}, {{sim::keys::deviceDescription, text}});
    faults().fail("IPropertyStore::GetCount");

    const capturing::Survey found = survey();

    EXPECT_THAT(keysOf(found.machine.endpoints[0].properties), ElementsAre("deviceDescription", "friendlyName"));
    EXPECT_THAT(found.machine.endpoints[0].unlistedProperties, IsEmpty());
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IPropertyStore::GetCount", id)));
    expectSame(found, replay(found));
}

TEST_F(SurveyProperties, NotesAListedKeyWithoutValue)
{
    startWith({{ownKey, text}});
    faults().succeedWithNull("IPropertyStore::GetValue").with(ownKeyText);

    const capturing::Survey found = survey();

    EXPECT_THAT(found.machine.endpoints[0].properties, IsEmpty());
    EXPECT_THAT(found.notes,
                ElementsAre("The property store of " + id + " lists " + ownKeyText + ", which it does not have."));
}

TEST_F(SurveyProperties, GivesUpAStoreThatDoesNotGiveItsKeys)
{
    sim::Properties properties;
    for (DWORD number = 0; number < 40; ++number)
        properties.push_back({{ownKey.fmtid, number}, text});
    startWith(properties);
    faults().fail("IPropertyStore::GetAt");

    const capturing::Survey found = survey();

    EXPECT_EQ(16u, found.machine.endpoints[0].properties.size());
    EXPECT_EQ(16u, found.failures.size());
    EXPECT_THAT(found.notes, ElementsAre("The property store of " + id + " does not give the keys that it counts."));
}

TEST_F(SurveyProperties, AreMissingIfTheStoreDoesNotOpen)
{
    startWith({{ownKey, text}});
    faults().fail("IMMDevice::OpenPropertyStore").with("0");

    const capturing::Survey found = survey();

    EXPECT_THAT(found.machine.endpoints[0].properties, IsEmpty());
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IMMDevice::OpenPropertyStore(0)", id)));
    expectSame(found, replay(found));
}

TEST(RecordedVariant, HasTheTagAloneOfABlobWithoutBytes)
{
    PROPVARIANT variant = {};
    variant.vt = VT_BLOB;
    variant.blob.cbSize = 4;

    const capturing::RecordedValue found = capturing::recorded(variant);

    EXPECT_EQ(PropertyValue::ofTag(VT_BLOB), found.value);
    EXPECT_FALSE(found.isWhole);
}

TEST(RecordedVariant, HasTheTagAloneOfAnIdentifierThatIsNull)
{
    PROPVARIANT variant = {};
    variant.vt = VT_CLSID;

    EXPECT_FALSE(capturing::recorded(variant).isWhole);
}
}
