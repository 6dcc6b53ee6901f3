/// @file
/// The fixture of tests that save and restore settings.
#pragma once

#include "simulator/machine/file/machinefile.h"
#include "tests/client/changing/supportchanges.h"
#include "tests/support/clienttest.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace support
{
/// Saves the settings of a machine, and restores them.
class SettingsTest : public ClientTest
{
protected:
    void TearDown() override
    {
        m_system.reset();
        ClientTest::TearDown();
    }

    sonavit::System& start(sim::Machine machine)
    {
        play(std::move(machine));
        m_system = std::make_unique<sonavit::System>(options());
        return *m_system;
    }

    /// Restores on another machine, as after a restart.
    sonavit::RestoreReport restoreAfter(const sonavit::Settings& settings,
                                        const std::function<void(sim::Machine&)>& change)
    {
        m_system.reset();
        simulation().change(change);
        m_system = std::make_unique<sonavit::System>(options());
        return m_system->restore(settings).value();
    }

    static std::vector<sonavit::RestoredSetting::Outcome> outcomes(const sonavit::RestoreReport& report)
    {
        std::vector<sonavit::RestoredSetting::Outcome> result;
        for (const sonavit::RestoredSetting& setting : report.settings)
            result.push_back(setting.outcome);
        return result;
    }

    static std::vector<std::string> names(const sonavit::RestoreReport& report)
    {
        std::vector<std::string> result;
        for (const sonavit::RestoredSetting& setting : report.settings)
            result.push_back(setting.what);
        return result;
    }

    static std::string described(const sonavit::RestoreReport& report)
    {
        std::string text;
        for (const sonavit::RestoredSetting& setting : report.settings)
            text += setting.what + " " + keyOf(setting.outcome) +
                    (setting.problem ? " (" + setting.problem->sentence() + ")\n" : "\n");
        return text;
    }

    /// Another level, mute and selection everywhere.
    static void disturb(sim::Machine& machine)
    {
        for (sim::Endpoint& endpoint : machine.endpoints)
        {
            if (!endpoint.volume)
                continue;
            endpoint.volume->muted = !endpoint.volume->muted;
            for (float& level : endpoint.volume->channels)
                level = level == endpoint.volume->minimum ? endpoint.volume->maximum : endpoint.volume->minimum;
        }
        for (sim::Adapter& adapter : machine.adapters)
        {
            if (!adapter.topology)
                continue;
            for (sim::Subunit& part : adapter.topology->subunits)
                disturb(part);
        }
    }

    static void disturb(sim::Part& part)
    {
        if (part.mute)
            part.mute->muted = !part.mute->muted;
        if (part.selector)
            part.selector->selection = 0;
        if (!part.volume)
            return;
        for (sim::ChannelLevel& channel : part.volume->channels)
            channel.level = channel.level == channel.minimum ? channel.maximum : channel.minimum;
    }

    std::unique_ptr<sonavit::System> m_system;
};

/// Speakers with a hardware level and a microphone, both at levels of their own.
class SettingsOfDeskTest : public SettingsTest
{
protected:
    sonavit::System& startDesk()
    {
        sim::MachineBuilder builder;
        sim::CardBuilder card = builder.card("Analog Audio");
        sim::EndpointBuilder speakers = card.speaker();
        speakers.volume(volumeOf(-60.0f, 0.0f, 1.0f, {-30.0f, -20.0f}));
        sim::EndpointBuilder microphone = card.microphone();
        microphone.level(-10.5f).muted().hardwareVolume({0.0f, 30.0f, 10.0f, 20.0f}).hardwareMute();
        m_speakers = sonavit::EndpointId(speakers.id());
        m_microphone = sonavit::EndpointId(microphone.id());
        return start(builder.build());
    }

    sonavit::EndpointId m_speakers;
    sonavit::EndpointId m_microphone;
};
}
