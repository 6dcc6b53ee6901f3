/// @file
/// Mutes all inputs, for the program and for its test.
#pragma once

#include <sonavit/client.h>

#include <ostream>

/// What puts the mute of @p endpoint back, and nothing else.
inline sonavit::Settings::EndpointSetting unmuting(const sonavit::System& audio, const sonavit::Endpoint& endpoint)
{
    sonavit::Settings::EndpointSetting setting;
    setting.name = endpoint.title();
    if (const sonavit::Result<sonavit::Reference> reference = audio.refer(endpoint.id()))
        setting.reference = reference->text();
    setting.isMuted = false;
    return setting;
}

/// Mutes every input that has a mute, and reports to @p out.
/// @param before receives what was not muted before, for System::restore()
/// @return whether no input is left that could be heard
inline bool muteAllInputs(sonavit::System& audio, sonavit::Settings& before, std::ostream& out)
{
    bool isSilent = true;
    for (const sonavit::Endpoint& input : audio.snapshot().endpoints())
    {
        if (input.flow() != sonavit::Flow::input || !input.isActive())
            continue;
        out << input.title() << ": ";
        if (input.volume() && input.volume()->isMuted == true)
        {
            out << "was muted before\n";
            continue;
        }
        const sonavit::Result<sonavit::Volume> after = audio.setMute(input.id(), true);
        if (!after)
        {
            // "IAudioEndpointVolume::SetMute failed: 0x80070005, access denied"
            out << "not muted: " << after.problem().sentence() << "\n";
            isSilent = false;
            continue;
        }
        before.endpoints.push_back(unmuting(audio, input));
        out << (after->isMuted == true ? "muted" : "accepted, but does not report a mute") << "\n";
    }
    return isSilent;
}
