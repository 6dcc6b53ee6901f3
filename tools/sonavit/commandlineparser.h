#pragma once

#include "tools/sonavit/commandline.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit::program
{
/// The words of a command line, each in its place, before those with a meaning of their own are interpreted. What the
/// user did not write has no value.
struct CommandWords
{
    Verb verb = Verb::list;
    std::optional<std::string> machine;
    std::optional<std::string> account;
    std::optional<std::string> latency;
    bool isJson = false;
    std::optional<std::string> log;
    std::optional<std::string> endpoint;
    std::optional<std::string> card;
    std::optional<std::string> instanceId;
    std::optional<std::string> outputFile;
    std::optional<std::string> level;
    std::optional<std::string> mute;
    std::optional<std::string> duration;
    std::optional<std::string> format;
    std::optional<std::string> hold;
    std::optional<std::string> via;
    bool isOnlyActive = false;
    bool isOnlyOutputs = false;
    bool isOnlyInputs = false;
    bool isShort = false;
    bool isOnlyPath = false;
    bool isAnonymous = false;
    std::optional<std::string> channel;
    std::optional<std::string> control;
    std::optional<std::string> controlChange;
    std::optional<std::string> selector;
    std::optional<std::string> input;
    std::optional<std::string> file;
    std::optional<std::string> id;
    std::optional<std::string> reference;
    std::vector<std::string> endpoints;
    std::optional<std::string> eventKinds;
    std::string answer; ///< help or version; if it is not empty, nothing else counts
    bool isVersion = false;
};

/// Sorts the words after the program's name, and writes the help. Throws UsageError, always in the program's own words.
CommandWords parseCommandLine(std::vector<std::string> words);
}
