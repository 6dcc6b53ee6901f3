#include "tests/faults/kept/machines.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/nodetypes.h"

namespace faults::kept
{
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

std::vector<std::string> shippedMachines()
{
    return {"bluetooth", "crowded",        "desktop", "empty",   "laptop", "laptop-user",
            "published", "remote-desktop", "studio",  "virtual", "waking"};
}
}
