/// The commands and options that the program knows.
#pragma once

#include "tools/sonavit/commandlineparser.h"

#include <CLI/CLI.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::program
{
/// "-12.5dB" and "-.5dB" look like options; no option of ours begins with a digit or a point.
bool isNegativeNumber(const std::string& word);

/// The library's parser with the verbs and options that a command line can mean. One object reads one command line.
class CommandLineGrammar
{
public:
    /// Making a verb with its options takes longer than most commands: if @p words name verbs and ask for no help,
    /// those are the only ones.
    explicit CommandLineGrammar(const std::vector<std::string>& words);
    CommandLineGrammar(const CommandLineGrammar&) = delete;
    CommandLineGrammar& operator=(const CommandLineGrammar&) = delete;

    /// Throws CLI::ParseError, which has no words for users, if @p words make no sense or ask for help or the version.
    void parse(const std::vector<std::string>& words);

    /// What parse() has found, without an answer.
    CommandWords words() const;

    /// The words that have no place.
    std::vector<std::string> extras() const;

    /// The parser of the verb that parse() has found, or the program's.
    const CLI::App& chosen() const;
    bool hasVerb() const;

    /// The parser of that verb; null if there is none.
    const CLI::App* verbNamed(const std::string& name) const;

    /// The place of the verb among @p words; their number if there is none.
    std::size_t verbPosition(const std::vector<std::string>& words) const;

    /// The option that is spelt @p word, of the chosen verb or of all; null if there is none.
    const CLI::Option* optionNamed(const std::string& word) const;

    /// The same of @p verb, or of all if it is null.
    const CLI::Option* optionNamed(const std::string& word, const CLI::App* verb) const;

    /// "--account" and so on: the options of the chosen verb, and those of all.
    std::vector<std::string> optionNames() const;

    /// Of all verbs.
    static std::vector<std::string> verbNames();

    /// The help of the chosen verb, or of the program.
    std::string helpText() const;

private:
    struct Row;
    static const std::vector<Row>& rows();

    void addGlobalOptions();
    void addVerb(const Row& row);
    void addToList(CLI::App& verb);
    void addToGraph(CLI::App& verb);
    void addToMonitor(CLI::App& verb);
    void addToCapture(CLI::App& verb);
    void addToSetControl(CLI::App& verb);
    void addToFormat(CLI::App& verb);
    void addEndpoint(CLI::App& verb);
    void addEndpointAndVia(CLI::App& verb);
    void addVia(CLI::App& verb);
    void addCard(CLI::App& verb);
    void addOutputFile(CLI::App& verb);
    void addChannel(CLI::App& verb);
    static void addPositional(CLI::App& verb, const std::string& name, std::optional<std::string>& word,
                              const std::string& description, bool isRequired);
    static void addOption(CLI::App& verb, const std::string& name, std::optional<std::string>& word,
                          const std::string& value, const std::string& description);

    CLI::App m_app{"Lists the sound cards of this machine and controls their endpoints.", "sonavit"};
    std::map<const CLI::App*, Verb> m_verbs;
    CommandWords m_words;
};

/// A verb, as help lists it.
struct CommandLineGrammar::Row
{
    const char* name;
    Verb verb;
    const char* description;
    std::vector<const char*> footers;                        ///< paragraphs below its options
    std::function<void(CommandLineGrammar&, CLI::App&)> add; ///< its arguments and options
};
}
