#include "tools/sonavit/commandline.h"

#include "tools/sonavit/failure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sonavit;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{
Arguments read(const std::vector<std::string>& words)
{
    return readCommandLine(words).arguments;
}

std::string complaint(const std::vector<std::string>& words)
{
    try
    {
        readCommandLine(words);
    }
    catch (const UsageError& error)
    {
        return error.what();
    }
    return "";
}
}

TEST(ProgramCommandLine, ListsWhenThereIsNoCommand)
{
    EXPECT_EQ(Verb::list, read({}).verb);
    EXPECT_EQ(Verb::list, read({"--json"}).verb);
    EXPECT_EQ(Verb::list, read({"list"}).verb);
}

TEST(ProgramCommandLine, TakesGlobalOptionsBeforeAndBehindTheCommand)
{
    const Arguments before = read({"--machine", "studio", "--json", "show", "Speakers"});
    const Arguments behind = read({"show", "Speakers", "--json", "--machine=studio"});

    for (const Arguments& arguments : {before, behind})
    {
        EXPECT_EQ(Verb::show, arguments.verb);
        EXPECT_EQ("Speakers", arguments.endpoint);
        EXPECT_EQ("studio", arguments.machine);
        EXPECT_TRUE(arguments.isJson);
    }
}

TEST(ProgramCommandLine, TellsNoMachineFromOneWithAnEmptyName)
{
    EXPECT_FALSE(read({}).machine.has_value());
    EXPECT_EQ("", read({"--machine", ""}).machine);
}

TEST(ProgramCommandLine, ReadsALevelThatBeginsWithAMinus)
{
    const Arguments arguments = read({"set-volume", "Speakers", "-12.5dB", "--json"});

    EXPECT_EQ(Verb::setVolume, arguments.verb);
    EXPECT_EQ(-12.5f, arguments.level.amount);
    EXPECT_TRUE(arguments.isJson);
}

TEST(ProgramCommandLine, ReadsTheChangeOfAMute)
{
    EXPECT_EQ(MuteChange::on, read({"mute", "Speakers", "on"}).mute);
    EXPECT_EQ(MuteChange::off, read({"mute", "Speakers", "OFF"}).mute);
    EXPECT_EQ(MuteChange::toggle, read({"mute", "Speakers", "toggle"}).mute);
    EXPECT_EQ("\"maybe\" is no change of a mute: expected one of on, off and toggle",
              complaint({"mute", "Speakers", "maybe"}));
}

TEST(ProgramCommandLine, ReadsTheLevelOfTheLog)
{
    EXPECT_FALSE(read({}).log.has_value());
    EXPECT_FALSE(read({"--log", "off"}).log.has_value());
    EXPECT_EQ(qor::LoggerPriority::LOG_DEBUG, read({"--log", "debug"}).log);
    EXPECT_EQ(qor::LoggerPriority::LOG_FATAL, read({"--log", "fatal"}).log);
    EXPECT_EQ("\"loud\" is no level of the log: expected one of debug, info, warning, error, fatal and off",
              complaint({"--log", "loud"}));
}

TEST(ProgramCommandLine, ReadsDurationsInSeconds)
{
    EXPECT_FALSE(read({"monitor"}).duration.has_value());
    EXPECT_EQ(std::chrono::milliseconds(1500), read({"monitor", "--for", "1.5"}).duration);
    EXPECT_EQ(std::chrono::milliseconds(0), read({"monitor", "--for", "0"}).duration);
    EXPECT_EQ("--for takes a number of seconds from 0 to 1000000", complaint({"monitor", "--for", "-1"}));
    EXPECT_EQ("--for takes a number of seconds from 0 to 1000000", complaint({"monitor", "--for", "nan"}));
    EXPECT_EQ("--hold takes a number of seconds from 0 to 1000000",
              complaint({"format", "Speakers", "--set", "16/48000/2", "--hold", "1e30"}));
    EXPECT_THAT(complaint({"monitor", "--for", "soon"}), HasSubstr("soon"));
}

TEST(ProgramCommandLine, ReadsAFormatAndHowLongToHoldIt)
{
    const Arguments arguments = read({"format", "Speakers", "--set", "24/96000/2", "--hold", "2"});

    ASSERT_TRUE(arguments.format.has_value());
    EXPECT_EQ(96000u, arguments.format->rate);
    EXPECT_EQ(std::chrono::milliseconds(2000), arguments.hold);
    EXPECT_FALSE(read({"format", "Speakers"}).format.has_value());
    EXPECT_EQ("--hold goes with --set", complaint({"format", "Speakers", "--hold", "2"}));
}

TEST(ProgramCommandLine, ReadsTheWordsOfAGraph)
{
    const Arguments arguments = read({"graph", "Analog", "-o", "a.dot", "--endpoint", "Speakers"});

    EXPECT_EQ(Verb::graph, arguments.verb);
    EXPECT_EQ("Analog", arguments.card);
    EXPECT_EQ("a.dot", arguments.outputFile);
    EXPECT_EQ("Speakers", arguments.endpoint);
}

TEST(ProgramCommandLine, SaysInOneLineWhatIsWrong)
{
    EXPECT_EQ("there is no command \"frobnicate\"; sonavit --help shows what there is", complaint({"frobnicate"}));
    EXPECT_EQ("there is no option --frob; sonavit --help shows what there is", complaint({"list", "--frob"}));
    EXPECT_EQ("there is no option -x; sonavit --help shows what there is", complaint({"-x"}));
    EXPECT_EQ("there is nothing to be done with \"more\"; sonavit show --help shows what can be said",
              complaint({"show", "Speakers", "more"}));
    EXPECT_EQ("show: ENDPOINT is required", complaint({"show"}));
    EXPECT_EQ("set-volume: VOLUME is required", complaint({"set-volume", "Speakers"}));
    EXPECT_THAT(complaint({"--machine"}), HasSubstr("--machine"));
    EXPECT_THAT(complaint({"list", "show"}), testing::Not(""));
}

TEST(ProgramCommandLine, AnswersHelpAndVersion)
{
    const std::string help = readCommandLine({"--help"}).answer;
    const std::string helpOfVerb = readCommandLine({"set-volume", "--help"}).answer;

    for (const char* const verb : {"list", "show", "controls", "selectors", "graph", "ask", "get-volume", "set-volume",
                                   "mute", "monitor", "format", "--machine", "--json", "--log"})
        EXPECT_THAT(help, HasSubstr(std::string("  ") + verb));
    EXPECT_THAT(helpOfVerb, HasSubstr("Usage: sonavit set-volume [OPTIONS] ENDPOINT VOLUME"));
    EXPECT_THAT(helpOfVerb, HasSubstr("On a simulated machine the change lasts as long as the program runs."));
    EXPECT_EQ("sonavit " SONAVIT_VERSION "\n", readCommandLine({"--version"}).answer);
}

TEST(ProgramCommandLine, KeepsItsHelpWithin80Columns)
{
    for (const char* const verb : {"", "list", "show", "controls", "selectors", "graph", "ask", "get-volume",
                                   "set-volume", "mute", "monitor", "format"})
    {
        const std::string word = verb;
        const CommandLine line = word.empty() ? readCommandLine({"--help"}) : readCommandLine({word, "--help"});
        std::size_t start = 0;
        for (std::size_t end = line.answer.find('\n'); end != std::string::npos; end = line.answer.find('\n', start))
        {
            EXPECT_LE(end - start, 80u) << line.answer.substr(start, end - start);
            start = end + 1;
        }
    }
}

TEST(ProgramCommandLine, FindsTheWishForJsonInWordsThatItDoesNotUnderstand)
{
    EXPECT_TRUE(asksForJson({"frobnicate", "--json"}));
    EXPECT_FALSE(asksForJson({"frobnicate"}));
}
