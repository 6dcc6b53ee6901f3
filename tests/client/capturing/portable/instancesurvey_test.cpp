// Device instances, which off Windows the simulated machine has.
#include "client/capturing/devices.h"

#include "simulator/machine/identity.h"
#include "simulator/machine/propertykeys.h"
#include "tests/client/capturing/surveytest.h"

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

class SurveyDeviceInstances : public SurveyTest
{
protected:
    SurveyDeviceInstances()
    {
        machine = machineWithOneEndpoint();
        machine.endpoints[0].properties = {
            {sim::keys::instancePath, sim::PropertyValue::ofText("{1}.HDAUDIO\\A\\1.more")}};
        machine.deviceInstances = {{"ROOT\\0", std::nullopt},
                                   {"PCI\\B\\2", "ROOT\\0"},
                                   {"HDAUDIO\\A\\1", "PCI\\B\\2"},
                                   {"USB\\C\\3", "usb\\c\\3"},
                                   {"OTHER\\1", "ROOT\\0"}};
    }

    std::vector<std::string> instances(const std::vector<sim::DeviceInstance>& list)
    {
        std::vector<std::string> texts;
        for (const sim::DeviceInstance& each : list)
            texts.push_back(each.id + " < " + each.parent.value_or("none"));
        return texts;
    }

    sim::Machine machine;
};

TEST_F(SurveyDeviceInstances, RecordsThoseOfEndpointsUpToTheRoot)
{
    start(machine);

    const capturing::Survey found = survey();

    EXPECT_THAT(instances(found.machine.deviceInstances),
                ElementsAre("HDAUDIO\\A\\1 < PCI\\B\\2", "PCI\\B\\2 < ROOT\\0"));
    expectSame(found, replay(found));
}

TEST_F(SurveyDeviceInstances, RecordsThoseThatPropertiesAndAdaptersNameEachOnce)
{
    sim::Machine surveyed;
    surveyed.endpoints.resize(2);
    surveyed.endpoints[0].unlistedProperties = {{sim::keys::instanceId, sim::PropertyValue::ofText("OTHER\\1")}};
    surveyed.endpoints[1].properties = {{sim::keys::instanceId, sim::PropertyValue::ofText("other\\1")}};
    surveyed.adapters.resize(1);
    surveyed.adapters[0].id = sim::adapterId("HDAUDIO\\A\\1");
    start(machine);

    capturing::surveyDeviceInstances(surveyed);

    EXPECT_THAT(instances(surveyed.deviceInstances),
                ElementsAre("OTHER\\1 < ROOT\\0", "HDAUDIO\\A\\1 < PCI\\B\\2", "PCI\\B\\2 < ROOT\\0"));
    EXPECT_EQ(1u, simulation().journal().of("getParentDeviceInstanceId").with("ROOT\\0").size());
}

TEST_F(SurveyDeviceInstances, EndsAtAnInstanceThatIsItsOwnParent)
{
    sim::Machine surveyed;
    surveyed.endpoints.resize(1);
    surveyed.endpoints[0].properties = {{sim::keys::instanceId, sim::PropertyValue::ofText("USB\\C\\3")}};
    start(machine);

    capturing::surveyDeviceInstances(surveyed);

    EXPECT_THAT(instances(surveyed.deviceInstances), ElementsAre("USB\\C\\3 < usb\\c\\3"));
}

TEST_F(SurveyDeviceInstances, AsksNothingWithoutNames)
{
    machine.endpoints[0].properties.clear();
    start(machine);

    EXPECT_THAT(survey().machine.deviceInstances, IsEmpty());
    EXPECT_EQ(0u, simulation().journal().count("getParentDeviceInstanceId"));
}

TEST_F(SurveyDeviceInstances, AsksNothingOfAnAdapterWhoseIdNamesNoInstance)
{
    sim::Machine surveyed;
    surveyed.adapters.resize(1);
    surveyed.adapters[0].id = "elsewhere";
    start(machine);

    capturing::surveyDeviceInstances(surveyed);

    EXPECT_THAT(surveyed.deviceInstances, IsEmpty());
    EXPECT_EQ(0u, simulation().journal().count("getParentDeviceInstanceId"));
}

/// On Windows the system's own PropVariantClear answers.
class SurveyPropertiesThatAreNotCleared : public SurveyTest
{
};

TEST_F(SurveyPropertiesThatAreNotCleared, NotesTheTag)
{
    sim::Machine machine = machineWithOneEndpoint();
    machine.endpoints[0].properties = {{sim::keys::formFactor, sim::PropertyValue::ofNumber(1)},
                                       {sim::keys::speakerConfig, sim::PropertyValue::ofNumber(3)}};
    start(machine);
    simulation().faults().fail("PropVariantClear");

    const capturing::Survey found = survey();

    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("PropVariantClear(19)", "")));
    EXPECT_EQ(machine.endpoints[0].properties, found.machine.endpoints[0].properties);
    expectSame(found, replay(found));
}
}
