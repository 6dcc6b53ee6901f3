#include "tests/faults/engine/smallmachine.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/nodetypes.h"

namespace faults
{
namespace
{
sim::Machine controlledMachine()
{
    sim::MachineBuilder builder(controlled);
    sim::CardBuilder card = builder.card("Codec");
    card.speaker().isDefault().hardwareVolume({-60, 0, 1, -15}).hardwareMute();
    card.adapter().topology->connectors.front().jacks.emplace_back();
    sim::EndpointBuilder microphone = card.microphone();
    microphone.hardwareVolume({0, 30, 10, 10});
    sim::Subunit selector;
    selector.name = "Source";
    selector.subType = sim::nodetypes::multiplexer;
    selector.selector = sim::SelectorControl{card.adapter().topology->subunits.back().localId};
    microphone.node(selector);
    card.chain({card.connector("Line In", sim::nodetypes::line, In, Physical_External),
                card.adapter().topology->subunits.back().id});
    return builder.build();
}
}

std::vector<std::string> sweptMachines()
{
    std::vector<std::string> names = sim::machineNames();
    names.emplace_back(controlled);
    return names;
}

sim::Machine sweptMachine(const std::string& name)
{
    return name == controlled ? controlledMachine() : sim::findMachine(name);
}
}
