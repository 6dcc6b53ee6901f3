#pragma once

#include "qor/logging.h"
#include "tools/sonavit/deviceformat.h"
#include "tools/sonavit/levelchange.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace sonavit
{
enum class Verb
{
    list,
    show,
    controls,
    selectors,
    graph,
    ask,
    getVolume,
    setVolume,
    mute,
    monitor,
    format
};

enum class MuteChange
{
    on,
    off,
    toggle
};

/// What the user asks for.
struct Arguments
{
    Verb verb = Verb::list;
    std::optional<std::string> machine;
    bool isJson = false;
    std::optional<qor::LOGGER_PRIORITY> log; ///< least priority that is shown; none for no records at all

    std::string endpoint;   ///< as the user names it; of `graph` the one whose path is shown
    std::string card;       ///< likewise; empty for all
    std::string instanceId; ///< of `ask`
    std::string outputFile; ///< of `graph`; empty for standard output
    LevelChange level;      ///< of `set-volume`
    MuteChange mute = MuteChange::toggle;
    std::optional<std::chrono::milliseconds> duration; ///< of `monitor`; none for no end
    std::optional<FormatRequest> format;               ///< of `format`; none to look only
    std::chrono::milliseconds hold{};                  ///< of `format`
};

/// What came of reading the command line.
struct CommandLine
{
    Arguments arguments;
    std::string answer; ///< help or version, to be shown instead of doing anything
};

/// Reads the command line behind the program's name. Throws UsageError.
CommandLine readCommandLine(const std::vector<std::string>& words);

/// Whether @p words ask for JSON, as far as can be told before they have been understood.
bool asksForJson(const std::vector<std::string>& words);
}
