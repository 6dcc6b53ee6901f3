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

void CommandLineGrammar::addVerb(const Row& row)
{
    CLI::App& verb = *m_app.add_subcommand(row.name, row.description);
    std::string footer;
    for (const char* const paragraph : row.footers)
        footer += paragraph;
    verb.footer(footer + help::globalOptions);
    verb.group("Commands");
    m_verbs[&verb] = row.verb;
    row.add(*this, verb);
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

void CommandLineGrammar::addEndpoint(CLI::App& verb)
{
    addPositional(verb, "ENDPOINT", m_words.endpoint, help::endpoint, true);
}

void CommandLineGrammar::addVia(CLI::App& verb)
{
    addOption(verb, "--via", m_words.via, "LIBRARY", help::via);
}

void CommandLineGrammar::addEndpointAndVia(CLI::App& verb)
{
    addEndpoint(verb);
    addVia(verb);
}

void CommandLineGrammar::addCard(CLI::App& verb)
{
    addPositional(verb, "CARD", m_words.card, help::card, false);
}

void CommandLineGrammar::addOutputFile(CLI::App& verb)
{
    addOption(verb, "-o,--output", m_words.outputFile, "FILE", "Write to FILE instead of standard output");
}

void CommandLineGrammar::addChannel(CLI::App& verb)
{
    addOption(verb, "--channel", m_words.channel, "NUMBER", "Change this channel alone; the first one is 1");
}

void CommandLineGrammar::addToList(CLI::App& verb)
{
    addVia(verb);
    verb.add_flag("--active", m_words.isOnlyActive, "Only endpoints that can be used now");
    verb.add_flag("--outputs", m_words.isOnlyOutputs, "Only outputs");
    verb.add_flag("--inputs", m_words.isOnlyInputs, "Only inputs");
    addOption(verb, "--card", m_words.card, "CARD", "Only this card");
    verb.add_flag("--short", m_words.isShort, "One endpoint a line, tabs between columns");
}

void CommandLineGrammar::addToGraph(CLI::App& verb)
{
    addVia(verb);
    addCard(verb);
    addOutputFile(verb);
    addOption(verb, "--endpoint", m_words.endpoint, "ENDPOINT", "Highlight the signal path of one endpoint");
    verb.add_flag("--only", m_words.isOnlyPath, "Nothing but the signal path of --endpoint");
}

void CommandLineGrammar::addToMonitor(CLI::App& verb)
{
    verb.add_option_function<std::vector<std::string>>(
            "ENDPOINT", [this](const std::vector<std::string>& names) { m_words.endpoints = names; },
            "Only events of these endpoints")
        ->type_name("");
    addOption(verb, "--for", m_words.duration, "SECONDS", "Stop after SECONDS");
    addOption(verb, "--only", m_words.eventKinds, "KINDS", help::eventKinds);
}

void CommandLineGrammar::addToCapture(CLI::App& verb)
{
    addOutputFile(verb);
    verb.add_flag("--anonymous", m_words.isAnonymous, help::anonymous);
}

void CommandLineGrammar::addToSetControl(CLI::App& verb)
{
    addEndpoint(verb);
    addPositional(verb, "CONTROL", m_words.control, "Name of the control, or its id", true);
    addPositional(verb, "LEVEL", m_words.controlChange, "A volume such as 50%, or on or off for its mute", true);
    addChannel(verb);
}

void CommandLineGrammar::addToFormat(CLI::App& verb)
{
    addEndpoint(verb);
    addOption(verb, "--set", m_words.format, "BITS/RATE/CHANNELS", "Set this format for a while, such as 16/44100/2");
    addOption(verb, "--hold", m_words.hold, "SECONDS", "Put the old format back after SECONDS (5)");
}

const std::vector<CommandLineGrammar::Row>& CommandLineGrammar::rows()
{
    using Grammar = CommandLineGrammar;
    using App = CLI::App;
    const auto positional =
        [](const char* name, std::optional<std::string> CommandWords::*word, const char* description, bool isRequired)
    {
        return [=](Grammar& grammar, App& verb)
        { addPositional(verb, name, grammar.m_words.*word, description, isRequired); };
    };
    static const std::vector<Row> all = {
        {"list", Verb::list, "List the sound cards and their endpoints (default)", {help::list}, &Grammar::addToList},
        {"show", Verb::show, "Show all properties of an endpoint", {help::endpointNames}, &Grammar::addEndpointAndVia},
        {"explain",
         Verb::explain,
         "Explain why an endpoint is as it is",
         {help::endpointNames, help::explain},
         &Grammar::addEndpoint},
        {"controls",
         Verb::controls,
         "List the hardware volume controls of an endpoint",
         {help::endpointNames},
         &Grammar::addEndpointAndVia},
        {"selectors",
         Verb::selectors,
         "List the input selectors of the cards",
         {help::selectors},
         [](Grammar& grammar, App& verb)
         {
             grammar.addVia(verb);
             grammar.addCard(verb);
         }},
        {"graph", Verb::graph, "Print the cards' hardware as a Graphviz graph", {help::graph}, &Grammar::addToGraph},
        {"ask",
         Verb::ask,
         "Report what kinds of jacks a card has",
         {help::ask},
         positional("INSTANCE-ID", &CommandWords::instanceId, "Device instance id of the card, as list shows it",
                    true)},
        {"get-volume",
         Verb::getVolume,
         "Print the volume of an endpoint",
         {help::endpointNames},
         &Grammar::addEndpointAndVia},
        {"monitor", Verb::monitor, "Print events, one per line, until Ctrl-C", {help::monitor}, &Grammar::addToMonitor},
        {"set-volume",
         Verb::setVolume,
         "Set the volume of an endpoint",
         {help::endpointNames, help::volumeForms, help::temporaryChanges},
         [](Grammar& grammar, App& verb)
         {
             grammar.addEndpoint(verb);
             addPositional(verb, "VOLUME", grammar.m_words.level, "New volume or a step, such as 50%, -12.5dB or 5%+",
                           true);
             grammar.addChannel(verb);
         }},
        {"mute",
         Verb::mute,
         "Mute or unmute an endpoint",
         {help::endpointNames, help::temporaryChanges},
         [](Grammar& grammar, App& verb)
         {
             grammar.addEndpoint(verb);
             addPositional(verb, "CHANGE", grammar.m_words.mute, "on (yes, 1), off (no, 0) or toggle", true);
         }},
        {"set-control",
         Verb::setControl,
         "Set a hardware control of an endpoint",
         {help::endpointNames, help::setControl, help::temporaryChanges},
         &Grammar::addToSetControl},
        {"select",
         Verb::select,
         "Choose the input of a selector",
         {help::select, help::temporaryChanges},
         [](Grammar& grammar, App& verb)
         {
             addPositional(verb, "SELECTOR", grammar.m_words.selector, "Name of the selector, or its id", true);
             addPositional(verb, "INPUT", grammar.m_words.input, "Name of the input, or its id", true);
             addOption(verb, "--card", grammar.m_words.card, "CARD", "Only among the selectors of this card");
         }},
        {"format",
         Verb::format,
         "Print an endpoint's device format, or try one",
         {help::endpointNames, help::format},
         &Grammar::addToFormat},
        {"save",
         Verb::save,
         "Save all levels, mutes and selections",
         {help::save},
         positional("FILE", &CommandWords::file, "Write to FILE instead of standard output", false)},
        {"restore",
         Verb::restore,
         "Put back what save has saved",
         {help::restore, help::temporaryChanges},
         positional("FILE", &CommandWords::file, "Read FILE instead of standard input", false)},
        {"capture",
         Verb::capture,
         "Write the sound hardware as a machine file",
         {help::capture},
         &Grammar::addToCapture},
        {"find",
         Verb::find,
         "Find endpoints by any of their ids",
         {help::find},
         positional("ID", &CommandWords::id, help::anyId, true)},
        {"refer",
         Verb::refer,
         "Print a reference to an endpoint",
         {help::endpointNames, help::refer},
         &Grammar::addEndpoint},
        {"resolve",
         Verb::resolve,
         "Find the endpoint that a reference means",
         {help::resolve},
         positional("REFERENCE", &CommandWords::reference, "What refer has printed", true)},
        {"doctor",
         Verb::doctor,
         "Report what is wrong with the sound hardware",
         {help::endpointNames, help::doctor},
         positional("ENDPOINT", &CommandWords::endpoint, "Only this endpoint (default: all)", false)}};
    return all;
}
}
