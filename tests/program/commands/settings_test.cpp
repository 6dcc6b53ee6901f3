#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

using nlohmann::json;
using support::Answer;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{
class ProgramSettings : public support::ProgramTest
{
protected:
    sim::EndpointVolume speaker() { return *simulation().machine().endpoint(support::speakerId())->volume; }

    /// What is in the speaker's hardware: the level of its first channel.
    double hardwareLevel()
    {
        const json answer = json::parse(call({"controls", "Speakers", "--json"}).out);
        return answer["controls"][0]["channels"][0]["decibels"];
    }

    /// Changes a level, a mute and a hardware control.
    void changeAll()
    {
        ASSERT_EQ(0, call({"set-volume", "Speakers", "-40dB"}).code);
        ASSERT_EQ(0, call({"mute", "Microphone", "off"}).code);
        ASSERT_EQ(0, call({"set-control", "Speakers", "Volume", "-30dB"}).code);
    }
};

using ProgramSave = ProgramSettings;
using ProgramRestore = ProgramSettings;
}

TEST_F(ProgramSave, PrintsAllSettingsAsJson)
{
    run(support::smallMachine());

    const Answer answer = call({"save"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("", answer.err);
    ASSERT_TRUE(json::accept(answer.out));
    EXPECT_THAT(answer.out, HasSubstr("Speakers (Analog Audio)"));
    EXPECT_THAT(answer.out, EndsWith("}\n"));
    EXPECT_EQ(answer.out, call({"save", "--json"}).out);
}

TEST_F(ProgramSave, WritesAFile)
{
    run(support::smallMachine());
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "sonavit-settings-test.json";

    const Answer answer = call({"save", path.u8string()});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("", answer.out);
    std::ifstream file(path, std::ios::binary);
    EXPECT_EQ(call({"save"}).out, std::string(std::istreambuf_iterator<char>(file), {}));
    file.close();
    std::filesystem::remove(path);
}

TEST_F(ProgramSave, FailsIfTheFileCannotBeWritten)
{
    run(support::smallMachine());

    const Answer answer = call({"save", "no-such-folder/settings.json"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: the file \"no-such-folder/settings.json\" cannot be written\n", answer.err);
}

TEST_F(ProgramRestore, PutsEverythingBackAndSaysWhat)
{
    run(support::smallMachine());
    input = call({"save"}).out;
    changeAll();

    const Answer answer = call({"restore"});

    EXPECT_EQ(0, answer.code) << answer.err;
    EXPECT_THAT(answer.out, HasSubstr("restored"));
    EXPECT_THAT(speaker().channels, ElementsAre(-18.0f, -18.0f));
    EXPECT_TRUE(simulation().machine().endpoint(support::microphoneId())->volume->muted);
    EXPECT_EQ(-6, hardwareLevel());
}

TEST_F(ProgramRestore, AnswersInJsonWhatBecameOfEachSetting)
{
    run(support::smallMachine());
    input = call({"save"}).out;
    changeAll();

    const json answer = json::parse(call({"restore", "--json"}).out);

    EXPECT_EQ(2, answer["schemaVersion"]);
    EXPECT_EQ(3, answer["restored"]);
    EXPECT_EQ(0, answer["notFound"]);
    EXPECT_EQ(0, answer["failed"]);
    EXPECT_EQ(answer["settings"].size(),
              answer["restored"].get<std::size_t>() + answer["unchanged"].get<std::size_t>());
    for (const json& setting : answer["settings"])
        EXPECT_TRUE(setting["problem"].is_null()) << setting;
}

TEST_F(ProgramRestore, ReadsAFile)
{
    run(support::smallMachine());
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "sonavit-restore-test.json";
    ASSERT_EQ(0, call({"save", path.u8string()}).code);
    changeAll();

    const Answer answer = call({"restore", path.u8string()});

    EXPECT_EQ(0, answer.code) << answer.err;
    EXPECT_THAT(speaker().channels, ElementsAre(-18.0f, -18.0f));
    std::filesystem::remove(path);
}

TEST_F(ProgramRestore, ChangesNothingThatIsAsItWas)
{
    run(support::smallMachine());
    input = call({"save"}).out;
    const sim::Machine before = simulation().machine();

    const json answer = json::parse(call({"restore", "--json"}).out);

    EXPECT_EQ(0, answer["restored"]);
    EXPECT_LT(0, answer["unchanged"]);
    EXPECT_TRUE(before == simulation().machine());
}

TEST_F(ProgramRestore, PutsTheRestBackIfAnEndpointIsGone)
{
    run(support::smallMachine());
    input = call({"save"}).out;
    changeAll();
    simulation().events().remove(support::headphonesId());

    const Answer answer = call({"restore"});
    const json inJson = json::parse(call({"restore", "--json"}).out);

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("", answer.err);
    EXPECT_THAT(answer.out, HasSubstr("not found"));
    EXPECT_THAT(speaker().channels, ElementsAre(-18.0f, -18.0f));
    EXPECT_LT(0, inJson["notFound"]);
    EXPECT_EQ(0, inJson["failed"]);
}

TEST_F(ProgramRestore, SaysWhatTheSystemRefuses)
{
    run(support::smallMachine());
    input = call({"save"}).out;
    changeAll();
    simulation().faults().fail("IAudioEndpointVolume::SetMute", E_ACCESSDENIED);

    const Answer answer = call({"restore"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.out, HasSubstr("0x80070005, access denied"));
    EXPECT_THAT(speaker().channels, ElementsAre(-18.0f, -18.0f));
}

TEST_F(ProgramRestore, RefusesWhatIsNoSettingsFile)
{
    run(support::smallMachine());
    input = "no settings";

    const Answer answer = call({"restore"});
    const Answer noFile = call({"restore", "no-such-file.json"});

    EXPECT_EQ(2, answer.code);
    EXPECT_THAT(answer.err, StartsWith("sonavit: standard input does not contain what save has saved: "));
    EXPECT_EQ("sonavit: the file \"no-such-file.json\" cannot be read\n", noFile.err);
}

TEST_F(ProgramRestore, SaysThatAChangeOfASimulatedMachineDoesNotLast)
{
    const std::string note = "\nThe machine is simulated: the change lasts until sonavit ends.\n";
    const std::string saved = call({"save", "--machine", "desktop"}).out;
    input = saved;
    const Answer withoutChange = call({"restore", "--machine", "desktop"});
    input = std::regex_replace(saved, std::regex("\"muted\": *false"), "\"muted\": true");
    ASSERT_NE(saved, input);

    const Answer answer = call({"restore", "--machine", "desktop"});

    EXPECT_EQ(0, withoutChange.code) << withoutChange.out;
    EXPECT_THAT(withoutChange.err, Not(HasSubstr(note)));
    EXPECT_EQ(0, answer.code) << answer.out;
    EXPECT_THAT(answer.err, EndsWith(note));
}

TEST_F(ProgramRestore, SaysThatAFolderCannotBeRead)
{
    const std::string folder = std::filesystem::temp_directory_path().u8string();

    const Answer answer = call({"restore", folder, "--machine", "empty"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, EndsWith("sonavit: the file \"" + folder + "\" cannot be read\n"));
}

TEST_F(ProgramRestore, RefusesAFileThatIsTooLargeForSettings)
{
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "sonavit-large-settings.json";
    std::ofstream(path) << "{}";
    std::filesystem::resize_file(path, (std::uintmax_t{64} << 20) + 1);

    const Answer answer = call({"restore", path.u8string(), "--machine", "empty"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, EndsWith(" is larger than 64 MiB\n"));
    std::filesystem::remove(path);
}
