#include "tools/sonavit/commandlineparser.h"

#include "simulator/machine/nearestname.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>

namespace sonavit::program
{
namespace
{
constexpr const char* machineHelp = "Use a simulated machine: one of bluetooth, broken,\n"
                                    "crowded, desktop, empty, laptop, laptop-user,\n"
                                    "published, remote-desktop, studio, virtual and\n"
                                    "waking, or a JSON file.\n"
                                    "Default: the system's own audio on Windows, desktop\n"
                                    "on other systems";

constexpr const char* accountHelp = "Use the simulated machine under this account:\n"
                                    "administrator, or ordinary, which may not change\n"
                                    "formats. Default: the account that the machine has";

constexpr const char* latencyHelp = "How long calls take on the simulated machine: none,\n"
                                    "or windows (figures that users have published)";

constexpr const char* logHelp = "Print the library's log records from LEVEL on to\n"
                                "standard error: debug, info, warning, error, fatal\n"
                                "or off (the default)";

constexpr const char* endpointHelp = "Id, name, or part of one, or a default endpoint";
constexpr const char* cardHelp = "Name, instance id, or part of one (default: all)";

constexpr const char* endpointNames = "\n"
                                      "ENDPOINT is the id or name of an endpoint, a part that no other id or name\n"
                                      "contains, @DEFAULT_OUTPUT@, or @DEFAULT_INPUT@.\n";

constexpr const char* volumeForms = "\n"
                                    "VOLUME is one of\n"
                                    "  50%, 33.3%, 50         percent of the range\n"
                                    "  -12.5dB, +3dB          decibels\n"
                                    "  5%+, +5%, 3dB+         louder by that much\n"
                                    "  5%-, -5%, 3dB-         softer by that much\n";

constexpr const char* globalOptions = "\n"
                                      "Every command also takes --machine, --account, --latency, --json\n"
                                      "and --log; see sonavit --help.\n";

constexpr const char* temporaryChanges = "\n"
                                         "On a simulated machine the change lasts until sonavit ends.\n";

constexpr const char* examples = "\n"
                                 "Examples:\n"
                                 "  sonavit                                    list the sound cards\n"
                                 "  sonavit set-volume @DEFAULT_OUTPUT@ 5%+    raise the volume\n"
                                 "  sonavit mute \"Headset Microphone\" on\n"
                                 "  sonavit graph \"Analog Audio\" | dot -Tsvg -o graph.svg\n"
                                 "  sonavit --machine studio --json controls \"Main Monitors\"\n"
                                 "\n"
                                 "Exit codes: 0 success, 1 operation failed, 2 usage error.\n";

/// Stands before a word that begins like an option and is none. No word that a user types begins with it.
constexpr char noOptionMark = '\x01';

/// "-12.5dB" and "-.5dB" look like options to the parser; no option of ours begins with a digit or a point.
bool isNegativeNumber(const std::string& word)
{
    return word.size() > 1 && word[0] == '-' && std::string("0123456789.").find(word[1]) != std::string::npos;
}

std::string unmarked(const std::string& word)
{
    return !word.empty() && word[0] == noOptionMark ? word.substr(1) : word;
}

/// The place of the command among @p words; their number if there is none.
std::size_t commandPosition(const std::vector<std::string>& words)
{
    std::size_t position = 0;
    while (position < words.size() && words[position].compare(0, 1, "-") == 0)
    {
        const std::string& word = words[position];
        const bool hasValue = word == "--machine" || word == "--account" || word == "--latency" || word == "--log";
        position += hasValue ? 2 : 1;
    }
    return std::min(position, words.size());
}
}

/// The library's parser with all verbs and options.
class CommandLineParser::Grammar
{
public:
    Grammar();

    CommandWords read(std::vector<std::string> words);

private:
    CLI::App& verb(const std::string& name, Verb verb, const std::string& description, const std::string& footer = {});
    CLI::App& verbOnEndpoint(const std::string& name, Verb verb, const std::string& description,
                             const std::string& footer = {});
    static void addPositional(CLI::App& verb, const std::string& name, std::optional<std::string>& word,
                              const std::string& description, bool isRequired);
    static void addOption(CLI::App& verb, const std::string& name, std::optional<std::string>& word,
                          const std::string& value, const std::string& description);
    void addGlobalOptions();
    void addQuestions();
    void addChanges();
    void replaceHelpCommand(std::vector<std::string>& words) const;
    void parse(const std::vector<std::string>& words);
    [[noreturn]] void refuse(const std::vector<std::string>& words) const;
    static void refuseFlagValues(const std::vector<std::string>& words);
    void refuseEmptyValues(const std::vector<std::string>& words) const;
    void refuseExtras() const;
    std::string nearestOption(const std::string& word) const;
    void refuseMissingValues(const std::vector<std::string>& words) const;
    void refuseMissingWords() const;
    [[noreturn]] static void refuseMissingValue(const std::string& word, const CLI::Option& option);
    const CLI::Option* optionNamed(const std::string& word) const;
    const CLI::App& chosen() const;
    bool hasVerb() const;
    std::string helpText() const;
    void unmarkWords();

    CLI::App m_app{"Lists the sound cards of this machine and controls their endpoints.", "sonavit"};
    std::map<const CLI::App*, Verb> m_verbs;
    CommandWords m_words;
};

CommandLineParser::CommandLineParser() : m_grammar(std::make_unique<Grammar>()) {}
CommandLineParser::~CommandLineParser() = default;

CommandWords CommandLineParser::read(const std::vector<std::string>& words)
{
    return m_grammar->read(words);
}

CommandLineParser::Grammar::Grammar()
{
    m_app.require_subcommand(0, 1);
    m_app.fallthrough();
    m_app.get_formatter()->column_width(28);
    m_app.get_formatter()->label("REQUIRED", "");
    m_app.get_formatter()->label("TEXT", "");
    m_app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    m_app.get_formatter()->label("Positionals", "Arguments");
    addGlobalOptions();
    addQuestions();
    addChanges();
    m_app.footer(std::string(endpointNames) + examples);
}

void CommandLineParser::Grammar::addGlobalOptions()
{
    addOption(m_app, "--machine", m_words.machine, "NAME|FILE", machineHelp);
    addOption(m_app, "--account", m_words.account, "ACCOUNT", accountHelp);
    addOption(m_app, "--latency", m_words.latency, "PRESET", latencyHelp);
    m_app.add_flag("--json", m_words.isJson, "Print JSON");
    addOption(m_app, "--log", m_words.log, "LEVEL", logHelp);
    m_app.set_version_flag("--version", "sonavit " SONAVIT_VERSION, "Print the version");
    m_app.set_help_flag("-h,--help", "Print this help, or the help of a command");
}

CLI::App& CommandLineParser::Grammar::verb(const std::string& name, Verb verb, const std::string& description,
                                           const std::string& footer)
{
    CLI::App* const result = m_app.add_subcommand(name, description);
    result->footer(footer + globalOptions);
    result->group("Commands");
    m_verbs[result] = verb;
    return *result;
}

CLI::App& CommandLineParser::Grammar::verbOnEndpoint(const std::string& name, Verb verb, const std::string& description,
                                                     const std::string& footer)
{
    CLI::App& result = this->verb(name, verb, description, endpointNames + footer);
    addPositional(result, "ENDPOINT", m_words.endpoint, endpointHelp, true);
    return result;
}

void CommandLineParser::Grammar::addPositional(CLI::App& verb, const std::string& name,
                                               std::optional<std::string>& word, const std::string& description,
                                               bool isRequired)
{
    verb.add_option_function<std::string>(
            name, [&word](const std::string& value) { word = value; }, description)
        ->required(isRequired)
        ->type_name("");
}

/// An option that is given twice has its last value.
void CommandLineParser::Grammar::addOption(CLI::App& verb, const std::string& name, std::optional<std::string>& word,
                                           const std::string& value, const std::string& description)
{
    verb.add_option_function<std::string>(
            name, [&word](const std::string& text) { word = text; }, description)
        ->take_last()
        ->type_name(value);
}

void CommandLineParser::Grammar::addQuestions()
{
    verb("list", Verb::list, "List the sound cards and their endpoints (default)",
         "\nThe list marks the default endpoints of the console role with *, and cards with\na line or a digital jack "
         "with [line] and [digital]. In a narrow terminal it\nleaves columns out.\n");
    verbOnEndpoint("show", Verb::show, "Show all properties of an endpoint");
    verbOnEndpoint("controls", Verb::controls, "List the hardware volume controls of an endpoint");
    addPositional(verb("selectors", Verb::selectors, "List the input selectors of the cards",
                       "\nThe list marks the selected input with *.\n"),
                  "CARD", m_words.card, cardHelp, false);
    CLI::App& graph = verb("graph", Verb::graph, "Print the cards' hardware as a Graphviz graph",
                           "\nWithout --json the graph is in the DOT language.\n");
    addPositional(graph, "CARD", m_words.card, cardHelp, false);
    addOption(graph, "-o,--output", m_words.outputFile, "FILE", "Write to FILE instead of standard output");
    addOption(graph, "--endpoint", m_words.endpoint, "ENDPOINT", "Highlight the signal path of one endpoint");
    addPositional(verb("ask", Verb::ask, "Report what kinds of jacks a card has",
                       "\nThe answers say whether the card has an analog output, a digital output, a line\ninput and a "
                       "microphone input, whatever their states.\n"),
                  "INSTANCE-ID", m_words.instanceId, "Device instance id of the card, as list shows it", true);
    verbOnEndpoint("get-volume", Verb::getVolume, "Print the volume of an endpoint");
    CLI::App& monitor = verb("monitor", Verb::monitor, "Print events, one per line, until Ctrl-C",
                             "\nA simulated machine plays the events that its file describes.\n");
    addOption(monitor, "--for", m_words.duration, "SECONDS", "Stop after SECONDS");
}

void CommandLineParser::Grammar::addChanges()
{
    CLI::App& setVolume = verbOnEndpoint("set-volume", Verb::setVolume, "Set the volume of an endpoint",
                                         std::string(volumeForms) + temporaryChanges);
    addPositional(setVolume, "VOLUME", m_words.level, "New volume or a step, such as 50%, -12.5dB or 5%+", true);
    CLI::App& mute = verbOnEndpoint("mute", Verb::mute, "Mute or unmute an endpoint", temporaryChanges);
    addPositional(mute, "CHANGE", m_words.mute, "on (yes, 1), off (no, 0) or toggle", true);
    CLI::App& format = verbOnEndpoint("format", Verb::format, "Print an endpoint's device format, or try one",
                                      std::string("\nWindows lets only administrators set a format. It is put back "
                                                  "after --hold\nseconds, or at Ctrl-C.\n") +
                                          temporaryChanges);
    addOption(format, "--set", m_words.format, "BITS/RATE/CHANNELS", "Set this format for a while, such as 24/48000/2");
    addOption(format, "--hold", m_words.hold, "SECONDS", "Put the old format back after SECONDS (5)");
}

CommandWords CommandLineParser::Grammar::read(std::vector<std::string> words)
{
    refuseFlagValues(words);
    refuseEmptyValues(words);
    replaceHelpCommand(words);
    try
    {
        parse(words);
    }
    catch (const CLI::CallForHelp&)
    {
        m_words.answer = helpText();
    }
    catch (const CLI::CallForVersion& version)
    {
        m_words.answer = std::string(version.what()) + "\n";
    }
    catch (const CLI::ParseError&)
    {
        refuse(words);
    }
    if (hasVerb())
        m_words.verb = m_verbs.at(&chosen());
    unmarkWords();
    return m_words;
}

/// "help" and "help COMMAND" mean --help and COMMAND --help.
void CommandLineParser::Grammar::replaceHelpCommand(std::vector<std::string>& words) const
{
    const std::size_t position = commandPosition(words);
    if (position == words.size() || words[position] != "help")
        return;
    const bool namesCommand = position + 1 < words.size() && words[position + 1].compare(0, 1, "-") != 0;
    const auto isNamed = [&](const auto& known) { return known.first->get_name() == words[position + 1]; };
    if (namesCommand && std::none_of(m_verbs.begin(), m_verbs.end(), isNamed))
        throw UsageError("unknown command " + inQuotes(words[position + 1]) + "; see sonavit --help");
    words.erase(words.begin() + static_cast<std::ptrdiff_t>(position));
    words.emplace_back("--help");
}

/// The parser takes the words from the back. Of set-volume every word with one dash may be a volume.
void CommandLineParser::Grammar::parse(const std::vector<std::string>& words)
{
    const std::size_t command = commandPosition(words);
    const bool isVolume = command < words.size() && words[command] == "set-volume";
    std::vector<std::string> reversed;
    for (std::size_t i = words.size(); i > 0; --i)
    {
        const std::string& word = words[i - 1];
        const bool isOption = word.compare(0, 2, "--") == 0 || word == "-h";
        const bool mayBeVolume = isVolume && i - 1 > command && word.compare(0, 1, "-") == 0 && !isOption;
        reversed.push_back(isNegativeNumber(word) || mayBeVolume ? noOptionMark + word : word);
    }
    m_app.parse(reversed);
}

/// The parser would take --json=no for no JSON.
void CommandLineParser::Grammar::refuseFlagValues(const std::vector<std::string>& words)
{
    for (const char* const flag : {"--json", "--help", "--version"})
    {
        const std::string beginning = std::string(flag) + "=";
        if (std::any_of(words.begin(), words.end(),
                        [&](const std::string& word) { return word.compare(0, beginning.size(), beginning) == 0; }))
            throw UsageError(std::string(flag) + " takes no value");
    }
}

/// The parser would take the word after "--account=" for the value.
void CommandLineParser::Grammar::refuseEmptyValues(const std::vector<std::string>& words) const
{
    const std::size_t command = commandPosition(words);
    const auto isCommand = [&](const auto& known)
    { return command < words.size() && known.first->get_name() == words[command]; };
    const auto verb = std::find_if(m_verbs.begin(), m_verbs.end(), isCommand);
    for (const std::string& word : words)
    {
        if (word.compare(0, 2, "--") != 0 || word.find('=') != word.size() - 1)
            continue;
        const std::string name = word.substr(0, word.size() - 1);
        const CLI::Option* const own = verb != m_verbs.end() ? verb->first->get_option_no_throw(name) : nullptr;
        const CLI::Option* const option = own != nullptr ? own : m_app.get_option_no_throw(name);
        if (option != nullptr)
            refuseMissingValue(name, *option);
    }
}

/// Says in our own words what is wrong with @p words.
void CommandLineParser::Grammar::refuse(const std::vector<std::string>& words) const
{
    refuseMissingValues(words);
    refuseExtras();
    refuseMissingWords();
    throw UsageError("the command line cannot be read; see sonavit --help");
}

void CommandLineParser::Grammar::refuseExtras() const
{
    const std::vector<std::string> extras = m_app.remaining(true);
    if (extras.empty())
        return;
    const std::string first = unmarked(extras.front());
    const std::string command = hasVerb() ? " " + chosen().get_name() : "";
    if (first.compare(0, 1, "-") == 0 && !isNegativeNumber(first))
        throw UsageError("unknown option " + inQuotes(first) + nearestOption(first) + "; see sonavit" + command +
                         " --help");
    if (!hasVerb())
        throw UsageError("unknown command " + inQuotes(first) + "; see sonavit --help");
    throw UsageError("unexpected argument " + inQuotes(first) + "; see sonavit" + command + " --help");
}

/// ` (did you mean "--account"?)` if the chosen verb has an option like @p word; otherwise empty.
std::string CommandLineParser::Grammar::nearestOption(const std::string& word) const
{
    std::vector<std::string> names;
    for (const CLI::App* const app : {&chosen(), &m_app})
    {
        for (const CLI::Option* const option : app->get_options())
        {
            for (const std::string& name : option->get_lnames())
                names.push_back("--" + name);
        }
    }
    const std::string nearest = sim::nearestName(word.substr(0, word.find('=')), names);
    return nearest.empty() ? "" : " (did you mean " + inQuotes(nearest) + "?)";
}

/// Refuses an option that takes a value and is the last word or is followed by another option.
void CommandLineParser::Grammar::refuseMissingValues(const std::vector<std::string>& words) const
{
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        const CLI::Option* const option = optionNamed(words[i]);
        const bool takesValue = option != nullptr && option->get_expected_min() > 0;
        if (takesValue && (i + 1 == words.size() || optionNamed(words[i + 1]) != nullptr))
            refuseMissingValue(words[i], *option);
    }
}

void CommandLineParser::Grammar::refuseMissingValue(const std::string& word, const CLI::Option& option)
{
    throw UsageError(word + " needs a value: " + word + " " + option.get_type_name());
}

void CommandLineParser::Grammar::refuseMissingWords() const
{
    std::string usage = "sonavit " + chosen().get_name();
    std::string missing;
    for (const CLI::Option* const option : chosen().get_options())
    {
        if (!option->get_positional())
            continue;
        usage += " " + option->get_name();
        if (missing.empty() && option->get_required() && option->count() == 0)
            missing = option->get_name();
    }
    if (!missing.empty())
        throw UsageError(missing + " is missing; usage: " + usage);
}

/// The option that is spelt @p word, of the chosen verb or of all; null if there is none.
const CLI::Option* CommandLineParser::Grammar::optionNamed(const std::string& word) const
{
    if (word.compare(0, 1, "-") != 0)
        return nullptr;
    const CLI::Option* const own = chosen().get_option_no_throw(word);
    return own != nullptr ? own : m_app.get_option_no_throw(word);
}

const CLI::App& CommandLineParser::Grammar::chosen() const
{
    return hasVerb() ? *m_app.get_subcommands().front() : m_app;
}

bool CommandLineParser::Grammar::hasVerb() const
{
    return !m_app.get_subcommands().empty();
}

/// The parser writes more blank lines than needed.
std::string CommandLineParser::Grammar::helpText() const
{
    std::string text = m_app.help();
    for (std::size_t blank = text.find("\n\n\n"); blank != std::string::npos; blank = text.find("\n\n\n"))
        text.erase(blank, 1);
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text + "\n";
}

void CommandLineParser::Grammar::unmarkWords()
{
    for (std::optional<std::string>* const word :
         {&m_words.machine, &m_words.account, &m_words.latency, &m_words.log, &m_words.endpoint, &m_words.card,
          &m_words.instanceId, &m_words.outputFile, &m_words.level, &m_words.mute, &m_words.duration, &m_words.format,
          &m_words.hold})
    {
        if (*word)
            **word = unmarked(**word);
    }
}
}
