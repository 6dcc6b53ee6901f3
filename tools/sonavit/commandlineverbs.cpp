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

/// Adds --via to a verb that reads.
CLI::App& CommandLineGrammar::verbWithSource(CLI::App& verb)
{
    addOption(verb, "--via", m_words.via, "LIBRARY", help::via);
    return verb;
}

void CommandLineGrammar::addQuestions()
{
    CLI::App& list =
        verbWithSource(verb("list", Verb::list, "List the sound cards and their endpoints (default)", help::list));
    list.add_flag("--active", m_words.isOnlyActive, "Only endpoints that can be used now");
    list.add_flag("--outputs", m_words.isOnlyOutputs, "Only outputs");
    list.add_flag("--inputs", m_words.isOnlyInputs, "Only inputs");
    addOption(list, "--card", m_words.card, "CARD", "Only this card");
    list.add_flag("--short", m_words.isShort, "One endpoint a line, tabs between columns");
    verbWithSource(verbOnEndpoint("show", Verb::show, "Show all properties of an endpoint"));
    verbWithSource(verbOnEndpoint("controls", Verb::controls, "List the hardware volume controls of an endpoint"));
    addPositional(
        verbWithSource(verb("selectors", Verb::selectors, "List the input selectors of the cards", help::selectors)),
        "CARD", m_words.card, help::card, false);
    CLI::App& graph =
        verbWithSource(verb("graph", Verb::graph, "Print the cards' hardware as a Graphviz graph", help::graph));
    addPositional(graph, "CARD", m_words.card, help::card, false);
    addOption(graph, "-o,--output", m_words.outputFile, "FILE", "Write to FILE instead of standard output");
    addOption(graph, "--endpoint", m_words.endpoint, "ENDPOINT", "Highlight the signal path of one endpoint");
    graph.add_flag("--only", m_words.isOnlyPath, "Nothing but the signal path of --endpoint");
    addPositional(verb("ask", Verb::ask, "Report what kinds of jacks a card has", help::ask), "INSTANCE-ID",
                  m_words.instanceId, "Device instance id of the card, as list shows it", true);
    verbWithSource(verbOnEndpoint("get-volume", Verb::getVolume, "Print the volume of an endpoint"));
    addPositional(verb("find", Verb::find, "Find endpoints by any of their ids", help::find), "ID", m_words.id,
                  help::anyId, true);
    verbOnEndpoint("refer", Verb::refer, "Print a reference to an endpoint", help::refer);
    addPositional(verb("resolve", Verb::resolve, "Find the endpoint that a reference means", help::resolve),
                  "REFERENCE", m_words.reference, "What refer has printed", true);
    addPositional(verb("save", Verb::save, "Save all levels, mutes and selections", help::save), "FILE", m_words.file,
                  "Write to FILE instead of standard output", false);
    CLI::App& monitor = verb("monitor", Verb::monitor, "Print events, one per line, until Ctrl-C", help::monitor);
    monitor
        .add_option_function<std::vector<std::string>>(
            "ENDPOINT", [this](const std::vector<std::string>& names) { m_words.endpoints = names; },
            "Only events of these endpoints")
        ->type_name("");
    addOption(monitor, "--for", m_words.duration, "SECONDS", "Stop after SECONDS");
    addOption(monitor, "--only", m_words.eventKinds, "KINDS", help::eventKinds);
}

void CommandLineGrammar::addChanges()
{
    CLI::App& setVolume = verbOnEndpoint("set-volume", Verb::setVolume, "Set the volume of an endpoint",
                                         std::string(help::volumeForms) + help::temporaryChanges);
    addPositional(setVolume, "VOLUME", m_words.level, "New volume or a step, such as 50%, -12.5dB or 5%+", true);
    addOption(setVolume, "--channel", m_words.channel, "NUMBER", "Change this channel alone; the first one is 1");
    CLI::App& mute = verbOnEndpoint("mute", Verb::mute, "Mute or unmute an endpoint", help::temporaryChanges);
    addPositional(mute, "CHANGE", m_words.mute, "on (yes, 1), off (no, 0) or toggle", true);
    CLI::App& setControl = verbOnEndpoint("set-control", Verb::setControl, "Set a hardware control of an endpoint",
                                          std::string(help::setControl) + help::temporaryChanges);
    addPositional(setControl, "CONTROL", m_words.control, "Name or id of the control, as controls lists it", true);
    addPositional(setControl, "LEVEL", m_words.controlChange, "A volume as above, or on or off for its mute", true);
    addOption(setControl, "--channel", m_words.channel, "NUMBER", "Change this channel alone; the first one is 1");
    CLI::App& select = verb("select", Verb::select, "Choose the input of a selector",
                            std::string(help::select) + help::temporaryChanges);
    addPositional(select, "SELECTOR", m_words.selector, "Name or id of the selector, as selectors lists it", true);
    addPositional(select, "INPUT", m_words.input, "Name or number of the input", true);
    addOption(select, "--card", m_words.card, "CARD", "Only among the selectors of this card");
    addPositional(verb("restore", Verb::restore, "Put back what save has saved",
                       std::string(help::restore) + help::temporaryChanges),
                  "FILE", m_words.file, "Read FILE instead of standard input", false);
    CLI::App& format = verbOnEndpoint("format", Verb::format, "Print an endpoint's device format, or try one",
                                      std::string(help::format) + help::temporaryChanges);
    addOption(format, "--set", m_words.format, "BITS/RATE/CHANNELS", "Set this format for a while, such as 24/48000/2");
    addOption(format, "--hold", m_words.hold, "SECONDS", "Put the old format back after SECONDS (5)");
}
}
