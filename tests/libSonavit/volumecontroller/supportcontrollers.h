/// Controllers of a simulated endpoint and of a simulated hardware node, for the tests of both kinds of controller.
#pragma once

#include "libSonavit/volumecontroller.h"
#include "tests/support/librarytest.h"

#include <string>
#include <utility>
#include <vector>

namespace support
{
using EndpointController = VolumeController<EndpointVolumeController>;
using RegularController = VolumeController<RegularVolumeController>;

/// A machine with two endpoints. A test may change the members until it calls start().
class EndpointControllerTest : public LibraryTest
{
protected:
    using Texts = std::vector<std::string>;

    sim::Simulation& start() { return run(bench.build()); }

    /// The policy of an endpoint's controller, with one reference on its endpoint volume.
    EndpointVolumeController policy(const sim::EndpointBuilder& endpoint)
    {
        EndpointVolumeController result;
        result.endpointVolume = simulation().endpointVolume(endpoint.id());
        result.ownerType = KSNODETYPE_SPEAKER;
        result.ownerName = "Analog Out";
        return result;
    }

    /// The calls of the platform since the last call of this function.
    Texts asked()
    {
        const Texts calls = simulation().journal().of("IAudioEndpointVolume::*").calls();
        simulation().journal().clear();
        return calls;
    }

    /// References on the endpoint volumes of one endpoint.
    long references(const sim::EndpointBuilder& endpoint)
    {
        const sim::Census census = simulation().census();
        const auto found = census.byObject.find("IAudioEndpointVolume " + endpoint.id());
        return found == census.byObject.end() ? 0 : found->second;
    }

    /// An endpoint volume with one channel for each of @p scalars, on which scalar and decibels are the same number.
    static sim::EndpointVolume scalarVolume(std::vector<float> scalars)
    {
        sim::EndpointVolume volume;
        volume.minimum = 0.0f;
        volume.maximum = 1.0f;
        volume.channels = std::move(scalars);
        return volume;
    }

    sim::MachineBuilder bench;
    sim::CardBuilder card = bench.card("Codec");
    sim::EndpointBuilder speaker = card.speaker();
    sim::EndpointBuilder headphones = card.headphones();
};

/// A machine with one hardware node that has a level and a mute: two channels from -96 to 0 decibels, at -48.
class RegularControllerTest : public LibraryTest
{
protected:
    using Texts = std::vector<std::string>;

    RegularControllerTest()
    {
        sim::Subunit subunit;
        subunit.name = "Volume";
        subunit.subType = KSNODETYPE_VOLUME;
        subunit.volume = sim::VolumeControl{{{-96.0f, 0.0f, 1.5f, -48.0f}, {-96.0f, 0.0f, 1.5f, -48.0f}}};
        subunit.mute = sim::MuteControl{};
        node = card.subunit(subunit);
    }

    sim::Simulation& start() { return run(bench.build()); }

    /// The policy of the node's controller, with one reference on each of its controls.
    RegularVolumeController policy()
    {
        RegularVolumeController result;
        result.volumeLevel = simulation().volumeLevel(node);
        result.mute = simulation().mute(node);
        result.ownerType = KSNODETYPE_MICROPHONE;
        result.ownerName = "Front Mic";
        return result;
    }

    /// Gives the node these channels from now on.
    void setChannels(const std::vector<sim::ChannelLevel>& channels)
    {
        simulation().change([&](sim::Machine& machine) { machine.part(node)->volume->channels = channels; });
    }

    /// The current levels of the node's channels.
    std::vector<float> levels()
    {
        const sim::Machine machine = simulation().machine();
        std::vector<float> result;
        for (const sim::ChannelLevel& channel : machine.part(node)->volume->channels)
            result.push_back(channel.level);
        return result;
    }

    /// The calls of the platform since the last call of this function.
    Texts asked()
    {
        const Texts calls = simulation().journal().of("IAudio*").calls();
        simulation().journal().clear();
        return calls;
    }

    sim::MachineBuilder bench;
    sim::CardBuilder card = bench.card("Codec");
    std::string node;
};
}
