#include "tools/sonavit/commandlinegrammar.h"

#include "tools/sonavit/commandlinehelp.h"

namespace sonavit::program
{
void CommandLineGrammar::addGlobalOptions()
{
    addOption(m_app, "--machine", m_words.machine, "NAME|FILE", help::machine);
    addOption(m_app, "--account", m_words.account, "ACCOUNT", help::account);
    addOption(m_app, "--latency", m_words.latency, "PRESET", help::latency);
    m_app.add_flag("--json", m_words.isJson, "Print JSON");
    addOption(m_app, "--log", m_words.log, "LEVEL", help::log);
    m_app.set_version_flag("--version", "sonavit " SONAVIT_VERSION, "Print the version");
    m_app.set_help_flag("-h,--help", "Print this help, or the help of a command");
}

CLI::App& CommandLineGrammar::verb(const std::string& name, Verb verb, const std::string& description,
                                   const std::string& footer)
{
    CLI::App* const result = m_app.add_subcommand(name, description);
    result->footer(footer + help::globalOptions);
    result->group("Commands");
    m_verbs[result] = verb;
    return *result;
}

CLI::App& CommandLineGrammar::verbOnEndpoint(const std::string& name, Verb verb, const std::string& description,
                                             const std::string& footer)
{
    CLI::App& result = this->verb(name, verb, description, help::endpointNames + footer);
    addPositional(result, "ENDPOINT", m_words.endpoint, help::endpoint, true);
    return result;
}

void CommandLineGrammar::addPositional(CLI::App& verb, const std::string& name, std::optional<std::string>& word,
                                       const std::string& description, bool isRequired)
{
    verb.add_option_function<std::string>(
            name, [&word](const std::string& value) { word = value; }, description)
        ->required(isRequired)
        ->type_name("");
}

/// An option that is given twice has its last value.
void CommandLineGrammar::addOption(CLI::App& verb, const std::string& name, std::optional<std::string>& word,
                                   const std::string& value, const std::string& description)
{
    verb.add_option_function<std::string>(
            name, [&word](const std::string& text) { word = text; }, description)
        ->take_last()
        ->type_name(value);
}

void CommandLineGrammar::addQuestions()
{
    verb("list", Verb::list, "List the sound cards and their endpoints (default)", help::list);
    verbOnEndpoint("show", Verb::show, "Show all properties of an endpoint");
    verbOnEndpoint("controls", Verb::controls, "List the hardware volume controls of an endpoint");
    addPositional(verb("selectors", Verb::selectors, "List the input selectors of the cards", help::selectors), "CARD",
                  m_words.card, help::card, false);
    CLI::App& graph = verb("graph", Verb::graph, "Print the cards' hardware as a Graphviz graph", help::graph);
    addPositional(graph, "CARD", m_words.card, help::card, false);
    addOption(graph, "-o,--output", m_words.outputFile, "FILE", "Write to FILE instead of standard output");
    addOption(graph, "--endpoint", m_words.endpoint, "ENDPOINT", "Highlight the signal path of one endpoint");
    addPositional(verb("ask", Verb::ask, "Report what kinds of jacks a card has", help::ask), "INSTANCE-ID",
                  m_words.instanceId, "Device instance id of the card, as list shows it", true);
    verbOnEndpoint("get-volume", Verb::getVolume, "Print the volume of an endpoint");
    CLI::App& monitor = verb("monitor", Verb::monitor, "Print events, one per line, until Ctrl-C", help::monitor);
    addOption(monitor, "--for", m_words.duration, "SECONDS", "Stop after SECONDS");
}

void CommandLineGrammar::addChanges()
{
    CLI::App& setVolume = verbOnEndpoint("set-volume", Verb::setVolume, "Set the volume of an endpoint",
                                         std::string(help::volumeForms) + help::temporaryChanges);
    addPositional(setVolume, "VOLUME", m_words.level, "New volume or a step, such as 50%, -12.5dB or 5%+", true);
    CLI::App& mute = verbOnEndpoint("mute", Verb::mute, "Mute or unmute an endpoint", help::temporaryChanges);
    addPositional(mute, "CHANGE", m_words.mute, "on (yes, 1), off (no, 0) or toggle", true);
    CLI::App& format = verbOnEndpoint("format", Verb::format, "Print an endpoint's device format, or try one",
                                      std::string(help::format) + help::temporaryChanges);
    addOption(format, "--set", m_words.format, "BITS/RATE/CHANNELS", "Set this format for a while, such as 24/48000/2");
    addOption(format, "--hold", m_words.hold, "SECONDS", "Put the old format back after SECONDS (5)");
}
}
