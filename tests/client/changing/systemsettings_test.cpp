#include "simulator/machine/file/machinefile.h"
#include "tests/client/changing/supportchanges.h"
#include "tests/client/changing/supportsettings.h"

#include <algorithm>
#include <cstddef>

namespace
{
using namespace sonavit;
using support::setters;
using testing::Each;
using testing::IsEmpty;
using Outcome = RestoredSetting::Outcome;
using SystemRestore = support::SettingsTest;
using SystemRestoreOfDesk = support::SettingsOfDeskTest;

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

TEST_F(SystemRestore, PutsALevelBetweenTwoNodesBack)
{
    System& system = start(sim::findMachine("desktop"));
    const EndpointId microphone = system.snapshot().endpointNamed("Microphone (Analog Audio)")->id();
    const std::vector<Control> before = system.controls(microphone).value();
    const Settings settings = system.settings().value();
    ASSERT_NE(system.setControl(microphone, "Microphone Boost", Decibels(10)).token(), 0u);

    const RestoreReport report = system.restore(settings).value();

    EXPECT_TRUE(report.isComplete()) << described(report);
    EXPECT_THAT(names(report), testing::Contains("Microphone (Analog Audio): Microphone Boost"));
    EXPECT_EQ(system.controls(microphone).value(), before);
}

TEST_F(SystemRestoreOfDesk, SavesChannelsMutesAndControls)
{
    const Settings settings = startDesk().settings().value();

    ASSERT_EQ(settings.endpoints.size(), 2u);
    const Settings::EndpointSetting& speakers = settings.endpoints[0];
    EXPECT_EQ(speakers.name, "Speakers (Analog Audio)");
    EXPECT_THAT(speakers.channels, testing::ElementsAre(Decibels(-30), Decibels(-20)));
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
    // A control's channels are counted once by the search for it, and those of both endpoints once after the controls.
    for (const auto& [operation, call] :
         std::vector<std::pair<std::string, unsigned>>{{"IAudioEndpointVolume::SetChannelVolumeLevel", 1},
                                                       {"IAudioEndpointVolume::SetMute", 1},
                                                       {"IAudioEndpointVolume::GetChannelCount", 3},
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

TEST_F(SystemRestore, NamesTheFailingCallThatHidesControlsAndSelectors)
{
    System& system = start(sim::findMachine("studio"));
    const Settings settings = system.settings().value();
    simulation().faults().fail("IMMDevice::Activate", E_ABORT).with({"IDeviceTopology"});

    const RestoreReport report = system.restore(settings).value();

    std::size_t failed = 0;
    for (const RestoredSetting& setting : report.settings)
    {
        EXPECT_NE(setting.outcome, Outcome::notFound) << setting.what;
        if (setting.outcome == Outcome::failed)
        {
            ++failed;
            EXPECT_EQ(setting.problem->operation(), "IMMDevice::Activate(IDeviceTopology)");
        }
    }
    EXPECT_GT(failed, 10u);
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

/// A driver may number its inputs anew, and a person changes the name.
TEST_F(SystemRestore, FindsAnInputByItsNameBeforeItsNumber)
{
    System& system = start(sim::findMachine("studio"));
    const Selector before = system.select("Auxiliary Source", "Combo 3").value();
    Settings settings = system.settings().value();
    for (Settings::EndpointSetting& endpoint : settings.endpoints)
    {
        for (Settings::SelectorSetting& selector : endpoint.selectors)
            selector.inputName = before.inputs.at(1).title();
    }
    ASSERT_NE(before.inputs.at(1).number, before.selection);

    const RestoreReport report = system.restore(settings).value();

    EXPECT_TRUE(report.isComplete()) << described(report);
    EXPECT_EQ(system.selectors(system.snapshot().cards().at(0).id())->at(0).selection, before.inputs.at(1).number);
}

/// A person who misspells the name must not get the input of before.
TEST_F(SystemRestore, ReportsAnInputWhoseNameIsNotThereThoughItsNumberIs)
{
    System& system = start(sim::findMachine("studio"));
    Settings settings = system.settings().value();
    settings.endpoints.resize(1);
    settings.endpoints[0].selectors.at(0).inputName = "Combo 33";

    const RestoreReport report = system.restore(settings).value();

    EXPECT_EQ(report.settings.back().outcome, Outcome::notFound) << described(report);
    EXPECT_EQ(report.settings.back().problem->sentence(), "there is no \"Combo 33\" now");
}

TEST_F(SystemRestore, FindsAnInputByItsNumberOnASystemInAnotherLanguage)
{
    System& system = start(sim::findMachine("studio"));
    const Selector before = system.select("Auxiliary Source", "Combo 3").value();
    Settings settings = system.settings().value();
    settings.endpoints.resize(1);
    settings.endpoints[0].selectors.at(0).name = "Zusatzquelle";
    settings.endpoints[0].selectors.at(0).inputName = "Kombibuchse 3";
    ASSERT_TRUE(system.select("Auxiliary Source", before.inputs.at(1).title()));

    const RestoreReport report = system.restore(settings).value();

    EXPECT_EQ(report.settings.back().outcome, Outcome::restored) << described(report);
    EXPECT_EQ(system.selectors(system.snapshot().cards().at(0).id())->at(0).selection, before.selection);
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
