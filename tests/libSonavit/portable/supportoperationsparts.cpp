// Devices, their hardware graphs, and their controls.
#include "libSonavit/endpointdeviceenumerator.h"
#include "tests/libSonavit/portable/supportnotes.h"
#include "tests/libSonavit/portable/supportoperations.h"

#include <algorithm>
#include <cstdio>

namespace support
{
namespace
{
constexpr unsigned int fewDevices = 6;    ///< of each flow
constexpr unsigned int fewConnectors = 5; ///< of each device
constexpr unsigned int fewParts = 12;     ///< from each connector

/// The first endpoints of both flows, then the ids of the first adapters.
std::vector<qor::String> deviceIds(const sim::Machine& machine)
{
    std::vector<qor::String> ids;
    for (std::size_t i = 0; i < machine.endpoints.size() && i < 2 * fewDevices; ++i)
        ids.push_back(qor::String::fromUtf8(machine.endpoints[i].id));
    for (std::size_t i = 0; i < machine.adapters.size() && i < fewDevices; ++i)
        ids.push_back(qor::String::fromUtf8(machine.adapters[i].id));
    ids.emplace_back("unknown");
    return ids;
}

std::string textOf(float value)
{
    char text[32] = {};
    std::snprintf(text, sizeof text, "%.3f", static_cast<double>(value));
    return text;
}

void useDevice(Transcript& transcript, const qor::String& id)
{
    AudioDevice device;
    transcript.note(device.initialize(id) ? "initialized" : "not initialized");
    noteDevice(transcript, "device", device);
    if (!device.isInitialized())
        return;
    // Each question in a statement of its own: compilers differ in the order of operands.
    transcript.note(device.isEndpoint() ? "endpoint" : "adapter");
    transcript.note(device.isDefaultEndpoint() ? "default" : "not the default");
    transcript.note("wave " + std::to_string(device.waveLegacyDeviceID()));
    transcript.note(device.audioClient().get() == nullptr ? "no client" : "client");
    transcript.note(device.baseFilter() == nullptr ? "no filter" : "filter");
    AudioDevice copy(device);
    transcript.note("state " + std::to_string(copy.refreshDeviceState()));
    transcript.note(copy.refreshDeviceInformation() ? "read" : "closed");
    AudioDevice assigned(id);
    assigned = copy;
    transcript.note(assigned == device ? "equal" : "different");
    if (assigned.m_propertyStore.get() != nullptr)
    {
        WAVEFORMATEXTENSIBLE format = assigned.deviceProperty().format;
        format.Format.nSamplesPerSec = 44100;
        transcript.note(assigned.setFormat(format) ? "format set" : "format refused");
        noteDevice(transcript, "with format", assigned);
    }
    transcript.noteCensus();
    transcript.note("the devices go");
}

void useTopologyOf(Transcript& transcript, const AudioDeviceTopology& topology)
{
    const qor::Array<AudioComponent<IConnector>> connectors = topology.connector();
    const qor::Array<AudioComponent<ISubunit>> subunits = topology.subunit();
    const unsigned int count = std::min(connectors.size(), fewConnectors);
    for (unsigned int i = 0; i < count; ++i)
    {
        transcript.note("owner " + connectors[i].deviceOwner().toUtf8());
        AudioDeviceTopology other(connectors[i]);
        other.initialize(connectors[i].component());
        for (unsigned int k = 0; k < count; ++k)
            transcript.note(other.connectorsAreLinked(connectors[i], connectors[k]) ? "linked" : "not linked");
    }
    for (unsigned int i = 0; i < std::min(subunits.size(), fewConnectors); ++i)
    {
        transcript.note("owner " + subunits[i].deviceOwner().toUtf8());
        noteTopology(transcript, AudioDeviceTopology(subunits[i].component()));
    }
}

void useTopologiesOf(Transcript& transcript, const qor::String& id)
{
    AudioDevice device(id);
    AudioDeviceTopology topology;
    device.deviceTopology(topology);
    noteTopology(transcript, topology);
    qor::Array<AudioComponent<IConnector>> connectors;
    transcript.note("connectors " + std::to_string(device.connector(connectors)));
    transcript.note("room for " + std::to_string(connectors.capacity()));
    useTopologyOf(transcript, topology);
    AudioDeviceTopology copy(topology);
    copy = device.deviceTopology();
    noteTopology(transcript, copy);
    copy = topology;
    noteTopology(transcript, copy);
    const AudioComponent<IConnector> noConnector{COMPtr<IConnector>::pointer()};
    const AudioComponent<IConnector> noPart{COMPtr<IPart>::pointer()};
    transcript.note(copy.connectorsAreLinked(noConnector, noPart) ? "linked" : "not linked");
    transcript.noteCensus();
    transcript.note("the topologies go");
}

/// Walks on from the first part, breadth first, then assigns parts in ways in which source and target overlap.
void walkFrom(Transcript& transcript, const AudioPart& first)
{
    qor::Array<AudioPart> queue;
    queue.append(first);
    for (unsigned int i = 0; i < queue.size() && i < fewParts; ++i)
    {
        if (queue[i].m_part.get() == nullptr)
            continue;
        qor::Array<AudioPart> neighbours;
        noteThrown(transcript, [&] { queue[i].incomingPartsList(neighbours); });
        noteParts(transcript, "incoming", neighbours);
        for (unsigned int k = 0; k < neighbours.size(); ++k)
            queue.append(neighbours[k]);
        noteThrown(transcript, [&] { queue[i].outgoingPartsList(neighbours); });
        noteParts(transcript, "outgoing", neighbours);
        for (unsigned int k = 0; k < neighbours.size(); ++k)
            queue.append(neighbours[k]);
        notePart(transcript, "walked", queue[i]);
        transcript.note(queue[i].topology().get() == nullptr ? "no topology" : "topology");
    }
    AudioPart part = queue[0];
    noteThrown(transcript, [&] { part.outgoingPartsList(part.m_incomingParts); });
    notePart(transcript, "own list", part);
    if (part.m_incomingParts.size() > 0)
        part = part.m_incomingParts[0];
    notePart(transcript, "own part", part);
    part = queue[0].part();
    notePart(transcript, "anew", part);
    transcript.note(part == queue[0] ? "equal" : "different");
}

void walkPartsOf(Transcript& transcript, const qor::String& id)
{
    const AudioDevice device(id);
    AudioDeviceTopology topology;
    device.deviceTopology(topology);
    const qor::Array<AudioComponent<IConnector>> connectors = topology.connector();
    for (unsigned int i = 0; i < std::min(connectors.size(), fewConnectors); ++i)
    {
        if (connectors[i].part().part().get() != nullptr)
            walkFrom(transcript, connectors[i].part());
        AudioComponent<IConnector> component = connectors[i];
        qor::Array<AudioPart> parts;
        if (component.component().get() != nullptr)
            noteThrown(transcript, [&] { component.incomingPartsList(parts); });
        noteParts(transcript, "of the component", parts);
        component = connectors[connectors.size() - 1];
        noteComponent(transcript, "assigned", component);
    }
    transcript.noteCensus();
}

void useVolume(Transcript& transcript, VolumeControllerInterface& volume)
{
    const auto note = [&](const char* what, const std::string& value) { transcript.note(what + (" " + value)); };
    const unsigned int channels = volume.numChannel();
    note("channels", std::to_string(channels));
    note("owner", volume.ownerName().toUtf8());
    for (unsigned int i = 0; i < std::min(channels, 2u); ++i)
    {
        VolumeControllerInterface::DbVolumeRange range = {};
        note("has range", std::to_string(volume.volumeRangeDecibel(i, range)));
        note("range", textOf(range.minLevel) + " " + textOf(range.maxLevel));
        note("percent", std::to_string(volume.volumeLevelPercent(i)));
        note("decibels", textOf(volume.volumeLevelDecibel(i)));
        note("set percent", std::to_string(volume.setVolumeLevelPercent(i, 40)));
        note("set decibels", std::to_string(volume.setVolumeLevelDecibel(i, -6.0f)));
    }
    noteThrown(transcript, [&] { note("master", std::to_string(volume.masterVolumeLevelPercent())); });
    if (channels > 0)
        note("master decibels", textOf(volume.masterVolumeLevelDecibel()));
    note("set master", std::to_string(volume.setMasterVolumeLevelPercent(30)));
    note("set master decibels", std::to_string(volume.setMasterVolumeLevelDecibel(-9.0f)));
    if (!volume.hasMuteControl())
        return;
    note("muted", std::to_string(volume.isMuted()));
    note("mute", std::to_string(volume.setMute(true)));
    note("unmute", std::to_string(volume.setMute(false)));
}

/// The controller of the endpoint itself, if the endpoint has a volume.
void useVolumeOf(sim::Simulation& simulation, Transcript& transcript, const sim::Endpoint& endpoint)
{
    if (!endpoint.volume || simulation.machine().endpoint(endpoint.id) == nullptr)
        return;
    AudioDevice device(qor::String::fromUtf8(endpoint.id));
    const SharedPointer<VolumeControllerInterface> volume = device.volumeControl();
    if (volume.get() == nullptr)
        return;
    auto& own = static_cast<VolumeController<EndpointVolumeController>&>(*volume);
    if (own.m_policy.endpointVolume.get() != nullptr)
        useVolume(transcript, *volume);
}

void useHardware(Transcript& transcript, const SoundCard& card)
{
    for (unsigned int i = 0; i < std::min(card.m_playbackDevices->size(), fewDevices); ++i)
    {
        qor::Array<SoundCard::VolumeController> controls;
        noteThrown(transcript, [&] { card.volumeController((*card.m_playbackDevices)[i], controls); });
        for (unsigned int k = 0; k < std::min(controls.size(), fewConnectors); ++k)
        {
            const RegularVolumeController policy = {controls[k].volumeLevel, controls[k].mute, controls[k].ownerType,
                                                    controls[k].ownerName};
            VolumeController<RegularVolumeController> volume(policy);
            useVolume(transcript, volume);
        }
    }
}
}

void useDevices(sim::Simulation& simulation, Transcript& transcript)
{
    const std::vector<qor::String> ids = deviceIds(simulation.machine());
    transcript.begin();
    for (const qor::String& id : ids)
        noteThrown(transcript, [&] { useDevice(transcript, id); });
}

void useTopologies(sim::Simulation& simulation, Transcript& transcript)
{
    const std::vector<qor::String> ids = deviceIds(simulation.machine());
    transcript.begin();
    for (const qor::String& id : ids)
        noteThrown(transcript, [&] { useTopologiesOf(transcript, id); });
}

void walkParts(sim::Simulation& simulation, Transcript& transcript)
{
    const std::vector<qor::String> ids = deviceIds(simulation.machine());
    transcript.begin();
    for (const qor::String& id : ids)
        noteThrown(transcript, [&] { walkPartsOf(transcript, id); });
}

void useVolumes(sim::Simulation& simulation, Transcript& transcript)
{
    constexpr unsigned int fewCards = 2;
    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    const sim::Machine machine = simulation.machine();
    transcript.begin();
    for (std::size_t i = 0; i < machine.endpoints.size() && i < fewDevices; ++i)
        noteThrown(transcript, [&] { useVolumeOf(simulation, transcript, machine.endpoints[i]); });
    for (unsigned int i = 0; i < std::min(cards.size(), fewCards); ++i)
        noteThrown(transcript, [&] { useHardware(transcript, cards[i]); });
    transcript.noteCensus();
}
}
