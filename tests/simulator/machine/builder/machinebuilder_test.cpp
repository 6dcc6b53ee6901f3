#include "simulator/machine/builder/machinebuilder.h"

#include "simulator/machine/file/check.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

std::string textOf(const sim::Endpoint& endpoint, const PROPERTYKEY& key)
{
    const sim::PropertyValue* value = sim::findProperty(endpoint.properties, key);
    return value == nullptr ? "no property" : value->text.value_or("no text");
}

std::vector<std::string> endpointIds(const std::vector<sim::WaveDevice>& waveDevices)
{
    std::vector<std::string> ids;
    ids.reserve(waveDevices.size());
    for (const sim::WaveDevice& device : waveDevices)
        ids.push_back(device.endpointId);
    return ids;
}

class MachineBuilderTest : public testing::Test
{
protected:
    sim::MachineBuilder bench{"bench"};
    sim::CardBuilder codec = bench.card("Analog Audio");
};

using MachineBuilderCard = MachineBuilderTest;
using MachineBuilderBuild = MachineBuilderTest;
using EndpointBuilderNode = MachineBuilderTest;
using EndpointBuilderState = MachineBuilderTest;
using EndpointBuilderJoin = MachineBuilderTest;

TEST_F(MachineBuilderCard, GivesAnEndpointThePropertiesOfARealOne)
{
    const sim::EndpointBuilder speaker = codec.speaker("Speakers");

    const sim::Endpoint& endpoint = speaker.endpoint();

    EXPECT_THAT(endpoint.id, StartsWith("{0.0.0.00000000}.{"));
    EXPECT_EQ("Speakers", textOf(endpoint, sim::keys::deviceDescription));
    EXPECT_EQ("Analog Audio", textOf(endpoint, sim::keys::friendlyName));
    EXPECT_EQ(codec.instancePath(), textOf(endpoint, sim::keys::instancePath));
    EXPECT_THAT(codec.instancePath(), StartsWith("{1}.HDAUDIO\\FUNC_01&"));
    EXPECT_EQ(sim::DeviceFormat().bytes(), sim::findProperty(endpoint.properties, sim::keys::deviceFormat)->bytes);
    EXPECT_EQ(3u, sim::findProperty(endpoint.properties, sim::keys::speakerConfig)->number);
    EXPECT_EQ(38u, textOf(endpoint, sim::keys::endpointGuid).size());
}

// Microsoft's documentation of device topologies: both ends of a connection have one type.
TEST_F(MachineBuilderCard, GivesBothEndsOfAJoinOneType)
{
    const sim::EndpointBuilder speaker = codec.speaker();

    const sim::Machine machine = bench.build();

    EXPECT_EQ(Physical_External, machine.part(speaker.connectorId()).connector->type);
    EXPECT_EQ(Physical_External, machine.part(speaker.jackId()).connector->type);
}

TEST_F(MachineBuilderCard, KeepsAllEndpointsOfACardUnderOneInstancePath)
{
    const sim::EndpointBuilder speaker = codec.speaker();
    const sim::EndpointBuilder microphone = codec.microphone();

    EXPECT_EQ(textOf(speaker.endpoint(), sim::keys::instancePath),
              textOf(microphone.endpoint(), sim::keys::instancePath));
    EXPECT_THAT(microphone.id(), StartsWith("{0.0.1.00000000}.{"));
}

TEST_F(MachineBuilderCard, GivesEachCardAnInstanceOfItsOwnWithAParent)
{
    const sim::CardBuilder headset = bench.usbCard("USB Headset");

    const sim::Machine machine = bench.build();

    EXPECT_NE(codec.instanceId(), headset.instanceId());
    EXPECT_EQ(std::string::npos, headset.instanceId().find('.')) << "a dot would cut the instance id";
    EXPECT_THAT(machine.deviceInstance(codec.instanceId())->parent.value(), StartsWith("PCI\\VEN_"));
    EXPECT_THAT(machine.deviceInstance(headset.instanceId())->parent.value(), StartsWith("USB\\VID_"));
}

TEST_F(MachineBuilderCard, TakesAnInstanceIdAsItIs)
{
    const sim::CardBuilder card = bench.card("Named", "ROOT\\MEDIA\\0000");

    EXPECT_EQ("{1}.ROOT\\MEDIA\\0000", card.instancePath());
    EXPECT_EQ(nullptr, bench.build().deviceInstance("ROOT\\MEDIA\\0000"));
}

TEST_F(EndpointBuilderJoin, LeadsFromTheEndpointToTheJackAndBack)
{
    const sim::EndpointBuilder headphones = codec.headphones("Front Headphones");

    const sim::Machine machine = bench.build();
    const auto there = machine.peer(headphones.connectorId());
    const auto back = machine.peer(headphones.jackId());

    ASSERT_TRUE(there && back);
    EXPECT_EQ(headphones.jackId(), there->connector);
    EXPECT_EQ(codec.adapter().id, there->device);
    EXPECT_EQ(headphones.connectorId(), back->connector);
    EXPECT_EQ(headphones.id(), back->device);
    EXPECT_TRUE(machine.part(headphones.jackId()).part->subType == sim::nodetypes::headphones);
    EXPECT_EQ("Front Headphones", machine.part(headphones.jackId()).part->name);
}

TEST_F(EndpointBuilderJoin, CanBeTakenAway)
{
    const std::string connector = codec.speaker().unjoined().connectorId();

    const sim::Machine machine = bench.build();

    EXPECT_TRUE(machine.part(connector));
    EXPECT_FALSE(machine.peer(connector));
}

TEST_F(EndpointBuilderJoin, IsTakenAwayInBothDirectionsAndForOneEndpointOnly)
{
    sim::EndpointBuilder speaker = codec.speaker();
    const sim::EndpointBuilder microphone = codec.microphone();
    bench.machine().joins.push_back({microphone.jackId(), speaker.connectorId(), {}, false});

    speaker.unjoined();

    const sim::Machine machine = bench.build();
    ASSERT_EQ(1u, machine.joins.size());
    EXPECT_EQ(microphone.jackId(), machine.peer(microphone.connectorId())->connector);
    EXPECT_FALSE(machine.peer(speaker.jackId()));
    EXPECT_TRUE(machine.part(speaker.jackId()));
    EXPECT_EQ(&speaker.endpoint(), bench.machine().endpoint(speaker.id()));
}

TEST_F(EndpointBuilderNode, RunsFromTheStreamToTheJackOfAnOutput)
{
    const sim::EndpointBuilder speaker = codec.speaker();

    const sim::Machine machine = bench.build();

    const auto& paths = machine.adapters.front().topology->signalPaths;
    ASSERT_EQ(1u, paths.size());
    EXPECT_EQ(speaker.streamId(), paths.front().from);
    EXPECT_EQ(speaker.jackId(), paths.front().to);
    EXPECT_THAT(paths.front().through, IsEmpty());
    EXPECT_THAT(machine.part(speaker.jackId()).part->incoming, ElementsAre(speaker.streamId()));
}

TEST_F(EndpointBuilderNode, StandsNextToTheJackOfAnOutput)
{
    sim::EndpointBuilder speaker = codec.speaker();

    speaker.hardwareVolume({-96.0f, 0.0f, 1.5f, -30.0f}).hardwareMute(true);

    const sim::Machine machine = bench.build();
    const auto& subunits = machine.adapters.front().topology->subunits;
    ASSERT_EQ(2u, subunits.size());
    const sim::Subunit& volume = subunits[0];
    const sim::Subunit& mute = subunits[1];
    EXPECT_THAT(machine.part(speaker.jackId()).part->incoming, ElementsAre(volume.id));
    EXPECT_THAT(volume.incoming, ElementsAre(mute.id));
    EXPECT_THAT(volume.outgoing, ElementsAre(speaker.jackId()));
    EXPECT_THAT(mute.incoming, ElementsAre(speaker.streamId()));
    EXPECT_THAT(machine.part(speaker.streamId()).part->outgoing, ElementsAre(mute.id));
    EXPECT_THAT(machine.adapters.front().topology->signalPaths.front().through, ElementsAre(mute.id, volume.id));
    EXPECT_EQ(1u, machine.adapters.front().topology->signalPaths.size());
    EXPECT_EQ(-30.0f, volume.volume->channels.at(1).level);
    EXPECT_TRUE(mute.mute->muted);
}

TEST_F(EndpointBuilderNode, StandsBehindTheJackOfAnInput)
{
    sim::EndpointBuilder microphone = codec.microphone();

    microphone.hardwareVolume({0.0f, 30.0f, 10.0f, 10.0f}, 1);

    const sim::Machine machine = bench.build();
    const sim::Subunit& volume = machine.adapters.front().topology->subunits.front();
    EXPECT_THAT(machine.part(microphone.jackId()).part->outgoing, ElementsAre(volume.id));
    EXPECT_THAT(machine.part(microphone.streamId()).part->incoming, ElementsAre(volume.id));
    EXPECT_EQ(1u, volume.volume->channels.size());
}

TEST_F(EndpointBuilderNode, MayImplementTheVolumeOfTheEndpoint)
{
    codec.speaker().hardwareVolume({-48.0f, 6.0f, 0.5f, -12.5f}, 3).hardwareMute(true).volumeInHardware();

    const sim::Machine machine = bench.build();

    const sim::EndpointVolume& volume = *machine.endpoints.front().volume;
    EXPECT_EQ(-48.0f, volume.minimum);
    EXPECT_EQ(6.0f, volume.maximum);
    EXPECT_EQ(0.5f, volume.step);
    EXPECT_THAT(volume.channels, ElementsAre(-12.5f, -12.5f, -12.5f));
    EXPECT_TRUE(volume.muted);
    EXPECT_TRUE(machine.part(volume.hardware.volume)->volume);
    EXPECT_TRUE(machine.part(volume.hardware.mute)->mute);
    EXPECT_THAT(sim::checkMachine(machine), IsEmpty());
}

TEST_F(EndpointBuilderState, TakesWhatThePlatformDoesNotGiveInThatState)
{
    const sim::EndpointBuilder unplugged = codec.headphones().unplugged();
    const sim::EndpointBuilder absent = codec.lineOut().notPresent();

    EXPECT_EQ(sim::stateUnplugged, unplugged.endpoint().state);
    EXPECT_FALSE(unplugged.endpoint().hasAudioClient);
    EXPECT_TRUE(unplugged.endpoint().volume);
    EXPECT_EQ(sim::stateNotPresent, absent.endpoint().state);
    EXPECT_FALSE(absent.endpoint().volume);
}

TEST_F(MachineBuilderBuild, MakesTheFirstActiveEndpointOfAFlowTheDefault)
{
    codec.headphones().unplugged();
    const sim::EndpointBuilder speaker = codec.speaker();
    codec.lineOut();

    const sim::Machine machine = bench.build();

    for (const ERole role : {eConsole, eMultimedia, eCommunications})
    {
        ASSERT_NE(nullptr, machine.defaultEndpoint(eRender, role));
        EXPECT_EQ(speaker.id(), machine.defaultEndpoint(eRender, role)->id);
        EXPECT_EQ(nullptr, machine.defaultEndpoint(eCapture, role));
    }
}

TEST_F(MachineBuilderBuild, KeepsADefaultThatWasChosen)
{
    codec.speaker();
    const sim::EndpointBuilder line = codec.lineOut().defaultFor(eConsole);

    const sim::Machine machine = bench.build();

    EXPECT_EQ(line.id(), machine.defaultEndpoint(eRender, eConsole)->id);
    EXPECT_EQ(nullptr, machine.defaultEndpoint(eRender, eCommunications));
}

TEST_F(MachineBuilderBuild, HasOneDefaultForARoleWhenItIsChosenTwice)
{
    codec.speaker().isDefault();
    const sim::EndpointBuilder line = codec.lineOut().isDefault();

    EXPECT_EQ(line.id(), bench.build().defaultEndpoint(eRender, eMultimedia)->id);
    EXPECT_THAT(sim::checkMachine(bench.build()), IsEmpty());
}

TEST_F(MachineBuilderBuild, CountsActiveEndpointsAsWaveDevices)
{
    const std::string speaker = codec.speaker().id();
    codec.lineOut().disabled();
    const std::string headphones = codec.headphones().id();
    const std::string microphone = codec.microphone().id();

    const sim::Machine machine = bench.build();

    EXPECT_THAT(endpointIds(machine.waveOut), ElementsAre(speaker, headphones));
    EXPECT_THAT(endpointIds(machine.waveIn), ElementsAre(microphone));
}

TEST_F(MachineBuilderBuild, LeavesDefaultsAndWaveIdsAloneWhenAsked)
{
    codec.speaker();

    const sim::Machine machine = bench.withoutDefaults().withoutWaveIds().build();

    EXPECT_EQ(nullptr, machine.defaultEndpoint(eRender, eConsole));
    EXPECT_THAT(machine.waveOut, IsEmpty());
}

TEST_F(MachineBuilderBuild, TakesWhatIsSaidOfTheMachineAsAWhole)
{
    bench.removedEndpoints(sim::RemovedEndpoints::unknown).callbackThread(sim::CallbackThread::bare);

    const sim::Machine machine = bench.build();

    EXPECT_EQ(sim::RemovedEndpoints::unknown, machine.removedEndpoints);
    EXPECT_EQ(sim::CallbackThread::bare, machine.callbackThread);
}

TEST_F(MachineBuilderBuild, GivesEqualMachinesForEqualCalls)
{
    sim::MachineBuilder again("bench");
    sim::CardBuilder sameCodec = again.card("Analog Audio");
    sameCodec.speaker().hardwareVolume({});
    codec.speaker().hardwareVolume({});

    EXPECT_TRUE(again.build() == bench.build());
    EXPECT_TRUE(again.build() != sim::MachineBuilder("bench").build());
}

TEST_F(MachineBuilderBuild, PassesTheCheckWithEveryKindOfJack)
{
    sim::CardBuilder headset = bench.usbCard("USB Headset");
    codec.speaker().hardwareVolume({}).hardwareMute();
    codec.headphones();
    codec.lineOut();
    codec.spdifOut().withoutVolume();
    codec.hdmi().withoutTopology();
    codec.microphone().level(-20.0f).muted();
    codec.lineIn();
    codec.spdifIn().notInstalled();
    headset.microphone();
    headset.headphones().format({24, 96000, 2});

    EXPECT_THAT(sim::checkMachine(bench.build()), IsEmpty());
}

TEST_F(EndpointBuilderNode, FindsTheJackAfterATestHasRenamedAndMovedParts)
{
    sim::EndpointBuilder speaker = codec.speaker();
    std::vector<sim::Connector>& connectors = codec.adapter().topology->connectors;
    sim::Connector other;
    other.id = "other";
    connectors.insert(connectors.begin(), other);

    EXPECT_EQ(speaker.jackId(), speaker.jack().id);
    EXPECT_EQ("Speakers", speaker.jack().name);
}

TEST_F(MachineBuilderCard, ConnectsPartsThatATestHasAddedItself)
{
    sim::Connector added;
    added.id = "added";
    codec.adapter().topology->connectors.push_back(added);
    const std::string jack = codec.connector("Jack", sim::nodetypes::speaker, Out);

    codec.chain({"added", jack});

    const sim::Machine machine = bench.build();
    EXPECT_THAT(machine.part("added").part->outgoing, ElementsAre(jack));
    EXPECT_THAT(machine.part(jack).part->incoming, ElementsAre("added"));
}

TEST_F(MachineBuilderCard, OfAnInstanceThatHasOneAlreadyConnectsThePartsOfTheFirst)
{
    sim::CardBuilder first = bench.card("First", "USB\\A");
    sim::CardBuilder second = bench.card("Second", "USB\\A");
    first.speaker();

    second.speaker();

    EXPECT_EQ(2u, first.adapter().topology->connectors.front().incoming.size());
    EXPECT_TRUE(second.adapter().topology->connectors.front().incoming.empty());
}

TEST_F(MachineBuilderCard, OfAnInstanceThatHasOneAlreadyConnectsThePartsOfTheFirstThatComesLater)
{
    sim::CardBuilder first = bench.card("First", "USB\\A");
    sim::CardBuilder second = bench.card("Second", "USB\\A");
    second.speaker();

    first.speaker();

    EXPECT_EQ(1u, first.adapter().topology->connectors.front().incoming.size());
    EXPECT_EQ(1u, second.adapter().topology->connectors.front().incoming.size());
}
}
