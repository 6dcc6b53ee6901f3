#include "tests/client/changing/supportchanges.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace
{
using namespace sonavit;
using changing::changeControl;
using changing::changeControlMute;
using changing::choose;
using support::setters;
using support::withContext;
using testing::DoubleEq;
using testing::ElementsAre;
using testing::IsEmpty;

/// Changes the controls of one part of a simulated machine.
class ChangeControl : public support::ChangingTest
{
protected:
    using Levels = std::vector<sim::ChannelLevel>;

    /// A machine with one level and one mute; the part is the subunit of the only adapter.
    void playControl(const Levels& channels)
    {
        sim::Subunit part;
        part.subType = KSNODETYPE_VOLUME;
        part.name = "Mic Boost";
        part.volume.emplace();
        part.volume->channels = channels;
        part.mute.emplace();
        playPart(part);
    }

    void playPart(const sim::Subunit& part)
    {
        sim::MachineBuilder builder;
        sim::EndpointBuilder endpoint = builder.card("Analog Audio").microphone();
        endpoint.node(part);
        play(builder.build());
        m_control.id = ControlId(parts().front().id);
        simulation().journal().clear();
    }

    Result<Done> change(const LevelChange& change)
    {
        const sonavit::reading::Handle<IAudioVolumeLevel> level(simulation().volumeLevel(m_control.id.text()));
        return changeControl(m_control, *level, change, context);
    }

    std::vector<double> levels()
    {
        std::vector<double> result;
        const std::vector<sim::Subunit> now = parts();
        for (const sim::ChannelLevel& channel : now.front().volume->channels)
            result.push_back(channel.level);
        return result;
    }

    std::vector<sim::Subunit> parts() { return simulation().machine().adapters.front().topology->subunits; }

    Control m_control;
};

TEST_F(ChangeControl, GivesAllChannelsTheSameLevelInOneCall)
{
    playControl({{-96.0f, 0.0f, 1.5f, -30.0f}, {-96.0f, 0.0f, 1.5f, -12.0f}});

    const Result<Done> result = change(Decibels(-6));

    EXPECT_TRUE(result);
    EXPECT_THAT(levels(), ElementsAre(-6.0, -6.0));
    EXPECT_THAT(setters(simulation()), ElementsAre("IAudioVolumeLevel::SetLevelAllChannels(2, " + withContext()));
}

TEST_F(ChangeControl, SetsOneChannelAndLeavesTheOthersAlone)
{
    playControl({{-96.0f, 0.0f, 1.5f, -30.0f}, {-96.0f, 0.0f, 1.5f, -12.0f}});

    const Result<Done> result = change(LevelChange(Decibels(-6)).onChannel(1));

    EXPECT_TRUE(result);
    EXPECT_THAT(levels(), ElementsAre(-30.0, -6.0));
    EXPECT_THAT(setters(simulation()), ElementsAre("IAudioVolumeLevel::SetLevel(1, -6, " + withContext()));
}

TEST_F(ChangeControl, SetsTheOnlyChannel)
{
    playControl({{0.0f, 30.0f, 10.0f, 0.0f}});

    const Result<Done> result = change(Decibels(20));

    EXPECT_TRUE(result);
    EXPECT_THAT(levels(), ElementsAre(20.0));
    EXPECT_THAT(setters(simulation()), ElementsAre("IAudioVolumeLevel::SetLevel(0, 20, " + withContext()));
}

TEST_F(ChangeControl, TakesAPercentageAsTheShareOfEachRange)
{
    playControl({{-96.0f, 0.0f, 1.5f, -30.0f}, {-12.0f, 12.0f, 1.5f, -12.0f}});

    const Result<Done> result = change(Percent(50));

    EXPECT_TRUE(result);
    EXPECT_THAT(levels(), ElementsAre(-48.0, 0.0));
}

TEST_F(ChangeControl, LeavesTheRoundingToItsStepsToTheHardware)
{
    playControl({{0.0f, 30.0f, 10.0f, 0.0f}});

    const Result<Done> result = change(Decibels(16));

    EXPECT_TRUE(result);
    EXPECT_THAT(levels(), ElementsAre(20.0));
}

TEST_F(ChangeControl, KeepsTheBalanceInSteps)
{
    playControl({{-96.0f, 0.0f, 1.5f, -30.0f}, {-96.0f, 0.0f, 1.5f, -3.0f}});

    EXPECT_TRUE(change(LevelChange::up(Decibels(1.5))));
    EXPECT_THAT(levels(), ElementsAre(-28.5, -1.5));

    EXPECT_TRUE(change(LevelChange::up(Decibels(9))));
    EXPECT_THAT(levels(), ElementsAre(-27.0, 0.0));

    EXPECT_TRUE(change(LevelChange::down(Percent(100))));
    EXPECT_THAT(levels(), ElementsAre(-96.0, -69.0));

    EXPECT_TRUE(change(LevelChange::up(Steps{2})));
    EXPECT_THAT(levels(), ElementsAre(-93.0, -66.0));
}

TEST_F(ChangeControl, EndsAStepExactlyAtTheEndOfTheRange)
{
    playControl({{-34.5f, 12.3f, 0.1f, 7.7f}, {-34.5f, 12.3f, 0.1f, 1.1f}, {-34.5f, 30.0f, 0.0f, -3.3f}});

    EXPECT_TRUE(change(LevelChange::up(Percent(90))));

    EXPECT_EQ(levels().front(), double{12.3f});
}

TEST_F(ChangeControl, LeavesChannelsOutThatHaveOneLevel)
{
    playControl({{-6.0f, -6.0f, 0.0f, -6.0f}, {-96.0f, 0.0f, 1.5f, -30.0f}});

    EXPECT_TRUE(change(LevelChange::up(Decibels(6))));
    EXPECT_THAT(levels(), ElementsAre(-6.0, -24.0));

    EXPECT_TRUE(change(Percent(50)));
    EXPECT_THAT(levels(), ElementsAre(-6.0, -48.0));

    EXPECT_TRUE(change(Decibels(-12)));
    EXPECT_THAT(levels(), ElementsAre(-6.0, -12.0));
}

TEST_F(ChangeControl, SaysThatAFixedLevelHasNoPercentage)
{
    playControl({{-6.0f, -6.0f, 0.0f, -6.0f}});

    EXPECT_EQ(change(Percent(50)).problem(), Problem(Problem::Kind::notSupported, "setControl", m_control.id.text(),
                                                     "the level is fixed at -6.00 dB"));
    EXPECT_TRUE(change(Decibels(-6)));
    EXPECT_EQ(change(Decibels(-7)).problem().sentence(), "-7.00 dB is outside the range of -6.00 to -6.00 dB");
}

TEST_F(ChangeControl, RefusesDecibelsOutsideTheRangeOfAChannelAndChangesNothing)
{
    playControl({{-96.0f, 0.0f, 1.5f, -30.0f}, {-12.0f, 12.0f, 1.5f, -12.0f}});

    const Result<Done> result = change(Decibels(-24));

    EXPECT_EQ(result.problem(), Problem(Problem::Kind::outOfRange, "setControl", m_control.id.text(),
                                        "-24.00 dB is outside the range of -12.00 to 12.00 dB"));
    EXPECT_THAT(setters(simulation()), IsEmpty());
}

TEST_F(ChangeControl, RefusesAChannelThatDoesNotExist)
{
    playControl({{-96.0f, 0.0f, 1.5f, -30.0f}});

    const Result<Done> result = change(LevelChange(Decibels(-24)).onChannel(1));

    EXPECT_EQ(result.problem(), Problem(Problem::Kind::outOfRange, "setControl", m_control.id.text(),
                                        "channel 1 does not exist: the only one is channel 0"));
}

TEST_F(ChangeControl, SaysThatAControlHasNoChannels)
{
    playControl({});

    EXPECT_EQ(change(Decibels(-24)).problem().sentence(), "the control has no channels");
    EXPECT_EQ(change(LevelChange(Decibels(-24)).onChannel(0)).problem().sentence(),
              "channel 0 does not exist: there are none");
}

TEST_F(ChangeControl, DoesNotBelieveTenThousandChannels)
{
    playControl({{-96.0f, 0.0f, 1.5f, -30.0f}, {-96.0f, 0.0f, 1.5f, -12.0f}});
    simulation().faults().lie("IAudioVolumeLevel::GetChannelCount", sim::Lie::ofNumber(10000));

    const Result<Done> all = change(Decibels(-24));
    const Result<Done> one = change(LevelChange(Decibels(-6)).onChannel(1));

    EXPECT_EQ(all.problem(), Problem::ofCall("IAudioVolumeLevel::GetChannelCount", m_control.id.text(),
                                             static_cast<std::int32_t>(0x8007000D)));
    EXPECT_TRUE(one);
    EXPECT_THAT(levels(), ElementsAre(-30.0, -6.0));
    EXPECT_GT(10u, simulation().journal().size());
}

TEST_F(ChangeControl, SaysThatAControlHasNoSteps)
{
    playControl({{-96.0f, 0.0f, 0.0f, -30.0f}, {-96.0f, 0.0f, 0.0f, -30.0f}});

    EXPECT_EQ(change(LevelChange::up()).problem().sentence(), "the device reports no steps");
}

TEST_F(ChangeControl, ReportsEachCallThatIsRefused)
{
    playControl({{-96.0f, 0.0f, 1.5f, -30.0f}, {-96.0f, 0.0f, 1.5f, -12.0f}});
    const auto refused = [&](const std::string& call, const LevelChange& wanted)
    {
        simulation().faults().fail("IAudioVolumeLevel::" + call, E_ACCESSDENIED).at(1);
        const Result<Done> result = change(wanted);
        return !result &&
               result.problem() == Problem::ofCall("IAudioVolumeLevel::" + call, m_control.id.text(), E_ACCESSDENIED);
    };

    EXPECT_TRUE(refused("SetLevelAllChannels", Decibels(-6)));
    EXPECT_TRUE(refused("SetLevel", LevelChange(Decibels(-6)).onChannel(0)));
    EXPECT_TRUE(refused("GetChannelCount", Decibels(-6)));
    EXPECT_TRUE(refused("GetLevelRange", Percent(50)));
    EXPECT_TRUE(refused("GetLevelRange", LevelChange::up()));
    EXPECT_TRUE(refused("GetLevel", LevelChange::up(Decibels(3))));
    EXPECT_TRUE(refused("GetLevel", LevelChange::up(Percent(3)).onChannel(0)));
    EXPECT_THAT(levels(), ElementsAre(-30.0, -12.0));
}

TEST_F(ChangeControl, LetsThePlatformDecideIfTheRangeCannotBeRead)
{
    playControl({{-96.0f, 0.0f, 1.5f, -30.0f}, {-96.0f, 0.0f, 1.5f, -12.0f}});
    simulation().faults().fail("IAudioVolumeLevel::GetLevelRange");

    EXPECT_TRUE(change(Decibels(-6)));
    EXPECT_TRUE(change(LevelChange(Decibels(-9)).onChannel(1)));
    EXPECT_THAT(levels(), ElementsAre(-6.0, -9.0));
}

TEST_F(ChangeControl, ReportsThatTheDeviceVanishesInTheMiddle)
{
    playControl({{-96.0f, 0.0f, 1.5f, -30.0f}});
    simulation()
        .faults()
        .run("IAudioVolumeLevel::SetLevel",
             [&] { simulation().change([](sim::Machine& now) { now.adapters.front().topology->subunits.clear(); }); })
        .at(1);

    EXPECT_EQ(change(Decibels(-6)).problem(),
              Problem::ofCall("IAudioVolumeLevel::SetLevel", m_control.id.text(), AUDCLNT_E_DEVICE_INVALIDATED));
}

TEST_F(ChangeControl, LeavesEveryLevelAsItIsWhenItIsSetToWhatWasRead)
{
    std::size_t count = 0;
    Levels channels;
    for (const sim::ChannelLevel& range : Levels{{-96.0f, 0.0f, 1.5f},
                                                 {-34.5f, 30.0f, 0.75f},
                                                 {0.0f, 30.0f, 10.0f},
                                                 {-96.1f, 12.3f, 0.1f},
                                                 {-10000.0f, 0.0f, 0.37f},
                                                 {-1e-3f, 1e-3f, 1e-5f},
                                                 {-60.0f, 0.0f, 0.0f}})
    {
        for (const float share : {0.0f, 0.001f, 0.1f, 1.0f / 3, 0.5f, 0.61803f, 0.75f, 0.999f, 1.0f})
        {
            channels.push_back(range);
            channels.back().level = std::min(range.maximum, range.minimum + (range.maximum - range.minimum) * share);
        }
        channels.push_back(range);
        channels.back().level = std::nextafter(range.maximum, range.minimum);
        for (unsigned step = 1; step < 4 && range.step > 0; ++step)
        {
            channels.push_back(range);
            channels.back().level = range.minimum + static_cast<float>(step) * range.step;
        }
    }
    playControl(channels);
    const std::vector<double> before = levels();
    for (unsigned channel = 0; channel < channels.size(); ++channel)
    {
        const double minimum = channels[channel].minimum;
        const Percent percent((before[channel] - minimum) / (double{channels[channel].maximum} - minimum) * 100.0);

        EXPECT_TRUE(change(LevelChange(Decibels(before[channel])).onChannel(channel)));
        EXPECT_TRUE(change(LevelChange(percent).onChannel(channel)));
        ++count;
    }

    EXPECT_EQ(levels(), before);
    EXPECT_GT(count, 80u);
}

TEST_F(ChangeControl, GivesEveryStepBackAfterItWasAnotherLevel)
{
    playControl({{-96.1f, 12.3f, 0.1f, 0.0f}});
    const sim::ChannelLevel range = parts().front().volume->channels.front();
    for (unsigned step = 0; step <= 1084; ++step)
    {
        const double wanted = double{range.minimum} + step * double{range.step};
        ASSERT_TRUE(change(Decibels(std::min(wanted, double{range.maximum}))));
        const double level = levels().front();
        const Percent percent((level - range.minimum) / (double{range.maximum} - range.minimum) * 100.0);

        ASSERT_TRUE(change(Percent(step < 500 ? 100 : 0)));
        ASSERT_TRUE(change(percent));
        ASSERT_EQ(levels().front(), level) << step;

        ASSERT_TRUE(change(Percent(step < 500 ? 100 : 0)));
        ASSERT_TRUE(change(Decibels(level)));
        ASSERT_EQ(levels().front(), level) << step;
    }
}

class ChangeControlMute : public ChangeControl
{
protected:
    Result<Done> change(bool isMuted)
    {
        const sonavit::reading::Handle<IAudioMute> mute(simulation().mute(m_control.id.text()));
        return changeControlMute(m_control, *mute, isMuted, context);
    }
};

TEST_F(ChangeControlMute, SwitchesTheMute)
{
    playControl({{0.0f, 30.0f, 10.0f, 0.0f}});

    EXPECT_TRUE(change(true));
    EXPECT_TRUE(parts().front().mute->muted);
    EXPECT_TRUE(change(false));
    EXPECT_FALSE(parts().front().mute->muted);
    EXPECT_THAT(setters(simulation()),
                ElementsAre("IAudioMute::SetMute(1, " + withContext(), "IAudioMute::SetMute(0, " + withContext()));
}

TEST_F(ChangeControlMute, CallsNoSetterForWhatIsThereAlready)
{
    playControl({{0.0f, 30.0f, 10.0f, 0.0f}});

    EXPECT_TRUE(change(false));

    EXPECT_THAT(setters(simulation()), IsEmpty());
    EXPECT_FALSE(context.isUsed());
}

TEST_F(ChangeControlMute, ReportsARefusal)
{
    playControl({{0.0f, 30.0f, 10.0f, 0.0f}});
    simulation().faults().fail("IAudioMute::SetMute", E_ACCESSDENIED);
    simulation().faults().fail("IAudioMute::GetMute");

    EXPECT_EQ(change(false).problem(), Problem::ofCall("IAudioMute::SetMute", m_control.id.text(), E_ACCESSDENIED));
}

/// Chooses among the inputs of a selector with the numbers 11 and 12.
class Choose : public ChangeControl
{
protected:
    void playSelector()
    {
        sim::MachineBuilder builder;
        sim::CardBuilder card = builder.card("Analog Audio");
        static_cast<void>(card.microphone());
        sim::Subunit part;
        part.subType = KSNODETYPE_MUX;
        part.selector.emplace();
        const std::string id = card.subunit(part);
        for (const char* const name : {"Line In", "Mic In"})
            card.chain({card.connector(sim::OptionalString(name), KSNODETYPE_LINE_CONNECTOR, In), id});
        play(builder.build());
        m_selector.id = SelectorId(id);
        const sim::Machine machine = simulation().machine();
        for (const sim::Connector& connector : machine.adapters.front().topology->connectors)
        {
            if (connector.name == std::string("Line In") || connector.name == std::string("Mic In"))
                m_numbers.push_back(connector.localId);
        }
        simulation().journal().clear();
    }

    Result<Done> change(std::optional<std::uint32_t> number)
    {
        SelectorInput input;
        input.number = number;
        input.name = "Line In";
        const sonavit::reading::Handle<IAudioInputSelector> selector(simulation().inputSelector(m_selector.id.text()));
        return choose(m_selector, *selector, input, context);
    }

    std::uint32_t selection()
    {
        for (const sim::Subunit& part : parts())
        {
            if (part.selector)
                return part.selector->selection;
        }
        return 0;
    }

    Selector m_selector;
    std::vector<std::uint32_t> m_numbers;
};

TEST_F(Choose, SelectsTheInput)
{
    playSelector();

    EXPECT_TRUE(change(m_numbers[1]));

    EXPECT_EQ(selection(), m_numbers[1]);
    EXPECT_THAT(setters(simulation()), ElementsAre("IAudioInputSelector::SetSelection(" + std::to_string(m_numbers[1]) +
                                                   ", " + withContext()));
}

TEST_F(Choose, CallsNoSetterForTheChosenInput)
{
    playSelector();
    EXPECT_TRUE(change(m_numbers[0]));
    simulation().journal().clear();

    EXPECT_TRUE(change(m_numbers[0]));

    EXPECT_THAT(setters(simulation()), IsEmpty());
}

TEST_F(Choose, ReportsAnInputWithoutANumber)
{
    playSelector();

    EXPECT_EQ(change(std::nullopt).problem(), Problem(Problem::Kind::notSupported, "select", m_selector.id.text(),
                                                      "the platform reports no number for the input \"Line In\""));
}

TEST_F(Choose, ReportsARefusal)
{
    playSelector();

    EXPECT_EQ(change(9999).problem(),
              Problem::ofCall("IAudioInputSelector::SetSelection", m_selector.id.text(), E_INVALIDARG));
    EXPECT_EQ(selection(), 0u);
}
}
