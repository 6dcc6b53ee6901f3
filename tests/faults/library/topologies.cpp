// The hardware graph of a device.
#include "benchmarks/direct/text.h"
#include "benchmarks/direct/topology.h"
#include "libModuleCommon/guid.h"
#include "libSonavit/audiodevicetopology.h"
#include "simulator/core/utf16.h"
#include "simulator/machine/valuetext.h"
#include "tests/faults/library/choice.h"
#include "tests/faults/library/operation.h"

namespace faults::library
{
namespace
{
using Lines = std::vector<std::string>;

std::string shown(const qor::String& text)
{
    return sim::utf8(platform::wide(text.getUCS2Buffer())) + " ";
}

std::string shown(const std::u16string& text)
{
    return sim::utf8(direct::wide(text)) + " ";
}

template<class I>
std::string lineOf(const AudioComponent<I>& component)
{
    return "part " + shown(component.id()) + shown(component.name()) + sim::guidText(component.subType()) +
           (component.component().get() == nullptr ? " none" : "");
}

template<class I>
std::string lineOf(const direct::Component<I>& component)
{
    return "part " + shown(component.part.globalId) + shown(component.part.name) +
           sim::guidText(component.part.subType) + (component.component.get() == nullptr ? " none" : "");
}

Lines linesOf(const AudioDeviceTopology& topology)
{
    Lines lines = {std::string(topology.isInitialized() ? "topology of " : "none ") + shown(topology.deviceOwner())};
    const auto connectors = topology.connector();
    const auto subunits = topology.subunit();
    for (unsigned int i = 0; i < connectors.size(); ++i)
        lines.push_back(lineOf(connectors[i]));
    for (unsigned int i = 0; i < subunits.size(); ++i)
        lines.push_back(lineOf(subunits[i]));
    return lines;
}

Lines linesOf(const direct::Topology& topology)
{
    Lines lines = {std::string(topology.topology ? "topology of " : "none ") + shown(topology.deviceId)};
    for (const auto& connector : topology.connectors)
        lines.push_back(lineOf(connector));
    for (const auto& subunit : topology.subunits)
        lines.push_back(lineOf(subunit));
    return lines;
}

void answerWith(Run& run, const Lines& lines)
{
    for (const std::string& line : lines)
        run.answer(line);
}

void laterWith(Run& run, const Lines& lines)
{
    for (const std::string& line : lines)
        run.later(line);
}

IDeviceTopology* topologyIn(sim::Simulation& simulation)
{
    const sim::Machine machine = simulation.machine();
    for (const sim::Adapter& adapter : machine.adapters)
    {
        if (adapter.topology)
            return simulation.topology(adapter.id);
    }
    return nullptr;
}

std::string firstConnectorId(sim::Simulation& simulation)
{
    const std::vector<std::string> ids = connectorIds(simulation.machine());
    return ids.empty() ? std::string() : ids.front();
}

IConnector* connectorIn(sim::Simulation& simulation)
{
    const std::string id = firstConnectorId(simulation);
    return id.empty() ? nullptr : simulation.connector(id);
}

void initialize(Run& run)
{
    const auto platform = owned(topologyIn(run.simulation()));
    AudioDeviceTopology topology;
    run.act([&] { topology.initialize(platform); });
    answerWith(run, linesOf(topology));
    topology.initialize(platform);
    laterWith(run, linesOf(topology));
}

Lines modelOfInitialize(sim::Simulation& simulation, const std::function<void()>& arm)
{
    auto platform = direct::ComPtr<IDeviceTopology>::adopt(topologyIn(simulation));
    arm();
    return linesOf(direct::readTopology(std::move(platform)));
}

void initializeByConnector(Run& run)
{
    const auto connector = owned(connectorIn(run.simulation()));
    AudioDeviceTopology topology;
    run.act([&] { topology.initialize(connector); });
    answerWith(run, linesOf(topology));
    laterWith(run, linesOf(AudioDeviceTopology(connector)));
}

void initializeBySubunit(Run& run)
{
    const std::string id = subunitId(run.simulation().machine());
    const auto subunit = owned(id.empty() ? nullptr : run.simulation().subunit(id));
    AudioDeviceTopology topology;
    run.act([&] { topology.initialize(subunit); });
    answerWith(run, linesOf(topology));
    laterWith(run, linesOf(AudioDeviceTopology(subunit)));
}

void initializeByComponent(Run& run)
{
    const AudioComponent<IConnector> connector(connectorIn(run.simulation()));
    AudioDeviceTopology topology;
    run.act([&] { topology = AudioDeviceTopology(connector); });
    answerWith(run, linesOf(topology));
    laterWith(run, linesOf(AudioDeviceTopology(connector)));
}

/// Reads the topology of a connector as the library does: by its IPart. The three forms make the same calls.
Lines modelByConnector(sim::Simulation& simulation, const std::function<void()>& arm)
{
    auto connector = direct::ComPtr<IConnector>::adopt(connectorIn(simulation));
    direct::Component<IConnector> component;
    component.part.part = connector.as<IPart>();
    component.component = std::move(connector);
    arm();
    return linesOf(direct::readTopologyOf(component));
}

Lines modelBySubunit(sim::Simulation& simulation, const std::function<void()>& arm)
{
    const std::string id = subunitId(simulation.machine());
    const auto subunit = direct::ComPtr<ISubunit>::adopt(id.empty() ? nullptr : simulation.subunit(id));
    const auto part = subunit.as<IPart>();
    direct::ComPtr<IDeviceTopology> topology;
    arm();
    if (part)
        part->GetTopologyObject(topology.put());
    return linesOf(direct::readTopology(std::move(topology)));
}

void copyTopologies(Run& run)
{
    const AudioDeviceTopology topology(owned(topologyIn(run.simulation())));
    AudioDeviceTopology other(owned(connectorIn(run.simulation())));
    run.act(
        [&]
        {
            const AudioDeviceTopology copy(topology);
            other = copy;
            const auto connectors = copy.connector();
            const auto subunits = copy.subunit();
            const auto platform = copy.topology();
        });
    laterWith(run, linesOf(topology));
}

constexpr unsigned int fewConnectors = 4;

std::string linksOf(const AudioDeviceTopology& topology, const qor::Array<AudioComponent<IConnector>>& connectors)
{
    std::string links = "links ";
    for (unsigned int i = 0; i < std::min(connectors.size(), fewConnectors); ++i)
    {
        for (unsigned int k = i + 1; k < std::min(connectors.size(), fewConnectors); ++k)
            links += topology.connectorsAreLinked(connectors[i], connectors[k]) ? '1' : '0';
    }
    return links;
}

void askForLinks(Run& run)
{
    const AudioDeviceTopology topology(owned(topologyIn(run.simulation())));
    const auto connectors = topology.connector();
    run.act([&] { run.answer(linksOf(topology, connectors)); });
    run.later(linksOf(topology, connectors));
}

Lines modelOfLinks(sim::Simulation& simulation, const std::function<void()>& arm)
{
    const direct::Topology topology =
        direct::readTopology(direct::ComPtr<IDeviceTopology>::adopt(topologyIn(simulation)));
    arm();
    std::string links = "links ";
    const auto& connectors = topology.connectors;
    for (std::size_t i = 0; i < std::min<std::size_t>(connectors.size(), fewConnectors); ++i)
    {
        for (std::size_t k = i + 1; k < std::min<std::size_t>(connectors.size(), fewConnectors); ++k)
        {
            const bool areOne = connectors[i].part.globalId == connectors[k].part.globalId; // as if they have no ids
            links += !areOne && direct::areLinked(topology, connectors[i].part, connectors[k].part) ? '1' : '0';
        }
    }
    return {links};
}

void askForOwner(Run& run)
{
    const AudioComponent<IConnector> connector(connectorIn(run.simulation()));
    run.act([&] { run.answer("owner " + shown(connector.deviceOwner())); });
    run.later("owner " + shown(connector.deviceOwner()));
}

Lines modelOfOwner(sim::Simulation& simulation, const std::function<void()>& arm)
{
    auto connector = direct::ComPtr<IConnector>::adopt(connectorIn(simulation));
    direct::Component<IConnector> component;
    component.part.part = connector.as<IPart>();
    arm();
    return {"owner " + shown(direct::readTopologyOf(component).deviceId)};
}
}

std::vector<Operation> topologyOperations()
{
    return {{"AudioDeviceTopology::initialize", initialize, modelOfInitialize},
            {"AudioDeviceTopology::initialize connector", initializeByConnector, modelByConnector},
            {"AudioDeviceTopology::initialize component", initializeByComponent, modelByConnector},
            {"AudioDeviceTopology::initialize subunit", initializeBySubunit, modelBySubunit},
            {"AudioDeviceTopology copies", copyTopologies},
            {"AudioDeviceTopology::connectorsAreLinked", askForLinks, modelOfLinks},
            {"AudioComponent::deviceOwner", askForOwner, modelOfOwner}};
}
}
