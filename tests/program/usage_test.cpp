#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{
class ProgramUsage : public support::ProgramTest
{
protected:
    /// A call of each verb that succeeds on machine desktop.
    static std::vector<std::vector<std::string>> verbs()
    {
        return {{"list"},
                {"show", "Speakers"},
                {"explain", "Speakers"},
                {"controls", "Speakers"},
                {"selectors"},
                {"graph"},
                {"ask", "USB\\VID_2641&PID_247B&MI_00\\7&8777D5D&0&0000"},
                {"get-volume", "Speakers"},
                {"set-volume", "Speakers", "50%"},
                {"mute", "Speakers", "on"},
                {"set-control", "Speakers", "Rear Green Jack", "-6dB"},
                {"select", "Recording Source", "Rear Blue Jack"},
                {"save"},
                {"capture"},
                {"find", "0"},
                {"refer", "Speakers"},
                {"format", "Speakers"},
                {"format", "Speakers", "--set", "16/44100/2"},
                {"monitor"}};
    }

    /// Such a call, on machine desktop.
    support::Answer callOnDesktop(std::vector<std::string> words)
    {
        const bool isMonitor = words[0] == "monitor"; // it goes on until the end is requested
        pause = [isMonitor](std::chrono::milliseconds) { return isMonitor; };
        words.insert(words.end(), {"--machine", "desktop"});
        return call(words);
    }
};
}

TEST_F(ProgramUsage, SaysThatTheMachineIsSimulated)
{
    for (const std::vector<std::string>& words : verbs())
    {
        const support::Answer answer = callOnDesktop(words);

        EXPECT_EQ(0, answer.code) << words[0];
        EXPECT_THAT(answer.err, StartsWith("Simulated machine desktop: A board with ")) << words[0];
        EXPECT_THAT(answer.out, testing::Not(HasSubstr("imulated"))) << words[0];
    }
}

TEST_F(ProgramUsage, ShowsHelpWithoutSeveralBlankLines)
{
    std::vector<std::vector<std::string>> all = verbs();
    all.push_back({});
    for (const std::vector<std::string>& words : all)
    {
        std::vector<std::string> help(words.begin(), words.empty() ? words.begin() : words.begin() + 1);
        help.push_back("--help");

        const support::Answer answer = call(help);

        EXPECT_EQ(0, answer.code) << help[0];
        EXPECT_THAT(answer.out, testing::Not(HasSubstr("\n\n\n"))) << help[0];
        EXPECT_THAT(answer.out, testing::Not(testing::EndsWith("\n\n"))) << help[0];
    }
}

TEST_F(ProgramUsage, NamesTheMachineInJson)
{
    for (std::vector<std::string> words : verbs())
    {
        words.emplace_back("--json");
        const support::Answer answer = callOnDesktop(words);

        const std::string failures = words[0] == "capture" ? answer.err : ""; // it says there what fails on the machine
        EXPECT_EQ(failures, answer.err) << words[0];
        if (words[0] == "monitor" || words[0] == "save" || words[0] == "capture")
            continue; // they answer an object for each event, what restore reads, and a machine file
        EXPECT_EQ("desktop", json::parse(answer.out)["machine"]) << words[0];
    }
}

TEST_F(ProgramUsage, NamesNoMachineOnTheSystemsOwn)
{
    run(support::smallMachine());

    const json answer = json::parse(call({"get-volume", "Speakers", "--json"}).out);

    EXPECT_TRUE(answer.contains("machine"));
    EXPECT_TRUE(answer["machine"].is_null());
    EXPECT_EQ("", call({"mute", "Speakers", "on"}).err);
}

TEST_F(ProgramUsage, SaysThatAChangeOfASimulatedMachineDoesNotLast)
{
    const std::string note = "The machine is simulated: the change lasts until sonavit ends.\n";

    EXPECT_THAT(callOnDesktop({"set-volume", "Speakers", "50%"}).err, testing::EndsWith("\n" + note));
    EXPECT_THAT(callOnDesktop({"mute", "Speakers", "on"}).err, testing::EndsWith("\n" + note));
    EXPECT_THAT(callOnDesktop({"format", "Speakers", "--set", "16/44100/2", "--hold", "0"}).err,
                testing::Not(HasSubstr(note))); // it is put back at once
    EXPECT_THAT(callOnDesktop({"set-volume", "Speakers", "99dB"}).err, testing::Not(HasSubstr(note)));
}

TEST_F(ProgramUsage, CutsTheDescriptionOfAMachineToTheTerminal)
{
    width = 40;

    EXPECT_EQ("Simulated machine desktop: A board with\xE2\x80\xA6\n", callOnDesktop({"list"}).err);
}

TEST_F(ProgramUsage, AnswersHelpAndVersionInJsonWhereThatIsAskedFor)
{
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"--help"}, {"help"}, {"list", "--help"}, {"help", "mute"}})
    {
        std::vector<std::string> inJson = words;
        inJson.emplace_back("--json");
        EXPECT_EQ(json({{"schemaVersion", 2}, {"help", call(words).out}}), json::parse(call(inJson).out));
    }
    EXPECT_EQ(json({{"schemaVersion", 2}, {"version", "sonavit " SONAVIT_VERSION}}),
              json::parse(call({"--version", "--json"}).out));
}

TEST_F(ProgramUsage, EndsWithExitCode3IfWhatTheUserNamesIsNotThere)
{
    run(support::smallMachine());
    const std::vector<std::vector<std::string>> all = {
        {"list", "--card", "Trumpet"},
        {"show", "Trumpet"},
        {"show", "a\xFF\x1B[2J\nb"},
        {"explain", "Trumpet"},
        {"controls", "Trumpet"},
        {"selectors", "Trumpet"},
        {"graph", "Trumpet"},
        {"graph", "--endpoint", "Trumpet"},
        {"graph", "Analog", "--endpoint", "Trumpet"},
        {"get-volume", "Trumpet"},
        {"set-volume", "Trumpet", "50%"},
        {"mute", "Trumpet", "on"},
        {"set-control", "Trumpet", "Volume", "50%"},
        {"set-control", "Speakers", "Trumpet", "50%"},
        {"select", "Trumpet", "1"},
        {"select", "Source", "1", "--card", "Trumpet"},
        {"find", "Trumpet"},
        {"refer", "Trumpet"},
        {"format", "Trumpet"},
        {"monitor", "Trumpet"},
    };

    for (const std::vector<std::string>& words : all)
    {
        SCOPED_TRACE(testing::PrintToString(words));
        const support::Answer text = call(words);
        std::vector<std::string> inJson = words;
        inJson.emplace_back("--json");
        const support::Answer answer = call(inJson);

        EXPECT_EQ(3, text.code);
        EXPECT_EQ("", text.out);
        EXPECT_THAT(text.err, StartsWith("sonavit: there is no "));
        EXPECT_EQ(1, std::count(text.err.begin(), text.err.end(), '\n')) << text.err;
        EXPECT_EQ(3, answer.code);
        const json error = json::parse(answer.out);
        EXPECT_EQ(2, error["schemaVersion"]);
        EXPECT_EQ(3, error["exitCode"]);
        EXPECT_EQ("sonavit: " + error["error"].get<std::string>() + "\n", answer.err);
    }
}

TEST_F(ProgramUsage, AnswersNonsenseWithOneSentence)
{
    run(support::smallMachine());
    const std::vector<std::vector<std::string>> nonsense = {
        {"frobnicate"},
        {"--frob"},
        {"list", "more"},
        {"list", "show"},
        {"show"},
        {"show", "Speakers", "more"},
        {"show", ""},
        {"show", "phone"},
        {"list", "--inputs", "--outputs"},
        {"list", "--via", "cable"},
        {"graph", "--only"},
        {"ask"},
        {"set-volume", "Speakers", "50%", "--channel", "0"},
        {"set-control", "Speakers", "Volume"},
        {"set-control", "Speakers", "Volume", "loud"},
        {"set-control", "Speakers", "Volume", "on", "--channel", "1"},
        {"select", "Source"},
        {"find"},
        {"resolve", "nonsense"},
        {"restore"},
        {"monitor", "--only", "noise"},
        {"get-volume"},
        {"set-volume", "Speakers"},
        {"set-volume", "Speakers", "loud"},
        {"set-volume", "Speakers", "150%"},
        {"mute", "Speakers"},
        {"mute", "Speakers", "perhaps"},
        {"monitor", "--for", "-1"},
        {"monitor", "--for", "soon"},
        {"format", "Speakers", "--set", "loud"},
        {"format", "Speakers", "--hold", "1"},
        {"--machine"},
        {"--machine", "nosuch"},
        {"--machine", ""},
        {"--machine", "no-such-file.json"},
        {"--log", "loud"},
    };

    for (const std::vector<std::string>& words : nonsense)
    {
        SCOPED_TRACE(testing::PrintToString(words));
        const support::Answer text = call(words);
        std::vector<std::string> inJson = {"--json"};
        inJson.insert(inJson.end(), words.begin(), words.end());
        const support::Answer answer = call(inJson);

        EXPECT_EQ(2, text.code);
        EXPECT_EQ("", text.out);
        EXPECT_THAT(text.err, StartsWith("sonavit: "));
        EXPECT_EQ(1, std::count(text.err.begin(), text.err.end(), '\n')) << text.err;
        EXPECT_EQ('\n', text.err.back());
        EXPECT_EQ(2, answer.code);
        EXPECT_EQ("sonavit: " + json::parse(answer.out)["error"].get<std::string>() + "\n", answer.err);
    }
}

TEST_F(ProgramUsage, NamesTheMachinesThatThereAre)
{
    EXPECT_EQ("sonavit: there is no machine \"nosuch\"; the machines are bluetooth, broken, crowded, desktop, "
              "empty, laptop, laptop-user, published, remote-desktop, studio, virtual and waking\n",
              call({"--machine", "nosuch"}).err);
}

TEST_F(ProgramUsage, SaysWhatIsWrongWithAMachineFile)
{
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "sonavit-broken-machine.json";
    std::ofstream(path) << "{\"name\": \"x\", \"endpoints\": [{\"flow\": \"render\", \"id\": 5}]}";

    const support::Answer answer = call({"--machine", path.u8string()});

    EXPECT_EQ(2, answer.code);
    EXPECT_THAT(answer.err, StartsWith("sonavit: the machine cannot be used: "));
    EXPECT_THAT(answer.err, HasSubstr("/endpoints/0/id"));
    std::filesystem::remove(path);
}

TEST_F(ProgramUsage, RefusesAMachineFileOfMoreThan64MiB)
{
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "sonavit-large-machine.json";
    std::ofstream(path) << "{}";
    std::filesystem::resize_file(path, (std::uintmax_t{64} << 20) + 1);

    const support::Answer answer = call({"--machine", path.u8string()});

    EXPECT_EQ(2, answer.code);
    EXPECT_THAT(answer.err, testing::EndsWith("expected a machine file, found a file larger than 64 MiB\n"));
    std::filesystem::remove(path);
}

#if !defined(_WIN32)
TEST_F(ProgramUsage, RefusesAMachineThatIsNoRegularFile)
{
    const support::Answer answer = call({"--machine", "/dev/zero"});

    EXPECT_EQ(2, answer.code);
    EXPECT_EQ("sonavit: the machine cannot be used: /dev/zero: expected a machine file, found something that is not a "
              "regular file\n",
              answer.err);
}
#endif

TEST_F(ProgramUsage, WorksOnAMachineFile)
{
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "sonavit-small-machine.json";
    std::ofstream(path) << sim::writeMachine(support::smallMachine());

    const support::Answer answer = call({"--machine", path.u8string()});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("Simulated machine small\n", answer.err);
    EXPECT_THAT(answer.out, HasSubstr("1 card, 3 endpoints, * default\n"));
    std::filesystem::remove(path);
}

TEST_F(ProgramUsage, ShowsTheLogOnlyWhereItIsWanted)
{
    run(support::smallMachine());
    simulation().faults().fail("IPropertyStore::GetValue");

    const auto errors = [this](const std::vector<std::string>& options)
    {
        std::vector<std::string> words = {"list", "--via", "model"};
        words.insert(words.end(), options.begin(), options.end());
        return call(words).err;
    };
    EXPECT_EQ("", errors({}));
    EXPECT_EQ("", errors({"--log", "off"}));
    EXPECT_THAT(errors({"--log", "error"}), HasSubstr("error libSonavit.audioDeviceEndpoint: "));
}

TEST_F(ProgramUsage, ShowsTracesWhereAllIsWanted)
{
    run(support::smallMachine());

    const std::string records = call({"list", "--via", "model", "--log", "debug"}).err;

    EXPECT_THAT(records, HasSubstr("debug libSonavit.soundcard: > SoundCard::enumerateSystemSoundDevices\n"));
    EXPECT_THAT(records, HasSubstr("debug libSonavit.soundcard: < SoundCard::enumerateSystemSoundDevices\n"));
}

TEST_F(ProgramUsage, GivesTheLogBack)
{
    run(support::smallMachine());

    call({"list", "--log", "debug"});

    EXPECT_EQ(qor::LoggerPriority::LOG_ERROR, qor::LogFactory::getPriority());
}

TEST_F(ProgramUsage, TurnsAnExceptionIntoASentence)
{
    run(support::smallMachine());
    pause = [](std::chrono::milliseconds) -> bool { throw std::runtime_error("the roof came down"); };

    const support::Answer answer = call({"format", "Speakers", "--set", "16/44100/2"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: internal error: the roof came down\n", answer.err);
}

TEST_F(ProgramUsage, FailsWhereTheAnswerCannotBeWritten)
{
    run(support::smallMachine());
    std::ostringstream out;
    std::ostringstream err;
    out.setstate(std::ios::badbit);

    const int code = sonavit::program::run({"list"}, environment(out, err));

    EXPECT_EQ(1, code);
    EXPECT_EQ("sonavit: the answer cannot be written\n", err.str());
}

TEST_F(ProgramUsage, FailsWhereTheAnswerInJsonCannotBeWritten)
{
    run(support::smallMachine());
    std::ostringstream out;
    std::ostringstream err;
    out.setstate(std::ios::badbit);

    const int code = sonavit::program::run({"list", "--json"}, environment(out, err));

    EXPECT_EQ(1, code);
    EXPECT_EQ("sonavit: the answer cannot be written\n", err.str());
}

TEST_F(ProgramUsage, FailsWhereAnAnswerThatIsNoSuccessCannotBeWritten)
{
    std::ostringstream out;
    std::ostringstream err;
    out.setstate(std::ios::badbit);

    const int code = sonavit::program::run({"doctor", "--machine", "laptop-user"}, environment(out, err));

    EXPECT_EQ(1, code);
    EXPECT_THAT(err.str(), testing::EndsWith("\nsonavit: the answer cannot be written\n"));
}

TEST_F(ProgramUsage, SaysThatMemoryIsExhausted)
{
    run(support::smallMachine());
    pause = [](std::chrono::milliseconds) -> bool { throw std::bad_alloc(); };

    EXPECT_EQ("sonavit: out of memory\n", call({"format", "Speakers", "--set", "16/44100/2"}).err);
}

TEST_F(ProgramUsage, SaysOneLineAboutAnExceptionOfSeveral)
{
    run(support::smallMachine());
    pause = [](std::chrono::milliseconds) -> bool { throw std::runtime_error("a\nb" + std::string(2000, 'x')); };

    const std::string sentence = call({"format", "Speakers", "--set", "16/44100/2"}).err;

    EXPECT_THAT(sentence, StartsWith("sonavit: internal error: a\\nbxxx"));
    EXPECT_EQ(1, std::count(sentence.begin(), sentence.end(), '\n'));
    EXPECT_LT(sentence.size(), 1100u);
}

TEST_F(ProgramUsage, SaysHowToGetTheHelpOfACommand)
{
    EXPECT_THAT(call({"--help"}).out, HasSubstr("\nsonavit help COMMAND describes a command.\n"));
}
