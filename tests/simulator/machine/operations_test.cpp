#include "simulator/machine/operations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using testing::AllOf;
using testing::HasSubstr;

TEST(Operations, AreKnownByTheirFullName)
{
    for (const char* name : {"IMMDevice::Activate", "IMMDevice::Release", "IUnknown::QueryInterface",
                             "ISubunit::AddRef", "IAudioClient::GetService", "CoCreateInstance", "waveInMessage"})
        EXPECT_TRUE(sim::isOperation(name)) << name;
}

TEST(Operations, AreKnownByTheirBareNameForEveryInterface)
{
    for (const char* name : {"Release", "Activate", "GetCount", "GetVolumeRange", "JoinFilterGraph"})
        EXPECT_TRUE(sim::isOperation(name)) << name;
}

TEST(Operations, AreNotKnownWhenTheyAreMisspelt)
{
    for (const char* name : {"", "Releas", "release", "Release ", "QueryInterface AddRef", "IMMDevice",
                             "IMMDevice::", "::Release", "IMMDevice::GetCount", "IMMDevice::CoCreateInstance",
                             "IFoo::Release", "IMMDevice::Activate::", "immdevice::Activate", "CoCreateInstanceEx"})
        EXPECT_FALSE(sim::isOperation(name)) << name;
}

TEST(Operations, OfAnEndpointVolumeAreBareAndDoNotCountReferences)
{
    EXPECT_TRUE(sim::isEndpointVolumeOperation("SetMute"));
    for (const char* name : {"Release", "AddRef", "Activate", "IAudioEndpointVolume::SetMute", ""})
        EXPECT_FALSE(sim::isEndpointVolumeOperation(name)) << name;
}

TEST(OperationSuggestion, IsTheNearestName)
{
    EXPECT_EQ(" (did you mean \"IMMDevice::Activate\"?)", sim::operationSuggestion("IMMDevice::activat"));
    EXPECT_EQ(" (did you mean \"IMMDevice::Activate\"?)", sim::operationSuggestion("IMMDevce::Activate"));
    EXPECT_EQ(" (did you mean \"Release\"?)", sim::operationSuggestion("Relase"));
    EXPECT_EQ(" (did you mean \"CoCreateInstance\"?)", sim::operationSuggestion("CoCreateInstanceEx"));
}

TEST(OperationSuggestion, ListsTheOperationsOfAnInterfaceWhenNoNameIsNear)
{
    EXPECT_EQ(
        " (operations of IMMDevice: Activate, OpenPropertyStore, GetId, GetState, QueryInterface, AddRef, Release)",
        sim::operationSuggestion("IMMDevice::Explode"));
}

TEST(OperationSuggestion, ListsFunctionsAndInterfacesWhenNothingIsNear)
{
    EXPECT_THAT(sim::operationSuggestion("Xyzzy"),
                AllOf(HasSubstr("(functions: CoInitialize "), HasSubstr("; interfaces: IUnknown "),
                      HasSubstr(" IBaseFilter)")));
    EXPECT_EQ(sim::operationSuggestion(""), sim::operationSuggestion(std::string(1 << 20, 'x')));
}
}
