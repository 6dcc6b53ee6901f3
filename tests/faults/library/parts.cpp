// Parts and components, and the walk to their neighbours.
#include "benchmarks/direct/text.h"
#include "benchmarks/direct/topology.h"
#include "libSonavit/audiopart.h"
#include "simulator/core/utf16.h"
#include "simulator/machine/valuetext.h"
#include "tests/faults/library/choice.h"
#include "tests/faults/library/operation.h"

namespace faults::library
{
namespace
{
using Lines = std::vector<std::string>;

std::string lineOf(const AudioPart& part)
{
    return sim::utf8(platform::wide(part.globalId().getUCS2Buffer())) + " " +
           sim::utf8(platform::wide(part.name().getUCS2Buffer())) + " " + sim::guidText(part.subType()) +
           (part.part().get() == nullptr ? " none" : "");
}

std::string lineOf(const direct::Part& part)
{
    return sim::utf8(direct::wide(part.globalId)) + " " + sim::utf8(direct::wide(part.name)) + " " +
           sim::guidText(part.subType) + (part.part.get() == nullptr ? " none" : "");
}

/// A part with a volume if there is one, otherwise a connector.
std::string partId(const sim::Machine& machine)
{
    const std::string volume = partWithVolume(machine);
    if (!volume.empty())
        return volume;
    const std::vector<std::string> connectors = connectorIds(machine);
    return connectors.empty() ? std::string() : connectors.front();
}

IPart* partIn(sim::Simulation& simulation)
{
    const std::string id = partId(simulation.machine());
    return id.empty() ? nullptr : simulation.part(id);
}

IConnector* connectorIn(sim::Simulation& simulation)
{
    const std::vector<std::string> ids = connectorIds(simulation.machine());
    return ids.empty() ? nullptr : simulation.connector(ids.front());
}

void makePart(Run& run)
{
    const auto platform = owned(partIn(run.simulation()));
    AudioPart part;
    run.act([&] { part = AudioPart(platform); });
    run.answer(lineOf(part));
    part = platform;
    run.later(lineOf(part));
}

Lines modelOfPart(sim::Simulation& simulation, const std::function<void()>& arm)
{
    auto part = direct::ComPtr<IPart>::adopt(partIn(simulation));
    arm();
    return {lineOf(direct::readPart(std::move(part)))};
}

void assignPart(Run& run)
{
    const auto platform = owned(partIn(run.simulation()));
    AudioPart part(owned(partIn(run.simulation())));
    run.act([&] { part = platform; });
    part = platform;
    run.later(lineOf(part));
}

void makeComponents(Run& run)
{
    const auto connector = owned(connectorIn(run.simulation()));
    run.act(
        [&]
        {
            const AudioComponent<IConnector> component(connector);
            const AudioPart itsPart = component.part();
            const COMPtr<IPart>::pointer handle = itsPart.part(); // compilers lose what a temporary's end follows
            const AudioComponent<IConnector> ofPart(handle);
            const AudioComponent<ISubunit> ofOtherKind(handle);
            const AudioPart part(connector.get());
            AudioComponent<IConnector> copy(ofPart);
            copy = component;
        });
    run.later(AudioComponent<IConnector>(connector).id().toUtf8());
}

enum class Side
{
    incoming,
    outgoing
};

template<Side side>
void walk(Run& run)
{
    AudioPart part(owned(partIn(run.simulation())));
    const bool isThere = part.part().get() != nullptr;
    const auto go = [&](qor::Array<AudioPart>& list)
    { return side == Side::incoming ? part.incomingPartsList(list) : part.outgoingPartsList(list); };
    qor::Array<AudioPart> list;
    run.act(
        [&]
        {
            if (isThere && go(list) != list.size())
                run.report(Kind::answer, "the walk does not return the size of the list");
        });
    for (unsigned int i = 0; i < list.size(); ++i)
        run.answer(lineOf(list[i]));
    qor::Array<AudioPart> again;
    if (isThere)
        run.later(std::to_string(go(again)));
    for (unsigned int i = 0; i < again.size(); ++i)
        run.later(lineOf(again[i]));
}

template<Side side>
Lines modelOfWalk(sim::Simulation& simulation, const std::function<void()>& arm)
{
    const direct::Part part = direct::readPart(direct::ComPtr<IPart>::adopt(partIn(simulation)));
    arm();
    Lines lines;
    const direct::Neighbours neighbours =
        side == Side::incoming ? &IPart::EnumPartsIncoming : &IPart::EnumPartsOutgoing;
    for (const direct::Part& neighbour : direct::readNeighbours(part, neighbours))
        lines.push_back(lineOf(neighbour));
    return lines;
}

void askForTopology(Run& run)
{
    const AudioPart part(owned(partIn(run.simulation())));
    const auto ask = [&] { return std::string(part.topology().get() == nullptr ? "topology no" : "topology yes"); };
    run.act([&] { run.answer(ask()); });
    run.later(ask());
}
}

std::vector<Operation> partOperations()
{
    return {{"AudioPart", makePart, modelOfPart},
            {"AudioPart assignments", assignPart},
            {"AudioComponent", makeComponents},
            {"AudioPart::incomingPartsList", walk<Side::incoming>, modelOfWalk<Side::incoming>},
            {"AudioPart::outgoingPartsList", walk<Side::outgoing>, modelOfWalk<Side::outgoing>},
            {"AudioPart::topology", askForTopology, nullptr,
             std::vector<Effect>{{"IPart::GetTopologyObject(*", "*", "topology ", "no"}}}};
}
}
