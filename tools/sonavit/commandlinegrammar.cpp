#include "tools/sonavit/commandlinegrammar.h"

#include "tools/sonavit/commandlinehelp.h"

#include <algorithm>

namespace sonavit::program
{
namespace
{
/// Stands before a word that begins like an option and is none. No word that a user types begins with it.
constexpr char noOptionMark = '\x01';

std::string unmarked(const std::string& word)
{
    return !word.empty() && word[0] == noOptionMark ? word.substr(1) : word;
}
}

bool isNegativeNumber(const std::string& word)
{
    return word.size() > 1 && word[0] == '-' && std::string("0123456789.").find(word[1]) != std::string::npos;
}

CommandLineGrammar::CommandLineGrammar(const std::vector<std::string>& words)
{
    m_app.require_subcommand(0, 1);
    m_app.fallthrough();
    m_app.get_formatter()->column_width(28);
    m_app.get_formatter()->label("REQUIRED", "");
    m_app.get_formatter()->label("TEXT", "");
    m_app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    m_app.get_formatter()->label("Positionals", "Arguments");
    addGlobalOptions();
    const auto isWord = [&](const std::string& word)
    { return std::find(words.begin(), words.end(), word) != words.end(); };
    const auto isNamed = [&](const Row& row) { return isWord(row.name); };
    const bool isForHelp = isWord("help") || isWord("--help") || isWord("-h");
    const bool needsNone = words.empty() || words == std::vector<std::string>{"--version"};
    const bool hasAll = isForHelp || (!needsNone && std::none_of(rows().begin(), rows().end(), isNamed));
    for (const Row& row : rows())
    {
        if (hasAll || isNamed(row))
            addVerb(row);
    }
    m_app.footer(std::string(help::moreHelp) + help::endpointNames + help::examples);
}

/// The parser takes the words from the back. Of the verbs that take a level every word with one dash may
/// be one.
void CommandLineGrammar::parse(const std::vector<std::string>& words)
{
    const std::size_t position = verbPosition(words);
    const bool takesLevel =
        position < words.size() && (words[position] == "set-volume" || words[position] == "set-control");
    std::vector<std::string> reversed;
    for (std::size_t i = words.size(); i > 0; --i)
    {
        const std::string& word = words[i - 1];
        const bool isOption = word.compare(0, 2, "--") == 0 || word == "-h";
        const bool mayBeLevel = takesLevel && i - 1 > position && word.compare(0, 1, "-") == 0 && !isOption;
        reversed.push_back(isNegativeNumber(word) || mayBeLevel ? noOptionMark + word : word);
    }
    m_app.parse(reversed);
}

CommandWords CommandLineGrammar::words() const
{
    CommandWords result = m_words;
    if (hasVerb())
        result.verb = m_verbs.at(&chosen());
    for (std::optional<std::string>* const word :
         {&result.machine,  &result.account,       &result.latency,    &result.log,   &result.endpoint,
          &result.card,     &result.instanceId,    &result.outputFile, &result.level, &result.mute,
          &result.duration, &result.format,        &result.hold,       &result.via,   &result.channel,
          &result.control,  &result.controlChange, &result.selector,   &result.input, &result.file,
          &result.id,       &result.reference,     &result.eventKinds})
    {
        if (*word)
            **word = unmarked(**word);
    }
    std::transform(result.endpoints.begin(), result.endpoints.end(), result.endpoints.begin(), unmarked);
    return result;
}

std::vector<std::string> CommandLineGrammar::extras() const
{
    std::vector<std::string> result = m_app.remaining(true);
    std::transform(result.begin(), result.end(), result.begin(), unmarked);
    return result;
}

const CLI::App& CommandLineGrammar::chosen() const
{
    return hasVerb() ? *m_app.get_subcommands().front() : m_app;
}

bool CommandLineGrammar::hasVerb() const
{
    return !m_app.get_subcommands().empty();
}

const CLI::App* CommandLineGrammar::verbNamed(const std::string& name) const
{
    const auto found = std::find_if(m_verbs.begin(), m_verbs.end(),
                                    [&](const auto& known) { return known.first->get_name() == name; });
    return found == m_verbs.end() ? nullptr : found->first;
}

std::size_t CommandLineGrammar::verbPosition(const std::vector<std::string>& words) const
{
    std::size_t position = 0;
    while (position < words.size() && words[position].compare(0, 1, "-") == 0)
    {
        const CLI::Option* const option = optionNamed(words[position], nullptr);
        const bool hasValue = option != nullptr && option->get_expected_min() > 0;
        position += hasValue ? 2 : 1;
    }
    return std::min(position, words.size());
}

const CLI::Option* CommandLineGrammar::optionNamed(const std::string& word) const
{
    return optionNamed(word, hasVerb() ? &chosen() : nullptr);
}

const CLI::Option* CommandLineGrammar::optionNamed(const std::string& word, const CLI::App* verb) const
{
    if (word.compare(0, 1, "-") != 0)
        return nullptr;
    const CLI::Option* const own = verb != nullptr ? verb->get_option_no_throw(word) : nullptr;
    return own != nullptr ? own : m_app.get_option_no_throw(word);
}

std::vector<std::string> CommandLineGrammar::optionNames() const
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
    return names;
}

std::vector<std::string> CommandLineGrammar::verbNames()
{
    std::vector<std::string> names;
    for (const Row& row : rows())
        names.emplace_back(row.name);
    return names;
}

/// The parser writes more blank lines than needed.
std::string CommandLineGrammar::helpText() const
{
    std::string text = m_app.help();
    for (std::size_t blank = text.find("\n\n\n"); blank != std::string::npos; blank = text.find("\n\n\n"))
        text.erase(blank, 1);
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text + "\n";
}
}
