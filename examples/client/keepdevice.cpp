// Keeps the choice of an output across restarts, new drivers and other ports:
// keepdevice <file> [--machine <name>]            finds the kept output, or uses the default one
// keepdevice <file> <output> [--machine <name>]   chooses another one
#include "simulatedmachine.h"

#include <sonavit/client.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Keeps a reference to @p endpoint in the file.
bool keep(const sonavit::Snapshot& now, const sonavit::Endpoint& endpoint, const std::string& path)
{
    const sonavit::Result<sonavit::Reference> reference = sonavit::refer(now, endpoint.id());
    if (!reference)
    {
        std::cerr << reference.problem() << "\n";
        return false;
    }
    std::ofstream file(path, std::ios::binary);
    file << reference->text() << "\n";
    return file.good();
}

/// The kept output if it can be used now.
std::optional<sonavit::Endpoint> keptEndpoint(const sonavit::Snapshot& now, const std::string& path)
{
    const std::string text = contentOf(path);
    if (text.empty())
    {
        std::cout << "No output is kept yet.\n";
        return std::nullopt;
    }
    const sonavit::Result<sonavit::Reference> reference = sonavit::Reference::parse(text);
    if (!reference)
    {
        std::cout << path << ": " << reference.problem() << ".\n";
        return std::nullopt;
    }
    const sonavit::Resolution resolution = sonavit::resolve(now, *reference);
    std::cout << resolution.sentence() << ".\n";
    if (resolution.candidates.size() > 1)
        for (const sonavit::Candidate& candidate : resolution.candidates)
            std::cout << "  " << candidate.place.endpoint.title() << ": " << candidate.reason << "\n";

    const std::optional<sonavit::CardEndpoint> best = resolution.best();
    if (!best)
        return std::nullopt;
    if (!best->endpoint.isActive())
    {
        std::cout << "It cannot be used now.\n";
        return std::nullopt;
    }
    // From now on it is recognised by the id that it has now.
    if (resolution.kind == sonavit::Resolution::Kind::likely)
        keep(now, best->endpoint, path);
    return best->endpoint;
}

int choose(const sonavit::Snapshot& now, const std::string& name, const std::string& path)
{
    const sonavit::Result<sonavit::Endpoint> chosen = now.endpointNamed(name);
    if (!chosen)
    {
        std::cerr << chosen.problem() << "\n";
        return 1;
    }
    if (chosen->flow() != sonavit::Flow::output)
    {
        std::cerr << chosen->title() << " is an input\n";
        return 1;
    }
    if (!keep(now, *chosen, path))
        return 1;
    std::cout << "Kept: " << chosen->title() << "\n";
    return 0;
}

int main(int count, char** words)
{
    const auto machine = machineOf(count, words); // without this line: the hardware of a Windows computer
    if (count < 2 || count > 3)
    {
        std::cerr << "usage: keepdevice <file> [<output>] [--machine <name>]\n";
        return 2;
    }
    sonavit::System audio;
    const sonavit::Result<sonavit::Snapshot> now = audio.refresh();
    if (!now || now->service() == sonavit::Service::stopped)
    {
        std::cerr << (now ? "the audio service is stopped" : now.problem().sentence()) << "\n";
        return 1;
    }
    if (count == 3)
        return choose(*now, words[2], words[1]);

    std::optional<sonavit::Endpoint> output = keptEndpoint(*now, words[1]);
    if (!output)
        output = now->defaultEndpoint(sonavit::Flow::output);
    std::cout << (output ? "Using " + output->title() : "There is no output") << ".\n";
    return output ? 0 : 1;
}
