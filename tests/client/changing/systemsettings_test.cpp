#include "simulator/machine/file/machinefile.h"
#include "tests/client/changing/supportchanges.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>

namespace
{
using namespace sonavit;
using support::setters;
using testing::Each;
using testing::IsEmpty;
using Outcome = RestoredSetting::Outcome;

/// Saves the settings of a machine, and restores them.
class SystemRestore : public support::ClientTest
{
protected:
    void TearDown() override
    {
        m_system.reset();
        ClientTest::TearDown();
    }

    System& start(sim::Machine machine)
    {
        play(std::move(machine));
        m_system = std::make_unique<System>(options());
        return *m_system;
    }

    /// Restores on another machine, as after a restart.
    RestoreReport restoreAfter(const Settings& settings, const std::function<void(sim::Machine&)>& change)
    {
        m_system.reset();
        simulation().change(change);
        m_system = std::make_unique<System>(options());
        return m_system->restore(settings).value();
    }

    static std::vector<Outcome> outcomes(const RestoreReport& report)
    {
        std::vector<Outcome> result;
        for (const RestoredSetting& setting : report.settings)
            result.push_back(setting.outcome);
        return result;
    }

    static std::string described(const RestoreReport& report)
    {
        std::string text;
        for (const RestoredSetting& setting : report.settings)
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

    std::unique_ptr<System> m_system;
};

/// Speakers with a hardware level and a microphone, both at levels of their own.
class SystemRestoreOfDesk : public SystemRestore
{
protected:
    System& startDesk()
    {
        sim::MachineBuilder builder;
        sim::CardBuilder card = builder.card("Analog Audio");
        sim::EndpointBuilder speakers = card.speaker();
        speakers.volume(support::volumeOf(-60.0f, 0.0f, 1.0f, {-30.0f, -20.0f}));
        sim::EndpointBuilder microphone = card.microphone();
        microphone.level(-10.5f).muted().hardwareVolume({0.0f, 30.0f, 10.0f, 20.0f}).hardwareMute();
        m_speakers = EndpointId(speakers.id());
        m_microphone = EndpointId(microphone.id());
        return start(builder.build());
    }

    EndpointId m_speakers;
    EndpointId m_microphone;
};

/// The shipped machines with hardware of many kinds.
class SystemRestoreOfMachine : public SystemRestore, public testing::WithParamInterface<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(Shipped, SystemRestoreOfMachine,
                         testing::Values("bluetooth", "desktop", "laptop", "published", "studio", "virtual"));

TEST_P(SystemRestoreOfMachine, GivesEverythingBackThatWasSaved)
{
    System& system = start(sim::findMachine(GetParam()));
    const Settings settings = system.settings().value();
    const sim::Machine before = simulation().machine();
    const Snapshot shown = system.snapshot();
    simulation().change([](sim::Machine& machine) { disturb(machine); });
    ASSERT_TRUE(system.refresh(Depth::everything));
    ASSERT_NE(system.settings().value(), settings);

    const Result<RestoreReport> report = system.restore(settings);

    EXPECT_TRUE(report->isComplete()) << described(*report);
    EXPECT_EQ(system.settings().value(), settings);
    EXPECT_EQ(system.snapshot(), shown);
    EXPECT_NE(report.token(), 0u);
}

TEST_P(SystemRestoreOfMachine, WritesNothingThatIsThereAlready)
{
    System& system = start(sim::findMachine(GetParam()));
    const Settings settings = system.settings().value();
    simulation().journal().clear();

    const Result<RestoreReport> report = system.restore(settings);

    EXPECT_FALSE(report->settings.empty());
    EXPECT_THAT(outcomes(*report), Each(Outcome::unchanged)) << described(*report);
    EXPECT_THAT(setters(simulation()), IsEmpty());
    EXPECT_EQ(report.token(), 0u);
}

TEST_P(SystemRestoreOfMachine, ReadsTheFileThatItHasWritten)
{
    System& system = start(sim::findMachine(GetParam()));
    const Settings settings = system.settings().value();

    const Result<Settings> read = Settings::parse(settings.text());

    ASSERT_TRUE(read) << read.problem().sentence();
    EXPECT_EQ(read.value(), settings);
}

TEST_F(SystemRestoreOfDesk, SavesChannelsMutesAndControls)
{
    const Settings settings = startDesk().settings().value();

    ASSERT_EQ(settings.endpoints.size(), 2u);
    const Settings::EndpointSetting& speakers = settings.endpoints[0];
    EXPECT_EQ(speakers.name, "Speakers (Analog Audio)");
    EXPECT_THAT(speakers.channels, testing::ElementsAre(Decibels(-30), Decibels(-20)));
    EXPECT_EQ(speakers.master, Decibels(-20));
    EXPECT_EQ(speakers.isMuted, false);
    const Settings::EndpointSetting& microphone = settings.endpoints[1];
    EXPECT_EQ(microphone.isMuted, true);
    ASSERT_EQ(microphone.controls.size(), 1u);
    EXPECT_THAT(microphone.controls[0].channels, testing::ElementsAre(Decibels(20), Decibels(20)));
    EXPECT_EQ(microphone.controls[0].isMuted, false);
}

TEST_F(SystemRestoreOfDesk, NamesEachSettingInTheReport)
{
    System& system = startDesk();
    const Settings settings = system.settings().value();
    simulation().change([](sim::Machine& machine) { disturb(machine); });

    const RestoreReport report = system.restore(settings).value();

    std::vector<std::string> names;
    for (const RestoredSetting& setting : report.settings)
        names.push_back(setting.what);
    const std::string control = "Microphone (Analog Audio): " + settings.endpoints[1].controls[0].name;
    EXPECT_THAT(names, testing::ElementsAre("Speakers (Analog Audio): volume", "Speakers (Analog Audio): mute",
                                            "Microphone (Analog Audio): volume", "Microphone (Analog Audio): mute",
                                            control, control + ", mute"));
    EXPECT_THAT(outcomes(report), Each(Outcome::restored)) << described(report);
}

TEST_F(SystemRestoreOfDesk, GoesOnAfterEachCallThatIsRefused)
{
    System& system = startDesk();
    const Settings settings = system.settings().value();
    // A control's channels are counted once by the search for it.
    for (const auto& [operation, call] :
         std::vector<std::pair<std::string, unsigned>>{{"IAudioEndpointVolume::SetChannelVolumeLevel", 1},
                                                       {"IAudioEndpointVolume::SetMute", 1},
                                                       {"IAudioEndpointVolume::GetChannelCount", 1},
                                                       {"IAudioVolumeLevel::SetLevelAllChannels", 1},
                                                       {"IAudioVolumeLevel::GetChannelCount", 2},
                                                       {"IAudioMute::SetMute", 1}})
    {
        SCOPED_TRACE(operation);
        simulation().events().waitForClients();
        ASSERT_TRUE(system.refresh()); // so that no reading of what was announced meets the fault
        simulation().change([](sim::Machine& machine) { disturb(machine); });
        simulation().faults().fail(operation, E_ACCESSDENIED).at(call);

        const RestoreReport report = system.restore(settings).value();

        const std::vector<Outcome> all = outcomes(report);
        EXPECT_EQ(std::count(all.begin(), all.end(), Outcome::failed), 1) << described(report);
        EXPECT_EQ(std::count(all.begin(), all.end(), Outcome::restored), 5) << described(report);
        EXPECT_FALSE(report.isComplete());
        for (const RestoredSetting& setting : report.settings)
        {
            if (setting.outcome == Outcome::failed)
            {
                EXPECT_EQ(setting.problem->operation(), operation);
            }
        }
        simulation().faults().clear();
        EXPECT_TRUE(system.restore(settings)->isComplete());
        EXPECT_EQ(system.settings().value(), settings);
    }
}

TEST_F(SystemRestoreOfDesk, ReportsAnEndpointThatIsNotThereAndRestoresTheOthers)
{
    const Settings settings = startDesk().settings().value();

    const RestoreReport report = restoreAfter(settings,
                                              [](sim::Machine& machine)
                                              {
                                                  disturb(machine);
                                                  machine.endpoints.front().installed = false;
                                              });

    EXPECT_THAT(outcomes(report), testing::ElementsAre(Outcome::notFound, Outcome::notFound, Outcome::restored,
                                                       Outcome::restored, Outcome::restored, Outcome::restored))
        << described(report);
    EXPECT_EQ(report.settings.front().problem->kind(), Problem::Kind::notThere);
}

TEST_F(SystemRestoreOfDesk, ReportsAReferenceThatIsNone)
{
    System& system = startDesk();
    Settings settings = system.settings().value();
    settings.endpoints[0].reference = "broken";

    const RestoreReport report = system.restore(settings).value();

    EXPECT_EQ(report.settings[0].outcome, Outcome::notFound);
    EXPECT_EQ(report.settings[0].problem->kind(), Problem::Kind::unreadable);
    EXPECT_EQ(report.settings[2].outcome, Outcome::unchanged);
}

TEST_F(SystemRestoreOfDesk, ReportsAnEndpointThatHasNoVolumeNow)
{
    const Settings settings = startDesk().settings().value();

    const RestoreReport report =
        restoreAfter(settings, [](sim::Machine& machine) { machine.endpoints.front().state = sim::stateNotPresent; });

    EXPECT_EQ(report.settings[0].outcome, Outcome::notFound);
    EXPECT_EQ(report.settings[0].problem->kind(), Problem::Kind::notSupported);
}

TEST_F(SystemRestoreOfDesk, FindsAControlByItsNameIfItHasAnotherId)
{
    System& system = startDesk();
    Settings settings = system.settings().value();
    settings.endpoints[1].controls[0].id = "{another}";
    simulation().change([](sim::Machine& machine) { disturb(machine); });

    const RestoreReport report = system.restore(settings).value();

    EXPECT_TRUE(report.isComplete()) << described(report);
    EXPECT_EQ(system.controls(m_microphone)->front().channels->front().level.decibels, Decibels(20));
}

TEST_F(SystemRestoreOfDesk, ReportsAControlThatIsNotThere)
{
    System& system = startDesk();
    Settings settings = system.settings().value();
    settings.endpoints[1].controls[0].id = "{another}";
    settings.endpoints[1].controls[0].name = "Mic Boost";

    const RestoreReport report = system.restore(settings).value();

    EXPECT_EQ(report.settings[4].outcome, Outcome::notFound);
    EXPECT_EQ(report.settings[4].problem->sentence(), "there is no \"Mic Boost\" now");
}

TEST_F(SystemRestoreOfDesk, LeavesAloneWhatHasNoValue)
{
    System& system = startDesk();
    Settings settings = system.settings().value();
    settings.endpoints.resize(1);
    settings.endpoints[0].channels = {std::nullopt, Decibels(-3)};
    settings.endpoints[0].isMuted.reset();
    const sim::EndpointVolume expected = support::volumeOf(-60.0f, 0.0f, 1.0f, {-30.0f, -3.0f});

    const RestoreReport report = system.restore(settings).value();

    EXPECT_EQ(report.settings.size(), 1u);
    EXPECT_EQ(simulation().machine().endpoints.front().volume, expected);
}

TEST_F(SystemRestoreOfDesk, UsesTheMasterLevelIfThereAreOtherChannelsNow)
{
    const Settings settings = startDesk().settings().value();

    const RestoreReport report = restoreAfter(settings,
                                              [](sim::Machine& machine) {
                                                  machine.endpoints.front().volume->channels = {-40.0f, -40.0f, -50.0f};
                                              });

    EXPECT_EQ(report.settings[0].outcome, Outcome::restored);
    EXPECT_EQ(simulation().machine().endpoints.front().volume->channels, (std::vector<float>{-20.0f, -20.0f, -30.0f}));
}

TEST_F(SystemRestoreOfDesk, GivesAllChannelsOfAControlTheHighestLevelIfThereAreOtherChannelsNow)
{
    System& system = startDesk();
    Settings settings = system.settings().value();
    settings.endpoints[1].controls[0].channels = {Decibels(0), Decibels(10), Decibels(0)};

    const RestoreReport report = system.restore(settings).value();

    EXPECT_EQ(report.settings[4].outcome, Outcome::restored);
    const std::vector<Control> controls = system.controls(m_microphone).value();
    for (const ControlChannel& channel : *controls.front().channels)
        EXPECT_EQ(channel.level.decibels, Decibels(10));
}

TEST_F(SystemRestoreOfDesk, ReportsALevelThatTheRangeDoesNotContainNow)
{
    System& system = startDesk();
    Settings settings = system.settings().value();
    settings.endpoints[0].channels = {Decibels(-70), Decibels(-3)};

    const RestoreReport report = system.restore(settings).value();

    EXPECT_EQ(report.settings[0].outcome, Outcome::failed);
    EXPECT_EQ(report.settings[0].problem->sentence(), "-70.00 dB is outside the range of -60.00 to 0.00 dB");
    EXPECT_EQ(simulation().machine().endpoints.front().volume->channels.back(), -3.0f);
}

TEST_F(SystemRestoreOfDesk, IsOpenToAnOrdinaryAccount)
{
    System& system = startDesk();
    simulation().setAccount(sim::Account::ordinary);
    const Settings settings = system.settings().value();
    simulation().change([](sim::Machine& machine) { disturb(machine); });

    EXPECT_TRUE(system.restore(settings)->isComplete());
}

TEST_F(SystemRestore, FindsASelectorAndAnInputByTheirNames)
{
    System& system = start(sim::findMachine("studio"));
    ASSERT_TRUE(system.select("Auxiliary Source", "Combo 3"));
    Settings settings = system.settings().value();
    unsigned count = 0;
    for (Settings::EndpointSetting& endpoint : settings.endpoints)
    {
        for (Settings::SelectorSetting& selector : endpoint.selectors)
        {
            selector.id = "{another}";
            selector.input = 999999;
            ++count;
        }
    }
    simulation().change([](sim::Machine& machine) { disturb(machine); });

    const RestoreReport report = system.restore(settings).value();

    EXPECT_GT(count, 0u);
    EXPECT_TRUE(report.isComplete()) << described(report);
    for (const Card& card : system.snapshot().cards())
    {
        for (const Selector& selector : system.selectors(card.id()).value())
            EXPECT_NE(selector.selected(), nullptr) << selector.title();
    }
}

TEST_F(SystemRestore, LeavesASelectorAloneThatHadNoInput)
{
    sim::Machine machine = sim::findMachine("studio");
    disturb(machine);
    System& system = start(std::move(machine));
    const Settings settings = system.settings().value();

    const RestoreReport report = system.restore(settings).value();

    EXPECT_THAT(outcomes(report), Each(Outcome::unchanged)) << described(report);
    EXPECT_THAT(described(report), testing::HasSubstr("Auxiliary Source unchanged"));
}
}
