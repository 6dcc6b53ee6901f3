/// @file
/// The verbs of the program, as they are tried on each machine that has what they need.
#pragma once

#include "simulator/machine/machine.h"

#include <optional>
#include <string>
#include <vector>

namespace faults::program
{
/// What a command line can name on a machine; an empty string: there is no such thing.
struct Names
{
    std::string endpoint;   ///< the default output, or else the first endpoint with a volume, or else any
    std::string instanceId; ///< of its card
    std::string controlled; ///< an endpoint with a hardware control
    std::string control;    ///< id of that control
    std::string mutable_;   ///< an endpoint with a hardware control that has a mute
    std::string mute;       ///< id of that control
    std::string selector;
    std::string input; ///< the number of another of its inputs
    std::string formatted;
    std::string reference; ///< to the endpoint
    std::string settings;  ///< what `save` prints, with other levels
};

/// Reads @p machine without faults.
Names namesOn(const sim::Machine& machine);

/// A command line.
struct CommandLine
{
    std::string name;               ///< "list --json"
    std::vector<std::string> words; ///< with placeholders: "ENDPOINT" and so on
    bool isJson = false;
    bool changesMachine = false;
    bool usesModel = false;    ///< answers with the object model, or with both
    bool saysProblems = false; ///< its JSON names the calls that failed

    /// The words for a machine; no value if it has no such thing.
    std::optional<std::vector<std::string>> on(const Names& names) const;
};

/// Each verb, for people and as JSON.
std::vector<CommandLine> commandLines();
}
