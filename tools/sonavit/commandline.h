#pragma once

#include "qor/logging.h"
#include "simulator/machine/deviceformat.h"
#include "simulator/machine/machine.h"
#include "tools/sonavit/levelchange.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::program
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
    std::optional<sim::Account> account;       ///< of a simulated machine; empty: the one in its description
    std::optional<sim::LatencyPreset> latency; ///< of a simulated machine; empty: the one in its description
    bool isJson = false;
    std::optional<qor::LOGGER_PRIORITY> log; ///< lowest priority to print; none to print no records

    std::string endpoint;   ///< as the user names it; for `graph` the one whose path is highlighted, or empty
    std::string card;       ///< as the user names it; empty for all
    std::string instanceId; ///< for `ask`
    std::string outputFile; ///< for `graph`; empty for standard output
    LevelChange level;      ///< for `set-volume`
    MuteChange mute = MuteChange::toggle;
    std::optional<std::chrono::milliseconds> duration; ///< for `monitor`; none for no end
    std::optional<sim::DeviceFormat> format;           ///< for `format`; none to print the present one
    std::chrono::milliseconds hold{5000};              ///< for `format`
};

/// A command line that has been read.
struct CommandLine
{
    Arguments arguments;
    std::string answer; ///< help or version; if it is not empty, it is printed and nothing else is done
};

/// Reads the command line after the program's name. Throws UsageError.
CommandLine readCommandLine(const std::vector<std::string>& words);

/// Whether @p words contain --json; they may make no sense otherwise.
bool asksForJson(const std::vector<std::string>& words);
}
