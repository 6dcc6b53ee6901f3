#include "tests/support/randomhardware.h"

#include "COM/identifiers.h"
#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/identity.h"
#include "simulator/machine/nodetypes.h"

#include <algorithm>
#include <utility>

namespace support
{
namespace
{
sim::EndpointBuilder randomEndpoint(RandomChoice& choice, sim::CardBuilder& card)
{
    switch (choice.below(8))
    {
    case 0:
        return card.speaker();
    case 1:
        return card.headphones();
    case 2:
        return card.lineOut("Line Out " + std::to_string(choice.below(3)));
    case 3:
        return card.spdifOut();
    case 4:
        return card.hdmi("Bildschirm \xC3\x9C\xE2\x82\xAC");
    case 5:
        return card.microphone("\xE3\x83\x9E\xE3\x82\xA4\xE3\x82\xAF \xF0\x9F\x8E\xA4");
    case 6:
        return card.lineIn();
    default:
        return card.microphone();
    }
}

void addNodes(RandomChoice& choice, sim::EndpointBuilder& endpoint)
{
    for (unsigned count = choice.below(3); count > 0; --count)
    {
        const sim::ChannelLevel level = randomLevel(choice);
        const std::size_t channels = 1 + choice.below(8);
        const bool isMuted = choice.chance(30);
        if (choice.chance(60))
            endpoint.hardwareVolume(level, channels);
        if (choice.chance(50))
            endpoint.hardwareMute(isMuted);
    }
    if (choice.chance(15))
    {
        sim::Subunit node;
        node.subType = choice.oneOf({sim::nodetypes::volume, sim::nodetypes::mute, sim::nodetypes::sum});
        endpoint.node(node); // a volume or mute node without its control
    }
}

void change(RandomChoice& choice, sim::EndpointBuilder& endpoint)
{
    if (choice.chance(40))
        endpoint.state(choice.oneOf({sim::stateDisabled, sim::stateNotPresent, sim::stateUnplugged}));
    if (endpoint.endpoint().volume && choice.chance(60))
        endpoint.volume(randomVolume(choice));
    if (choice.chance(10))
        endpoint.withoutVolume();
    addNodes(choice, endpoint);
    if (choice.chance(8))
        endpoint.unjoined();
    if (choice.chance(8))
        endpoint.withoutTopology();
    if (choice.chance(15))
        endpoint.jackName(choice.chance(50) ? sim::OptionalString() : sim::OptionalString(""));
    if (choice.chance(4))
        endpoint.notInstalled();
}

std::vector<sim::Part*> partsOf(sim::Topology& topology)
{
    std::vector<sim::Part*> parts;
    for (sim::Connector& connector : topology.connectors)
        parts.push_back(&connector);
    for (sim::Subunit& subunit : topology.subunits)
        parts.push_back(&subunit);
    return parts;
}

void connect(sim::Part& from, sim::Part& to)
{
    const auto addOnce = [](std::vector<std::string>& ids, const std::string& id)
    {
        if (std::find(ids.begin(), ids.end(), id) == ids.end())
            ids.push_back(id);
    };
    addOnce(from.outgoing, to.id);
    addOnce(to.incoming, from.id);
}

/// A new subunit of the topology; pointers to its parts become invalid.
sim::Subunit& addSubunit(sim::Topology& topology, const std::string& owner, const GUID& type)
{
    std::uint32_t localId = 0x00FF0000;
    for (const sim::Part* const part : partsOf(topology))
        localId = std::max(localId, part->localId + 1);
    sim::Subunit subunit;
    subunit.localId = localId;
    subunit.id = sim::partId(owner, localId);
    subunit.name = "Node " + std::to_string(localId & 0xFF);
    subunit.subType = type;
    topology.subunits.push_back(std::move(subunit));
    return topology.subunits.back();
}

/// Feeds a new selector with some parts.
void addSelector(RandomChoice& choice, sim::Adapter& adapter)
{
    sim::Topology& topology = *adapter.topology;
    addSubunit(topology, adapter.id, sim::nodetypes::multiplexer).selector = sim::SelectorControl{};
    std::vector<sim::Part*> parts = partsOf(topology);
    sim::Part& selector = *parts.back();
    parts.pop_back();
    for (unsigned count = choice.below(4); count > 0 && !parts.empty(); --count)
    {
        sim::Part& input = *choice.from(parts);
        connect(input, selector);
        if (choice.chance(50))
            selector.selector->selection = input.localId;
    }
    if (!parts.empty())
        connect(selector, *choice.from(parts));
}

/// A volume, with or without a mute after it, between two connectors that have other paths, too.
void addSharedVolume(RandomChoice& choice, sim::Adapter& adapter)
{
    sim::Topology& topology = *adapter.topology;
    addSubunit(topology, adapter.id, sim::nodetypes::volume);
    addSubunit(topology, adapter.id, sim::nodetypes::mute);
    sim::Subunit& volume = topology.subunits[topology.subunits.size() - 2];
    sim::Subunit& mute = topology.subunits.back();
    volume.volume = sim::VolumeControl{{randomLevel(choice), randomLevel(choice)}};
    mute.mute = sim::MuteControl{choice.chance(50)};
    if (choice.chance(60))
        connect(volume, mute);
    for (unsigned count = 0; count < 2; ++count)
    {
        sim::Part& connector = choice.from(topology.connectors);
        if (choice.chance(50))
            connect(volume, connector);
        else
            connect(connector, volume);
    }
}

void describeJacks(RandomChoice& choice, sim::Connector& connector)
{
    for (unsigned count = choice.below(3); count > 0; --count)
    {
        sim::Jack jack;
        jack.channels = choice.below(64);
        jack.colour = choice.oneOf({0u, 0x008F8Fu, 0xFF8037u, 0x123456u});
        jack.connection = choice.oneOf({eConnType3Point5mm, eConnTypeOptical, eConnTypeUnknown});
        jack.geometricLocation = choice.oneOf({eGeoLocRear, eGeoLocFront, eGeoLocHDMI});
        jack.generalLocation = choice.oneOf({eGenLocPrimaryBox, eGenLocInternal});
        jack.portConnection = choice.oneOf({ePortConnJack, ePortConnUnknown});
        jack.detectsPresence = choice.chance(50);
        if (choice.chance(50))
            jack.connected = choice.chance(50);
        connector.jacks.push_back(jack);
    }
}

void changeParts(RandomChoice& choice, sim::Topology& topology)
{
    for (sim::Part* const part : partsOf(topology))
    {
        if (choice.chance(5))
            part->name = choice.chance(50) ? sim::OptionalString() : sim::OptionalString("");
    }
    for (sim::Subunit& subunit : topology.subunits)
        subunit.reportsId = !choice.chance(3);
    for (sim::Connector& connector : topology.connectors)
    {
        if (choice.chance(25))
            describeJacks(choice, connector);
    }
}

/// Joins between any two connectors, or to a device that does not exist.
void addJoins(RandomChoice& choice, sim::Machine& machine)
{
    std::vector<std::string> connectors;
    const auto collect = [&](const sim::Device& device)
    {
        if (device.topology)
        {
            for (const sim::Connector& connector : device.topology->connectors)
                connectors.push_back(connector.id);
        }
    };
    std::for_each(machine.endpoints.begin(), machine.endpoints.end(), collect);
    std::for_each(machine.adapters.begin(), machine.adapters.end(), collect);
    for (unsigned count = choice.below(4); count > 0 && !connectors.empty(); --count)
    {
        sim::Join join;
        join.from = choice.from(connectors);
        const std::string to = choice.from(connectors);
        join.bothWays = choice.chance(60);
        if (choice.chance(80))
            join.to = to;
        else
            join.toDevice = "{2}.\\\\?\\usb#vid_0000&pid_0000#nowhere";
        const auto place = machine.joins.begin() + choice.below(machine.joins.size() + 1);
        if (join.from != join.to)
            machine.joins.insert(place, join);
    }
}
}

sim::Machine randomCards(RandomChoice& choice, const std::string& name)
{
    sim::MachineBuilder builder(name);
    if (choice.chance(20))
        builder.withoutDefaults();
    if (choice.chance(20))
        builder.withoutWaveIds();
    const unsigned cards = choice.below(7);
    for (unsigned i = 0; i < cards; ++i)
    {
        const std::string cardName = "Card " + std::to_string(i);
        sim::CardBuilder card = choice.chance(50) ? builder.usbCard(cardName) : builder.card(cardName);
        const unsigned endpoints = choice.below(choice.chance(25) ? 9 : 4);
        for (unsigned j = 0; j < endpoints; ++j)
        {
            sim::EndpointBuilder endpoint = randomEndpoint(choice, card);
            change(choice, endpoint);
        }
    }
    return builder.build();
}

void addOddHardware(RandomChoice& choice, sim::Machine& machine)
{
    for (sim::Adapter& adapter : machine.adapters)
    {
        if (!adapter.topology || adapter.topology->connectors.empty())
            continue;
        if (choice.chance(35))
            addSelector(choice, adapter);
        if (choice.chance(35))
            addSharedVolume(choice, adapter);
        changeParts(choice, *adapter.topology);
        adapter.openable = adapter.openable && !choice.chance(4);
    }
    if (choice.chance(40))
        addJoins(choice, machine);
}

sim::ChannelLevel randomLevel(RandomChoice& choice)
{
    sim::ChannelLevel level;
    level.minimum = choice.oneOf({-96.0f, -65.25f, -37.5f, 0.0f, -0.1f});
    level.maximum = level.minimum + choice.oneOf({96.0f, 12.0f, 65.25f, 0.3f});
    level.step = (level.maximum - level.minimum) / static_cast<float>(1 + choice.below(200));
    const auto share = static_cast<float>(choice.below(1001)) / 1000.0f;
    level.level = std::clamp(level.minimum + share * (level.maximum - level.minimum), level.minimum, level.maximum);
    return level;
}

sim::EndpointVolume randomVolume(RandomChoice& choice)
{
    const sim::ChannelLevel range = randomLevel(choice);
    sim::EndpointVolume volume;
    volume.minimum = range.minimum;
    volume.maximum = range.maximum;
    volume.step = range.step;
    volume.channels.clear();
    for (unsigned count = 1 + choice.below(8); count > 0; --count)
    {
        const float share = static_cast<float>(choice.below(1001)) / 1000.0f;
        const float level = volume.minimum + share * (volume.maximum - volume.minimum);
        volume.channels.push_back(std::clamp(level, volume.minimum, volume.maximum));
    }
    volume.muted = choice.chance(30);
    volume.hardwareSupport = choice.below(8);
    volume.taper = choice.chance(50) ? sim::Taper::audio : sim::Taper::linear;
    if (choice.chance(8))
        volume.refused.push_back(choice.oneOf({"GetMute", "GetVolumeRange", "GetMasterVolumeLevelScalar",
                                               "GetMasterVolumeLevel", "GetChannelCount", "GetChannelVolumeLevel",
                                               "GetChannelVolumeLevelScalar", "QueryHardwareSupport"}));
    return volume;
}
}
