#include "tools/sonavit/commandlinerefusal.h"

#include "simulator/machine/nearestname.h"
#include "tools/sonavit/commandlinegrammar.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <string>
#include <vector>

namespace sonavit::program
{
namespace
{
[[noreturn]] void refuseMissingValue(const std::string& word, const CLI::Option& option)
{
    throw UsageError(word + " needs a value: " + word + " " + option.get_type_name());
}

/// Refuses an option that takes a value and is the last word or is followed by another option.
void refuseMissingValues(const CommandLineGrammar& grammar, const std::vector<std::string>& words)
{
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        const CLI::Option* const option = grammar.optionNamed(words[i]);
        const bool takesValue = option != nullptr && option->get_expected_min() > 0;
        if (takesValue && (i + 1 == words.size() || grammar.optionNamed(words[i + 1]) != nullptr))
            refuseMissingValue(words[i], *option);
    }
}

/// ` (did you mean "--account"?)` if one of @p names is like @p word; otherwise empty.
std::string nearest(const std::string& word, const std::vector<std::string>& names)
{
    const std::string name = sim::nearestName(word, names);
    return name.empty() ? "" : " (did you mean " + inQuotes(name) + "?)";
}

void refuseExtras(const CommandLineGrammar& grammar)
{
    const std::vector<std::string> extras = grammar.extras();
    if (extras.empty())
        return;
    const std::string& first = extras.front();
    const std::string command = grammar.hasVerb() ? " " + grammar.chosen().get_name() : "";
    if (first.compare(0, 1, "-") == 0 && !isNegativeNumber(first))
        throw UsageError("unknown option " + inQuotes(first) +
                         nearest(first.substr(0, first.find('=')), grammar.optionNames()) + "; see sonavit" + command +
                         " --help");
    if (!grammar.hasVerb())
        refuseVerb(first);
    throw UsageError("unexpected argument " + inQuotes(first) + "; see sonavit" + command + " --help");
}

void refuseMissingWords(const CommandLineGrammar& grammar)
{
    std::string usage = "sonavit " + grammar.chosen().get_name();
    std::string missing;
    for (const CLI::Option* const option : grammar.chosen().get_options())
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
}

void refuseFlagValues(const std::vector<std::string>& words)
{
    for (const char* const flag : {"--json", "--help", "--version"})
    {
        const std::string beginning = std::string(flag) + "=";
        if (std::any_of(words.begin(), words.end(),
                        [&](const std::string& word) { return word.compare(0, beginning.size(), beginning) == 0; }))
            throw UsageError(std::string(flag) + " takes no value");
    }
}

void refuseEmptyValues(const CommandLineGrammar& grammar, const std::vector<std::string>& words)
{
    const std::size_t position = grammar.verbPosition(words);
    const CLI::App* const verb = position < words.size() ? grammar.verbNamed(words[position]) : nullptr;
    for (const std::string& word : words)
    {
        if (word.compare(0, 2, "--") != 0 || word.find('=') != word.size() - 1)
            continue;
        const std::string name = word.substr(0, word.size() - 1);
        const CLI::Option* const option = grammar.optionNamed(name, verb);
        if (option != nullptr)
            refuseMissingValue(name, *option);
    }
}

void refuseVerb(const std::string& word)
{
    throw UsageError("unknown command " + inQuotes(word) + nearest(word, CommandLineGrammar::verbNames()) +
                     "; see sonavit --help");
}

void refuseCommandLine(const CommandLineGrammar& grammar, const std::vector<std::string>& words)
{
    refuseMissingValues(grammar, words);
    refuseExtras(grammar);
    refuseMissingWords(grammar);
    throw UsageError("the command line cannot be read; see sonavit --help");
}
}
