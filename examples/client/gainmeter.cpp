// Shows the hardware controls of an endpoint or of a card as bars, and each one that changes, until Enter is pressed:
// gainmeter [<endpoint or card>] [--once] [--machine <name>]
#include "gainbars.h"
#include "simulatedmachine.h"

#include <sonavit/client.h>

#include <iostream>
#include <optional>
#include <string>
#include <string_view>

/// What to show: a card, or one endpoint of it.
struct Shown
{
    sonavit::CardId card;
    std::optional<sonavit::EndpointId> endpoint;
};

sonavit::Result<Shown> shownAs(const sonavit::Snapshot& now, const std::string& name)
{
    const sonavit::Result<sonavit::Endpoint> endpoint = now.endpointNamed(name);
    if (endpoint)
        return Shown{now.cardOf(endpoint->id())->id(), endpoint->id()};
    const sonavit::Result<sonavit::Card> card = now.cardNamed(name);
    if (!card)
        return endpoint.problem();
    return Shown{card->id(), std::nullopt};
}

/// What a person names, or the card of the default output.
sonavit::Result<Shown> chosen(const sonavit::Snapshot& now, int count, char** words)
{
    for (int i = 1; i < count; ++i)
        if (words[i] != std::string_view("--once"))
            return shownAs(now, words[i]);
    const std::optional<sonavit::Endpoint> output = now.defaultEndpoint(sonavit::Flow::output);
    if (!output)
        return sonavit::Problem(sonavit::Problem::Kind::notThere, "gainmeter", "", "there is no default output");
    return Shown{now.cardOf(output->id())->id(), std::nullopt};
}

int main(int count, char** words)
{
    const auto machine = machineOf(count, words); // without this line: the hardware of a Windows computer
    const bool isOnce = count > 1 && words[count - 1] == std::string_view("--once");

    sonavit::System audio;
    const sonavit::Result<Shown> shown = chosen(audio.snapshot(), count, words);
    if (!shown)
    {
        std::cerr << shown.problem() << "\n";
        return 1;
    }
    // While it is held, the snapshots contain the hardware of the card, and its changes come as events.
    const sonavit::Result<sonavit::Watch> watch = audio.watch(shown->card);
    if (!watch)
    {
        std::cerr << watch.problem() << "\n";
        return 1;
    }
    const sonavit::Subscription subscription = audio.subscribe(
        [&shown](const sonavit::Change& change)
        {
            for (const sonavit::Event& event : change.events())
                if (event.kind == sonavit::Event::Kind::hardwareChanged && event.card == shown->card &&
                    event.hardwareAfter)
                    showControls(event.hardwareBefore.value_or(sonavit::Hardware()), *event.hardwareAfter,
                                 change.after(), shown->endpoint, std::cout);
        });
    if (const auto hardware = subscription.initial().hardware(shown->card))
        showControls(sonavit::Hardware(), *hardware, subscription.initial(), shown->endpoint, std::cout);

    std::string line;
    if (!isOnce)
        std::getline(std::cin, line);
    return 0;
}
