#include "tools/sonavit/commandline.h"

#include "tools/sonavit/failure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sonavit::program;
using sonavit::Decibels;
using sonavit::LevelChange;
using sonavit::Percent;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{
Arguments read(const std::vector<std::string>& words)
{
    return readCommandLine(words).arguments;
}

/// The decibels of a new level.
double decibels(const std::vector<std::string>& words)
{
    return std::get<Decibels>(read(words).level->amount()).value();
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
    EXPECT_EQ(-12.5, std::get<Decibels>(arguments.level->amount()).value());
    EXPECT_TRUE(arguments.isJson);
}

TEST(ProgramCommandLine, ReadsTheChangeOfAMute)
{
    EXPECT_EQ(MuteChange::on, read({"mute", "Speakers", "on"}).mute);
    EXPECT_EQ(MuteChange::off, read({"mute", "Speakers", "OFF"}).mute);
    EXPECT_EQ(MuteChange::toggle, read({"mute", "Speakers", "toggle"}).mute);
    EXPECT_EQ(MuteChange::on, read({"mute", "Speakers", "yes"}).mute);
    EXPECT_EQ(MuteChange::on, read({"mute", "Speakers", "1"}).mute);
    EXPECT_EQ(MuteChange::off, read({"mute", "Speakers", "No"}).mute);
    EXPECT_EQ(MuteChange::off, read({"mute", "Speakers", "0"}).mute);
    EXPECT_EQ("\"maybe\" is not a mute state: on, off or toggle", complaint({"mute", "Speakers", "maybe"}));
}

TEST(ProgramCommandLine, ReadsTheLevelOfTheLog)
{
    EXPECT_FALSE(read({}).log.has_value());
    EXPECT_FALSE(read({"--log", "off"}).log.has_value());
    EXPECT_EQ(qor::LoggerPriority::LOG_DEBUG, read({"--log", "debug"}).log);
    EXPECT_EQ(qor::LoggerPriority::LOG_INFO, read({"--log", "info"}).log);
    EXPECT_EQ(qor::LoggerPriority::LOG_WARNING, read({"--log", "warning"}).log);
    EXPECT_EQ(qor::LoggerPriority::LOG_ERROR, read({"--log", "error"}).log);
    EXPECT_EQ(qor::LoggerPriority::LOG_FATAL, read({"--log", "fatal"}).log);
    EXPECT_EQ("\"loud\" is not a log level: debug, info, warning, error, fatal or off", complaint({"--log", "loud"}));
}

TEST(ProgramCommandLine, ReadsDurationsInSeconds)
{
    EXPECT_FALSE(read({"monitor"}).duration.has_value());
    EXPECT_EQ(std::chrono::milliseconds(1500), read({"monitor", "--for", "1.5"}).duration);
    EXPECT_EQ(std::chrono::milliseconds(0), read({"monitor", "--for", "0"}).duration);
    EXPECT_EQ(std::chrono::milliseconds(500), read({"monitor", "--for", ".5"}).duration);
    EXPECT_EQ(std::chrono::milliseconds(1000000000), read({"monitor", "--for", "1000000"}).duration);
    EXPECT_EQ("--hold takes a number of seconds from 0 to 1000000, not \"1e30\"",
              complaint({"format", "Speakers", "--set", "16/48000/2", "--hold", "1e30"}));
    for (const char* const word : {"-1", "nan", "soon", "", ".", "1.2.3", "1 ", "1000001"})
        EXPECT_EQ("--for takes a number of seconds from 0 to 1000000, not \"" + std::string(word) + "\"",
                  complaint({"monitor", "--for", word}));
}

TEST(ProgramCommandLine, ReadsAFormatAndHowLongToHoldIt)
{
    const Arguments arguments = read({"format", "Speakers", "--set", "24/96000/2", "--hold", "2"});

    ASSERT_TRUE(arguments.format.has_value());
    EXPECT_EQ(96000u, arguments.format->rate);
    EXPECT_EQ(std::chrono::milliseconds(2000), arguments.hold);
    EXPECT_EQ(std::chrono::milliseconds(5000), read({"format", "Speakers", "--set", "24/96000/2"}).hold);
    EXPECT_FALSE(read({"format", "Speakers"}).format.has_value());
    EXPECT_EQ("--hold needs --set", complaint({"format", "Speakers", "--hold", "2"}));
}

TEST(ProgramCommandLine, ReadsTheWordsOfAGraph)
{
    const Arguments arguments = read({"graph", "Analog", "-o", "a.dot", "--endpoint", "Speakers"});

    EXPECT_EQ(Verb::graph, arguments.verb);
    EXPECT_EQ("Analog", arguments.card);
    EXPECT_EQ("a.dot", arguments.outputFile);
    EXPECT_EQ("Speakers", arguments.endpoint);
}

TEST(ProgramCommandLine, ReadsWhatAListIsNarrowedTo)
{
    const Arguments arguments = read({"list", "--active", "--inputs", "--card", "Analog", "--short", "--via", "model"});

    EXPECT_TRUE(arguments.isOnlyActive);
    EXPECT_TRUE(arguments.isOnlyInputs);
    EXPECT_FALSE(arguments.isOnlyOutputs);
    EXPECT_EQ("Analog", arguments.card);
    EXPECT_TRUE(arguments.isShort);
    EXPECT_EQ(Via::model, arguments.via);
    EXPECT_EQ(Via::layer, read({"list"}).via);
    EXPECT_EQ("--outputs and --inputs exclude each other", complaint({"list", "--inputs", "--outputs"}));
}

TEST(ProgramCommandLine, ReadsTheChannelOfAChange)
{
    EXPECT_EQ(std::nullopt, read({"set-volume", "Speakers", "50%"}).level->channel());
    EXPECT_EQ(1u, read({"set-volume", "Speakers", "50%", "--channel", "2"}).level->channel());
    EXPECT_EQ(0u,
              std::get<LevelChange>(read({"set-control", "A", "B", "-3dB", "--channel", "1"}).controlChange).channel());
    EXPECT_EQ("--channel does not go with on and off, which concern all channels",
              complaint({"set-control", "A", "B", "on", "--channel", "1"}));
}

TEST(ProgramCommandLine, ReadsTheChangeOfAControlAndOfASelector)
{
    const Arguments control = read({"set-control", "Main Monitors", "Line Out 1/2", "-12dB"});
    const Arguments select = read({"select", "Auxiliary Source", "Combo 3", "--card", "Interface"});

    EXPECT_EQ(Verb::setControl, control.verb);
    EXPECT_EQ("Main Monitors", control.endpoint);
    EXPECT_EQ("Line Out 1/2", control.control);
    EXPECT_EQ(Decibels(-12), std::get<Decibels>(std::get<LevelChange>(control.controlChange).amount()));
    EXPECT_EQ(Verb::select, select.verb);
    EXPECT_EQ("Auxiliary Source", select.selector);
    EXPECT_EQ("Combo 3", select.input);
    EXPECT_EQ("Interface", select.card);
}

TEST(ProgramCommandLine, ReadsWhatIdentifiesAnEndpointAndWhereSettingsAre)
{
    EXPECT_EQ("0", read({"find", "0"}).id);
    EXPECT_EQ("Speakers", read({"refer", "Speakers"}).endpoint);
    EXPECT_EQ("snv1:x", read({"resolve", "snv1:x"}).reference);
    EXPECT_EQ("", read({"save"}).file);
    EXPECT_EQ("all.json", read({"restore", "all.json"}).file);
    EXPECT_EQ("the name of the file is empty", complaint({"save", ""}));
    EXPECT_EQ("the id is empty", complaint({"find", ""}));
    EXPECT_EQ("the reference is empty", complaint({"resolve", ""}));
}

TEST(ProgramCommandLine, ReadsToWhatTheMonitorListens)
{
    const Arguments arguments = read({"monitor", "Speakers", "Microphone", "--only", "volume,state"});

    EXPECT_THAT(arguments.endpoints, ElementsAre("Speakers", "Microphone"));
    EXPECT_EQ((std::set<EventKind>{EventKind::volume, EventKind::state}), arguments.eventKinds);
    EXPECT_TRUE(read({"monitor"}).endpoints.empty());
    EXPECT_EQ("the name of the endpoint is empty", complaint({"monitor", ""}));
}

TEST(ProgramCommandLine, ReadsThatAGraphIsOfOnePathAlone)
{
    EXPECT_TRUE(read({"graph", "--endpoint", "Speakers", "--only"}).isOnlyPath);
    EXPECT_EQ("--only needs --endpoint", complaint({"graph", "--only"}));
}

TEST(ProgramCommandLine, SaysInOneLineWhatIsWrong)
{
    EXPECT_EQ("unknown command \"frobnicate\"; see sonavit --help", complaint({"frobnicate"}));
    EXPECT_EQ("unknown command \"lst\" (did you mean \"list\"?); see sonavit --help", complaint({"lst"}));
    EXPECT_EQ("unknown command \"selector\" (did you mean \"selectors\"?); see sonavit --help",
              complaint({"help", "selector"}));
    EXPECT_EQ("unknown option \"--frob\"; see sonavit list --help", complaint({"list", "--frob"}));
    EXPECT_EQ("unknown option \"-x\"; see sonavit --help", complaint({"-x"}));
    EXPECT_EQ("unknown command \"\"; see sonavit --help", complaint({""}));
    EXPECT_EQ("unknown option \"--acount\" (did you mean \"--account\"?); see sonavit list --help",
              complaint({"list", "--acount", "x"}));
    EXPECT_EQ("unknown option \"--hodl=3\" (did you mean \"--hold\"?); see sonavit format --help",
              complaint({"format", "Speakers", "--hodl=3"}));
    EXPECT_EQ("unexpected argument \"more\"; see sonavit show --help", complaint({"show", "Speakers", "more"}));
    EXPECT_EQ("unexpected argument \"show\"; see sonavit list --help", complaint({"list", "show"}));
    EXPECT_EQ("unexpected argument \"-5\"; see sonavit list --help", complaint({"list", "-5"}));
}

TEST(ProgramCommandLine, SaysWhatIsMissing)
{
    EXPECT_EQ("ENDPOINT is missing; usage: sonavit show ENDPOINT", complaint({"show"}));
    EXPECT_EQ("ENDPOINT is missing; usage: sonavit set-volume ENDPOINT VOLUME", complaint({"set-volume"}));
    EXPECT_EQ("VOLUME is missing; usage: sonavit set-volume ENDPOINT VOLUME", complaint({"set-volume", "Speakers"}));
    EXPECT_EQ("CHANGE is missing; usage: sonavit mute ENDPOINT CHANGE", complaint({"mute", "Speakers"}));
    EXPECT_EQ("INSTANCE-ID is missing; usage: sonavit ask INSTANCE-ID", complaint({"ask"}));
    EXPECT_EQ("--machine needs a value: --machine NAME|FILE", complaint({"--machine"}));
    EXPECT_EQ("--for needs a value: --for SECONDS", complaint({"monitor", "--for"}));
    EXPECT_EQ("-o needs a value: -o FILE", complaint({"graph", "-o"}));
    EXPECT_EQ("--machine needs a value: --machine NAME|FILE", complaint({"list", "--frob", "--machine"}));
}

TEST(ProgramCommandLine, SaysThatAnEmptyValueIsMissing)
{
    EXPECT_EQ("--machine needs a value: --machine NAME|FILE", complaint({"--machine=", "list"}));
    EXPECT_EQ("--machine needs a value: --machine NAME|FILE", complaint({"list", "--machine="}));
    EXPECT_EQ("--account needs a value: --account ACCOUNT", complaint({"list", "--account="}));
    EXPECT_EQ("--account needs a value: --account ACCOUNT", complaint({"--account=", "help"}));
    EXPECT_EQ("--latency needs a value: --latency PRESET", complaint({"list", "--latency=", "--json"}));
    EXPECT_EQ("--log needs a value: --log LEVEL", complaint({"--log="}));
    EXPECT_EQ("--for needs a value: --for SECONDS", complaint({"monitor", "--for="}));
    EXPECT_EQ("--output needs a value: --output FILE", complaint({"graph", "--output=", "file"}));
    EXPECT_EQ("--set needs a value: --set BITS/RATE/CHANNELS", complaint({"format", "Speakers", "--set="}));
    EXPECT_EQ("unknown option \"--for=\"; see sonavit list --help", complaint({"list", "--for="}));
    EXPECT_EQ("unknown option \"--frob=\"; see sonavit list --help", complaint({"list", "--frob="}));
}

TEST(ProgramCommandLine, RefusesEmptyNames)
{
    EXPECT_EQ("the name of the endpoint is empty", complaint({"show", ""}));
    EXPECT_EQ("the name of the card is empty", complaint({"selectors", ""}));
    EXPECT_EQ("the name of the file is empty", complaint({"graph", "-o", ""}));
    EXPECT_EQ("the instance id is empty", complaint({"ask", ""}));
}

TEST(ProgramCommandLine, RefusesAValueOfAFlag)
{
    EXPECT_EQ("--json takes no value", complaint({"list", "--json=no"}));
    EXPECT_EQ("--json takes no value", complaint({"--json=maybe"}));
}

TEST(ProgramCommandLine, TakesTheLastOfAnOptionThatIsGivenTwice)
{
    const Arguments arguments = read({"--machine", "studio", "--json", "--json", "list", "--machine", "laptop"});

    EXPECT_EQ("laptop", arguments.machine);
    EXPECT_TRUE(arguments.isJson);
}

TEST(ProgramCommandLine, TakesAnAccountBeforeAndAfterTheCommand)
{
    EXPECT_EQ(std::nullopt, read({"list"}).account);
    EXPECT_EQ(sim::Account::ordinary, read({"list", "--account", "ordinary"}).account);
    EXPECT_EQ(sim::Account::administrator, read({"--account=ADMINISTRATOR", "list"}).account);
    EXPECT_EQ(-5, decibels({"--account", "ordinary", "set-volume", "Speakers", "-5dB"}));
    EXPECT_EQ(readCommandLine({"--help"}).answer, readCommandLine({"--account", "ordinary", "help"}).answer);
    EXPECT_EQ("\"root\" is not an account: administrator or ordinary", complaint({"--account", "root"}));
}

TEST(ProgramCommandLine, TakesALatencyBeforeAndAfterTheCommand)
{
    EXPECT_EQ(std::nullopt, read({"list"}).latency);
    EXPECT_EQ(sim::LatencyPreset::windows, read({"list", "--latency", "windows"}).latency);
    EXPECT_EQ(sim::LatencyPreset::none, read({"--latency=NONE", "list"}).latency);
    EXPECT_EQ(-5, decibels({"--latency", "windows", "set-volume", "Speakers", "-5dB"}));
    EXPECT_EQ(readCommandLine({"--help"}).answer, readCommandLine({"--latency", "windows", "help"}).answer);
    EXPECT_EQ("\"slow\" is not a latency: none or windows", complaint({"--latency", "slow"}));
}

TEST(ProgramCommandLine, EscapesAndCutsWhatItRepeats)
{
    EXPECT_EQ("unknown command \"a\\xFF\\nb\"; see sonavit --help", complaint({"a\xFF\nb"}));
    EXPECT_EQ("unknown option \"--\\x1B[2J\"; see sonavit --help", complaint({"--\x1B[2J"}));
    EXPECT_EQ("unexpected argument \"" + std::string(99, 'x') + "\xE2\x80\xA6\"; see sonavit list --help",
              complaint({"list", std::string(5000, 'x')}));
}

TEST(ProgramCommandLine, ReadsAVolumeThatBeginsLikeAnOption)
{
    EXPECT_EQ(-0.5, decibels({"set-volume", "Speakers", "-.5dB"}));
    EXPECT_EQ(-0.5, decibels({"--json", "set-volume", "Speakers", "--", "-.5dB"}));
    EXPECT_EQ(LevelChange::Direction::down,
              read({"--machine", "studio", "set-volume", "Speakers", "-5%"}).level->direction());
    EXPECT_EQ("\"-,5dB\" is not a volume: write 50%, -12.5dB, 5%+ or 5%-",
              complaint({"set-volume", "Speakers", "-,5dB"}));
    EXPECT_EQ("\"-dB\" is not a volume: write 50%, -12.5dB, 5%+ or 5%-", complaint({"set-volume", "Speakers", "-dB"}));
    EXPECT_EQ("-5", read({"show", "-5"}).endpoint);
}

TEST(ProgramCommandLine, UnderstandsHelpAsACommand)
{
    EXPECT_EQ(readCommandLine({"--help"}).answer, readCommandLine({"help"}).answer);
    EXPECT_EQ(readCommandLine({"--help"}).answer, readCommandLine({"--json", "help"}).answer);
    EXPECT_EQ(readCommandLine({"mute", "--help"}).answer, readCommandLine({"help", "mute"}).answer);
    EXPECT_EQ("unknown command \"frobnicate\"; see sonavit --help", complaint({"help", "frobnicate"}));
    EXPECT_EQ("help", read({"show", "help"}).endpoint);
    EXPECT_EQ("--machine needs a value: --machine NAME|FILE", complaint({"help", "--machine"}));
    EXPECT_EQ("--for needs a value: --for SECONDS", complaint({"help", "monitor", "--for"}));
}

TEST(ProgramCommandLine, AnswersHelpAndVersion)
{
    const std::string help = readCommandLine({"--help"}).answer;
    const std::string helpOfVerb = readCommandLine({"set-volume", "--help"}).answer;

    for (const char* const verb :
         {"list",       "show",  "explain",     "controls", "selectors", "graph",     "ask",    "get-volume",
          "set-volume", "mute",  "set-control", "select",   "save",      "capture",   "doctor", "restore",
          "find",       "refer", "resolve",     "monitor",  "format",    "--machine", "--json", "--log"})
        EXPECT_THAT(help, HasSubstr(std::string("  ") + verb));
    EXPECT_THAT(helpOfVerb, HasSubstr("Usage: sonavit set-volume [OPTIONS] ENDPOINT VOLUME"));
    EXPECT_THAT(helpOfVerb, HasSubstr("On a simulated machine the change lasts until sonavit ends."));
    EXPECT_EQ("sonavit " SONAVIT_VERSION "\n", readCommandLine({"--version"}).answer);
    EXPECT_TRUE(readCommandLine({"--version"}).isVersion);
    EXPECT_FALSE(readCommandLine({"--help"}).isVersion);
}

TEST(ProgramCommandLine, KeepsItsHelpWithin80Columns)
{
    for (const char* const verb :
         {"",           "list",       "show",  "explain",     "controls", "selectors", "graph",   "ask",
          "get-volume", "set-volume", "mute",  "set-control", "select",   "save",      "capture", "doctor",
          "restore",    "find",       "refer", "resolve",     "monitor",  "format"})
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

TEST(ProgramCommandLine, TakesTheValueOfAnOptionForNoWishForJson)
{
    EXPECT_FALSE(asksForJson({"list", "--machine", "--json"}));
    EXPECT_TRUE(asksForJson({"list", "--machine", "--json", "--json"}));
    EXPECT_FALSE(asksForJson({"list", "--outputs", "--inputs", "--machine", "--json"}));
}
