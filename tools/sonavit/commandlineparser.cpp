#include "tools/sonavit/commandlineparser.h"

#include "tools/sonavit/commandlinegrammar.h"
#include "tools/sonavit/commandlinerefusal.h"

#include <cstddef>
#include <utility>

namespace sonavit::program
{
namespace
{
/// "help" and "help COMMAND" mean --help and COMMAND --help.
void replaceHelpCommand(const CommandLineGrammar& grammar, std::vector<std::string>& words)
{
    const std::size_t position = grammar.verbPosition(words);
    if (position == words.size() || words[position] != "help")
        return;
    const bool namesCommand = position + 1 < words.size() && words[position + 1].compare(0, 1, "-") != 0;
    if (namesCommand && grammar.verbNamed(words[position + 1]) == nullptr)
        refuseVerb(words[position + 1]);
    words[position] = "--help"; // not at the end, where an option would take it for its value
    if (namesCommand)
        std::swap(words[position], words[position + 1]);
}
}

CommandWords parseCommandLine(std::vector<std::string> words)
{
    CommandLineGrammar grammar(words);
    refuseFlagValues(words);
    refuseEmptyValues(grammar, words);
    replaceHelpCommand(grammar, words);
    std::string answer;
    bool isVersion = false;
    try
    {
        grammar.parse(words);
    }
    catch (const CLI::CallForHelp&)
    {
        answer = grammar.helpText();
    }
    catch (const CLI::CallForVersion& version)
    {
        answer = std::string(version.what()) + "\n";
        isVersion = true;
    }
    catch (const CLI::ParseError&)
    {
        refuseCommandLine(grammar, words);
    }
    CommandWords result = grammar.words();
    result.answer = answer;
    result.isVersion = isVersion;
    return result;
}
}
