// The commands under an administrator's and an ordinary account.
#include "simulator/machine/deviceformat.h"
#include "simulator/machine/propertykeys.h"
#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <regex>

using nlohmann::json;
using sim::Account;
using support::Answer;
using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using Words = std::vector<std::string>;

namespace
{
constexpr const char* opening = "IMMDevice::OpenPropertyStore";

/// The commands on a machine that ships, which runs under either account.
class ProgramUnderAccount : public support::ProgramTest, public testing::WithParamInterface<const char*>
{
protected:
    /// What all commands that show something answer.
    std::vector<Answer> answers(Account account)
    {
        std::vector<Answer> all;
        {
            sim::Simulation simulation(under(account));
            onWorkerStart = [&] { support::meet(simulation); };
            all.push_back(call({"list"}));
            all.push_back(call({"list", "--via", "model"})); // which tries to open stores for writing
            denied[account] = simulation.journal().of(opening).with("2").failed().size();
            simulation.journal().record(false); // which takes longer than the commands
            for (const Words& words : furtherCommands())
                all.push_back(call(words));
        }
        for (const sim::ScriptEvent& event : everyEvent())
            all.push_back(listen(account, event));
        return all;
    }

    /// What the monitor answers if @p event happens before it ends. The times of the events are replaced by a word.
    Answer listen(Account account, const sim::ScriptEvent& event)
    {
        sim::Simulation simulation(under(account));
        onWorkerStart = [&] { support::meet(simulation); };
        simulation.deliverAtOnce(true);
        simulation.journal().record(false);
        pause = [&](std::chrono::milliseconds)
        {
            simulation.events().play(event);
            simulation.events().waitForClients();
            return true;
        };
        Answer answer = call({"monitor"});
        answer.out = std::regex_replace(answer.out, std::regex("[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}"), "TIME");
        monitored += answer.out;
        return answer;
    }

    /// The machine's script; then the first endpoints go and come back, and defaults are chosen.
    std::vector<sim::ScriptEvent> everyEvent() const
    {
        using Kind = sim::ScriptEvent::Kind;
        std::vector<sim::ScriptEvent> events = machine.script;
        for (std::size_t i = 0; i < std::min<std::size_t>(2, machine.endpoints.size()); ++i)
        {
            for (const Kind kind : {Kind::unplugged, Kind::plugged, Kind::removed, Kind::added, Kind::defaultChanged})
            {
                sim::ScriptEvent event;
                event.kind = kind;
                event.endpoint = machine.endpoints[i].id;
                events.push_back(event);
            }
        }
        return events;
    }

    /// The machine, whose calls take no longer than they have to.
    sim::Machine under(Account account) const
    {
        sim::Machine result = machine;
        result.account = account;
        result.latency.clear();
        return result;
    }

    /// On all endpoints; on one of a large machine, as the others are like it. Each endpoint of the broken machine is
    /// broken in its own way, but a walk through the hardware takes long there.
    std::vector<Words> furtherCommands() const
    {
        constexpr std::size_t large = 10;
        const bool isBroken = machine.name == "broken";
        const bool isLarge = machine.endpoints.size() > large && !isBroken;
        const std::size_t count = isLarge ? 1 : machine.endpoints.size();
        std::vector<Words> all = {{"list", "--json"}, {"selectors"}, {"graph"}};
        for (std::size_t i = 0; i < count; ++i)
        {
            all.push_back({"show", machine.endpoints[i].id});
            if (!isBroken || i % 4 == 0)
                all.push_back({"controls", machine.endpoints[i].id});
        }
        if (!machine.deviceInstances.empty())
            all.push_back({"ask", machine.deviceInstances.front().id});
        return all;
    }

    const sim::Machine machine = sim::findMachine(GetParam());
    std::string monitored;                 ///< all that monitors have answered
    std::map<Account, std::size_t> denied; ///< openings of stores for writing that failed
};
}

TEST_P(ProgramUnderAccount, ShowsTheSameByteForByte)
{
    const std::vector<Answer> administrator = answers(Account::administrator);

    const std::vector<Answer> ordinary = answers(Account::ordinary);

    ASSERT_EQ(administrator.size(), ordinary.size());
    for (std::size_t i = 0; i < ordinary.size(); ++i)
    {
        EXPECT_EQ(administrator[i].code, ordinary[i].code);
        EXPECT_EQ(administrator[i].out, ordinary[i].out);
        EXPECT_EQ(administrator[i].err, ordinary[i].err);
    }
    EXPECT_EQ(machine.endpoints.empty(), denied[Account::ordinary] <= denied[Account::administrator])
        << "the accounts do not differ";
    EXPECT_EQ(machine.endpoints.empty(), monitored.empty());
}

#define UNDER_ACCOUNT(Suite, machine)                                              \
    INSTANTIATE_TEST_SUITE_P(Suite, ProgramUnderAccount, testing::Values(machine), \
                             [](const auto& name) { return support::testName(name.param); })
UNDER_ACCOUNT(Bluetooth, "bluetooth");
UNDER_ACCOUNT(Broken, "broken");
UNDER_ACCOUNT(Crowded, "crowded");
UNDER_ACCOUNT(Desktop, "desktop");
UNDER_ACCOUNT(Empty, "empty");
UNDER_ACCOUNT(Laptop, "laptop");
UNDER_ACCOUNT(LaptopUser, "laptop-user");
UNDER_ACCOUNT(Published, "published");
UNDER_ACCOUNT(RemoteDesktop, "remote-desktop");
UNDER_ACCOUNT(Studio, "studio");
UNDER_ACCOUNT(Virtual, "virtual");
UNDER_ACCOUNT(Waking, "waking");

namespace
{
class ProgramAccount : public support::ProgramTest
{
protected:
    std::string stored()
    {
        const sim::Machine machine = simulation().machine();
        const sim::PropertyValue* const value =
            sim::findProperty(machine.endpoint(support::speakerId())->properties, sim::keys::deviceFormat);
        return value->bytes == sim::DeviceFormat().bytes() ? "16/48000/2" : "another";
    }

    /// The commands that show or change endpoints, on the small machine.
    static std::vector<Words> commands()
    {
        return {{"list"},
                {"show", support::speakerId()},
                {"controls", support::speakerId()},
                {"selectors"},
                {"graph"},
                {"ask", support::smallInstanceId()},
                {"get-volume", support::speakerId()},
                {"set-volume", support::speakerId(), "50%"},
                {"mute", support::speakerId(), "on"},
                {"format", support::speakerId()},
                {"monitor"}};
    }
};

const std::string administratorsOnly = "Windows lets only administrators change a format; run sonavit as administrator "
                                       "to change that of Speakers (Analog Audio)";
}

TEST_F(ProgramAccount, IsThatOfTheMachineOrTheOption)
{
    const Answer asItIs = call({"list", "--machine", "laptop-user"});
    const Answer administrator = call({"list", "--machine", "laptop-user", "--account", "administrator"});
    const Words change = {"format", "Laptop Speakers", "--set", "24/96000/2", "--hold", "0"};
    const auto changeOn = [&](const Words& options)
    {
        Words words = options;
        words.insert(words.end(), change.begin(), change.end());
        return call(words).code;
    };
    pause = [](std::chrono::milliseconds) { return false; };

    EXPECT_EQ(0, asItIs.code);
    EXPECT_THAT(asItIs.out, HasSubstr("Laptop Speakers"));
    EXPECT_EQ(asItIs.out, administrator.out);
    EXPECT_EQ(1, changeOn({"--machine", "laptop-user"}));
    EXPECT_EQ(1, changeOn({"--account", "ordinary", "--machine", "laptop-user"}));
    EXPECT_EQ(0, changeOn({"--machine", "laptop-user", "--account", "Administrator"}));
}

TEST_F(ProgramAccount, ChangesADefaultMachineToo)
{
    std::ostringstream out;
    std::ostringstream err;
    sonavit::program::Environment environment{out, err};
    environment.defaultMachine = "desktop";

    const int code =
        sonavit::program::run({"format", "Speakers", "--set", "24/96000/2", "--account", "ordinary"}, environment);

    EXPECT_EQ(1, code);
    EXPECT_THAT(err.str(), EndsWith("sonavit: Windows lets only administrators change a format; simulate the machine "
                                    "with --account administrator to change that of Speakers (Analog Audio)\n"));
}

TEST_F(ProgramAccount, IsOneOfTwo)
{
    EXPECT_EQ("sonavit: \"guest\" is not an account: administrator or ordinary\n",
              call({"list", "--machine", "desktop", "--account", "guest"}).err);
    EXPECT_EQ("sonavit: --account needs a value: --account ACCOUNT\n",
              call({"list", "--machine", "desktop", "--account"}).err);
    EXPECT_EQ(2, call({"--account", "guest", "list", "--machine", "desktop"}).code);
}

TEST_F(ProgramAccount, ThatIsOrdinaryMayNotChangeAFormat)
{
    run(support::smallMachine()).setAccount(Account::ordinary);
    const sim::Machine before = simulation().machine();
    pause = [](std::chrono::milliseconds) -> bool { throw std::logic_error("there is nothing to hold"); };

    const Answer text = call({"format", "Speakers", "--set", "24/96000/2"});
    const Answer inJson = call({"format", "Speakers", "--set", "24/96000/2", "--json"});

    EXPECT_EQ(1, text.code);
    EXPECT_EQ("", text.out);
    EXPECT_EQ("sonavit: " + administratorsOnly + "\n", text.err);
    EXPECT_EQ(1, inJson.code);
    EXPECT_EQ(administratorsOnly, json::parse(inJson.out)["error"]);
    EXPECT_EQ("sonavit: " + administratorsOnly + "\n", inJson.err);
    EXPECT_TRUE(before == simulation().machine());
}

TEST_F(ProgramAccount, ThatIsOrdinaryMayReadAFormatAndChangeVolumesAndMutes)
{
    run(support::smallMachine()).setAccount(Account::ordinary);

    EXPECT_THAT(call({"format", "Speakers"}).out, HasSubstr("48"));
    EXPECT_EQ(0, call({"set-volume", "Speakers", "50%"}).code);
    EXPECT_EQ(0, call({"mute", "Speakers", "on"}).code);
    EXPECT_THAT(call({"get-volume", "Speakers"}).out, EndsWith("50% (-32.62 dB), muted\n"));
}

TEST_F(ProgramAccount, OfAnAdministratorIsToldOfAFormatThatTheSystemRefuses)
{
    run(support::smallMachine());
    simulation().faults().fail("IPropertyStore::SetValue", E_ACCESSDENIED);

    const Answer answer = call({"format", "Speakers", "--set", "24/96000/2"});

    EXPECT_EQ("sonavit: the format of Speakers (Analog Audio) cannot be set: IPropertyStore::SetValue(deviceFormat) "
              "failed: 0x80070005, access denied\n",
              answer.err);
    EXPECT_EQ("16/48000/2", stored());
}

TEST_F(ProgramAccount, ThatMayNotReadEitherIsToldSoOnce)
{
    run(support::smallMachine());
    simulation().faults().fail(opening, E_ACCESSDENIED);

    for (const Words& words : commands())
    {
        Words inJson = words;
        inJson.emplace_back("--json");
        const bool isOnOne = words.size() > 1 && words[1] == support::speakerId();
        const std::string note = support::unreadableNote(isOnOne ? 1 : 3);

        const Answer text = call(words);
        const Answer answer = call(inJson);

        const int code = words[0] == "ask" ? 3 : 0; // no card is known without its properties
        EXPECT_EQ(code, text.code) << words[0];
        EXPECT_EQ(note, text.err) << words[0];
        EXPECT_EQ(code, answer.code) << words[0];
        EXPECT_EQ(note, answer.err) << words[0];
        EXPECT_TRUE(words[0] == "monitor" || json::accept(answer.out)) << words[0];
    }
}

TEST_F(ProgramAccount, ThatMayNotReadEitherIsToldSoEvenIfTheEndpointIsNotFound)
{
    run(support::smallMachine());
    simulation().faults().fail(opening, E_ACCESSDENIED);
    const std::string error = "the endpoint \"Speakers\" cannot be found, as the system fails to report the name of 3 "
                              "endpoints: 0x80070005, access denied";

    for (const Words& words : std::vector<Words>{{"show", "Speakers"},
                                                 {"controls", "Speakers"},
                                                 {"get-volume", "Speakers"},
                                                 {"set-volume", "Speakers", "50%"},
                                                 {"mute", "Speakers", "on"},
                                                 {"format", "Speakers"},
                                                 {"graph", "--endpoint", "Speakers"}})
    {
        const Answer answer = call(words);

        EXPECT_EQ(1, answer.code) << words[0];
        EXPECT_EQ("", answer.out) << words[0];
        EXPECT_EQ(support::unreadableNote(3) + "sonavit: " + error + "\n", answer.err) << words[0];
    }
}

TEST_F(ProgramAccount, ThatMayNotReadEitherIsToldSoAboutEachMachine)
{
    run(sim::findMachine("desktop"));
    simulation().faults().fail(opening, E_ACCESSDENIED);

    EXPECT_THAT(call({"show", "Speakers"}).err, StartsWith(support::unreadableNote(10)));
    EXPECT_THAT(call({"format", "Speakers", "--json"}).err, StartsWith(support::unreadableNote(10)));
}

TEST_F(ProgramAccount, IsNotToldOfEndpointsThatFailInAnotherWay)
{
    run(support::smallMachine());
    simulation().faults().fail(opening, E_FAIL);

    const Answer answer = call({"list"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("", answer.err);
}

TEST_F(ProgramAccount, IsToldOfTheEndpointsThatItMayNotReadOnly)
{
    run(support::smallMachine()).setAccount(Account::ordinary);
    simulation().faults().fail(opening, E_ACCESSDENIED).on(support::microphoneId());

    EXPECT_EQ(support::unreadableNote(1), call({"list"}).err);
    EXPECT_EQ("", call({"show", "Speakers"}).err);
}

TEST_F(ProgramAccount, IsPartOfTheHelp)
{
    const std::string help = call({"--help"}).out;

    EXPECT_THAT(help, HasSubstr("--account ACCOUNT"));
    EXPECT_THAT(help, ContainsRegex("administrator, or ordinary, which may not change\n +formats"));
    EXPECT_THAT(help, HasSubstr("Default: the account that the machine has"));
    EXPECT_THAT(call({"list", "--help"}).out, HasSubstr("--account"));
    EXPECT_THAT(call({"format", "--help"}).out, HasSubstr("Windows lets only administrators set a format."));
}
