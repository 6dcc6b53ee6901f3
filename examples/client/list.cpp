// Lists the cards with their active outputs, and sets those that have a volume to a number of percent:
// list [<percent>] [--machine <name>]
#include "simulatedmachine.h"

#include <sonavit/client.h>

#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>

void show(sonavit::System& audio, const sonavit::Endpoint& output, std::optional<sonavit::Percent> percent)
{
    std::cout << "  " << output.title();
    if (!output.volume())
        std::cout << " has no volume\n";
    else if (!percent)
        std::cout << " at " << output.volume()->sentence() << "\n";
    else if (const sonavit::Result<sonavit::Volume> volume = audio.setVolume(output.id(), *percent))
        std::cout << " now at " << volume->sentence() << "\n";
    else
        std::cout << ": " << volume.problem().sentence() << "\n";
}

int main(int count, char** words)
{
    const auto machine = machineOf(count, words); // without this line: the hardware of a Windows computer
    std::optional<sonavit::Percent> percent;
    try
    {
        if (count > 1)
            percent = sonavit::Percent(std::stod(words[1]));
    }
    catch (const std::logic_error&) // no number
    {
        std::cerr << "usage: list [<percent>] [--machine <name>]\n";
        return 2;
    }

    sonavit::System audio;
    const sonavit::Result<sonavit::Snapshot> now = audio.refresh();
    if (!now)
    {
        std::cerr << now.problem().sentence() << "\n";
        return 1;
    }
    for (const sonavit::Card& card : now->cards())
    {
        std::cout << card.title() << "\n";
        for (const sonavit::Endpoint& endpoint : card.endpoints())
            if (endpoint.flow() == sonavit::Flow::output && endpoint.isActive())
                show(audio, endpoint, percent);
    }
    for (const sonavit::Problem& problem : now->problems())
        std::cerr << "not read: " << problem.sentence() << "\n";
    return 0;
}
