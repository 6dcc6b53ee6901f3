// The steps of docs/client.md, one after the other.
#include <simulator/machine/file/machinefile.h>
#include <simulator/simulation.h>
#include <sonavit/client.h>

#include <fstream>
#include <iostream>
#include <string>

int main()
{
    sim::Simulation machine(sim::findMachine("desktop"));
    sonavit::System audio;
    for (const sonavit::Card& card : audio.snapshot().cards())
        for (const sonavit::Endpoint& endpoint : card.endpoints())
            std::cout << card.title() << " / " << endpoint.title() << "\n";

    const auto speakers = audio.defaultEndpoint(sonavit::Flow::output);
    if (!speakers)
        return 1; // there is no default output
    const sonavit::Result<sonavit::Volume> volume = audio.setVolume(speakers->id(), sonavit::Percent(40));
    std::cout << (volume ? volume->sentence() : volume.problem().sentence()) << "\n";

    const sonavit::EndpointId id = speakers->id();
    const auto louder = audio.setVolume(id, sonavit::LevelChange::up(sonavit::Decibels(3)));
    const auto right = audio.setVolume(id, sonavit::LevelChange(sonavit::Decibels(-12)).onChannel(1));
    const auto level = audio.setControl(id, "Rear Green Jack", sonavit::Decibels(-15)); // in the hardware, by its name
    const auto source = audio.select("Recording Source", "Rear Blue Jack");             // an input selector
    const bool isDone = louder && right && level && source && source->selected()->title() == "Rear Blue Jack";

    const sonavit::Subscription subscription = audio.subscribe(
        [](const sonavit::Change& change)
        {
            for (const sonavit::Event& event : change.events())
                std::cout << event.sentence() << std::endl;
        });
    machine.events().playScript(); // what happens to the simulated machine
    std::cin.get();                // a subscription ends with its variable

    const sonavit::Result<sonavit::Reference> reference = audio.refer(speakers->id());
    if (reference)
        std::ofstream("speakers.txt") << reference->text();

    std::string text;
    std::ifstream("speakers.txt") >> text;
    const sonavit::Result<sonavit::Reference> kept = sonavit::Reference::parse(text);
    if (!kept)
        return 1; // kept.problem() says why
    const sonavit::Resolution resolution = audio.resolve(*kept);
    std::cout << resolution.sentence() << "\n"; // "Headset (USB Audio): same device in another USB port"
    const auto best = resolution.best();
    return isDone && volume && best && best->endpoint.id() == id ? 0 : 1;
}
