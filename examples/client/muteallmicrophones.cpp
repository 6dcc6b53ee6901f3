// Mutes every input that has a mute, and reports those that it cannot mute, and why:
// muteallmicrophones <file>          mutes, and keeps in the file what was not muted before
// muteallmicrophones <file> --undo   unmutes those again
#include <sonavit/client.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

/// What puts the mute of @p endpoint back, and nothing else.
sonavit::Settings::EndpointSetting unmuting(const sonavit::System& audio, const sonavit::Endpoint& endpoint)
{
    sonavit::Settings::EndpointSetting setting;
    setting.name = endpoint.title();
    if (const sonavit::Result<sonavit::Reference> reference = audio.refer(endpoint.id()))
        setting.reference = reference->text();
    setting.isMuted = false;
    return setting;
}

/// @return whether no input is left that could be heard
bool muteAll(sonavit::System& audio, sonavit::Settings& before)
{
    bool isSilent = true;
    for (const sonavit::Endpoint& input : audio.snapshot().endpoints())
    {
        if (input.flow() != sonavit::Flow::input || !input.isActive())
            continue;
        std::cout << input.title() << ": ";
        if (input.volume() && input.volume()->isMuted == true)
        {
            std::cout << "was muted before\n";
            continue;
        }
        const sonavit::Result<sonavit::Volume> after = audio.setMute(input.id(), true);
        if (!after)
        {
            // "IAudioEndpointVolume::SetMute failed: access denied (0x80070005)"
            std::cout << "not muted: " << after.problem().sentence() << "\n";
            isSilent = false;
            continue;
        }
        before.endpoints.push_back(unmuting(audio, input));
        std::cout << (after->isMuted == true ? "muted" : "accepted, but does not report a mute") << "\n";
    }
    return isSilent;
}

int mute(sonavit::System& audio, const std::string& path)
{
    sonavit::Settings before;
    const bool isSilent = muteAll(audio, before);
    std::ofstream file(path, std::ios::binary);
    file << before.text();
    if (!file.flush())
        std::cerr << path << ": not written\n";
    return isSilent && file ? 0 : 1;
}

int undo(sonavit::System& audio, const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const sonavit::Result<sonavit::Settings> before = sonavit::Settings::parse(text);
    if (!before)
    {
        std::cerr << path << ": " << before.problem() << "\n";
        return 1;
    }
    const sonavit::Result<sonavit::RestoreReport> report = audio.restore(*before);
    if (!report)
    {
        std::cerr << report.problem() << "\n";
        return 1;
    }
    for (const sonavit::RestoredSetting& setting : report->settings)
        if (setting.problem)
            std::cout << setting.what << ": " << setting.problem->sentence() << "\n";
    std::cout << report->sentence() << "\n";
    return report->isComplete() ? 0 : 1;
}

int main(int count, char** words)
{
    const bool isUndo = count == 3 && std::string_view(words[2]) == "--undo";
    if (count != 2 && !isUndo)
    {
        std::cerr << "usage: muteallmicrophones <file> [--undo]\n";
        return 2;
    }
    sonavit::System audio;
    return isUndo ? undo(audio, words[1]) : mute(audio, words[1]);
}
