#include "tools/sonavit/commandline.h"

#include "tools/sonavit/failure.h"
#include "tools/sonavit/text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

namespace sonavit
{
namespace
{
constexpr double longestSeconds = 1e6;

constexpr const char* machineHelp = "Work on a simulated machine: one that ships (broken,\n"
                                    "crowded, desktop, empty, laptop, studio) or a file";

constexpr const char* logHelp = "Show the library's records on standard error: debug,\n"
                                "info, warning, error, fatal or off (the default)";

constexpr const char* namesOfEndpoints =
    "\n"
    "ENDPOINT is an endpoint's id or name, a piece of one of them that no other has,\n"
    "@DEFAULT_OUTPUT@ or @DEFAULT_INPUT@.\n";

constexpr const char* globalOptions = "\n"
                                      "--machine, --json and --log go with every command, see sonavit --help.\n";

constexpr const char* changesLastForTheRun = "On a simulated machine the change lasts as long as the program runs.\n";

struct LogLevel
{
    const char* name;
    std::optional<qor::LOGGER_PRIORITY> priority;
};

const std::array<LogLevel, 6> logLevels = {{{"debug", qor::LoggerPriority::LOG_DEBUG},
                                            {"info", qor::LoggerPriority::LOG_INFO},
                                            {"warning", qor::LoggerPriority::LOG_WARNING},
                                            {"error", qor::LoggerPriority::LOG_ERROR},
                                            {"fatal", qor::LoggerPriority::LOG_FATAL},
                                            {"off", std::nullopt}}};

struct MuteWord
{
    const char* name;
    MuteChange change;
};

constexpr std::array<MuteWord, 3> muteWords = {
    {{"on", MuteChange::on}, {"off", MuteChange::off}, {"toggle", MuteChange::toggle}}};

/// The entry of @p table that @p word names. Throws UsageError, which lists the names.
template<class Table>
const auto& named(const Table& table, const std::string& word, const std::string& what)
{
    const auto found =
        std::find_if(table.begin(), table.end(), [&](const auto& entry) { return equalNoCase(entry.name, word); });
    if (found != table.end())
        return *found;
    std::vector<std::string> names;
    names.reserve(std::size(table));
    for (const auto& entry : table)
        names.emplace_back(entry.name);
    throw UsageError("\"" + word + "\" is no " + what + ": expected one of " + enumeration(names));
}

std::chrono::milliseconds milliseconds(double seconds, const std::string& option)
{
    if (!(seconds >= 0.0 && seconds <= longestSeconds))
        throw UsageError(option + " takes a number of seconds from 0 to 1000000");
    return std::chrono::milliseconds(std::llround(seconds * 1000.0));
}

/// The words as they stand on the command line, before those that mean more than a text are read.
struct Words
{
    std::string machine;
    bool isJson = false;
    std::string log;
    std::string endpoint;
    std::string card;
    std::string instanceId;
    std::string outputFile;
    std::string level;
    std::string mute;
    std::string format;
    double duration = 0.0;
    double hold = 5.0;
};

/// The parser with all verbs and options; what it reads goes into the words.
class Parser
{
public:
    Parser();

    CommandLine read(const std::vector<std::string>& words);

private:
    CLI::App& verb(const std::string& name, Verb verb, const std::string& description);
    CLI::App& verbOnEndpoint(const std::string& name, Verb verb, const std::string& description);
    void addGlobalOptions();
    void addVerbs();
    void addLastingVerbs();
    void parse(const std::vector<std::string>& words);
    void judge(const CLI::ParseError& error) const;
    std::string helpText() const;
    Arguments arguments() const;

    CLI::App m_app{"Shows the sound cards of this machine and drives them.", "sonavit"};
    std::map<const CLI::App*, Verb> m_verbs;
    Words m_words;
    CLI::Option* m_duration = nullptr;
    CLI::Option* m_hold = nullptr;
    CLI::Option* m_format = nullptr;
};

Parser::Parser()
{
    m_app.require_subcommand(0, 1);
    m_app.fallthrough();
    m_app.get_formatter()->column_width(28);
    m_app.get_formatter()->label("REQUIRED", "");
    m_app.get_formatter()->label("TEXT", "");
    m_app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    m_app.get_formatter()->label("Positionals", "Arguments");
    addGlobalOptions();
    addVerbs();
    addLastingVerbs();
    m_app.footer(std::string(namesOfEndpoints) +
                 "\n"
                 "Examples:\n"
                 "  sonavit                                    the sound cards at a glance\n"
                 "  sonavit set-volume @DEFAULT_OUTPUT@ 5%+    a bit louder\n"
                 "  sonavit mute \"Headset Microphone\" on\n"
                 "  sonavit graph \"Analog Audio\" | dot -Tsvg -o graph.svg\n"
                 "  sonavit --machine studio --json controls \"Main Monitors\"\n"
                 "\n"
                 "Exit codes: 0 done, 1 it could not be done, 2 it was asked for wrongly.\n");
}

void Parser::addGlobalOptions()
{
    m_app.add_option("--machine", m_words.machine, machineHelp)->type_name("NAME|FILE");
    m_app.add_flag("--json", m_words.isJson, "Answer in JSON");
    m_app.add_option("--log", m_words.log, logHelp)->type_name("LEVEL");
    m_app.set_version_flag("--version", "sonavit " SONAVIT_VERSION, "Show the version");
    m_app.set_help_flag("-h,--help", "Show this help; after a command, its own");
}

CLI::App& Parser::verb(const std::string& name, Verb verb, const std::string& description)
{
    CLI::App* const result = m_app.add_subcommand(name, description);
    result->footer(globalOptions);
    result->group("Commands");
    m_verbs[result] = verb;
    return *result;
}

CLI::App& Parser::verbOnEndpoint(const std::string& name, Verb verb, const std::string& description)
{
    CLI::App& result = this->verb(name, verb, description);
    result.add_option("ENDPOINT", m_words.endpoint, "Id, name or piece of one, or a default")
        ->required()
        ->type_name("");
    result.footer(std::string(namesOfEndpoints) + globalOptions);
    return result;
}

void Parser::addVerbs()
{
    verb("list", Verb::list, "The sound cards at a glance (without a command, too)");
    verbOnEndpoint("show", Verb::show, "All about one endpoint");
    verbOnEndpoint("controls", Verb::controls, "The volume controls in the hardware of an endpoint");
    verb("selectors", Verb::selectors, "The input selectors of the cards")
        .add_option("CARD", m_words.card, "Name or instance id of one card, or a piece of it")
        ->type_name("");
    CLI::App& graph = verb("graph", Verb::graph, "The cards' hardware as a graph for Graphviz");
    graph.add_option("CARD", m_words.card, "Name or instance id of one card, or a piece of it")->type_name("");
    graph.add_option("-o,--output", m_words.outputFile, "Write to FILE")->type_name("FILE");
    graph.add_option("--endpoint", m_words.endpoint, "Show the path of one endpoint")->type_name("ENDPOINT");
    verb("ask", Verb::ask, "Four yes-or-no answers about a card")
        .add_option("INSTANCE-ID", m_words.instanceId, "Device instance id of the card, as list shows it")
        ->required()
        ->type_name("");
    verbOnEndpoint("get-volume", Verb::getVolume, "The volume of an endpoint");
    CLI::App& setVolume = verbOnEndpoint("set-volume", Verb::setVolume, "Set the volume of an endpoint");
    setVolume.add_option("VOLUME", m_words.level, "50%, -12.5dB, 5%+ (louder) or 5%- (softer)")
        ->required()
        ->type_name("");
    setVolume.footer(std::string(namesOfEndpoints) + changesLastForTheRun + globalOptions);
    CLI::App& mute = verbOnEndpoint("mute", Verb::mute, "Mute an endpoint, or let it sound again");
    mute.add_option("CHANGE", m_words.mute, "on, off or toggle")->required()->type_name("");
    mute.footer(std::string(namesOfEndpoints) + changesLastForTheRun + globalOptions);
}

void Parser::addLastingVerbs()
{
    CLI::App& monitor = verb("monitor", Verb::monitor, "What happens, one event a line, until Ctrl-C");
    m_duration = monitor.add_option("--for", m_words.duration, "End after so many seconds")->type_name("SECONDS");
    monitor.footer(std::string("\nA simulated machine plays the events that its file describes.\n") + globalOptions);
    CLI::App& format = verbOnEndpoint("format", Verb::format, "The format in which an endpoint works");
    m_format = format.add_option("--set", m_words.format, "Set it for a while, as in 24/48000/2")
                   ->type_name("BITS/RATE/CHANNELS");
    m_hold = format.add_option("--hold", m_words.hold, "Put it back after so many seconds (5)")->type_name("SECONDS");
    format.footer(std::string(namesOfEndpoints) + changesLastForTheRun + globalOptions);
}

CommandLine Parser::read(const std::vector<std::string>& words)
{
    try
    {
        parse(words);
    }
    catch (const CLI::CallForHelp&)
    {
        return {{}, helpText()};
    }
    catch (const CLI::CallForVersion& version)
    {
        return {{}, std::string(version.what()) + "\n"};
    }
    catch (const CLI::ParseError& error)
    {
        judge(error);
    }
    return {arguments(), {}};
}

void Parser::parse(const std::vector<std::string>& words)
{
    std::vector<std::string> reversed(words.rbegin(), words.rend()); // the parser takes them from the back
    m_app.parse(reversed);
}

/// Says in our words what the user did wrong.
void Parser::judge(const CLI::ParseError& error) const
{
    const std::vector<std::string> extras = m_app.remaining(true);
    const bool hasVerb = !m_app.get_subcommands().empty();
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr && !extras.empty())
    {
        const std::string& first = extras.front();
        if (first.compare(0, 1, "-") == 0)
            throw UsageError("there is no option " + first + "; sonavit --help shows what there is");
        if (!hasVerb)
            throw UsageError("there is no command \"" + first + "\"; sonavit --help shows what there is");
        throw UsageError("there is nothing to be done with \"" + first + "\"; sonavit " +
                         m_app.get_subcommands().front()->get_name() + " --help shows what can be said");
    }
    std::string text = error.what();
    std::replace(text.begin(), text.end(), '\n', ' ');
    const std::string verb = hasVerb ? m_app.get_subcommands().front()->get_name() + ": " : "";
    throw UsageError(verb + text);
}

/// The parser is generous with blank lines.
std::string Parser::helpText() const
{
    std::string text = m_app.help();
    for (std::size_t blank = text.find("\n\n\n"); blank != std::string::npos; blank = text.find("\n\n\n"))
        text.erase(blank, 1);
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text + "\n";
}

Arguments Parser::arguments() const
{
    Arguments result;
    const std::vector<CLI::App*> verbs = m_app.get_subcommands();
    if (!verbs.empty())
        result.verb = m_verbs.at(verbs.front());
    if (m_app.count("--machine") > 0)
        result.machine = m_words.machine;
    result.isJson = m_words.isJson;
    if (!m_words.log.empty())
        result.log = named(logLevels, m_words.log, "level of the log").priority;
    result.endpoint = m_words.endpoint;
    result.card = m_words.card;
    result.instanceId = m_words.instanceId;
    result.outputFile = m_words.outputFile;
    if (result.verb == Verb::setVolume)
        result.level = readLevelChange(m_words.level);
    if (result.verb == Verb::mute)
        result.mute = named(muteWords, m_words.mute, "change of a mute").change;
    if (m_duration->count() > 0)
        result.duration = milliseconds(m_words.duration, "--for");
    if (m_format->count() > 0)
        result.format = readFormatRequest(m_words.format);
    if (m_hold->count() > 0 && !result.format)
        throw UsageError("--hold goes with --set");
    result.hold = milliseconds(m_words.hold, "--hold");
    return result;
}
}

CommandLine readCommandLine(const std::vector<std::string>& words)
{
    Parser parser;
    return parser.read(words);
}

bool asksForJson(const std::vector<std::string>& words)
{
    return std::find(words.begin(), words.end(), "--json") != words.end();
}
}
