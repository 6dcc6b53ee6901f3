// Mutes every input that has a mute, and reports those that it cannot mute, and why:
// muteallmicrophones <file> [--machine <name>]          mutes, and keeps in the file what was not muted before
// muteallmicrophones <file> --undo [--machine <name>]   unmutes those again
#include "muting.h"
#include "simulatedmachine.h"

#include <sonavit/client.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>

int mute(sonavit::System& audio, const std::string& path)
{
    sonavit::Settings before;
    const bool isSilent = muteAllInputs(audio, before, std::cout);
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
    const auto machine = machineOf(count, words); // without this line: the hardware of a Windows computer
    const bool isUndo = count == 3 && std::string_view(words[2]) == "--undo";
    if (count != 2 && !isUndo)
    {
        std::cerr << "usage: muteallmicrophones <file> [--undo] [--machine <name>]\n";
        return 2;
    }
    sonavit::System audio;
    return isUndo ? undo(audio, words[1]) : mute(audio, words[1]);
}
