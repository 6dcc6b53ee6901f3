#include "simulator/core/hardware.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/nodetypes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
template<class AnyEndpoint>
std::vector<std::string> idsOf(const std::vector<AnyEndpoint*>& endpoints)
{
    std::vector<std::string> ids;
    for (const sim::Endpoint* const endpoint : endpoints)
        ids.push_back(endpoint->id);
    return ids;
}

class HardwareTest : public testing::Test
{
protected:
    sim::MachineBuilder bench{"bench"};
    sim::CardBuilder card = bench.card("Analog Audio");
};

using HardwareDevice = HardwareTest;
using HardwareDeviceInstance = HardwareTest;
using HardwareDefaultEndpoint = HardwareTest;
using HardwareEndpointsAt = HardwareTest;
using HardwareEndpointsInHardware = HardwareTest;
}

TEST_F(HardwareDevice, OpensRegardlessOfCaseAndPrefersTheExactId)
{
    const std::string id = card.speaker().id();
    std::string upper = id;
    upper.replace(upper.find("}.{") + 3, std::string::npos, "ABCDEFAB-CDEF-4ABC-8DEF-ABCDEFABCDEF}");
    std::string lower = id;
    lower.replace(lower.find("}.{") + 3, std::string::npos, "abcdefab-cdef-4abc-8def-abcdefabcdef}");
    card.headphones().endpoint().id = upper;
    card.lineOut().endpoint().id = lower;
    sim::Hardware hardware(bench.build());

    EXPECT_EQ(lower, hardware.openDevice(lower)->id);
    lower[lower.size() - 2] = 'F';
    EXPECT_EQ(upper, hardware.openDevice(lower)->id);
    EXPECT_TRUE(hardware.knows(lower));
    EXPECT_FALSE(hardware.hasDevice(lower));
}

TEST_F(HardwareDeviceInstance, IsTheFirstOneRegardlessOfCase)
{
    bench.machine().deviceInstances = {{"USB\\A", "first"}, {"usb\\a", "second"}};
    const sim::Hardware hardware(bench.build());

    ASSERT_NE(nullptr, hardware.deviceInstance("Usb\\a"));
    EXPECT_EQ("first", hardware.deviceInstance("Usb\\a")->parent);
    EXPECT_EQ(nullptr, hardware.deviceInstance("USB\\B"));
}

TEST_F(HardwareDefaultEndpoint, IsThatOfTheMachineWhileTheNamedOneIsAway)
{
    card.spdifOut().isDefault().unplugged();
    card.lineOut();
    const std::string best = card.speaker().id();
    const sim::Hardware hardware(bench.build());

    EXPECT_EQ(best, hardware.defaultEndpoint(eRender, eConsole));
    EXPECT_EQ(best, hardware.machine().defaultEndpoint(eRender, eConsole)->id);
}

TEST_F(HardwareDefaultEndpoint, IsTheOneThatWasNamedLast)
{
    const std::string first = card.speaker().isDefault().id();
    const std::string second = card.lineOut().id();
    sim::Hardware hardware(bench.build());

    hardware.nameDefault(*hardware.endpoint(second), eConsole);

    EXPECT_EQ(second, hardware.defaultEndpoint(eRender, eConsole));
    EXPECT_EQ(first, hardware.defaultEndpoint(eRender, eMultimedia));
    EXPECT_THAT(hardware.endpoint(first)->defaultFor, ElementsAre(eMultimedia, eCommunications));
    EXPECT_THAT(hardware.endpoint(second)->defaultFor, ElementsAre(eConsole));
}

TEST_F(HardwareDefaultEndpoint, IsNoneAfterTheNameWasRemovedFromAll)
{
    const std::string first = card.speaker().defaultFor(eConsole).id();
    const std::string second = card.lineOut().defaultFor(eConsole).id();
    sim::Hardware hardware(bench.build());

    hardware.removeDefault(eRender, eConsole);
    hardware.removeDefault(eCapture, eConsole);

    EXPECT_EQ(std::nullopt, hardware.defaultEndpoint(eRender, eConsole));
    EXPECT_THAT(hardware.endpoint(first)->defaultFor, IsEmpty());
    EXPECT_THAT(hardware.endpoint(second)->defaultFor, IsEmpty());
}

TEST_F(HardwareDefaultEndpoint, FollowsTheMachineAfterItWasIndexedAnew)
{
    card.speaker().isDefault();
    const std::string second = card.lineOut().id();
    sim::Hardware hardware(bench.build());

    hardware.machine().endpoints[0].defaultFor.clear();
    hardware.machine().endpoints[1].defaultFor = {eConsole};
    hardware.reindex();

    EXPECT_EQ(second, hardware.defaultEndpoint(eRender, eConsole));
}

TEST_F(HardwareEndpointsAt, AreThoseWhoseFirstConnectorIsJoinedToIt)
{
    const sim::EndpointBuilder speaker = card.speaker();
    const sim::EndpointBuilder other = card.headphones();
    const std::string third = card.lineOut().id();
    bench.machine().joins[2].to = speaker.jackId();
    const sim::Hardware hardware(bench.build());

    EXPECT_THAT(idsOf(hardware.endpointsAt(speaker.jackId())), ElementsAre(speaker.id(), third));
    EXPECT_THAT(idsOf(hardware.endpointsAt(other.jackId())), ElementsAre(other.id()));
    EXPECT_THAT(hardware.endpointsAt(speaker.streamId()), IsEmpty());
}

TEST_F(HardwareEndpointsInHardware, AreThoseWhoseVolumeOrMuteThePartImplements)
{
    const sim::Endpoint& speaker = card.speaker().hardwareVolume({}).hardwareMute().volumeInHardware().endpoint();
    const std::string id = speaker.id;
    const sim::HardwareControls controls = speaker.volume->hardware;
    const sim::EndpointBuilder sharing = card.headphones();
    sharing.endpoint().volume->hardware.mute = controls.mute;
    const sim::Hardware hardware(bench.build());

    EXPECT_THAT(idsOf(hardware.endpointsInHardware(controls.volume)), ElementsAre(id));
    EXPECT_THAT(idsOf(hardware.endpointsInHardware(controls.mute)), ElementsAre(id, sharing.id()));
    EXPECT_THAT(hardware.endpointsInHardware(sharing.jackId()), IsEmpty());
}
