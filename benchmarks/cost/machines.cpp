#include "machines.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"

#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

namespace bench
{
namespace
{
std::string numbered(const std::string& name, std::size_t number)
{
    return name + " " + std::to_string(number);
}

void addEndpoints(const sim::CardBuilder& card, std::size_t count)
{
    sim::CardBuilder owner = card;
    for (std::size_t index = 0; index < count; ++index)
    {
        sim::EndpointBuilder endpoint = index % 2 == 0 ? owner.speaker(numbered("Speakers", index))
                                                       : owner.microphone(numbered("Microphone", index));
        endpoint.hardwareVolume({}).hardwareMute();
    }
}

/// Cards of @p each endpoints.
sim::Machine cards(std::size_t count, std::size_t each)
{
    sim::MachineBuilder builder;
    for (std::size_t index = 0; index < count; ++index)
        addEndpoints(builder.card(numbered("Card", index)), each);
    return builder.build();
}

/// A way through an adapter, from one of its connectors to another.
void addWay(sim::CardBuilder card, const std::string& from, const std::string& to)
{
    sim::Subunit volume;
    volume.name = "Volume";
    volume.subType = sim::nodetypes::volume;
    volume.volume = sim::VolumeControl{std::vector<sim::ChannelLevel>(2)};
    sim::Subunit mute;
    mute.name = "Mute";
    mute.subType = sim::nodetypes::mute;
    mute.mute = sim::MuteControl();
    const std::string volumeId = card.subunit(std::move(volume));
    const std::string muteId = card.subunit(std::move(mute));
    card.chain({from, volumeId, muteId, to});
}

/// Takes the stream of an endpoint, the last connector, out of its adapter: only the jack is left.
void removeStream(const sim::CardBuilder& card, const std::string& jackId)
{
    sim::Topology& topology = *card.adapter().topology;
    topology.connectors.pop_back();
    topology.signalPaths.pop_back();
    topology.connectors.back().incoming.clear();
    topology.connectors.back().outgoing.clear();
    if (topology.connectors.back().id != jackId)
        throw std::logic_error("the jack of an endpoint is not the connector before its stream");
}

sim::Machine mixer(std::size_t connectors)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Mixer");
    std::string input;
    for (std::size_t index = 0; index < connectors; ++index)
    {
        const bool isInput = index % 2 == 0;
        const sim::EndpointBuilder endpoint =
            isInput ? card.lineIn(numbered("Line In", index)) : card.lineOut(numbered("Line Out", index));
        const std::string jack = endpoint.jackId();
        removeStream(card, jack);
        if (isInput)
            input = jack;
        else
            addWay(card, input, jack);
    }
    return builder.build();
}

/// An adapter that passes both ways on.
struct Link
{
    std::string outputNear;
    std::string outputFar;
    std::string inputNear;
    std::string inputFar;
};

Link addLink(sim::CardBuilder card)
{
    const GUID& type = sim::nodetypes::line;
    Link link;
    link.outputNear = card.connector("Output", type, Out, Physical_Internal);
    link.outputFar = card.connector("Output Bridge", type, In, Physical_Internal);
    link.inputNear = card.connector("Input", type, In, Physical_Internal);
    link.inputFar = card.connector("Input Bridge", type, Out, Physical_Internal);
    addWay(card, link.outputFar, link.outputNear);
    addWay(card, link.inputNear, link.inputFar);
    return link;
}

sim::Machine chain(std::size_t adapters)
{
    sim::MachineBuilder builder;
    const sim::CardBuilder first = builder.card("Adapter 0");
    addEndpoints(first, 2);
    const sim::Topology& topology = *first.adapter().topology; // two jacks, each before its stream
    Link last;
    last.outputFar = topology.connectors[1].id;
    last.inputFar = topology.connectors[3].id;
    for (std::size_t index = 1; index < adapters; ++index)
    {
        const Link next = addLink(builder.card(numbered("Adapter", index)));
        builder.machine().joins.push_back({last.outputFar, next.outputNear, {}, true});
        builder.machine().joins.push_back({last.inputFar, next.inputNear, {}, true});
        last = next;
    }
    return builder.build();
}

/// Adapters with one endpoint each, all of them on one card.
sim::Machine adapters(std::size_t count)
{
    sim::MachineBuilder builder;
    for (std::size_t index = 0; index < count; ++index)
        addEndpoints(builder.card(numbered("Adapter", index)), 1);
    std::vector<sim::Endpoint>& endpoints = builder.machine().endpoints;
    const sim::PropertyValue path = *sim::findProperty(endpoints.front(), sim::keys::instancePath);
    for (sim::Endpoint& endpoint : endpoints)
        sim::setProperty(endpoint.properties, sim::keys::instancePath, path);
    return builder.build();
}
}

sim::Machine machineOfSize(const std::string& name)
{
    const std::size_t colon = name.find(':');
    if (colon == std::string::npos)
        return sim::findMachine(name);
    const std::string kind = name.substr(0, colon);
    const std::size_t count = std::stoul(name.substr(colon + 1));
    if (count == 0)
        throw std::invalid_argument("a machine of no size: " + name);
    if (kind == "cards")
        return cards(count, 10);
    if (kind == "endpoints")
        return cards(1, count);
    if (kind == "connectors")
        return mixer(count);
    if (kind == "adapters")
        return adapters(count);
    if (kind == "chain")
        return chain(count);
    throw std::invalid_argument("no such kind of machine: " + kind);
}
}
