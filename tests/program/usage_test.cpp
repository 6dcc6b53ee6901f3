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
};
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
        {"show", "Trumpet"},
        {"show", ""},
        {"show", "phone"},
        {"controls", "Trumpet"},
        {"selectors", "Trumpet"},
        {"graph", "Trumpet"},
        {"graph", "--endpoint", "Trumpet"},
        {"ask"},
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
    EXPECT_EQ("sonavit: there is no machine \"nosuch\"; the machines are broken, crowded, desktop, empty, laptop and "
              "studio\n",
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

TEST_F(ProgramUsage, WorksOnAMachineFile)
{
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "sonavit-small-machine.json";
    std::ofstream(path) << sim::writeMachine(support::smallMachine());

    const support::Answer answer = call({"--machine", path.u8string()});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("Simulated machine small", answer.lines()[0]);
    EXPECT_THAT(answer.out, HasSubstr("1 card, 3 endpoints, * default\n"));
    std::filesystem::remove(path);
}

TEST_F(ProgramUsage, ShowsTheLogOnlyWhereItIsWanted)
{
    run(support::smallMachine());
    simulation().faults().fail("IPropertyStore::GetValue");

    EXPECT_EQ("", call({"list"}).err);
    EXPECT_EQ("", call({"list", "--log", "off"}).err);
    EXPECT_THAT(call({"list", "--log", "error"}).err, HasSubstr("error libSonavit.audioDeviceEndpoint: "));
}

TEST_F(ProgramUsage, ShowsTracesWhereAllIsWanted)
{
    run(support::smallMachine());

    const std::string records = call({"list", "--log", "debug"}).err;

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
    EXPECT_EQ("sonavit: something unforeseen happened: the roof came down\n", answer.err);
}

TEST_F(ProgramUsage, FailsWhereTheAnswerCannotBeWritten)
{
    run(support::smallMachine());
    std::ostringstream out;
    std::ostringstream err;
    out.setstate(std::ios::badbit);

    const int code = sonavit::run({"list"}, sonavit::Environment{out, err});

    EXPECT_EQ(1, code);
    EXPECT_EQ("sonavit: the answer cannot be written\n", err.str());
}
