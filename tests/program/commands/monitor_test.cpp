#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <utility>

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{
/// Something that happens while the monitor listens, how many lines it shows at least, and a text in them.
struct Step
{
    template<class Action>
    Step(Action does, std::size_t shows = 1, std::string shown = {})
        : action(does),
          lines(shows),
          text(std::move(shown))
    {
    }

    std::function<void(sim::Events&)> action;
    std::size_t lines;
    std::string text;
};

/// The monitor's pauses are where things happen here: each step comes after the lines of the one before, the end comes
/// after those of the last one.
class ProgramMonitor : public support::ProgramTest
{
protected:
    support::Answer listen(const std::vector<Step>& steps, std::vector<std::string> options = {})
    {
        std::ostringstream out;
        std::ostringstream err;
        sonavit::program::Environment own = environment(out, err);
        support::Observer observer(simulation());
        std::size_t next = 0;
        std::size_t expected = 0;
        std::string text;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        own.pause = [&](std::chrono::milliseconds longest)
        {
            const std::string shown = out.str();
            const auto lines = static_cast<std::size_t>(std::count(shown.begin(), shown.end(), '\n'));
            const bool isShown = lines >= expected && shown.find(text) != std::string::npos;
            if (!isShown && std::chrono::steady_clock::now() < deadline)
            {
                observer.wait(longest);
                return false;
            }
            if (next == steps.size())
                return true;
            steps[next].action(simulation().events());
            simulation().events().waitForClients();
            text = steps[next].text;
            expected += steps[next++].lines;
            return false;
        };
        options.insert(options.begin(), "monitor");
        support::Answer answer;
        answer.code = sonavit::program::run(options, own);
        answer.out = out.str();
        answer.err = err.str();
        return answer;
    }

    /// The lines without the time in front.
    static std::vector<std::string> told(const support::Answer& answer)
    {
        std::vector<std::string> result;
        for (const std::string& line : answer.lines())
        {
            EXPECT_THAT(line.substr(0, 14), testing::MatchesRegex("..:..:......  "));
            result.push_back(line.substr(14));
        }
        return result;
    }
};
}

TEST_F(ProgramMonitor, TellsChangesOfState)
{
    run(support::smallMachine());

    const support::Answer answer =
        listen({[](sim::Events& events) { events.plug(support::headphonesId()); },
                Step([](sim::Events& events) { events.setState(support::microphoneId(), sim::stateDisabled); }, 4)});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("", answer.err);
    EXPECT_THAT(told(answer), ElementsAre("Analog Audio  Headphones  unplugged \xE2\x86\x92 active",
                                          "Analog Audio  Microphone  active \xE2\x86\x92 disabled",
                                          HasSubstr("no default input for console any more"),
                                          HasSubstr("no default input for multimedia any more"),
                                          HasSubstr("no default input for communications any more")));
}

TEST_F(ProgramMonitor, TellsEndpointsThatComeAndGo)
{
    sim::Machine machine = support::smallMachine();
    machine.endpoints[1].installed = false;
    run(std::move(machine));

    const support::Answer answer = listen({[](sim::Events& events) { events.add(support::headphonesId()); },
                                           [](sim::Events& events) { events.remove(support::headphonesId()); }});

    EXPECT_THAT(told(answer),
                ElementsAre("Analog Audio  Headphones  added, unplugged", "Analog Audio  Headphones  removed"));
}

TEST_F(ProgramMonitor, TellsVolumesAndMutes)
{
    run(support::smallMachine());

    const support::Answer answer =
        listen({[](sim::Events& events) { events.setVolume(support::speakerId(), -12.0f); },
                [](sim::Events& events) { events.setVolume(support::speakerId(), {}, true); },
                [](sim::Events& events) { events.setVolume(support::speakerId(), -18.0f, false); }});

    EXPECT_THAT(
        told(answer),
        ElementsAre("Analog Audio  Speakers    volume 72% (-18.00 dB) \xE2\x86\x92 82% (-12.00 dB)",
                    "Analog Audio  Speakers    muted",
                    "Analog Audio  Speakers    volume 82% (-12.00 dB) \xE2\x86\x92 72% (-18.00 dB), no longer muted"));
}

TEST_F(ProgramMonitor, TellsDefaults)
{
    run(support::smallMachine());

    const support::Answer answer =
        listen({[](sim::Events& events) { events.plug(support::headphonesId()); },
                [](sim::Events& events) { events.setDefault(support::headphonesId(), eConsole); },
                [](sim::Events& events) { events.clearDefault(eCapture, eCommunications); }});

    EXPECT_THAT(told(answer), ElementsAre("Analog Audio  Headphones  unplugged \xE2\x86\x92 active",
                                          "Analog Audio  Headphones  default output for console, formerly Speakers "
                                          "(Analog Audio)",
                                          testing::EndsWith("  no default input for communications any more, formerly "
                                                            "Microphone (Analog Audio)")));
}

TEST_F(ProgramMonitor, TellsThatADefaultIsNotKnownAnyMore)
{
    run(support::smallMachine());
    const auto lose = [this](sim::Events& events)
    {
        simulation().faults().fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint").with({"eCapture", "eMultimedia"});
        events.announceDefault(eCapture, eMultimedia, support::microphoneId());
    };

    EXPECT_THAT(told(listen({lose})), ElementsAre(HasSubstr("default input for multimedia not known, formerly ")));
}

TEST_F(ProgramMonitor, AnswersInJsonOneObjectALine)
{
    run(support::smallMachine());

    const support::Answer answer = listen({[](sim::Events& events) { events.plug(support::headphonesId()); },
                                           [](sim::Events& events) { events.setVolume(support::speakerId(), -12.0f); },
                                           [](sim::Events& events) { events.remove(support::headphonesId()); },
                                           [](sim::Events& events) { events.add(support::headphonesId()); },
                                           [](sim::Events& events) { events.clearDefault(eRender, eConsole); }},
                                          {"--json"});

    std::vector<json> lines;
    for (const std::string& line : answer.lines())
        lines.push_back(json::parse(line));
    ASSERT_EQ(5u, lines.size());
    for (const json& line : lines)
        EXPECT_THAT(line["time"].get<std::string>(), testing::MatchesRegex("....-..-..T..:..:......Z"));
    EXPECT_EQ("stateChanged", lines[0]["event"]);
    EXPECT_EQ(
        json({{"id", support::smallCardId()}, {"name", "Analog Audio"}, {"instanceId", support::smallInstanceId()}}),
        lines[0]["card"]);
    EXPECT_EQ(json({{"id", support::headphonesId()}, {"name", "Headphones (Analog Audio)"}}), lines[0]["endpoint"]);
    EXPECT_EQ("unplugged", lines[0]["before"]);
    EXPECT_EQ("active", lines[0]["after"]);
    EXPECT_EQ("unknown", lines[0]["origin"]); // the platform does not say who caused it
    EXPECT_EQ("volumeChanged", lines[1]["event"]);
    EXPECT_EQ(-18, lines[1]["before"]["decibels"]);
    EXPECT_EQ(82, lines[1]["after"]["percent"]);
    EXPECT_EQ(-12, lines[1]["after"]["decibels"]);
    EXPECT_EQ(false, lines[1]["after"]["muted"]);
    EXPECT_EQ("other", lines[1]["origin"]);
    EXPECT_EQ("removed", lines[2]["event"]);
    EXPECT_EQ(support::headphonesId(), lines[2]["before"]["id"]);
    EXPECT_TRUE(lines[2]["after"].is_null());
    EXPECT_EQ("added", lines[3]["event"]);
    EXPECT_TRUE(lines[3]["before"].is_null());
    EXPECT_EQ("active", lines[3]["after"]["state"]);
    EXPECT_EQ("defaultChanged", lines[4]["event"]);
    EXPECT_TRUE(lines[4]["endpoint"].is_null());
    EXPECT_TRUE(lines[4]["card"].is_null());
    EXPECT_EQ("render", lines[4]["flow"]);
    EXPECT_EQ("console", lines[4]["role"]);
}

TEST_F(ProgramMonitor, ListensToTheVolumeOfAnEndpointThatCame)
{
    sim::Machine machine = support::smallMachine();
    machine.endpoints[1].installed = false;
    run(std::move(machine));

    const support::Answer answer =
        listen({[](sim::Events& events) { events.add(support::headphonesId()); },
                [](sim::Events& events) { events.setVolume(support::headphonesId(), -15.0f); }});

    EXPECT_THAT(told(answer),
                ElementsAre("Analog Audio  Headphones  added, unplugged",
                            "Analog Audio  Headphones  volume 54% (-30.00 dB) \xE2\x86\x92 77% (-15.00 dB)"));
}

TEST_F(ProgramMonitor, ListensToAVolumeOnceAfterItCameBack)
{
    run(support::smallMachine());

    const support::Answer answer =
        listen({[](sim::Events& events) { events.plug(support::headphonesId()); },
                [](sim::Events& events) { events.setVolume(support::headphonesId(), -15.0f); }});

    EXPECT_EQ(2u, told(answer).size()) << answer.out;
}

TEST_F(ProgramMonitor, TellsOfACardThatWasNotThere)
{
    sim::MachineBuilder builder;
    builder.card("Board").speaker("Speakers");
    const std::string headset = builder.usbCard("Headset").headphones("Earphones").notInstalled().id();
    run(builder.build());

    const support::Answer answer = listen({Step([&](sim::Events& events) { events.add(headset); }, 2),
                                           Step([&](sim::Events& events) { events.unplug(headset); }),
                                           Step([&](sim::Events& events) { events.remove(headset); }, 2)});

    EXPECT_THAT(told(answer), ElementsAre("Headset            card added", "Headset  Earphones  added, active",
                                          "Headset  Earphones  active \xE2\x86\x92 unplugged",
                                          "Headset  Earphones  removed", "Headset             card removed"));
}

TEST_F(ProgramMonitor, TellsNothingWhereNothingChanges)
{
    run(support::smallMachine());

    const support::Answer answer =
        listen({Step([](sim::Events& events) { events.announceState(support::speakerId(), sim::stateActive); }, 0),
                Step([](sim::Events& events) { events.announceAdded(support::speakerId()); }, 0)});

    EXPECT_THAT(told(answer), IsEmpty());
}

TEST_F(ProgramMonitor, TellsThatAnEndpointWentAndCameBack)
{
    run(support::smallMachine());

    const support::Answer answer = listen({[](sim::Events& events) { events.announceRemoved(support::speakerId()); }});

    EXPECT_THAT(told(answer), ElementsAre("Analog Audio  Speakers    went and came back"));
}

TEST_F(ProgramMonitor, ShowsTheFlowsOfAnOutputAndAnInputOfOneName)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Headset");
    const std::string output = card.headphones("Hands-Free").id();
    const std::string input = card.microphone("Hands-Free").id();
    const std::string other = card.speaker("Base").id();
    run(builder.build());

    const support::Answer answer =
        listen({[&](sim::Events& events) { events.unplug(output); }, [&](sim::Events& events) { events.unplug(input); },
                [&](sim::Events& events) { events.unplug(other); }});

    const std::vector<std::string> lines = told(answer);
    EXPECT_THAT(lines, testing::Contains("Headset  Hands-Free (output)  active \xE2\x86\x92 unplugged"));
    EXPECT_THAT(lines, testing::Contains("Headset  Hands-Free (input)   active \xE2\x86\x92 unplugged"));
    EXPECT_THAT(lines, testing::Contains("Headset  Base                 active \xE2\x86\x92 unplugged"));
}

TEST_F(ProgramMonitor, KeepsTheFlowOfALongNameThatOccursTwice)
{
    const std::string name(100, 'x');
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Headset");
    const std::string output = card.headphones(name).id();
    card.microphone(name);
    run(builder.build());

    EXPECT_THAT(told(listen({[&](sim::Events& events) { events.unplug(output); }})).front(),
                testing::StartsWith("Headset  " + std::string(14, 'x') + "\xE2\x80\xA6 (output)  active "));
}

TEST_F(ProgramMonitor, SaysThatAMachineHasNoEvents)
{
    EXPECT_THAT(call({"monitor", "--machine", "virtual"}).err, testing::EndsWith("\nThis machine has no events.\n"));
    EXPECT_THAT(call({"monitor", "--machine", "desktop"}).err, testing::Not(HasSubstr("no events")));
    EXPECT_EQ("", call({"monitor", "--machine", "virtual", "--json"}).err);
}

TEST_F(ProgramMonitor, HearsTheMachinesNotificationThread)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.deliverAtOnce(false);

    const support::Answer answer =
        listen({[](sim::Events& events) { events.plug(support::headphonesId()); },
                Step(
                    [](sim::Events& events)
                    {
                        for (int i = 1; i <= 20; ++i)
                            events.setVolume(support::headphonesId(), static_cast<float>(-i));
                    },
                    1, "69% (-20.00 dB)"),
                [](sim::Events& events) { events.unplug(support::headphonesId()); }});

    const std::vector<std::string> lines = told(answer);
    ASSERT_LE(3u, lines.size()) << answer.out;
    EXPECT_EQ("Analog Audio  Headphones  unplugged \xE2\x86\x92 active", lines.front());
    EXPECT_THAT(lines[lines.size() - 2], testing::EndsWith(" \xE2\x86\x92 69% (-20.00 dB)"));
    EXPECT_EQ("Analog Audio  Headphones  active \xE2\x86\x92 unplugged", lines.back());
}

TEST_F(ProgramMonitor, EndsWhileThingsHappen)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.deliverAtOnce(false);
    pause = [&](std::chrono::milliseconds)
    {
        for (int i = 0; i < 50; ++i)
        {
            simulation.events().setVolume(support::speakerId(), static_cast<float>(-i));
            simulation.events().setState(support::headphonesId(), i % 2 == 0 ? sim::stateActive : sim::stateUnplugged);
        }
        return true;
    };

    EXPECT_EQ(0, call({"monitor"}).code);
}

TEST_F(ProgramMonitor, AnswersInJsonAnErrorOnOneLine)
{
    run(support::smallMachine());
    simulation().faults().fail("IMMDeviceEnumerator::RegisterEndpointNotificationCallback");

    const support::Answer answer = call({"monitor", "--json"});

    EXPECT_EQ(1, answer.code);
    ASSERT_EQ(1u, answer.lines().size()) << answer.out;
    EXPECT_EQ("the system does not report changes of its endpoints", json::parse(answer.out)["error"]);
    EXPECT_EQ(1u, call({"monitor", "--json", "--for", "never"}).lines().size());
}

TEST_F(ProgramMonitor, EndsWhenItsOutputCannotBeWritten)
{
    run(support::smallMachine());
    std::ostringstream out;
    std::ostringstream err;
    sonavit::program::Environment own = environment(out, err);
    int pauses = 0;
    own.pause = [&](std::chrono::milliseconds)
    {
        out.setstate(std::ios::badbit); // as after a failed write
        return ++pauses > 10;
    };

    const int code = sonavit::program::run({"monitor"}, own);

    EXPECT_EQ(1, code);
    EXPECT_EQ("sonavit: the answer cannot be written\n", err.str());
    EXPECT_EQ(1 + 1, pauses) << "one while it listens, one to ask whether the end was requested";
}

TEST_F(ProgramMonitor, EndsSilentlyWhenTheReaderOfItsOutputHasGone)
{
    run(support::smallMachine());
    std::ostringstream out;
    std::ostringstream err;
    sonavit::program::Environment own = environment(out, err);
    own.pause = [&](std::chrono::milliseconds)
    {
        out.setstate(std::ios::badbit);
        return true;
    };

    EXPECT_EQ(130, sonavit::program::run({"monitor", "--json"}, own));
    EXPECT_EQ("", err.str());
}

TEST_F(ProgramMonitor, SaysToWhomItListensWhereSomebodyLooksOn)
{
    run(support::smallMachine());
    isTerminal = true;

    EXPECT_EQ("Listening to 3 endpoints on 1 card; Ctrl-C ends it.\n", listen({}).err);
}

TEST_F(ProgramMonitor, EndsAtOnceAfterNoTime)
{
    run(support::smallMachine());
    pause = [](std::chrono::milliseconds) -> bool { throw std::logic_error("there is nothing to wait for"); };

    const support::Answer answer = call({"monitor", "--for", "0"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("", answer.err);
}

TEST_F(ProgramMonitor, NamesTheMachineInEachEvent)
{
    const support::Answer answer = call({"monitor", "--json", "--machine", "laptop"});
    run(support::smallMachine());
    const support::Answer own = listen({[](sim::Events& events) { events.plug(support::headphonesId()); }}, {"--json"});

    for (const std::string& line : answer.lines())
        EXPECT_EQ("laptop", json::parse(line)["machine"]);
    EXPECT_TRUE(json::parse(own.out).contains("machine"));
    EXPECT_TRUE(json::parse(own.out)["machine"].is_null());
}

TEST_F(ProgramMonitor, ListensToTheEndpointsThatTheUserNames)
{
    run(support::smallMachine());

    const support::Answer answer =
        listen({[](sim::Events& events) { events.setVolume(support::speakerId(), -12.0f); },
                Step([](sim::Events& events) { events.setVolume(support::microphoneId(), -12.0f); }, 0),
                [](sim::Events& events) { events.plug(support::headphonesId()); }},
               {"Speakers", "Headphones"});

    EXPECT_THAT(told(answer),
                ElementsAre("Analog Audio  Speakers    volume 72% (-18.00 dB) \xE2\x86\x92 82% (-12.00 dB)",
                            "Analog Audio  Headphones  unplugged \xE2\x86\x92 active"));
}

TEST_F(ProgramMonitor, TellsOnlyTheKindsThatTheUserNames)
{
    run(support::smallMachine());
    const auto kinds = [&](const std::string& only)
    {
        const std::size_t volume = only == "volume" ? 1 : 0;
        const std::size_t coming = 1 - volume;
        const support::Answer answer =
            listen({Step([](sim::Events& events) { events.setVolume(support::speakerId(), -12.0f); }, volume),
                    Step([](sim::Events& events) { events.plug(support::headphonesId()); }, 0),
                    Step([](sim::Events& events) { events.clearDefault(eCapture, eConsole); }, 0),
                    Step([](sim::Events& events) { events.remove(support::headphonesId()); }, coming),
                    Step([](sim::Events& events) { events.setVolume(support::speakerId(), -18.0f); }, volume),
                    Step([](sim::Events& events) { events.add(support::headphonesId()); }, coming)},
                   {"--json", "--only", only});
        std::vector<std::string> events;
        for (const std::string& line : answer.lines())
            events.push_back(json::parse(line)["event"]);
        return events;
    };

    EXPECT_THAT(kinds("volume"), ElementsAre("volumeChanged", "volumeChanged"));
    EXPECT_THAT(kinds("added,removed"), ElementsAre("removed", "added"));
}

TEST_F(ProgramMonitor, TellsChangesOfTheHardwareWhereTheyAreAskedFor)
{
    run(support::smallMachine());
    const std::string control =
        json::parse(call({"controls", "Speakers", "--json"}).out)["controls"][0]["id"].get<std::string>();
    IAudioVolumeLevel* level = nullptr;

    const support::Answer answer = listen({[&](sim::Events&)
                                           {
                                               level = simulation().volumeLevel(control);
                                               ASSERT_NE(nullptr, level);
                                               level->SetLevelUniform(-20.25f, nullptr);
                                               level->Release();
                                           }},
                                          {"--json", "--only", "hardware"});

    ASSERT_EQ(1u, answer.lines().size()) << answer.out << answer.err;
    const json event = json::parse(answer.lines()[0]);
    EXPECT_EQ("hardwareChanged", event["event"]);
    EXPECT_EQ(-6, event["before"]["endpoints"][0]["controls"][0]["channels"][0]["decibels"]);
    EXPECT_EQ(-20.25, event["after"]["endpoints"][0]["controls"][0]["channels"][0]["decibels"]);
}

TEST_F(ProgramMonitor, EndsWithExitCode3IfAnEndpointIsNotThere)
{
    run(support::smallMachine());

    const support::Answer answer = listen({}, {"Speakers", "Trumpet"});

    EXPECT_EQ(3, answer.code);
    EXPECT_EQ("sonavit: there is no endpoint \"Trumpet\"; sonavit list shows what there is\n", answer.err);
}
