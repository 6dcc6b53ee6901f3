/// The commands on a machine whose platform fails: an operation answers a failure code, or success without a result.
#include "simulator/machine/file/machinefile.h"
#include "tests/program/dotreader.h"
#include "tests/program/programtest.h"
#include "tests/support/pace.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <sstream>
#include <utility>

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;

namespace
{
constexpr HRESULT anyFailure = static_cast<HRESULT>(0x80004005);

class ProgramOnFailingPlatform : public support::ProgramTest
{
protected:
    ProgramOnFailingPlatform() : machine(sim::findMachine("desktop"))
    {
        findMachine = [this](const std::string&) { return machine; };
    }

    /// The @p call -th call of @p operation fails; each one if @p call is 0.
    void fail(const std::string& operation, std::uint32_t call = 0)
    {
        machine.faults.push_back({operation, "*", "", call, sim::FaultRule::Outcome::result, anyFailure});
    }

    /// Likewise, but the call reports success and stores null.
    void succeedWithNull(const std::string& operation, std::uint32_t call = 0)
    {
        machine.faults.push_back({operation, "*", "", call, sim::FaultRule::Outcome::nullSuccess, S_OK});
    }

    support::Answer callHere(std::vector<std::string> words)
    {
        words.insert(words.end(), {"--machine", "desktop"});
        return call(words);
    }

    sim::Machine machine;
};
}

TEST_F(ProgramOnFailingPlatform, MonitorReportsThatCoreAudioCannotBeReached)
{
    fail("CoCreateInstance");

    const support::Answer answer = callHere({"monitor"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, EndsWith("sonavit: the system's audio cannot be reached: 0x80004005, unspecified error\n"));
}

TEST_F(ProgramOnFailingPlatform, MonitorReportsThatTheSystemAcceptsNoListener)
{
    fail("IMMDeviceEnumerator::RegisterEndpointNotificationCallback");

    const support::Answer answer = callHere({"monitor"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, EndsWith("sonavit: the system does not report changes of its endpoints\n"));
}

TEST_F(ProgramOnFailingPlatform, ShowHasNoSpeakersWithoutAPropertyStore)
{
    succeedWithNull("IMMDevice::OpenPropertyStore");

    const support::Answer answer = callHere({"show", machine.endpoints[0].id, "--json"});

    EXPECT_EQ(0, answer.code);
    EXPECT_TRUE(json::parse(answer.out)["endpoint"]["speakers"].is_null());
}

TEST_F(ProgramOnFailingPlatform, GraphFindsAConnectorByItsJoinThatTheDeviceDoesNotHandOut)
{
    machine.faults.push_back(
        {"IDeviceTopology::GetConnector", machine.endpoints[0].id, "", 0, sim::FaultRule::Outcome::nullSuccess, S_OK});

    const support::Answer answer = callHere({"graph", "--json"});

    EXPECT_EQ(0, answer.code);
    const json endpoint = json::parse(answer.out)["devices"][0];
    EXPECT_EQ(machine.endpoints[0].id, endpoint["id"]);
    ASSERT_EQ(1u, endpoint["parts"].size());
    EXPECT_EQ("connector", endpoint["parts"][0]["kind"]);
    EXPECT_EQ("", support::brokenDot(callHere({"graph"}).out));
}

TEST_F(ProgramOnFailingPlatform, GraphLeavesConnectorsOutThatThePlatformNeverHandsOut)
{
    succeedWithNull("IDeviceTopology::GetConnector");

    const support::Answer answer = callHere({"graph", "--json"});

    EXPECT_EQ(0, answer.code);
    const json document = json::parse(answer.out);
    EXPECT_EQ(machine.endpoints[0].id, document["devices"][0]["id"]);
    EXPECT_TRUE(document["devices"][0]["parts"].empty());
    EXPECT_TRUE(document["edges"].empty());
}

TEST_F(ProgramOnFailingPlatform, SelectorsSurviveAConnectorThatThePlatformDoesNotHandOut)
{
    succeedWithNull("IDeviceTopology::GetConnector", 1);

    EXPECT_EQ(0, callHere({"selectors"}).code);
}

TEST_F(ProgramOnFailingPlatform, SelectorsSurviveSubunitsThatThePlatformDoesNotHandOut)
{
    succeedWithNull("IDeviceTopology::GetSubunit");

    EXPECT_EQ(0, callHere({"selectors"}).code);
}

TEST_F(ProgramOnFailingPlatform, SelectorsSurviveANeighbourThatThePlatformDoesNotHandOut)
{
    succeedWithNull("IPartsList::GetPart", 1);

    EXPECT_EQ(0, callHere({"selectors"}).code);
}

TEST_F(ProgramOnFailingPlatform, CommandsSayThatEndpointsWithoutIdsCannotBeListed)
{
    fail("IMMDevice::GetId");

    for (const char* const command : {"list", "selectors", "graph"})
    {
        const support::Answer answer = callHere({command});

        EXPECT_EQ(1, answer.code) << command;
        EXPECT_EQ("", answer.out) << command;
        EXPECT_THAT(answer.err, EndsWith("sonavit: the system cannot list its endpoints: 0x80004005, unspecified "
                                         "error\n"));
    }
}

TEST_F(ProgramOnFailingPlatform, NoCommandTakesAnEndpointForMissingWhoseIdCannotBeReadWhateverTheCode)
{
    machine = support::smallMachine();
    machine.faults.push_back({"IMMDevice::GetId", support::speakerId(), "", 0, sim::FaultRule::Outcome::result,
                              static_cast<HRESULT>(0x8007000D)});

    const support::Answer answer = callHere({"show", "Speakers"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, HasSubstr("there is no endpoint \"Speakers\" among those that can be read, as the system "
                                      "cannot list its endpoints: 0x8007000D"));
}

TEST_F(ProgramOnFailingPlatform, SelectDoesNotTakeASelectorForMissingThatAListMayHide)
{
    machine.faults.push_back(
        {"IMMDeviceEnumerator::EnumAudioEndpoints", "*", "eCapture", 0, sim::FaultRule::Outcome::result, anyFailure});

    const support::Answer answer = callHere({"select", "Tape", "1"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, EndsWith("there is no selector \"Tape\" among those that can be read: "
                                     "IMMDeviceEnumerator::EnumAudioEndpoints(eCapture) failed: 0x80004005, "
                                     "unspecified error\n"));
}

TEST_F(ProgramOnFailingPlatform, NoCommandTakesEndpointsThatCannotBeListedForMissingOnes)
{
    machine.faults.push_back(
        {"IMMDeviceEnumerator::EnumAudioEndpoints", "*", "eRender", 0, sim::FaultRule::Outcome::result, anyFailure});

    const support::Answer answer = callHere({"show", "Speakers"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, EndsWith("sonavit: there is no endpoint \"Speakers\" among those that can be read, as the "
                                     "system cannot list its outputs: 0x80004005, unspecified error\n"));
    EXPECT_EQ(0, callHere({"show", "Line In"}).code);
}

/// Half of the hardware is missing then.
TEST_F(ProgramOnFailingPlatform, WalksSayThatEndpointsCannotBeListed)
{
    machine.faults.push_back(
        {"IMMDeviceEnumerator::EnumAudioEndpoints", "*", "eRender", 0, sim::FaultRule::Outcome::result, anyFailure});

    for (const char* const command : {"graph", "selectors"})
    {
        const support::Answer answer = callHere({command, "--json"});

        EXPECT_EQ(0, answer.code) << command;
        const json problems = json::parse(answer.out)["problems"];
        ASSERT_FALSE(problems.empty()) << command;
        EXPECT_EQ("IMMDeviceEnumerator::EnumAudioEndpoints(eRender)", problems[0]["operation"]);
        EXPECT_EQ("0x80004005", problems[0]["code"]);
    }
    EXPECT_THAT(callHere({"selectors"}).out, EndsWith("1 thing could not be read; --json says why\n"));
}

namespace
{
/// "sonavit: ..." on one line.
bool isOneSentence(const std::string& complaint)
{
    const std::string prefix = "sonavit: ";
    return complaint.rfind(prefix, 0) == 0 && complaint.size() > prefix.size() + 1 &&
           complaint.find('\n') == complaint.size() - 1;
}

/// A command on the small machine, run again and again, each time with another operation that fails.
class ProgramSweep : public support::LibraryTest, public testing::WithParamInterface<std::vector<std::string>>
{
protected:
    ProgramSweep() : machine(support::smallMachine()), words(GetParam())
    {
        qor::LogFactory::setPriority(qor::LoggerPriority::LOG_ERROR);
        std::replace(words.begin(), words.end(), std::string("SPEAKERS"), machine.endpoints[0].id);
        std::replace(words.begin(), words.end(), std::string("CARD"), support::smallInstanceId());
    }

    /// The operations that the command calls when nothing fails, without the one that ends a registration: if that
    /// fails, the platform keeps its client for good, as it must, and a leak checker reports it.
    std::set<std::string> operations()
    {
        sim::Simulation simulation(machine);
        if (words.front() == "restore")
            changeSettings(simulation);
        call(simulation);
        const std::vector<std::string> all = simulation.journal().operations();
        std::set<std::string> result(all.begin(), all.end());
        result.erase("IAudioEndpointVolume::UnregisterControlChangeNotify");
        return result;
    }

    /// Saves the settings and changes the machine's, so that there is something to restore.
    void changeSettings(sim::Simulation& simulation)
    {
        std::ostringstream out;
        std::ostringstream err;
        sonavit::program::Environment environment{out, err};
        environment.onWorkerStart = [&] { support::meet(simulation); };
        EXPECT_EQ(0, sonavit::program::run({"save"}, environment));
        settings = out.str();
        const auto change = [](sim::Machine& changed)
        {
            for (sim::Endpoint& endpoint : changed.endpoints)
                endpoint.volume->channels.assign(endpoint.volume->channels.size(), -10.0f);
        };
        simulation.change(change);
        change(machine);
    }

    support::Answer call(sim::Simulation& simulation) const
    {
        simulation.deliverAtOnce(true);
        std::ostringstream out;
        std::ostringstream err;
        sonavit::program::Environment environment{out, err};
        int pauses = 0;
        environment.readInput = [this] { return settings; };
        environment.onWorkerStart = [&] { support::meet(simulation); };
        environment.pause = [&](std::chrono::milliseconds)
        {
            if (pauses == 0)
                simulation.events().playScript();
            return ++pauses == 2 && words.front() == "monitor";
        };
        support::Answer answer;
        answer.code = sonavit::program::run(words, environment);
        answer.out = out.str();
        answer.err = err.str();
        return answer;
    }

    /// Runs the command while @p rule holds. @return how often the rule met a call
    std::uint32_t expectOneSentenceOrSuccess(const sim::FaultRule& rule)
    {
        SCOPED_TRACE(rule.operation + ", call " + std::to_string(rule.call) +
                     (rule.outcome == sim::FaultRule::Outcome::result ? " fails" : " succeeds with null"));
        sim::Simulation simulation(machine);
        simulation.journal().record(false);
        const sim::PlannedFault fault = simulation.faults().add(rule);

        const support::Answer answer = call(simulation);

        const bool hasNoEndpoints = rule.operation == "IMMDeviceCollection::GetCount"; // a count of 0 is an answer
        const bool isUnknownCard = answer.out.find("No card has this instance id.\n") != std::string::npos;
        const bool hasNoControl =
            rule.outcome == sim::FaultRule::Outcome::nullSuccess && // so are no parts and no names
            answer.err == "sonavit: there is no control \"Volume\"; sonavit controls ENDPOINT shows what there is\n";
        const bool isNotThere = hasNoEndpoints || isUnknownCard || hasNoControl;
        EXPECT_THAT(answer.code, testing::AnyOf(0, 1, isNotThere ? 3 : 1)) << answer.err;
        const bool isReport = words.front() == "restore" && !answer.out.empty(); // of what could not be restored
        if (answer.code == 0 || isUnknownCard || isReport)
            EXPECT_EQ("", answer.err);
        else
            EXPECT_TRUE(isOneSentence(answer.err)) << answer.err;
        return fault.met();
    }

    sim::Machine machine;
    std::vector<std::string> words; ///< of the parameter; SPEAKERS is the id of the first endpoint, CARD the card's
    std::string settings;           ///< of the machine, for `restore`
};
}

/// The first call of each operation, and then each call of it, fails or succeeds with null. If there is no second call
/// after the first one has failed, both are the same. Where there is time for few cases only, a tenth of it is done.
TEST_P(ProgramSweep, EndsWithAnAnswerOrOneSentenceWhateverOperationFails)
{
    const std::set<std::string> all = operations();
    ASSERT_GT(all.size(), 5u);

    std::size_t turn = 0;
    for (const std::string& operation : all)
    {
        using Outcome = sim::FaultRule::Outcome;
        for (const sim::FaultRule& rule : {sim::FaultRule{operation, "*", "", 1, Outcome::result, anyFailure},
                                           sim::FaultRule{operation, "*", "", 1, Outcome::nullSuccess, S_OK}})
        {
            if (turn++ % support::cases(1, 10) != 0 || expectOneSentenceOrSuccess(rule) == 1)
                continue;
            sim::FaultRule always = rule;
            always.call = 0;
            expectOneSentenceOrSuccess(always);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, ProgramSweep,
                         testing::Values(std::vector<std::string>{"list"}, std::vector<std::string>{"show", "SPEAKERS"},
                                         std::vector<std::string>{"controls", "SPEAKERS"},
                                         std::vector<std::string>{"selectors"}, std::vector<std::string>{"graph"},
                                         std::vector<std::string>{"ask", "CARD"},
                                         std::vector<std::string>{"get-volume", "SPEAKERS"},
                                         std::vector<std::string>{"set-volume", "SPEAKERS", "50%"},
                                         std::vector<std::string>{"mute", "SPEAKERS", "toggle"},
                                         std::vector<std::string>{"set-control", "SPEAKERS", "Volume", "-12dB"},
                                         std::vector<std::string>{"save"}, std::vector<std::string>{"restore"},
                                         std::vector<std::string>{"find", "SPEAKERS"},
                                         std::vector<std::string>{"refer", "SPEAKERS"},
                                         std::vector<std::string>{"monitor"},
                                         std::vector<std::string>{"format", "SPEAKERS", "--set", "16/44100/2"}),
                         [](const auto& words)
                         {
                             std::string name = words.param.front();
                             name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
                             return name;
                         });
