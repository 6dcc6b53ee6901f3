#include "tests/hostile/platforms/platform.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"
#include "tests/support/pace.h"

#include <cstdlib>
#include <utility>

namespace hostile
{
HonestMachine::HonestMachine()
{
    sim::MachineBuilder builder("honest");
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder loud = card.speaker();
    loud.isDefault().hardwareVolume({-60, 0, 1, -15}).hardwareMute();
    for (const sim::Subunit& subunit : card.adapter().topology->subunits)
        (subunit.volume ? volume : mute) = subunit.id;
    card.adapter().topology->connectors.front().jacks.emplace_back();
    sim::EndpointBuilder quiet = card.microphone();
    sim::Subunit input;
    input.name = "Input";
    input.subType = sim::nodetypes::multiplexer;
    input.incoming = {quiet.jackId()};
    input.selector = sim::SelectorControl{1};
    selector = card.subunit(input);
    speaker = loud.id();
    microphone = quiet.id();
    codec = card.adapter().id;
    speakerConnector = loud.connectorId();
    speakerJack = loud.jackId();
    speakerStream = loud.streamId();
    microphoneJack = quiet.jackId();
    earphone = builder.usbCard("Headset").headphones("Earphone").id();
    machine = builder.build();
    for (sim::Endpoint& endpoint : machine.endpoints) // the object model keeps one text for each reading
        sim::removeProperty(endpoint.properties, sim::keys::endpointGuid);
}

const HonestMachine& honest()
{
    static const HonestMachine machine;
    return machine;
}

sim::Machine machineOf(const Platform& platform)
{
    sim::Machine machine = honest().machine;
    if (platform.change)
        platform.change(machine);
    return machine;
}

bool isEverythingWanted()
{
    const char* const wanted = std::getenv("SONAVIT_HOSTILE");
    return wanted != nullptr && std::string(wanted) == "all";
}

std::vector<Platform> shareOf(const Topic& topic, std::size_t share, std::size_t shares)
{
    if (isEverythingWanted())
        return topic.platforms();
    constexpr std::size_t some = support::cases(1, 6);
    std::vector<Platform> chosen;
    std::vector<Platform> all = topic.platforms();
    for (std::size_t index = share; index < all.size(); index += shares * some)
        chosen.push_back(std::move(all[index]));
    return chosen;
}

const std::vector<Topic>& topics()
{
    static const std::vector<Topic> all = {
        {"Texts", &platformsThatLieInTexts},     {"Counts", &platformsThatLieInCounts},
        {"Numbers", &platformsThatLieInNumbers}, {"Objects", &platformsThatLieInObjects},
        {"Blobs", &platformsWithStrangeBlobs},   {"Wiring", &platformsWithStrangeWiring},
        {"Data", &platformsWithStrangeData},
    };
    return all;
}
}
