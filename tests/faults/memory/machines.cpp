#include "tests/faults/memory/machines.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/nodetypes.h"

namespace faults::memory
{
namespace
{
/// A codec with a level and a mute in hardware, an input selector and an unplugged jack; and a headset.
sim::Machine deskMachine()
{
    sim::MachineBuilder builder("desk");
    sim::CardBuilder codec = builder.card("Analog Audio");
    sim::EndpointBuilder speakers = codec.speaker();
    speakers.hardwareVolume({-96.0F, 0.0F, 1.5F, -30.0F}).hardwareMute();
    const sim::EndpointBuilder microphone = codec.microphone();
    sim::EndpointBuilder lineIn = codec.lineIn();
    lineIn.unplugged();
    sim::Subunit selector;
    selector.name = "Input";
    selector.subType = sim::nodetypes::multiplexer;
    selector.incoming = {microphone.jackId(), lineIn.jackId()};
    selector.selector = sim::SelectorControl{1};
    codec.subunit(selector);
    builder.usbCard("USB Headset").headphones("Earphone");
    return builder.build();
}

MachineChoice shipped(const std::string& name, unsigned most)
{
    return {name, [name] { return sim::findMachine(name); }, most};
}
}

std::vector<MachineChoice> machines()
{
    constexpr unsigned all = 0xFFFFFFFF;
    return {{"desk", deskMachine, all}, shipped("empty", all),      shipped("remote-desktop", all),
            shipped("virtual", all),    shipped("bluetooth", 60),   shipped("broken", 60),
            shipped("laptop", 60),      shipped("laptop-user", 60), shipped("desktop", 60),
            shipped("studio", 40),      shipped("waking", 40),      shipped("published", 40),
            shipped("crowded", 10)};
}
}
