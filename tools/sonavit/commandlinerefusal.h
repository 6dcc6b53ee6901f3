/// What is wrong with a command line, in the program's own words. All functions throw UsageError.
#pragma once

#include <string>
#include <vector>

namespace sonavit::program
{
class CommandLineGrammar;

/// Refuses a value of an option that takes none: the parser would take --json=no for no JSON.
void refuseFlagValues(const std::vector<std::string>& words);

/// Refuses "--account=": the parser would take the next word for the value.
void refuseEmptyValues(const CommandLineGrammar& grammar, const std::vector<std::string>& words);

/// Refuses a word that names no command.
[[noreturn]] void refuseVerb(const std::string& word);

/// Says what is wrong with @p words, which @p grammar has failed to parse.
[[noreturn]] void refuseCommandLine(const CommandLineGrammar& grammar, const std::vector<std::string>& words);
}
