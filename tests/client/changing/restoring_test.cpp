#include "simulator/machine/file/machinefile.h"
#include "tests/client/changing/supportchanges.h"
#include "tests/client/changing/supportsettings.h"

#include <cstddef>
#include <cstdio>

namespace
{
using namespace sonavit;
using support::setters;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Outcome = RestoredSetting::Outcome;
using RestoringDesk = support::SettingsOfDeskTest;

void replaceAll(std::string& text, const std::string& what, const std::string& by)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
        text.replace(at, what.size(), by);
}

/// The same computer with other ids of endpoints and parts, as after its drivers were installed anew.
sim::Machine withOtherIds(const sim::Machine& machine)
{
    std::string text = sim::writeMachine(machine);
    unsigned number = 0;
    for (const sim::Endpoint& endpoint : machine.endpoints)
    {
        char digits[9] = {};
        std::snprintf(digits, sizeof digits, "%08x", 0xA0000000U + ++number);
        replaceAll(text, ".{" + endpoint.id.substr(endpoint.id.rfind('{') + 1, 8), ".{" + std::string(digits));
    }
    replaceAll(text, "#{6994ad04-93ef-11d0-a3cc-00a0c9223196}", "#{65e8773e-8f56-11d0-a3b9-00a0c9223196}");
    return sim::readMachine(text, "other ids");
}

/// The machines that ship.
class RestoringMachine : public support::SettingsTest, public testing::WithParamInterface<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(Shipped, RestoringMachine,
                         testing::Values("bluetooth", "crowded", "desktop", "laptop", "published", "studio",
                                         "virtual"));

TEST_P(RestoringMachine, ChangesNothingTheSecondTime)
{
    System& system = start(sim::findMachine(GetParam()));
    const Settings settings = system.settings().value();
    simulation().change([](sim::Machine& machine) { disturb(machine); });
    ASSERT_TRUE(system.restore(settings)->isComplete());
    const sim::Machine once = simulation().machine();
    const Snapshot shown = system.snapshot();

    const Result<RestoreReport> report = system.restore(settings);

    EXPECT_FALSE(report->settings.empty());
    EXPECT_THAT(outcomes(*report), Each(Outcome::unchanged)) << described(*report);
    EXPECT_EQ(report.token(), 0u);
    EXPECT_TRUE(simulation().machine() == once);
    EXPECT_EQ(system.snapshot(), shown);
}

TEST_P(RestoringMachine, FindsEverythingAgainUnderOtherIds)
{
    const sim::Machine machine = sim::findMachine(GetParam());
    System& system = start(machine);
    const Settings settings = system.settings().value();
    sim::Machine expected = withOtherIds(machine);
    ASSERT_FALSE(expected == machine);

    const RestoreReport report = restoreAfter(settings,
                                              [&](sim::Machine& now)
                                              {
                                                  now = expected;
                                                  disturb(now);
                                              });

    EXPECT_TRUE(report.isComplete()) << described(report);
    const Settings after = m_system->settings().value();
    ASSERT_EQ(after.endpoints.size(), settings.endpoints.size());
    for (std::size_t i = 0; i < after.endpoints.size(); ++i)
    {
        EXPECT_NE(after.endpoints[i].reference, settings.endpoints[i].reference);
        EXPECT_EQ(after.endpoints[i].isMuted, settings.endpoints[i].isMuted) << after.endpoints[i].name;
        EXPECT_EQ(after.endpoints[i].channels, settings.endpoints[i].channels) << after.endpoints[i].name;
    }
}

/// Two equal headsets without serial numbers, the second of which is at other levels than the first.
class RestoringHeadsets : public support::SettingsTest
{
protected:
    System& startHeadsets()
    {
        sim::MachineBuilder builder;
        builder.card("USB Headset", first).headphones().level(-10.0f);
        builder.card("USB Headset", second).headphones().level(-30.0f);
        return start(builder.build());
    }

    static constexpr const char* first = "USB\\VID_1111&PID_2222\\6&1&0&1";
    static constexpr const char* second = "USB\\VID_1111&PID_2222\\6&1&0&2";
};

TEST_F(RestoringHeadsets, TakesNoLevelOfAnAbsentDeviceForOneThatHasLevelsOfItsOwn)
{
    const Settings settings = startHeadsets().settings().value();

    const RestoreReport report = restoreAfter(settings,
                                              [](sim::Machine& machine)
                                              {
                                                  machine.endpoints.front().state = sim::stateNotPresent;
                                                  disturb(machine);
                                              });

    EXPECT_THAT(outcomes(report),
                ElementsAre(Outcome::notFound, Outcome::notFound, Outcome::restored, Outcome::restored))
        << described(report);
    EXPECT_EQ(report.settings[0].problem->kind(), Problem::Kind::notThere);
    EXPECT_EQ(report.settings[0].problem->sentence(),
              "the nearest endpoint, Headphones (USB Headset), has settings of its own");
    EXPECT_THAT(simulation().machine().endpoints.back().volume->channels, Each(-30.0f));
}

TEST_F(RestoringHeadsets, RestoresNoneOfTwoThatOneDeviceMayBeEquallyWell)
{
    const Settings settings = startHeadsets().settings().value();

    const RestoreReport report =
        restoreAfter(settings,
                     [](sim::Machine& machine)
                     {
                         sim::MachineBuilder builder;
                         builder.card("USB Headset", "USB\\VID_1111&PID_2222\\6&1&0&9").headphones().level(-50.0f);
                         machine = builder.build();
                         machine = withOtherIds(machine);
                     });

    EXPECT_THAT(outcomes(report), Each(Outcome::notFound)) << described(report);
    EXPECT_EQ(report.settings[0].problem->kind(), Problem::Kind::ambiguous);
    EXPECT_EQ(report.settings[0].problem->sentence(),
              "Headphones (USB Headset) fits several endpoints of the settings equally well");
    EXPECT_THAT(simulation().machine().endpoints.back().volume->channels, Each(-50.0f));
}

TEST_F(RestoringHeadsets, ReportsAnEndpointThatIsAmbiguousNow)
{
    Settings settings = startHeadsets().settings().value();
    settings.endpoints.resize(1);

    const RestoreReport report =
        restoreAfter(settings,
                     [](sim::Machine& machine)
                     {
                         sim::MachineBuilder builder;
                         builder.card("USB Headset", "USB\\VID_1111&PID_2222\\6&1&0&8").headphones();
                         builder.card("USB Headset", "USB\\VID_1111&PID_2222\\6&1&0&9").headphones();
                         machine = withOtherIds(builder.build());
                     });

    EXPECT_THAT(outcomes(report), ElementsAre(Outcome::notFound, Outcome::notFound)) << described(report);
    EXPECT_EQ(report.settings[0].problem->kind(), Problem::Kind::ambiguous);
    EXPECT_THAT(report.settings[0].problem->sentence(), HasSubstr("several endpoints fit equally well"));
}

TEST_F(RestoringHeadsets, SaysHowItHasRecognisedAnEndpoint)
{
    System& system = startHeadsets();
    Settings settings = system.settings().value();
    settings.endpoints.resize(1);
    EXPECT_EQ(system.restore(settings)->settings[0].recognition, ""); // by its id

    const RestoreReport report =
        restoreAfter(settings,
                     [](sim::Machine& machine)
                     {
                         sim::MachineBuilder builder;
                         builder.card("USB Headset", "USB\\VID_1111&PID_2222\\6&1&0&9").headphones().level(-50.0f);
                         machine = withOtherIds(builder.build());
                     });

    EXPECT_EQ(report.settings[0].outcome, Outcome::restored) << described(report);
    EXPECT_EQ(report.settings[0].recognition, "same model in another USB port");
    EXPECT_THAT(simulation().machine().endpoints.back().volume->channels, Each(-10.0f));
}

/// A person changes the volume in the file, and the control that implements it contains the level of before.
TEST_F(RestoringDesk, LeavesTheVolumeAsItIsInTheFileIfAControlImplementsIt)
{
    sim::MachineBuilder builder;
    builder.card("Analog Audio")
        .speaker()
        .hardwareVolume({-96.0f, 0.0f, 1.5f, -30.0f})
        .hardwareMute()
        .volumeInHardware();
    System& system = start(builder.build());
    Settings settings = system.settings().value();
    ASSERT_EQ(settings.endpoints.at(0).controls.size(), 1u);
    settings.endpoints[0].channels.assign(2, Decibels(-12));
    settings.endpoints[0].isMuted = true;

    const RestoreReport report = system.restore(settings).value();

    const Volume volume = *system.snapshot().endpoints().at(0).volume();
    EXPECT_EQ(volume.master.decibels, Decibels(-12));
    EXPECT_EQ(volume.isMuted, true);
    EXPECT_THAT(outcomes(report),
                ElementsAre(Outcome::restored, Outcome::restored, Outcome::unchanged, Outcome::unchanged))
        << described(report);
}

TEST_F(RestoringDesk, NamesWhatHasNoNameByItsId)
{
    System& system = startDesk();
    Settings settings = system.settings().value();
    const std::string id = settings.endpoints[1].controls[0].id;
    for (Settings::EndpointSetting& endpoint : settings.endpoints)
        endpoint.name.clear();
    settings.endpoints[1].controls[0].name.clear();
    settings.endpoints[0].reference = "broken";

    const RestoreReport report = system.restore(settings).value();

    EXPECT_THAT(names(report),
                ElementsAre("endpoint 1: volume", "endpoint 1: mute", "Microphone (Analog Audio): volume",
                            "Microphone (Analog Audio): mute", "Microphone (Analog Audio): " + id,
                            "Microphone (Analog Audio): " + id + ", mute"));
}

TEST_F(RestoringDesk, SaysThatALevelIsRoundedToAStepOnlyOnce)
{
    System& system = startDesk();
    Settings settings = system.settings().value();
    settings.endpoints[1].controls[0].channels = {Decibels(12), Decibels(12)}; // the steps are 10 dB
    settings.endpoints[1].controls[0].isMuted.reset();
    settings.endpoints = {settings.endpoints[1]};

    const Result<RestoreReport> first = system.restore(settings);
    const Result<RestoreReport> second = system.restore(settings);

    EXPECT_EQ(first->settings.back().outcome, Outcome::restored);
    EXPECT_EQ(system.controls(m_microphone)->front().channels->front().level.decibels, Decibels(10));
    EXPECT_EQ(second->settings.back().outcome, Outcome::unchanged);
    EXPECT_EQ(second.token(), 0u);
}

TEST_F(RestoringDesk, SaysThatOneLevelForOtherChannelsIsRoundedOnlyOnce)
{
    System& system = startDesk();
    Settings settings = system.settings().value();
    settings.endpoints[1].controls[0].channels = {Decibels(12)};

    const Result<RestoreReport> first = system.restore(settings);
    const Result<RestoreReport> second = system.restore(settings);

    EXPECT_EQ(first->settings[4].outcome, Outcome::restored);
    EXPECT_EQ(second->settings[4].outcome, Outcome::unchanged);
    EXPECT_EQ(second.token(), 0u);
}

TEST_F(RestoringDesk, DoesNotBelieveNumbersOfChannelsThatNoDeviceHas)
{
    System& system = startDesk();
    const Settings settings = system.settings().value();
    simulation().faults().lie("IAudioEndpointVolume::GetChannelCount", sim::Lie::ofNumber(0xFFFFFFFF));
    simulation().faults().lie("IAudioVolumeLevel::GetChannelCount", sim::Lie::ofNumber(0xFFFFFFFF));
    simulation().journal().clear();

    const RestoreReport report = system.restore(settings).value();

    std::vector<std::string> failures;
    for (const RestoredSetting& setting : report.settings)
    {
        if (setting.problem && setting.problem->code() == static_cast<std::int32_t>(0x8007000D))
            failures.push_back(setting.problem->operation());
    }
    EXPECT_THAT(failures, Contains("IAudioEndpointVolume::GetChannelCount"));
    EXPECT_THAT(failures, Contains("IAudioVolumeLevel::GetChannelCount"));
    EXPECT_GT(1000u, simulation().journal().size());
}

TEST_F(RestoringDesk, CallsAVolumeUnchangedIfTheDeviceKeepsItsLevels)
{
    System& system = startDesk();
    Settings settings = system.settings().value();
    settings.endpoints.resize(1);
    settings.endpoints[0].channels = {Decibels(-3), Decibels(-20)};
    simulation().faults().succeedWithNull("IAudioEndpointVolume::SetChannelVolumeLevel");

    const Result<RestoreReport> report = system.restore(settings);

    EXPECT_THAT(outcomes(*report), Each(Outcome::unchanged)) << described(*report);
    EXPECT_EQ(report.token(), 0u);
}
}
