#include "simulator/machine/nearestname.h"

#include <gtest/gtest.h>

namespace
{
const std::vector<std::string> names = {"friendlyName", "deviceFormat", "instancePath"};

TEST(NearestName, DiffersInCaseOrInFewCharacters)
{
    EXPECT_EQ("friendlyName", sim::nearestName("FRIENDLYNAME", names));
    EXPECT_EQ("friendlyName", sim::nearestName("frendlyName", names));
    EXPECT_EQ("deviceFormat", sim::nearestName("device_format", names));
    EXPECT_EQ("instancePath", sim::nearestName("istancePaht", names));
    EXPECT_EQ("deviceFormat", sim::nearestName("tefiseForwat", names)) << "four characters of twelve are others";
}

TEST(NearestName, IsEmptyWhenNoneIsNear)
{
    for (const std::string& name : {std::string(), std::string("colour"), std::string("name"), std::string(101, 'x')})
        EXPECT_EQ("", sim::nearestName(name, names)) << name;
    EXPECT_EQ("", sim::nearestName("friendlyName", {}));
}

TEST(NearestNameSuggestion, ListsAllNamesWhenNoneIsNear)
{
    EXPECT_EQ(" (did you mean \"deviceFormat\"?)", sim::suggestion("deviceformat", names, "properties"));
    EXPECT_EQ(" (properties: friendlyName, deviceFormat, instancePath)", sim::suggestion("x", names, "properties"));
}
}
