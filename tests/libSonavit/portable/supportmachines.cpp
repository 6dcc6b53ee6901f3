#include "tests/libSonavit/portable/supportmachines.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/file/machinefile.h"
#include "tests/libSonavit/soundcard/supportgraphs.h"
#include "tests/support/randomconnections.h"
#include "tests/support/randommachine.h"

#include <map>
#include <stdexcept>

namespace support
{
namespace
{
using std::to_string;

constexpr std::uint32_t firstSeed = 100;
constexpr std::uint32_t seeds = 12;

/// An endpoint with a connector to each of @p count adapters, whose volumes and mutes are next to their outer plugs.
sim::Machine manyAdapters(unsigned int count)
{
    GraphMachine graph;
    graph.endpoint("e", count);
    for (unsigned int i = 1; i <= count; ++i)
    {
        const std::string adapter = "a" + to_string(i);
        graph.adapter(adapter, 2);
        graph.volume(adapter, 10, -static_cast<float>(i));
        graph.mute(adapter, 11, i % 2 == 0);
        graph.feed(adapter + "/10", adapter + "/1").feed(adapter + "/11", adapter + "/10");
        graph.path(adapter + "/1", adapter + "/2").join("e/" + to_string(i), adapter + "/1", i % 3 != 0);
    }
    return graph.machine;
}

/// Several endpoints on one adapter with @p count further connectors, every other pair with a path.
sim::Machine manyConnectors(unsigned int count)
{
    constexpr unsigned int endpoints = 5;
    GraphMachine graph;
    graph.adapter("a", endpoints + count);
    for (unsigned int i = 1; i <= endpoints; ++i)
    {
        graph.endpoint("e" + to_string(i), 1, i % 2 == 0 ? eCapture : eRender);
        graph.join("e" + to_string(i) + "/1", "a/" + to_string(i));
    }
    for (unsigned int i = 1; i + 2 <= endpoints + count; i += 2)
        graph.path("a/" + to_string(i), "a/" + to_string(i + 2));
    return graph.machine;
}

/// Adapters one behind the other, with a way back from the last to the first.
sim::Machine chain(unsigned int count)
{
    GraphMachine graph;
    graph.endpoint("e");
    for (unsigned int i = 1; i <= count; ++i)
        graph.adapter("a" + to_string(i), 3);
    graph.join("e/1", "a1/1");
    for (unsigned int i = 1; i <= count; ++i)
    {
        const std::string here = "a" + to_string(i);
        graph.path(here + "/1", here + "/2").path(here + "/3", here + "/2");
        if (i < count)
            graph.join(here + "/2", "a" + to_string(i + 1) + "/1", i % 2 == 0);
    }
    graph.join("a" + to_string(count) + "/2", "a1/3");
    return graph.machine;
}

/// Far devices that cannot be opened, that have no topology, and of which only the id is known.
sim::Machine closedAdapters()
{
    GraphMachine graph;
    graph.endpoint("e", 5);
    graph.endpoint("second", 1, eCapture);
    for (const char* const adapter : {"closed", "bare", "open", "behind"})
        graph.adapter(adapter, 2);
    graph.machine.adapter("closed")->openable = false;
    graph.machine.adapter("behind")->openable = false;
    graph.join("e/1", "closed/1").join("e/2", "bare/1").join("e/3", "open/1").join("open/2", "behind/1");
    graph.machine.adapter("bare")->topology->deviceId.reset();
    graph.path("open/1", "open/2").path("closed/1", "closed/2").path("e/4", "e/1");
    sim::Join nowhereJoin;
    nowhereJoin.from = "e/4";
    nowhereJoin.toDevice = "unknown";
    graph.machine.joins.push_back(nowhereJoin);
    graph.join("second/1", "e/5");
    return graph.machine;
}

/// Ids of devices and parts that differ in case alone.
sim::Machine otherCase()
{
    GraphMachine graph;
    graph.endpoint("endpoint", 2);
    graph.endpoint("ENDPOINT", 2, eCapture);
    graph.adapter("adapter", 2);
    graph.adapter("Adapter", 3);
    graph.join("endpoint/1", "adapter/1").join("ENDPOINT/1", "Adapter/1").join("endpoint/2", "Adapter/2");
    graph.machine.joins[0].toDevice = "ADAPTER";
    graph.path("adapter/1", "adapter/2").path("Adapter/1", "Adapter/2").path("Adapter/3", "Adapter/2");
    graph.volume("adapter", 10, -1.0f);
    graph.volume("Adapter", 10, -2.0f);
    graph.feed("adapter/10", "adapter/1").feed("Adapter/10", "Adapter/1");
    return graph.machine;
}

/// Parts and devices that report no id.
sim::Machine withoutIds()
{
    GraphMachine graph;
    graph.endpoint("e1", 2);
    graph.endpoint("e2", 1, eCapture);
    graph.endpoint("", 1);
    graph.adapter("a", 4);
    graph.volume("a", 10, -3.0f);
    graph.feed("a/10", "a/1").feed("a/2", "a/10");
    graph.join("e1/1", "a/1").join("e2/1", "a/2").join("e1/2", "a/3").path("a/1", "a/2").path("a/3", "a/4");
    for (const char* const part : {"e1/2", "e2/1", "a/2", "a/3", "a/10"})
        graph.machine.part(part)->reportsId = false;
    graph.machine.adapter("a")->topology->deviceId.reset();
    return graph.machine;
}

/// Instance paths that are equal, differ in case, are empty or missing; an endpoint that is there twice.
sim::Machine twins()
{
    sim::MachineBuilder builder("twins");
    sim::CardBuilder card = builder.card("Codec");
    card.speaker().hardwareVolume({-96.0f, 0.0f, 1.5f, -30.0f}).hardwareMute(true);
    card.microphone().unplugged();
    sim::CardBuilder other = builder.usbCard("Other");
    other.headphones().property(propertykeys::instancePath, sim::PropertyValue::ofText("{1}.TWIN"));
    other.lineIn().property(propertykeys::instancePath, sim::PropertyValue::ofText("{1}.twin"));
    other.spdifOut().withoutProperty(propertykeys::instancePath);
    other.spdifIn().property(propertykeys::instancePath, sim::PropertyValue::ofText(""));
    sim::Machine machine = builder.build();
    sim::Endpoint twin = machine.endpoints.front();
    twin.topology.reset();
    machine.endpoints.push_back(twin);
    return machine;
}

/// An endpoint and an adapter with a volume and a mute.
sim::Machine oneAdapter()
{
    GraphMachine graph;
    graph.endpoint("e");
    graph.adapter("a", 2);
    graph.volume("a", 10, -1.0f);
    graph.mute("a", 11, true);
    graph.feed("a/10", "a/1").feed("a/11", "a/10").path("a/1", "a/2").join("e/1", "a/1");
    return graph.machine;
}

/// An endpoint whose far device cannot be opened.
sim::Machine oneClosedAdapter()
{
    GraphMachine graph;
    graph.endpoint("e", 2);
    graph.adapter("closed", 1).openable = false;
    graph.path("e/1", "e/2").join("e/1", "closed/1");
    return graph.machine;
}

/// Two endpoints that are joined to each other.
sim::Machine onePair()
{
    GraphMachine graph;
    graph.endpoint("render");
    graph.endpoint("capture", 1, eCapture);
    graph.join("render/1", "capture/1");
    return graph.machine;
}

const std::map<std::string, sim::Machine (*)()>& builtMachines()
{
    static const std::map<std::string, sim::Machine (*)()> machines = {
        {"adapters-12", [] { return manyAdapters(12); }},
        {"adapters-3", [] { return manyAdapters(3); }},
        {"adapters-closed", closedAdapters},
        {"chain-2", [] { return chain(2); }},
        {"chain-9", [] { return chain(9); }},
        {"connectors-30", [] { return manyConnectors(30); }},
        {"ids-in-other-case", otherCase},
        {"ids-missing", withoutIds},
        {"ids-twice", twins},
        {"one-adapter", oneAdapter},
        {"one-closed-adapter", oneClosedAdapter},
        {"one-pair", onePair}};
    return machines;
}
}

std::vector<std::string> transcriptMachines()
{
    std::vector<std::string> names = sim::machineNames();
    for (std::uint32_t seed = firstSeed; seed < firstSeed + seeds; ++seed)
    {
        names.push_back("random-cards-" + to_string(seed));
        names.push_back("random-graph-" + to_string(seed));
    }
    for (const auto& [name, build] : builtMachines())
        names.push_back(name);
    return names;
}

std::vector<std::string> smallMachines()
{
    return {"one-adapter", "one-closed-adapter", "one-pair"};
}

sim::Machine transcriptMachine(const std::string& name)
{
    const auto built = builtMachines().find(name);
    if (built != builtMachines().end())
        return built->second();
    const std::string random = "random-";
    if (name.compare(0, random.size(), random) != 0)
        return sim::findMachine(name);
    const auto seed = static_cast<std::uint32_t>(std::stoul(name.substr(name.rfind('-') + 1)));
    return name.find("graph") != std::string::npos ? randomConnections(seed) : randomMachine(seed);
}
}
